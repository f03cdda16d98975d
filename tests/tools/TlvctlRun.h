#ifndef TESTS_TOOLS_TLVCTLRUN_H
#define TESTS_TOOLS_TLVCTLRUN_H

/**
 * @file
 * Runs the tool that was built, as a user would, and looks at what it leaves behind. Of every group of
 * commands there is one test program.
 */

#include "tests/support/TestSupport.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>

#include <cstdio>

#include <sys/prctl.h>

#include <linux/capability.h>

/// What one run of the tool left behind.
struct Run
{
    int code; ///< -1 when it crashed or hung
    QByteArray out;
    QByteArray err;
};

/// The environment of the runs: nothing of the tester's own that the tool looks at.
inline QProcessEnvironment plainEnvironment()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("QT_QPA_PLATFORM");
    environment.remove("LANGUAGE");
    environment.insert("LC_ALL", "C.UTF-8");
    return environment;
}

inline Run runProgram(const QString& program, const QStringList& arguments,
                      const QProcessEnvironment& environment = plainEnvironment(),
                      const QString& workingDirectory = QString())
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(workingDirectory);
    process.start(program, arguments, QIODevice::ReadOnly);
    if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit) {
        process.kill();
        process.waitForFinished();
        return {-1, process.readAllStandardOutput(), process.readAllStandardError()};
    }
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

inline Run tlvctl(const QStringList& arguments, const QProcessEnvironment& environment = plainEnvironment())
{
    return runProgram(TLVCTL, arguments, environment);
}

/// Runs the tool with these bytes as its standard input.
inline Run tlvctlReading(const QByteArray& input, const QStringList& arguments)
{
    QProcess process;
    process.setProcessEnvironment(plainEnvironment());
    process.start(TLVCTL, arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit) {
        process.kill();
        process.waitForFinished();
        return {-1, process.readAllStandardOutput(), process.readAllStandardError()};
    }
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

/// Runs a shell script in which "$tlvctl" is the tool and "$1" the argument.
inline Run shell(const QString& script, const QString& argument)
{
    QProcessEnvironment environment = plainEnvironment();
    environment.insert("tlvctl", TLVCTL);
    return runProgram("/bin/sh", {"-c", script, "sh", argument}, environment);
}

inline QProcessEnvironment with(const QString& name, const QString& value)
{
    QProcessEnvironment environment = plainEnvironment();
    environment.insert(name, value);
    return environment;
}

/// Whether standard error holds exactly one message of the tool's about the file, with all these words.
inline bool complains(const Run& run, const QString& file, const QStringList& words)
{
    const QString text = QString::fromUtf8(run.err);
    bool isFine = text.startsWith("tlvctl: " + file + ": ") && text.endsWith('\n') && text.count('\n') == 1;
    for (const QString& word : words)
        isFine = isFine && text.contains(word);
    if (!isFine)
        qWarning("standard error is: %s", run.err.constData());
    return isFine;
}

inline QJsonObject jsonOf(const QByteArray& out)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(out, &error);
    if (error.error != QJsonParseError::NoError)
        qWarning("no JSON: %s", qPrintable(error.errorString()));
    return document.object();
}

const char FONT_LIST_START[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<fontlist docInfo=\"1.0\">\n";
const char FONT_LIST_END[] = "</fontlist>\n";

/// The file that a list of these names is, numbered from 0.
inline QByteArray fontList(const QList<QByteArray>& names)
{
    QByteArray xml = FONT_LIST_START;
    for (int i = 0; i < names.size(); ++i)
        xml += "    <font id=\"" + QByteArray::number(i).rightJustified(3, '0') + "\">" + names.at(i) +
               "</font>\n";
    return xml + FONT_LIST_END;
}

inline QList<QByteArray> manyNames(int count)
{
    QList<QByteArray> names;
    for (int i = 0; i < count; ++i)
        names.append("Font " + QByteArray::number(i));
    return names;
}

const char DAMAGED_LIST[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                            "<fontlist docInfo=\"1.0\">\n"
                            "    <font id=\"000\">Sans</font>\n"
                            "    <font id=\"001\">Serif</fond>\n"
                            "    <font id=\"002\">Mono</font>\n"
                            "</fontlist>\n";

/// Characters that must never reach a terminal as they are, beside the line breaks of the tool's own.
inline bool isHarmless(const QByteArray& output)
{
    const QString text = QString::fromUtf8(output);
    for (const QChar c : text) {
        const ushort u = c.unicode();
        const bool isControl = (u < 0x20 && u != '\n') || (u >= 0x7F && u <= 0x9F);
        const bool isMark = u == 0x061C || (u >= 0x200B && u <= 0x200F) || (u >= 0x2028 && u <= 0x202E) ||
                            (u >= 0x2060 && u <= 0x206F) || u == 0xFEFF;
        if (isControl || isMark) {
            qWarning("U+%04X in the output", u);
            return false;
        }
    }
    return true;
}

/// Permissions bind the superuser too in the programs that are started from here.
inline void dropCapabilities()
{
    prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, 0, 0, 0);
    prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH, 0, 0, 0);
}

#define TLVCTL_TEST_MAIN(TestClass)                                                                          \
    int main(int argc, char** argv)                                                                          \
    {                                                                                                        \
        dropCapabilities();                                                                                  \
        QCoreApplication application(argc, argv);                                                            \
        TestClass test;                                                                                      \
        return QTest::qExec(&test, argc, argv);                                                              \
    }

#endif
