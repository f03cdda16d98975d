#include "tests/tools/TlvctlRun.h"
#include "tools/tlvctl/commandline/Text.h"

#include <QtCore/QDir>

#include <memory>

/// The command line itself, and how texts of others reach the terminal.
class tst_tlvctl : public QObject
{
    Q_OBJECT

private slots:
    void init() { dir_ = std::make_unique<TempDir>(); }
    void cleanup() { dir_.reset(); }

    void everyLevelHasHelp_data();
    void everyLevelHasHelp();
    void helpListsTheCommands();
    void versionIsThatOfTheProject();
    void wrongUsageIsRefusedWithAHint_data();
    void wrongUsageIsRefusedWithAHint();
    void logLevelIsTakenOnEveryLevel_data();
    void logLevelIsTakenOnEveryLevel();
    void onlyImportNeedsAPlatformPlugin();
    void fullStandardOutputIsAnError();
    void undecodableArgumentIsRefused();
    void textsAreMadePrintable_data();
    void textsAreMadePrintable();
    void quotationMarksInQuotedTextsAreEscaped();
    void jsonStringsAreValidAndHarmless_data();
    void jsonStringsAreValidAndHarmless();

private:
    /// A path in the test's own directory.
    QString path(const QString& name = QString()) const { return dir_->path() + name; }
    QString listPath() const { return path("fontlist.xml"); }

    std::unique_ptr<TempDir> dir_;
};

void tst_tlvctl::everyLevelHasHelp_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("usage");
    QTest::addColumn<QString>("example");
    QTest::newRow("tool") << QStringList{"--help"} << "tlvctl [options] COMMAND"
                          << "tlvctl show ";
    QTest::newRow("short") << QStringList{"-h"} << "tlvctl [options] COMMAND"
                           << "tlvctl show ";
    QTest::newRow("show") << QStringList{"show", "--help"} << "tlvctl show [options] FILE"
                          << "tlvctl show ";
    QTest::newRow("fonts") << QStringList{"fonts", "--help"} << "tlvctl fonts [options] COMMAND"
                           << "tlvctl fonts list ";
    QTest::newRow("list") << QStringList{"fonts", "list", "--help"} << "tlvctl fonts list [options] DIR"
                          << "tlvctl fonts list ";
    QTest::newRow("add") << QStringList{"fonts", "add", "--help"} << "tlvctl fonts add [options] DIR NAME..."
                         << "tlvctl fonts add ";
    QTest::newRow("import") << QStringList{"fonts", "import", "--help"} << "tlvctl fonts import [options] DIR"
                            << "tlvctl fonts import ";
    QTest::newRow("history") << QStringList{"history", "--help"} << "tlvctl history [options] COMMAND"
                             << "tlvctl history list ";
    QTest::newRow("history list") << QStringList{"history", "list", "--help"}
                                  << "tlvctl history list [options] DIR"
                                  << "tlvctl history list ";
    QTest::newRow("history find") << QStringList{"history", "find", "--help"}
                                  << "tlvctl history find [options] DIR URL"
                                  << "tlvctl history find ";
    QTest::newRow("history add") << QStringList{"history", "add", "--help"}
                                 << "tlvctl history add [options] DIR URL"
                                 << "tlvctl history add ";
    QTest::newRow("history remove") << QStringList{"history", "remove", "--help"}
                                    << "tlvctl history remove [options] DIR NUMBER..."
                                    << "tlvctl history remove ";
    QTest::newRow("auth") << QStringList{"auth", "--help"} << "tlvctl auth [options] COMMAND"
                          << "tlvctl auth list ";
    QTest::newRow("auth list") << QStringList{"auth", "list", "--help"} << "tlvctl auth list [options] DIR"
                               << "tlvctl auth list ";
    QTest::newRow("auth add") << QStringList{"auth", "add", "--help"}
                              << "tlvctl auth add [options] DIR HOST PORT"
                              << "tlvctl auth add ";
    QTest::newRow("auth remove") << QStringList{"auth", "remove", "--help"}
                                 << "tlvctl auth remove [options] DIR NUMBER..."
                                 << "tlvctl auth remove ";
    QTest::newRow("behind arguments")
        << QStringList{"fonts", "list", "dir", "--help"} << "tlvctl fonts list [options] DIR"
        << "tlvctl fonts list ";
}

