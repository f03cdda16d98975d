#include "platform/liblog.h"

#include <QtCore/QStringList>
#include <QtTest/QtTest>

#include <cstdarg>
#include <cstdio>

/*
 * The liblog for desks hands messages to syslog(3). This program stands in for syslog(3) and writes down what
 * it gets. (syslog.h is not included: its declarations of these functions may be macros or inline.)
 */

static QStringList& calls()
{
    static QStringList list;
    return list;
}

static void add(int priority, const char* pc_format, va_list arguments)
{
    char text[1000];
    std::vsnprintf(text, sizeof text, pc_format, arguments);
    calls() << QString::fromLatin1("%1 ").arg(priority) + QString::fromUtf8(text);
}

extern "C" {

void openlog(const char* ident, int, int)
{
    calls() << QLatin1String("openlog ") + QLatin1String(ident);
}

void syslog(int priority, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    add(priority, format, arguments);
    va_end(arguments);
}

/// What syslog() becomes in a build with _FORTIFY_SOURCE.
void __syslog_chk(int priority, int, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    add(priority, format, arguments);
    va_end(arguments);
}

} // extern "C"

static const int INFO = 6;  // LOG_INFO
static const int DEBUG = 7; // LOG_DEBUG

class tst_liblog_syslog : public QObject
{
    Q_OBJECT

private slots:
    void logIsOpenedOnceAsTlvlib();
    void messagesArePassedOnAsTheyAre();
    void startUpCallsAreNoted();
};

void tst_liblog_syslog::logIsOpenedOnceAsTlvlib()
{
    QCOMPARE(calls(), QStringList()); // not before the first message
    unsigned short us_id = 0xFFFF;
    LIBF_WriteSystemLog(1, 1, 255, "one", &us_id);
    LIBF_WriteSystemLog(1, 1, 255, "two", &us_id);
    QCOMPARE(calls(), QStringList() << QLatin1String("openlog tlvlib")
                                    << QString::fromLatin1("%1 one").arg(INFO)
                                    << QString::fromLatin1("%1 two").arg(INFO));
}

void tst_liblog_syslog::messagesArePassedOnAsTheyAre()
{
    calls().clear();
    unsigned short us_id = 0xFFFF;
    LIBF_WriteSystemLog(1, 1, 255, "100%n %s %d", &us_id);
    LIBF_WriteSystemLog(1, 1, 255, "", &us_id);
    QCOMPARE(calls(), QStringList() << QString::fromLatin1("%1 100%n %s %d").arg(INFO)
                                    << QString::fromLatin1("%1 ").arg(INFO));
}

void tst_liblog_syslog::startUpCallsAreNoted()
{
    calls().clear();
    LIBF_SetSignalHandler01(65535);
    LIBF_SetApiSignalInfoNonSave(1);
    LIBF_AttachMemory();
    QCOMPARE(calls().size(), 3);
    QVERIFY(calls().at(0).startsWith(QString::fromLatin1("%1 LIBF_SetSignalHandler01 ").arg(DEBUG)));
    QVERIFY(calls().at(1).startsWith(QString::fromLatin1("%1 LIBF_SetApiSignalInfoNonSave ").arg(DEBUG)));
    QVERIFY(calls().at(2).startsWith(QString::fromLatin1("%1 LIBF_AttachMemory ").arg(DEBUG)));
}

QTEST_APPLESS_MAIN(tst_liblog_syslog)
#include "tst_liblog_syslog.moc"
