#include "tests/diag/RecordingLiblog.h"
#include "tests/support/PrivateRoot.h"
#include "tests/support/TestSupport.h"

#include <tlvlib/diag/TVNG_DebugPrint.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QMap>

#include <atomic>
#include <chrono>
#include <thread>
#include <unistd.h>
#include <vector>

static const QString LOG_DIR = QLatin1String("/ata07/Talvenor/tmp");
static const QString LOG_FILE = LOG_DIR + QLatin1String("/tlvlog.log");

/// The log file, at its real path.
class tst_TVNG_DebugPrint_file : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void linesHaveATagAndNothingElse();
    void linesAreAppended();
    void thresholdFilters_data();
    void thresholdFilters();
    void bothSinksGetTheWholeArgumentList();
    void longMessagesAreWrittenWhole();
    void fileIsWrittenWithTheSystemLogOff();
    void nothingIsWrittenWithoutAFormat();
    void missingDirectoryLosesTheMessageInBothSinks();
    void aDirectoryInTheFilesPlaceLosesTheMessage();
    void writeErrorsAreIgnored();
    void filteredMessagesDoNotNeedTheDirectory();
    void fileMayVanishBetweenMessages();
    void threadsNeverMixLines();
    void noLineIsLostAmongThreads();
    void noFileStaysOpen();
};

void tst_TVNG_DebugPrint_file::init()
{
    QVERIFY(QDir().mkpath(LOG_DIR));
    QDir().rmdir(LOG_FILE);
    QFile::remove(LOG_FILE);
    ul_outputLevel = 3;
    g_uc_SystemLogLevel = 1;
    RecordingLiblog::take();
}

void tst_TVNG_DebugPrint_file::linesHaveATagAndNothingElse()
{
    TVNG_DebugPrint(3, "[TVNC_XMLSetting::save] start");
    QCOMPARE(readFile(LOG_FILE), QByteArray("[Talvenor][TVNC_XMLSetting::save] start\n"));
}

void tst_TVNG_DebugPrint_file::linesAreAppended()
{
    writeFile(LOG_FILE, "what stood there\n");
    TVNG_DebugPrint(1, "one");
    TVNG_DebugPrint(1, "two\n");
    TVNG_DebugPrint(1, "three");
    QCOMPARE(readFile(LOG_FILE),
             QByteArray("what stood there\n[Talvenor]one\n[Talvenor]two\n\n[Talvenor]three\n"));
}

void tst_TVNG_DebugPrint_file::thresholdFilters_data()
{
    QTest::addColumn<quint32>("threshold");
    QTest::addColumn<QByteArray>("written"); // of one message each of the levels 0 to 4
    QTest::newRow("0 is off, even for level 0") << quint32(0) << QByteArray();
    QTest::newRow("1") << quint32(1) << QByteArray("[Talvenor]0\n[Talvenor]1\n");
    QTest::newRow("2") << quint32(2) << QByteArray("[Talvenor]0\n[Talvenor]1\n[Talvenor]2\n");
    QTest::newRow("3") << quint32(3) << QByteArray("[Talvenor]0\n[Talvenor]1\n[Talvenor]2\n[Talvenor]3\n");
    QTest::newRow("unsigned") << quint32(0xFFFFFFFFu)
                              << QByteArray(
                                     "[Talvenor]0\n[Talvenor]1\n[Talvenor]2\n[Talvenor]3\n[Talvenor]4\n");
}

void tst_TVNG_DebugPrint_file::thresholdFilters()
{
    QFETCH(quint32, threshold);
    QFETCH(QByteArray, written);
    TVNG_DebugSetLogLevel(threshold);
    for (unsigned long level = 0; level <= 4; ++level)
        TVNG_DebugPrint(level, "%lu", level);
    QCOMPARE(readFile(LOG_FILE), written);
    // The system log is not filtered.
    QCOMPARE(RecordingLiblog::take().size(), 5);
}