void tst_tlvctl::everyLevelHasHelp()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, usage);
    QFETCH(QString, example);
    const Run run = tlvctl(arguments);
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    const QStringList lines = QString::fromUtf8(run.out).split('\n');
    QCOMPARE(lines.first(), "Usage: " + usage);
    const int examples = static_cast<int>(lines.indexOf("Examples:"));
    QVERIFY(examples > 0);
    QVERIFY(lines.at(examples + 1).startsWith("  " + example));
    for (const QString& line : lines)
        QVERIFY2(line.size() <= 80, qPrintable(line));
    QVERIFY(run.out.contains("--log-level <N>"));
}

void tst_tlvctl::helpListsTheCommands()
{
    const QByteArray tool = tlvctl({"--help"}).out;
    for (const char* name : {"show", "fonts", "history", "auth"})
        QVERIFY2(tool.contains("\n  " + QByteArray(name) + "  "), name);
    const QByteArray fonts = tlvctl({"fonts", "--help"}).out;
    for (const char* name : {"list", "add", "import"})
        QVERIFY2(fonts.contains("\n  " + QByteArray(name) + "  "), name);
    const QByteArray history = tlvctl({"history", "--help"}).out;
    for (const char* name : {"list", "find", "add", "remove"})
        QVERIFY2(history.contains("\n  " + QByteArray(name) + "  "), name);
    const QByteArray auth = tlvctl({"auth", "--help"}).out;
    for (const char* name : {"list", "add", "remove"})
        QVERIFY2(auth.contains("\n  " + QByteArray(name) + "  "), name);
}

void tst_tlvctl::versionIsThatOfTheProject()
{
    const Run run = tlvctl({"--version"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, QByteArray("tlvctl " TLVCTL_VERSION "\n"));
    QCOMPARE(run.err, QByteArray());
}

void tst_tlvctl::wrongUsageIsRefusedWithAHint_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("command");
    QTest::newRow("no command") << QStringList{} << "tlvctl";
    QTest::newRow("unknown command") << QStringList{"colours"} << "tlvctl";
    QTest::newRow("unknown option") << QStringList{"--colour"} << "tlvctl";
    QTest::newRow("unknown short option") << QStringList{"-x"} << "tlvctl";
    QTest::newRow("hostile command") << QStringList{utf8("\x1b[31m\u202E")} << "tlvctl";
    QTest::newRow("no fonts command") << QStringList{"fonts"} << "tlvctl fonts";
    QTest::newRow("unknown fonts command") << QStringList{"fonts", "paint"} << "tlvctl fonts";
    QTest::newRow("option of another level") << QStringList{"fonts", "--json", "list", "."} << "tlvctl fonts";
    QTest::newRow("version is the tool's") << QStringList{"fonts", "--version"} << "tlvctl fonts";
    QTest::newRow("show nothing") << QStringList{"show"} << "tlvctl show";
    QTest::newRow("show two") << QStringList{"show", "a", "b"} << "tlvctl show";
    QTest::newRow("show --force") << QStringList{"show", "--force", "a"} << "tlvctl show";
    QTest::newRow("list nothing") << QStringList{"fonts", "list"} << "tlvctl fonts list";
    QTest::newRow("list two") << QStringList{"fonts", "list", "a", "b"} << "tlvctl fonts list";
    QTest::newRow("value for --json") << QStringList{"fonts", "list", "--json=1", "."} << "tlvctl fonts list";
    QTest::newRow("add to nothing") << QStringList{"fonts", "add"} << "tlvctl fonts add";
    QTest::newRow("add nothing") << QStringList{"fonts", "add", "."} << "tlvctl fonts add";
    QTest::newRow("import to nothing") << QStringList{"fonts", "import"} << "tlvctl fonts import";
    QTest::newRow("import two") << QStringList{"fonts", "import", ".", "x"} << "tlvctl fonts import";
    QTest::newRow("no history command") << QStringList{"history"} << "tlvctl history";
    QTest::newRow("find no address") << QStringList{"history", "find", "."} << "tlvctl history find";
    QTest::newRow("find two addresses")
        << QStringList{"history", "find", ".", "a", "b"} << "tlvctl history find";
    QTest::newRow("visit nothing") << QStringList{"history", "add", "."} << "tlvctl history add";
    QTest::newRow("visit two") << QStringList{"history", "add", ".", "a", "b"} << "tlvctl history add";
    QTest::newRow("remove no visit") << QStringList{"history", "remove", "."} << "tlvctl history remove";
    QTest::newRow("remove no entry") << QStringList{"auth", "remove", "."} << "tlvctl auth remove";
    QTest::newRow("no port") << QStringList{"auth", "add", ".", "host"} << "tlvctl auth add";
    QTest::newRow("entry without options")
        << QStringList{"auth", "add", ".", "host", "80"} << "tlvctl auth add";
    QTest::newRow("dry run of a list") << QStringList{"auth", "list", "--dry-run", "."} << "tlvctl auth list";
    for (const char* level : {"4", "-1", "", "x", "1.0", "01", "99999999999"}) {
        QTest::newRow((QByteArray("log level ") + level).constData())
            << QStringList{"--log-level", level, "fonts", "list", "."} << "tlvctl";
        QTest::newRow((QByteArray("command's log level ") + level).constData())
            << QStringList{"fonts", "list", "--log-level", level, "."} << "tlvctl fonts list";
    }
    QTest::newRow("no log level") << QStringList{"fonts", "list", ".", "--log-level"} << "tlvctl fonts list";
}

