#include "tests/diag/RecordingLiblog.h"
#include "tests/support/TestSupport.h"

#include <tlvlib/diag/TVNG_DebugPrint.h>

#include <limits>

/// The system log and the start-up calls. The log file has a program of its own.
class tst_TVNG_DebugPrint : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void everyLevelReachesTheSystemLog_data();
    void everyLevelReachesTheSystemLog();
    void anyNonZeroSwitchIsOn_data();
    void anyNonZeroSwitchIsOn();
    void systemLogCanBeSwitchedOff();
    void argumentsAreFormatted();
    void nothingHappensWithoutAFormat();
    void longMessagesAreCutTo127Bytes_data();
    void longMessagesAreCutTo127Bytes();
    void thresholdIsStoredIn32Bits();
    void startUpCallsArePassedOn();
};

/// What nobody has set yet, and init() would.
void tst_TVNG_DebugPrint::initTestCase()
{
    QCOMPARE(ul_outputLevel, quint32(0));
    QCOMPARE(static_cast<int>(g_uc_SystemLogLevel), 1);
    QCOMPARE(sizeof ul_outputLevel, size_t(4));
}

void tst_TVNG_DebugPrint::init()
{
    ul_outputLevel = 0;
    g_uc_SystemLogLevel = 1;
    RecordingLiblog::take();
}

void tst_TVNG_DebugPrint::everyLevelReachesTheSystemLog_data()
{
    QTest::addColumn<int>("level");
    QTest::newRow("0") << 0;
    QTest::newRow("failure") << 1;
    QTest::newRow("rejected") << 2;
    QTest::newRow("trace") << 3;
    QTest::newRow("unknown") << 1000;
}

void tst_TVNG_DebugPrint::everyLevelReachesTheSystemLog()
{
    QFETCH(int, level);
    TVNG_DebugPrint(static_cast<unsigned long>(level), "[X::y] start");
    QCOMPARE(RecordingLiblog::take(),
             QStringList(QLatin1String("WriteSystemLog 1 1 255 '[X::y] start' 0xffff")));
}

void tst_TVNG_DebugPrint::anyNonZeroSwitchIsOn_data()
{
    QTest::addColumn<int>("value");
    QTest::newRow("1") << 1;
    QTest::newRow("2") << 2;
    QTest::newRow("255") << 255;
}

void tst_TVNG_DebugPrint::anyNonZeroSwitchIsOn()
{
    QFETCH(int, value);
    g_uc_SystemLogLevel = static_cast<unsigned char>(value);
    TVNG_DebugPrint(3, "message"); // a level above the value is no filter
    QCOMPARE(RecordingLiblog::take().size(), 1);
}

void tst_TVNG_DebugPrint::systemLogCanBeSwitchedOff()
{
    g_uc_SystemLogLevel = 0;
    TVNG_DebugPrint(1, "message");
    QCOMPARE(RecordingLiblog::take(), QStringList());
}

void tst_TVNG_DebugPrint::argumentsAreFormatted()
{
    TVNG_DebugPrint(1, "[%s] %d of %03d, 0x%X%%", "name", -5, 7, 0xBEEFu);
    QCOMPARE(RecordingLiblog::take(),
             QStringList(QLatin1String("WriteSystemLog 1 1 255 '[name] -5 of 007, 0xBEEF%' 0xffff")));
}

void tst_TVNG_DebugPrint::nothingHappensWithoutAFormat()
{
    const char* pc_null = nullptr;
    const char* pc_empty = "";
    TVNG_DebugPrint(1, pc_null, 0);
    TVNG_DebugPrint(1, pc_empty, 0);
    QCOMPARE(RecordingLiblog::take(), QStringList());
    // A format that makes an empty message is a message.
    TVNG_DebugPrint(1, "%s", "");
    QCOMPARE(RecordingLiblog::take(), QStringList(QLatin1String("WriteSystemLog 1 1 255 '' 0xffff")));
}

void tst_TVNG_DebugPrint::longMessagesAreCutTo127Bytes_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("kept");
    QTest::newRow("126") << 126 << 126;
    QTest::newRow("127") << 127 << 127;
    QTest::newRow("128") << 128 << 127;
    QTest::newRow("129") << 129 << 127;
    QTest::newRow("200") << 200 << 127;
    QTest::newRow("100000") << 100000 << 127;
}

void tst_TVNG_DebugPrint::longMessagesAreCutTo127Bytes()
{
    QFETCH(int, length);
    QFETCH(int, kept);
    const QByteArray text(length, 'x');
    const QStringList written(
        QString::fromLatin1("WriteSystemLog 1 1 255 '%1' 0xffff").arg(QString(kept, QLatin1Char('x'))));
    TVNG_DebugPrint(1, "%s", text.constData());
    QCOMPARE(RecordingLiblog::take(), written);
    // A text without a format's marks goes another way.
    const char* const pc_plain = text.constData();
    TVNG_DebugPrint(1, pc_plain);
    QCOMPARE(RecordingLiblog::take(), written);
}

void tst_TVNG_DebugPrint::thresholdIsStoredIn32Bits()
{
    TVNG_DebugSetLogLevel(3);
    QCOMPARE(ul_outputLevel, quint32(3));
    TVNG_DebugSetLogLevel(0xFFFFFFFFul);
    QCOMPARE(ul_outputLevel, quint32(0xFFFFFFFFu));
    TVNG_DebugSetLogLevel(std::numeric_limits<unsigned long>::max());
    QCOMPARE(ul_outputLevel, quint32(0xFFFFFFFFu));
    TVNG_DebugSetLogLevel(0);
    QCOMPARE(ul_outputLevel, quint32(0));
    // Setting it does nothing else.
    QCOMPARE(static_cast<int>(g_uc_SystemLogLevel), 1);
    QCOMPARE(RecordingLiblog::take(), QStringList());
}

void tst_TVNG_DebugPrint::startUpCallsArePassedOn()
{
    TVNG_SetSignalHandler01();
    QCOMPARE(RecordingLiblog::take(), QStringList() << QLatin1String("SetSignalHandler01 65535")
                                                    << QLatin1String("SetApiSignalInfoNonSave 1"));
    TVNG_DebugAttachMemory();
    QCOMPARE(RecordingLiblog::take(), QStringList(QLatin1String("AttachMemory")));
}

TLVLIB_TEST_MAIN(tst_TVNG_DebugPrint)
#include "tst_TVNG_DebugPrint.moc"