void tst_TVNG_DebugPrint_file::bothSinksGetTheWholeArgumentList()
{
    TVNG_DebugPrint(1, "%d %s %d", 1, "two", 3);
    QCOMPARE(readFile(LOG_FILE), QByteArray("[Talvenor]1 two 3\n"));
    QCOMPARE(RecordingLiblog::take(), QStringList(QLatin1String("WriteSystemLog 1 1 255 '1 two 3' 0xffff")));
}

void tst_TVNG_DebugPrint_file::longMessagesAreWrittenWhole()
{
    const QByteArray text(200, 'x');
    const QByteArray longer(100000, 'y');
    TVNG_DebugPrint(1, "%s", text.constData());
    TVNG_DebugPrint(1, "%s", longer.constData());
    QCOMPARE(readFile(LOG_FILE), "[Talvenor]" + text + "\n[Talvenor]" + longer + "\n");
    const QStringList calls = RecordingLiblog::take();
    QCOMPARE(calls.size(), 2);
    QCOMPARE(calls.at(0),
             QString::fromLatin1("WriteSystemLog 1 1 255 '%1' 0xffff").arg(QString(127, QLatin1Char('x'))));
}

void tst_TVNG_DebugPrint_file::fileIsWrittenWithTheSystemLogOff()
{
    g_uc_SystemLogLevel = 0;
    TVNG_DebugPrint(3, "message");
    QCOMPARE(readFile(LOG_FILE), QByteArray("[Talvenor]message\n"));
    QCOMPARE(RecordingLiblog::take(), QStringList());
}

void tst_TVNG_DebugPrint_file::nothingIsWrittenWithoutAFormat()
{
    const char* pc_null = nullptr;
    const char* pc_empty = "";
    TVNG_DebugPrint(1, pc_null, 0);
    TVNG_DebugPrint(1, pc_empty, 0);
    QVERIFY(!QFile::exists(LOG_FILE));
    QCOMPARE(RecordingLiblog::take(), QStringList());
}

void tst_TVNG_DebugPrint_file::missingDirectoryLosesTheMessageInBothSinks()
{
    QVERIFY(QDir().rmdir(LOG_DIR));
    TVNG_DebugPrint(1, "lost");
    QCOMPARE(RecordingLiblog::take(), QStringList());
    QVERIFY(!QFile::exists(LOG_DIR)); // nobody made it

    // The next message comes through: the semaphore was given back.
    QVERIFY(QDir().mkpath(LOG_DIR));
    TVNG_DebugPrint(1, "back");
    QCOMPARE(readFile(LOG_FILE), QByteArray("[Talvenor]back\n"));
    QCOMPARE(RecordingLiblog::take().size(), 1);
}

void tst_TVNG_DebugPrint_file::aDirectoryInTheFilesPlaceLosesTheMessage()
{
    QVERIFY(QDir().mkpath(LOG_FILE));
    TVNG_DebugPrint(1, "lost");
    QCOMPARE(RecordingLiblog::take(), QStringList());
}

void tst_TVNG_DebugPrint_file::writeErrorsAreIgnored()
{
    // A full disk: the file can be opened, but nothing gets into it. The system log still has the message.
    QVERIFY(QFile::link(QLatin1String("/dev/full"), LOG_FILE));
    TVNG_DebugPrint(1, "message");
    QCOMPARE(RecordingLiblog::take(), QStringList(QLatin1String("WriteSystemLog 1 1 255 'message' 0xffff")));
}

void tst_TVNG_DebugPrint_file::filteredMessagesDoNotNeedTheDirectory()
{
    QVERIFY(QDir().rmdir(LOG_DIR));
    ul_outputLevel = 2;
    TVNG_DebugPrint(3, "trace");
    QCOMPARE(RecordingLiblog::take(), QStringList(QLatin1String("WriteSystemLog 1 1 255 'trace' 0xffff")));
}