void tst_tlvctl::wrongUsageIsRefusedWithAHint()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, command);
    const Run run = runProgram(TLVCTL, arguments, plainEnvironment(), path());
    QCOMPARE(run.code, 2);
    QCOMPARE(run.out, QByteArray());
    QVERIFY(run.err.startsWith("tlvctl: "));
    QVERIFY2(run.err.endsWith(("see \"" + command + " --help\"\n").toUtf8()), run.err.constData());
    QVERIFY(isHarmless(run.err));
    QVERIFY(QDir(path()).isEmpty());
}

void tst_tlvctl::logLevelIsTakenOnEveryLevel_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("tool") << QStringList{"--log-level", "0", "fonts", "list", "."};
    QTest::newRow("group") << QStringList{"fonts", "--log-level=0", "list", "."};
    QTest::newRow("command") << QStringList{"fonts", "list", "--log-level", "0", "."};
    QTest::newRow("behind arguments") << QStringList{"fonts", "list", ".", "--log-level", "0"};
    QTest::newRow("the last counts") << QStringList{"--log-level", "3", "fonts", "list",
                                                    "--log-level", "0", "."};
}

void tst_tlvctl::logLevelIsTakenOnEveryLevel()
{
    QFETCH(QStringList, arguments);
    const Run run = runProgram(TLVCTL, arguments, plainEnvironment(), path());
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
}

void tst_tlvctl::onlyImportNeedsAPlatformPlugin()
{
    const QProcessEnvironment environment = with("QT_QPA_PLATFORM", "nonexistent");
    QCOMPARE(tlvctl({"fonts", "add", path(), "Sans"}, environment).code, 0);
    QCOMPARE(tlvctl({"fonts", "list", path()}, environment).code, 0);
    QCOMPARE(tlvctl({"show", listPath()}, environment).code, 0);
    QCOMPARE(tlvctl({"fonts", "import", "--help"}, environment).code, 0);
}