void tst_TVNG_DebugPrint_file::fileMayVanishBetweenMessages()
{
    TVNG_DebugPrint(1, "one");
    QVERIFY(QFile::remove(LOG_FILE));
    TVNG_DebugPrint(1, "two");
    QCOMPARE(readFile(LOG_FILE), QByteArray("[Talvenor]two\n"));
}

// Longer than any buffer of stdio, so that a line takes more than one write.
static QByteArray longText(int si_id)
{
    return QByteArray(10000, static_cast<char>('a' + si_id));
}

static void writeLongLines(int si_id)
{
    const QByteArray text = longText(si_id);
    for (int i = 0; i < 100; ++i)
        TVNG_DebugPrint(1, "%d %d %s", si_id, i, text.constData());
}

void tst_TVNG_DebugPrint_file::threadsNeverMixLines()
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.push_back(std::thread(writeLongLines, i));
    for (size_t i = 0; i < threads.size(); ++i)
        threads[i].join();

    int next[4] = {0, 0, 0, 0};
    QList<QByteArray> lines = readFile(LOG_FILE).split('\n');
    QCOMPARE(lines.takeLast(), QByteArray());
    QCOMPARE(lines.size(), 400);
    foreach (const QByteArray& line, lines) {
        QVERIFY(line.startsWith("[Talvenor]"));
        const int id = line.mid(10, 1).toInt();
        QVERIFY(id >= 0 && id < 4);
        const QByteArray expected =
            "[Talvenor]" + QByteArray::number(id) + ' ' + QByteArray::number(next[id]++) + ' ' + longText(id);
        QCOMPARE(line, expected);
    }
}

static void writeCountedLines(int si_id, int si_lines, std::atomic<int>* pc_running)
{
    for (int i = 0; i < si_lines; ++i)
        TVNG_DebugPrint(1, "%d %d", si_id, i);
    --*pc_running;
}

// Eight threads, and the threshold changes meanwhile between values that all admit the messages.
void tst_TVNG_DebugPrint_file::noLineIsLostAmongThreads()
{
    const int si_threads = 8;
#ifdef __SANITIZE_THREAD__ // which takes ten times as long
    const int si_lines = 5000;
#else
    const int si_lines = 100000;
#endif
    g_uc_SystemLogLevel = 0;
    std::atomic<int> running(si_threads);
    std::vector<std::thread> threads;
    for (int i = 0; i < si_threads; ++i)
        threads.push_back(std::thread(writeCountedLines, i, si_lines, &running));
    for (unsigned long ul_level = 1; running > 0; ul_level = ul_level % 3 + 1) {
        TVNG_DebugSetLogLevel(ul_level);
        std::this_thread::sleep_for(std::chrono::microseconds(50));
    }
    for (size_t i = 0; i < threads.size(); ++i)
        threads[i].join();
    int si_next[si_threads] = {};
    QFile file(LOG_FILE);
    QVERIFY(file.open(QIODevice::ReadOnly));
    int si_count = 0;
    for (; !file.atEnd(); ++si_count) {
        const QByteArray line = file.readLine();
        const int si_id = line.mid(10, 1).toInt();
        QVERIFY(si_id < si_threads);
        QCOMPARE(line, "[Talvenor]" + QByteArray::number(si_id) + ' ' + QByteArray::number(si_next[si_id]++) +
                           '\n');
    }
    QCOMPARE(si_count, si_threads * si_lines);
}

static int openFiles()
{
    return static_cast<int>(QDir(QLatin1String("/proc/self/fd"))
                                .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
                                .size());
}

void tst_TVNG_DebugPrint_file::noFileStaysOpen()
{
    const int before = openFiles();
    for (int i = 0; i < 50; ++i)
        TVNG_DebugPrint(1, "message");
    QCOMPARE(openFiles(), before);
}

TLVLIB_PRIVATE_ROOT_TEST_MAIN(tst_TVNG_DebugPrint_file)
#include "tst_TVNG_DebugPrint_file.moc"