void tst_tlvctl::fullStandardOutputIsAnError()
{
    writeFile(listPath(), fontList({"Sans"}));
    const Run run = shell("\"$tlvctl\" show \"$1\" > /dev/full", listPath());
    QCOMPARE(run.code, 1);
    QVERIFY(run.err.startsWith("tlvctl: standard output "));
}

void tst_tlvctl::undecodableArgumentIsRefused()
{
    const Run run = shell("\"$tlvctl\" fonts add \"$1\" \"$(printf 'a\\377b')\"", path());
    QCOMPARE(run.code, 2);
    QVERIFY(run.err.startsWith("tlvctl: argument 4 "));
    QVERIFY(!QFile::exists(listPath()));
}

void tst_tlvctl::textsAreMadePrintable_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("printed");
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("plain") << utf8("DejaVu \u65E5\u672C \U0001F600")
                           << utf8("DejaVu \u65E5\u672C \U0001F600");
    QTest::newRow("blanks") << "\n\r\t"
                            << "\\n\\r\\t";
    QTest::newRow("escape sequence") << "\x1b[31m"
                                     << "\\x1B[31m";
    QTest::newRow("zero") << QString(QChar(0)) << "\\x00";
    QTest::newRow("delete") << "\x7f"
                            << "\\x7F";
    QTest::newRow("C1") << QString(QChar(0x9B)) << "\\x9B";
    QTest::newRow("backslash") << "\\n"
                               << "\\\\n";
    const ushort marks[] = {0x061C, 0x200B, 0x200E, 0x200F, 0x2028, 0x2029, 0x202A, 0x202B, 0x202C,
                            0x202D, 0x202E, 0x2066, 0x2067, 0x2068, 0x2069, 0xFEFF, 0xD800, 0xDFFF};
    for (const ushort mark : marks) {
        const QString hex = QString::number(mark, 16).toUpper().rightJustified(4, '0');
        QTest::newRow(qPrintable("U+" + hex)) << 'a' + QString(QChar(mark)) + 'b' << "a\\u{" + hex + "}b";
    }
    QTest::newRow("beyond 16 bits") << utf8("\U000E0041") << "\\u{E0041}";
}

void tst_tlvctl::textsAreMadePrintable()
{
    QFETCH(QString, text);
    QFETCH(QString, printed);
    QCOMPARE(printable(text), printed);
}

void tst_tlvctl::quotationMarksInQuotedTextsAreEscaped()
{
    QCOMPARE(quoted("a \"b\" \\"), QString("\"a \\\"b\\\" \\\\\""));
}

void tst_tlvctl::jsonStringsAreValidAndHarmless_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("parsed");
    QString all;
    for (int unit = 0; unit < 0xD800; ++unit)
        all += QChar(unit);
    for (int unit = 0xE000; unit < 0x10000; ++unit)
        all += QChar(unit);
    all += utf8("\U0001F600\U000E0041");
    QTest::newRow("every character") << all << all;
    const QString high(QChar(0xD83D));
    const QString low(QChar(0xDE00));
    QTest::newRow("lone high surrogate") << 'a' + high + 'b' << utf8("a\uFFFDb");
    QTest::newRow("lone low surrogate") << 'a' + low + 'b' << utf8("a\uFFFDb");
    QTest::newRow("surrogates in the wrong order") << low + high << utf8("\uFFFD\uFFFD");
}

void tst_tlvctl::jsonStringsAreValidAndHarmless()
{
    QFETCH(QString, text);
    QFETCH(QString, parsed);
    const QByteArray json = jsonString(text);
    QVERIFY(isHarmless(json));
    QVERIFY(!json.contains('\n'));
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson('[' + json + ']', &error);
    QCOMPARE(error.error, QJsonParseError::NoError);
    QCOMPARE(document.array().size(), 1);
    QVERIFY(document.array().at(0).toString() == parsed);
}

TLVCTL_TEST_MAIN(tst_tlvctl)
#include "tst_tlvctl.moc"
