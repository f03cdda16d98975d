#include "tests/support/PrivateRoot.h"
#include "tests/support/TestSupport.h"
#include "tools/tlvctl/Text.h"

#include <tlvlib/tlvlib.h>

#include <QtCore/QDir>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>

#include <cstdio>
#include <vector>

#include <sys/prctl.h>
#include <sys/stat.h>

#include <linux/capability.h>

namespace {

/// What one run of the tool left behind.
struct Run
{
    int code; ///< -1 when it crashed or hung
    QByteArray out;
    QByteArray err;
};

/// The environment of the runs: nothing of the tester's own that the tool looks at.
QProcessEnvironment plainEnvironment()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("QT_QPA_PLATFORM");
    environment.remove("LANGUAGE");
    environment.insert("LC_ALL", "C.UTF-8");
    return environment;
}

Run runProgram(const QString& program, const QStringList& arguments,
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

Run tlvctl(const QStringList& arguments, const QProcessEnvironment& environment = plainEnvironment())
{
    return runProgram(TLVCTL, arguments, environment);
}

/// Runs a shell script in which "$tlvctl" is the tool and "$1" the argument.
Run shell(const QString& script, const QString& argument)
{
    QProcessEnvironment environment = plainEnvironment();
    environment.insert("tlvctl", TLVCTL);
    return runProgram("/bin/sh", {"-c", script, "sh", argument}, environment);
}

QProcessEnvironment with(const QString& name, const QString& value)
{
    QProcessEnvironment environment = plainEnvironment();
    environment.insert(name, value);
    return environment;
}

/// Whether standard error holds exactly one message of the tool's about the file, with all these words.
bool complains(const Run& run, const QString& file, const QStringList& words)
{
    const QString text = QString::fromUtf8(run.err);
    bool isFine = text.startsWith("tlvctl: " + file + ": ") && text.endsWith('\n') && text.count('\n') == 1;
    for (const QString& word : words)
        isFine = isFine && text.contains(word);
    if (!isFine)
        qWarning("standard error is: %s", run.err.constData());
    return isFine;
}

QJsonObject jsonOf(const QByteArray& out)
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
QByteArray fontList(const QList<QByteArray>& names)
{
    QByteArray xml = FONT_LIST_START;
    for (int i = 0; i < names.size(); ++i)
        xml += "    <font id=\"" + QByteArray::number(i).rightJustified(3, '0') + "\">" + names.at(i) +
               "</font>\n";
    return xml + FONT_LIST_END;
}

QList<QByteArray> manyNames(int count)
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
bool isHarmless(const QByteArray& output)
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

/// A configuration for fontconfig in @a dir that knows the fonts of the directory @a fonts alone.
QProcessEnvironment fontEnvironment(const QString& dir, const QString& fonts, const QByteArray& rules = {})
{
    writeFile(dir + "fonts.conf", "<?xml version=\"1.0\"?><fontconfig><dir>" + QFile::encodeName(fonts) +
                                      "</dir><cachedir>" + QFile::encodeName(dir) + "cache</cachedir>" +
                                      rules + "</fontconfig>");
    return with("FONTCONFIG_FILE", dir + "fonts.conf");
}

const char SANS_MONO[] = "/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf";

/// A rule that renames the family which a font file gives.
QByteArray renamingRule(const QByteArray& name)
{
    return "<match target=\"scan\"><edit name=\"family\" mode=\"assign\"><string>" + name +
           "</string></edit></match>";
}

const QString LOG_DIR = "/ata07/Talvenor/tmp";
bool hasPrivateRoot = false;

} // namespace

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
    void logFileGetsWhatTheLevelAdmits();
    void unwritableLogFileIsReportedAndNothingElse();
    void onlyImportNeedsAPlatformPlugin();
    void fullStandardOutputIsAnError();
    void undecodableArgumentIsRefused();

    void textsAreMadePrintable_data();
    void textsAreMadePrintable();
    void quotationMarksInQuotedTextsAreEscaped();
    void jsonStringsAreValidAndHarmless_data();
    void jsonStringsAreValidAndHarmless();

    void showDrawsNamesAttributesTextsAndTypes();
    void showWritesJson();
    void showKeepsNamespacesOfAttributes();
    void showOfDamagedFileShowsWhatIsRead();
    void showOfDamagedFileSaysSoInJson();
    void showNeedsAnElement();
    void showNeedsAReadableFile();
    void showEscapesHostileTexts();
    void showEscapesHostileFileNamesAndErrors();
    void showIndentsToADepthOf20();
    void showDrawsAMillionLevels();
    void showWritesAMillionLevelsAsJson();
    void showTakesFileNamesThatLookLikeResources();

    void listShowsNumbersAndNames();
    void listWritesJson();
    void listOfMissingFileIsEmpty();
    void listTellsWhatTheStoreHides();
    void listAgreesWithTheStore();
    void listOfDamagedFileShowsWhatIsRead();
    void listNeedsAReadableFile();
    void listEscapesHostileNames();

    void addWritesExactlyThisFile_data();
    void addWritesExactlyThisFile();
    void addAppendsAndTellsTheNumbers();
    void addTakesTheSameNameTwice();
    void addTakesNamesUpTo256Bytes();
    void addRefusesBadNames_data();
    void addRefusesBadNames();
    void addFillsTheLastNumberAndRefusesTheNext();
    void addTakesNonAsciiInTheCLocale();
    void addTakesANameThatBeginsWithADash();
    void addRefusesADamagedListUnlessForced();
    void addRefusesAListThatItCannotRead();
    void addNeedsADirectory();
    void addDetectsWriteErrors();
    void addDetectsAListThatCannotBeReplaced();

    void importAddsTheFontsOfTheMachine();
    void importSkipsUnusableNames();
    void importStopsWhenNoNumberIsLeft();
    void importWithoutFontsAdvises();
    void importRefusesADamagedListUnlessForced();
    void importReportsAMissingPlatformPlugin();

private:
    /// A path in the test's own directory.
    QString path(const QString& name = QString()) const { return dir_->path() + name; }
    QString listPath() const { return path("fontlist.xml"); }

    std::unique_ptr<TempDir> dir_;
};

// --- the command line -------------------------------------------------------------------------------------

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
    for (const char* name : {"show", "fonts"})
        QVERIFY2(tool.contains("\n  " + QByteArray(name) + "  "), name);
    const QByteArray fonts = tlvctl({"fonts", "--help"}).out;
    for (const char* name : {"list", "add", "import"})
        QVERIFY2(fonts.contains("\n  " + QByteArray(name) + "  "), name);
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
    QTest::newRow("add --json") << QStringList{"fonts", "add", "--json", ".", "x"} << "tlvctl fonts add";
    QTest::newRow("import to nothing") << QStringList{"fonts", "import"} << "tlvctl fonts import";
    QTest::newRow("import two") << QStringList{"fonts", "import", ".", "x"} << "tlvctl fonts import";
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

void tst_tlvctl::logFileGetsWhatTheLevelAdmits()
{
    if (!hasPrivateRoot)
        QSKIP("needs a private root directory");
    QVERIFY(QDir().mkpath(LOG_DIR));
    const QString log = LOG_DIR + "/tlvlog.log";
    const QByteArray trace = "[TVNC_FontListSetting::loadFontList] start\n";
    const QByteArray problem = "TVNC_XMLReader::read file not exist!\n";

    QCOMPARE(tlvctl({"fonts", "list", path()}).code, 0);
    QVERIFY(!QFile::exists(log));

    const Run failuresOnly = tlvctl({"fonts", "list", path(), "--log-level", "1"});
    QCOMPARE(failuresOnly.code, 0);
    QCOMPARE(failuresOnly.err, QByteArray());
    QVERIFY(!readFile(log).contains(problem));

    QCOMPARE(tlvctl({"fonts", "--log-level", "2", "list", path()}).code, 0);
    QVERIFY(readFile(log).contains(problem));
    QVERIFY(!readFile(log).contains(trace));

    QCOMPARE(tlvctl({"--log-level", "3", "fonts", "list", path()}).code, 0);
    QVERIFY(readFile(log).contains(trace));
    QFile::remove(log);
    QDir("/ata07").rmpath("Talvenor/tmp");
}

void tst_tlvctl::unwritableLogFileIsReportedAndNothingElse()
{
    if (!hasPrivateRoot && QFile::exists(LOG_DIR))
        QSKIP("needs a private root directory");
    QVERIFY(!QFile::exists(LOG_DIR));
    writeFile(listPath(), fontList({"Sans"}));
    const Run run = tlvctl({"fonts", "list", path(), "--log-level", "3"});
    QCOMPARE(run.code, 0);
    QVERIFY(run.out.startsWith("000  Sans\n"));
    QVERIFY(complains(run, LOG_DIR + "/tlvlog.log", {"mkdir -p " + LOG_DIR}));
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

// --- texts ------------------------------------------------------------------------------------------------

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

// --- show -------------------------------------------------------------------------------------------------

void tst_tlvctl::showDrawsNamesAttributesTextsAndTypes()
{
    writeFile(path("a.xml"), "<list version=\"1.0\" kind='a \"b\"'>\n"
                             "  <item id=\"000\">first<sub/></item>\n"
                             "  <item><![CDATA[<second>]]></item>\n"
                             "</list>");
    const Run run = tlvctl({"show", path("a.xml")});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.out, QByteArray("list version=\"1.0\" kind=\"a \\\"b\\\"\"\n"
                                 "  item id=\"000\"  text \"first\"\n"
                                 "    sub\n"
                                 "  item  CDATA \"<second>\"\n"));
}

void tst_tlvctl::showWritesJson()
{
    writeFile(path("a.xml"), "<list version=\"1.0\"><item>a \"b\" \xE6\x97\xA5</item>"
                             "<item><![CDATA[<c>\n]]></item><item/></list>");
    const Run run = tlvctl({"show", "--json", path("a.xml")});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());

    const QJsonArray none;
    const QJsonObject version{{"name", "version"}, {"value", "1.0"}};
    const QJsonObject first{{"name", "item"},
                            {"attributes", none},
                            {"text", utf8("a \"b\" \u65E5")},
                            {"textType", "text"},
                            {"children", none}};
    const QJsonObject second{
        {"name", "item"}, {"attributes", none}, {"text", "<c>\n"}, {"textType", "cdata"}, {"children", none}};
    const QJsonObject third{{"name", "item"},
                            {"attributes", none},
                            {"text", QJsonValue()},
                            {"textType", QJsonValue()},
                            {"children", none}};
    const QJsonObject root{{"name", "list"},
                           {"attributes", QJsonArray{version}},
                           {"text", QJsonValue()},
                           {"textType", QJsonValue()},
                           {"children", QJsonArray{first, second, third}}};
    const QJsonObject whole{
        {"file", path("a.xml")}, {"complete", true}, {"error", QJsonValue()}, {"root", root}};
    QCOMPARE(jsonOf(run.out), whole);
}

void tst_tlvctl::showKeepsNamespacesOfAttributes()
{
    writeFile(path("a.xml"), "<a xmlns:x=\"urn:x\" id=\"1\" x:id=\"2\"/>");
    QCOMPARE(tlvctl({"show", path("a.xml")}).out, QByteArray("a id=\"1\" {urn:x}id=\"2\"\n"));
    const QJsonArray expected{QJsonObject{{"name", "id"}, {"value", "1"}},
                              QJsonObject{{"name", "id"}, {"namespace", "urn:x"}, {"value", "2"}}};
    const QJsonObject json = jsonOf(tlvctl({"show", "--json", path("a.xml")}).out);
    QCOMPARE(json["root"].toObject()["attributes"].toArray(), expected);
}

void tst_tlvctl::showOfDamagedFileShowsWhatIsRead()
{
    writeFile(path("a.xml"), DAMAGED_LIST);
    const Run run = tlvctl({"show", path("a.xml")});
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray("fontlist docInfo=\"1.0\"\n"
                                 "  font id=\"000\"  text \"Sans\"\n"
                                 "  font id=\"001\"  text \"Serif\"\n"));
    QVERIFY(complains(run, path("a.xml"), {"line 4", "column ", "everything behind that place is not read"}));
}

void tst_tlvctl::showOfDamagedFileSaysSoInJson()
{
    writeFile(path("a.xml"), DAMAGED_LIST);
    const Run run = tlvctl({"show", path("a.xml"), "--json"});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, path("a.xml"), {"line 4"}));
    const QJsonObject json = jsonOf(run.out);
    QCOMPARE(json["complete"], QJsonValue(false));
    const QJsonObject error = json["error"].toObject();
    QCOMPARE(error["line"].toInt(), 4);
    QVERIFY(error["column"].toInt() > 25 && error["column"].toInt() <= 33); // somewhere in the wrong end tag
    QVERIFY(!error["message"].toString().isEmpty());
    QCOMPARE(json["root"].toObject()["children"].toArray().size(), 2);
}

void tst_tlvctl::showNeedsAnElement()
{
    for (const QByteArray& content : {QByteArray(), QByteArray("  \n"), QByteArray("<!-- nothing -->"),
                                      QByteArray("<?xml version=\"1.0\"?>\n"), QByteArray("no markup")}) {
        writeFile(path("a.xml"), content);
        const Run run = tlvctl({"show", path("a.xml")});
        QCOMPARE(run.code, 1);
        QCOMPARE(run.out, QByteArray());
        QVERIFY(complains(run, path("a.xml"), {"no element"}));

        const Run json = tlvctl({"show", path("a.xml"), "--json"});
        QCOMPARE(json.code, 1);
        QVERIFY(complains(json, path("a.xml"), {"no element"}));
        QCOMPARE(jsonOf(json.out)["complete"], QJsonValue(false));
        QVERIFY(jsonOf(json.out)["root"].isNull());
    }
}

void tst_tlvctl::showNeedsAReadableFile()
{
    const Run missing = tlvctl({"show", path("a.xml")});
    QCOMPARE(missing.code, 1);
    QCOMPARE(missing.out, QByteArray());
    QVERIFY(complains(missing, path("a.xml"), {"No such file"}));

    const Run directory = tlvctl({"show", path()});
    QCOMPARE(directory.code, 1);
    QVERIFY(complains(directory, path(), {"Is a directory"}));

    writeFile(path("a.xml"), "<a/>");
    QFile::setPermissions(path("a.xml"), QFileDevice::Permissions());
    const Run unreadable = tlvctl({"show", "--json", path("a.xml")});
    QCOMPARE(unreadable.code, 1);
    QCOMPARE(unreadable.out, QByteArray());
    QVERIFY(complains(unreadable, path("a.xml"), {"Permission denied"}));
}

void tst_tlvctl::showEscapesHostileTexts()
{
    writeFile(path("a.xml"),
              utf8("<a b=\"\u202E&#9;&#10;&#13;\u009B\"><c>\\ \u2028\u007F\u200E\n\uFEFF</c></a>").toUtf8());
    const Run run = tlvctl({"show", path("a.xml")});
    QCOMPARE(run.code, 0);
    QVERIFY(isHarmless(run.out));
    QCOMPARE(run.out, QByteArray("a b=\"\\u{202E}\\t\\n\\r\\x9B\"\n"
                                 "  c  text \"\\\\ \\u{2028}\\x7F\\u{200E}\\n\\u{FEFF}\"\n"));

    const Run json = tlvctl({"show", "--json", path("a.xml")});
    QVERIFY(isHarmless(json.out));
    const QJsonObject root = jsonOf(json.out)["root"].toObject();
    QCOMPARE(root["attributes"].toArray().at(0).toObject()["value"].toString(), utf8("\u202E\t\n\r\u009B"));
    QCOMPARE(root["children"].toArray().at(0).toObject()["text"].toString(),
             utf8("\\ \u2028\u007F\u200E\n\uFEFF"));
}

void tst_tlvctl::showEscapesHostileFileNamesAndErrors()
{
    const QString name = path(utf8("a\x1b[31m\n\u202E.xml"));
    const QString shown = path("a\\x1B[31m\\n\\u{202E}.xml");
    const Run missing = tlvctl({"show", name});
    QVERIFY(isHarmless(missing.err));
    QVERIFY(complains(missing, shown, {}));

    // The parser's message quotes what it did not expect.
    for (const char* content : {"<a><\u202E/></a>", "<a>&\u202E;</a>", "\u202E<a/>", "<a\u0085/>"}) {
        writeFile(name, content);
        const Run run = tlvctl({"show", name});
        QCOMPARE(run.code, 1);
        QVERIFY(isHarmless(run.err) && isHarmless(run.out));
        QVERIFY(complains(run, shown, {"line 1"}));
        QVERIFY(isHarmless(tlvctl({"show", "--json", name}).out));
    }
}

void tst_tlvctl::showIndentsToADepthOf20()
{
    writeFile(path("a.xml"), QByteArray("<a>").repeated(22) + QByteArray("</a>").repeated(22));
    const QList<QByteArray> lines = tlvctl({"show", path("a.xml")}).out.split('\n');
    QCOMPARE(lines.size(), 23); // with what follows the last line break
    QCOMPARE(lines.at(19), QByteArray(38, ' ') + "a");
    QCOMPARE(lines.at(20), QByteArray(40, ' ') + "[21] a");
    QCOMPARE(lines.at(21), QByteArray(40, ' ') + "[22] a");
}

void tst_tlvctl::showDrawsAMillionLevels()
{
    const int depth = 1000000;
    writeFile(path("a.xml"), QByteArray("<a>").repeated(depth) + "end" + QByteArray("</a>").repeated(depth));
    const Run run = tlvctl({"show", path("a.xml")});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.out.count('\n'), depth);
    QVERIFY(run.out.endsWith("[1000000] a  text \"end\"\n"));
    QVERIFY(run.out.size() < 100 * depth);
}

void tst_tlvctl::showWritesAMillionLevelsAsJson()
{
    const int depth = 1000000;
    writeFile(path("a.xml"), QByteArray("<a>").repeated(depth) + "end" + QByteArray("</a>").repeated(depth));
    const Run run = tlvctl({"show", "--json", path("a.xml")});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.out.count("\"name\":\"a\""), depth);
    QCOMPARE(run.out.count("\"text\":\"end\""), 1);

    // No parser at hand goes that deep. None of the strings holds a bracket, so these tell the structure.
    std::vector<char> open;
    size_t deepest = 0;
    for (const char c : run.out) {
        if (c == '{' || c == '[') {
            open.push_back(c);
            deepest = qMax(deepest, open.size());
        } else if (c == '}' || c == ']') {
            QVERIFY(!open.empty());
            QCOMPARE(open.back(), c == '}' ? '{' : '[');
            open.pop_back();
        }
    }
    QVERIFY(open.empty());
    // The whole, an object and a list of children for each element; the innermost list is as deep as any.
    QCOMPARE(deepest, static_cast<size_t>(2 * depth + 1));
}

void tst_tlvctl::showTakesFileNamesThatLookLikeResources()
{
    writeFile(path(":a.xml"), "<a/>");
    const Run run = runProgram(TLVCTL, {"show", ":a.xml"}, plainEnvironment(), path());
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, QByteArray("a\n"));
}

// --- fonts list -------------------------------------------------------------------------------------------

void tst_tlvctl::listShowsNumbersAndNames()
{
    writeFile(listPath(), fontList({"Sans", "VL \xE6\x97\xA5", "Sans"}));
    const QByteArray expected =
        "000  Sans\n001  VL \xE6\x97\xA5\n002  Sans\nrecords: 3, counted by the store: 3\n";
    const QString withoutSlash = path().left(path().size() - 1);
    for (const QString& dir : {path(), withoutSlash}) {
        const Run run = tlvctl({"fonts", "list", dir}, with("LC_ALL", "C"));
        QCOMPARE(run.code, 0);
        QCOMPARE(run.out, expected);
        QCOMPARE(run.err, QByteArray());
    }
}

void tst_tlvctl::listWritesJson()
{
    writeFile(listPath(), fontList({"Sans", "Serif"}));
    const Run run = tlvctl({"fonts", "list", "--json", path()});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    const QJsonObject first{{"number", 0}, {"name", "Sans"}, {"element", "font"}, {"hidden", QJsonArray()}};
    const QJsonObject second{{"number", 1}, {"name", "Serif"}, {"element", "font"}, {"hidden", QJsonArray()}};
    const QJsonObject expected{{"file", listPath()}, {"exists", true},
                               {"complete", true},   {"error", QJsonValue()},
                               {"count", 2},         {"fonts", QJsonArray{first, second}}};
    QCOMPARE(jsonOf(run.out), expected);
}

void tst_tlvctl::listOfMissingFileIsEmpty()
{
    const Run run = tlvctl({"fonts", "list", path()});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, "records: 0, because there is no " + listPath().toUtf8() + '\n');
    const QJsonObject json = jsonOf(tlvctl({"fonts", "list", path(), "--json"}).out);
    QCOMPARE(json["exists"], QJsonValue(false));
    QCOMPARE(json["count"], QJsonValue(0));
    QCOMPARE(json["fonts"], QJsonValue(QJsonArray()));
    QVERIFY(!QFile::exists(listPath()));
}

void tst_tlvctl::listTellsWhatTheStoreHides()
{
    const QByteArray longName(257, 'x');
    writeFile(listPath(), "<fontlist><font>Sans</font><font>" + longName +
                              "</font><typeface>Other</typeface><font/></fontlist>");
    const Run run = tlvctl({"fonts", "list", path()});
    QCOMPARE(run.code, 0);
    const QList<QByteArray> lines = run.out.split('\n');
    QCOMPARE(lines.size(), 6); // with what follows the last line break
    QCOMPARE(lines.at(0), QByteArray("000  Sans"));
    QVERIFY(lines.at(1).startsWith("001  " + longName + "  (") && lines.at(1).contains("257 bytes"));
    QVERIFY(lines.at(2).startsWith("002  Other  (") && lines.at(2).contains("\"typeface\""));
    QVERIFY(lines.at(3).startsWith("003  ") && lines.at(3).contains("no name"));
    QCOMPARE(lines.at(4), QByteArray("records: 4, counted by the store: 3, hidden in part or in full: 3"));

    const QJsonArray fonts = jsonOf(tlvctl({"fonts", "list", path(), "--json"}).out)["fonts"].toArray();
    QCOMPARE(fonts.at(0).toObject()["hidden"].toArray(), QJsonArray());
    QCOMPARE(fonts.at(1).toObject()["hidden"].toArray(), QJsonArray{"nameTooLong"});
    QCOMPARE(fonts.at(2).toObject()["hidden"].toArray(), QJsonArray{"notNamedFont"});
    QCOMPARE(fonts.at(2).toObject()["element"].toString(), QString("typeface"));
    QCOMPARE(fonts.at(3).toObject()["hidden"].toArray(), QJsonArray{"emptyName"});
}

void tst_tlvctl::listAgreesWithTheStore()
{
    // Behind the 999 records that the store numbers, records keep the number that stands in the file.
    QByteArray xml = "<fontlist>";
    for (int i = 0; i < 1000; ++i)
        xml += i % 100 == 7 ? "<font>" + QByteArray(300, 'y') + "</font>" : "<font>F</font>";
    xml += "<font id=\"5\">taken</font><font id=\"1500\">beyond</font><font id=\" +999 \">last</font>"
           "<item id=\"1000\">item</item><font id=\"x\">none</font></fontlist>";
    writeFile(listPath(), xml);
    const QJsonObject json = jsonOf(tlvctl({"fonts", "list", path(), "--json"}).out);

    TVNC_FontListSetting& store = *TVNC_FontListSetting::getInstance();
    store.loadFontList(path());
    QCOMPARE(json["count"].toInt(), store.getCount());
    const QJsonArray fonts = json["fonts"].toArray();
    QCOMPARE(fonts.size(), 1005);
    for (const QJsonValue& value : fonts) {
        const QJsonObject font = value.toObject();
        const QJsonArray hidden = font["hidden"].toArray();
        QCOMPARE(hidden.contains("noNumber"), font["number"].isNull());
        if (font["number"].isNull())
            continue;
        const QString name = hidden.contains("nameTooLong") ? QString() : font["name"].toString();
        QCOMPARE(store.getFont(font["number"].toInt()), name);
    }
    const auto number = [&fonts](int position) { return fonts.at(position).toObject()["number"]; };
    QCOMPARE(number(998), QJsonValue(998));
    QVERIFY(number(999).isNull());
    QVERIFY(number(1000).isNull());
    QCOMPARE(number(1001), QJsonValue(1500));
    QCOMPARE(number(1002), QJsonValue(999));
    QCOMPARE(number(1003), QJsonValue(1000));
    QVERIFY(number(1004).isNull());
}

void tst_tlvctl::listOfDamagedFileShowsWhatIsRead()
{
    writeFile(listPath(), DAMAGED_LIST);
    const Run run = tlvctl({"fonts", "list", path()});
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray("000  Sans\n001  Serif\nrecords: 2, counted by the store: 2\n"));
    QVERIFY(complains(run, listPath(), {"line 4", "everything behind that place is not read"}));
    const Run json = tlvctl({"fonts", "list", path(), "--json"});
    QCOMPARE(json.code, 1);
    QCOMPARE(jsonOf(json.out)["complete"], QJsonValue(false));
    QCOMPARE(jsonOf(json.out)["error"].toObject()["line"].toInt(), 4);
}

void tst_tlvctl::listNeedsAReadableFile()
{
    const Run noDirectory = tlvctl({"fonts", "list", path("none/")});
    QCOMPARE(noDirectory.code, 1);
    QVERIFY(complains(noDirectory, path("none"), {"mkdir -p " + path("none")}));

    writeFile(listPath(), fontList({"Sans"}));
    QFile::setPermissions(listPath(), QFileDevice::Permissions());
    const Run unreadable = tlvctl({"fonts", "list", path()});
    QCOMPARE(unreadable.code, 1);
    QCOMPARE(unreadable.out, QByteArray());
    QVERIFY(complains(unreadable, listPath(), {"Permission denied"}));

    // Whether there is a list cannot be seen here, so it must not be called missing.
    QVERIFY(QDir().mkdir(path("closed")));
    QFile::setPermissions(path("closed"), QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    const Run closed = tlvctl({"fonts", "list", path("closed")});
    QCOMPARE(closed.code, 1);
    QVERIFY(complains(closed, path("closed/fontlist.xml"), {"Permission denied"}));
}

void tst_tlvctl::listEscapesHostileNames()
{
    writeFile(listPath(), utf8("<fontlist><font>a\n999  \u202Eb\\\u009B</font></fontlist>").toUtf8());
    const Run run = tlvctl({"fonts", "list", path()});
    QVERIFY(run.out.startsWith("000  a\\n999  \\u{202E}b\\\\\\x9B\n"));
    QVERIFY(isHarmless(run.out));
    QVERIFY(isHarmless(tlvctl({"fonts", "list", "--json", path()}).out));
}

// --- fonts add --------------------------------------------------------------------------------------------

void tst_tlvctl::addWritesExactlyThisFile_data()
{
    QTest::addColumn<bool>("hasSlash");
    QTest::newRow("with /") << true;
    QTest::newRow("without /") << false;
}

void tst_tlvctl::addWritesExactlyThisFile()
{
    QFETCH(bool, hasSlash);
    const Run run =
        tlvctl({"fonts", "add", hasSlash ? path() : path().left(path().size() - 1), "Sans", "Serif"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.out, QByteArray("000  Sans\n001  Serif\n"));
    QCOMPARE(readFile(listPath()), QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                              "<fontlist docInfo=\"1.0\">\n"
                                              "    <font id=\"000\">Sans</font>\n"
                                              "    <font id=\"001\">Serif</font>\n"
                                              "</fontlist>\n"));
    QCOMPARE(QDir(path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{"fontlist.xml"});
}

void tst_tlvctl::addAppendsAndTellsTheNumbers()
{
    writeFile(listPath(), fontList({"Sans"}));
    const Run run = tlvctl({"fonts", "add", path(), "A & <B>", utf8("\u65E5\u672C")});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, utf8("001  A & <B>\n002  \u65E5\u672C\n").toUtf8());
    QCOMPARE(readFile(listPath()), fontList({"Sans", "A &amp; &lt;B&gt;", utf8("\u65E5\u672C").toUtf8()}));
}

void tst_tlvctl::addTakesTheSameNameTwice()
{
    writeFile(listPath(), fontList({"Sans"}));
    QCOMPARE(tlvctl({"fonts", "add", path(), "Sans", "Sans"}).code, 0);
    QCOMPARE(readFile(listPath()), fontList({"Sans", "Sans", "Sans"}));
}

void tst_tlvctl::addTakesNamesUpTo256Bytes()
{
    const QString ascii(256, 'a');
    const QString twoBytes = utf8("\u00E9").repeated(128);
    QCOMPARE(tlvctl({"fonts", "add", path(), ascii, twoBytes}).code, 0);
    QCOMPARE(readFile(listPath()), fontList({ascii.toUtf8(), twoBytes.toUtf8()}));
}

void tst_tlvctl::addRefusesBadNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");
    QTest::newRow("empty") << ""
                           << "is empty";
    QTest::newRow("257 bytes") << QString(257, 'a') << "257 bytes";
    QTest::newRow("257 bytes, 129 characters") << utf8("\u00E9").repeated(128) + 'a' << "257 bytes";
    QTest::newRow("blanks") << "  \t"
                            << "blanks";
    QTest::newRow("control character") << "a\x01z"
                                       << "control characters";
    QTest::newRow("escape sequence") << "\x1b[31m"
                                     << "control characters";
    QTest::newRow("carriage return") << "a\rb"
                                     << "control characters";
}

void tst_tlvctl::addRefusesBadNames()
{
    QFETCH(QString, name);
    QFETCH(QString, reason);
    const QStringList names{"Good", name, "Also good"};
    const Run fresh = tlvctl(QStringList{"fonts", "add", path()} + names);
    QCOMPARE(fresh.code, 1);
    QCOMPARE(fresh.out, QByteArray());
    QVERIFY(complains(fresh, listPath(), {reason, "nothing was added", "; "}));
    QVERIFY(isHarmless(fresh.err));
    QVERIFY(!QFile::exists(listPath()));

    const QByteArray before = "<fontlist><font>Sans</font></fontlist>"; // not as the tool would write it
    writeFile(listPath(), before);
    QCOMPARE(tlvctl(QStringList{"fonts", "add", path(), "--force"} + names).code, 1);
    QCOMPARE(readFile(listPath()), before);
}

void tst_tlvctl::addFillsTheLastNumberAndRefusesTheNext()
{
    QList<QByteArray> names = manyNames(998);
    const QByteArray before = fontList(names);
    writeFile(listPath(), before);
    const Run tooMany = tlvctl({"fonts", "add", path(), "one", "two"});
    QCOMPARE(tooMany.code, 1);
    QCOMPARE(tooMany.out, QByteArray());
    QVERIFY(complains(tooMany, listPath(), {"999", "delete"}));
    QCOMPARE(readFile(listPath()), before);

    const Run last = tlvctl({"fonts", "add", path(), "one"});
    QCOMPARE(last.code, 0);
    QCOMPARE(last.out, QByteArray("998  one\n"));
    names.append("one");
    QCOMPARE(readFile(listPath()), fontList(names));

    const Run next = tlvctl({"fonts", "add", path(), "--force", "two"});
    QCOMPARE(next.code, 1);
    QVERIFY(complains(next, listPath(), {"999"}));
    QCOMPARE(readFile(listPath()), fontList(names));
}

void tst_tlvctl::addTakesNonAsciiInTheCLocale()
{
    const QString dir = path(utf8("\u65E5"));
    QVERIFY(QDir().mkdir(dir));
    for (const char* locale : {"C", "POSIX"}) {
        QFile::remove(dir + "/fontlist.xml");
        const Run run = tlvctl({"fonts", "add", dir, utf8("\u672C")}, with("LC_ALL", locale));
        QCOMPARE(run.code, 0);
        QCOMPARE(run.out, utf8("000  \u672C\n").toUtf8());
        QCOMPARE(readFile(dir + "/fontlist.xml"), fontList({utf8("\u672C").toUtf8()}));
    }
}

void tst_tlvctl::addTakesANameThatBeginsWithADash()
{
    QCOMPARE(tlvctl({"fonts", "add", path(), "--", "--json"}).code, 0);
    QCOMPARE(readFile(listPath()), fontList({"--json"}));
}

void tst_tlvctl::addRefusesADamagedListUnlessForced()
{
    writeFile(listPath(), DAMAGED_LIST);
    const Run refused = tlvctl({"fonts", "add", path(), "New"});
    QCOMPARE(refused.code, 1);
    QCOMPARE(refused.out, QByteArray());
    QVERIFY(complains(refused, listPath(), {"line 4", "lose", "--force"}));
    QCOMPARE(readFile(listPath()), QByteArray(DAMAGED_LIST));

    const Run forced = tlvctl({"fonts", "add", path(), "New", "--force"});
    QCOMPARE(forced.code, 0);
    QCOMPARE(forced.out, QByteArray("002  New\n"));
    QCOMPARE(readFile(listPath()), fontList({"Sans", "Serif", "New"}));
}

void tst_tlvctl::addRefusesAListThatItCannotRead()
{
    const QByteArray before = fontList({"Sans"});
    writeFile(listPath(), before);
    QFile::setPermissions(listPath(), QFileDevice::WriteOwner);
    const Run run = tlvctl({"fonts", "add", path(), "New"});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, listPath(), {"Permission denied", "lose", "--force"}));
    QFile::setPermissions(listPath(), QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    QCOMPARE(readFile(listPath()), before);

    QFile::remove(listPath());
    QVERIFY(QDir().mkdir(listPath()));
    for (const QStringList& options : {QStringList(), QStringList("--force")}) {
        const Run directory = tlvctl(QStringList{"fonts", "add", path(), "New"} + options);
        QCOMPARE(directory.code, 1);
        QCOMPARE(directory.out, QByteArray());
        QVERIFY(complains(directory, listPath(), {"Is a directory"}));
    }
}

void tst_tlvctl::addNeedsADirectory()
{
    const Run missing = tlvctl({"fonts", "add", path("new dir"), "Sans"});
    QCOMPARE(missing.code, 1);
    QVERIFY(complains(missing, path("new dir"), {"no such directory", "mkdir -p"}));
    QVERIFY(QDir(path()).isEmpty());

    writeFile(path("file"), "x");
    const Run file = tlvctl({"fonts", "add", path("file"), "Sans"});
    QCOMPARE(file.code, 1);
    QVERIFY(complains(file, path("file"), {"not a directory"}));
    QCOMPARE(readFile(path("file")), QByteArray("x"));

    const Run empty = tlvctl({"fonts", "add", "", "Sans"});
    QCOMPARE(empty.code, 1);
    QVERIFY(complains(empty, "''", {"no directory"}));
}

void tst_tlvctl::addDetectsWriteErrors()
{
    // Files end at 8 blocks of 512 bytes here, as they would on a disk that is full.
    writeFile(listPath(), fontList(manyNames(80)));
    QVERIFY(readFile(listPath()).size() < 8 * 512);
    const Run run = shell("trap '' XFSZ; ulimit -f 8; exec \"$tlvctl\" fonts add \"$1\" " +
                              (QString(200, 'a') + ' ').repeated(6),
                          path());
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray());
    QVERIFY(complains(run, listPath(), {"saving failed", "free space"}));
}

void tst_tlvctl::addDetectsAListThatCannotBeReplaced()
{
    const QByteArray before = fontList({"Sans"});
    writeFile(listPath(), before);
    QFile::setPermissions(listPath(), QFileDevice::ReadOwner);
    const Run readOnly = tlvctl({"fonts", "add", path(), "New"});
    QCOMPARE(readOnly.code, 1);
    QCOMPARE(readOnly.out, QByteArray());
    QVERIFY(complains(readOnly, listPath(), {"saving failed", "permissions"}));
    QCOMPARE(readFile(listPath()), before);

    QVERIFY(QDir().mkdir(path("closed")));
    QFile::setPermissions(path("closed"), QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    const Run closed = tlvctl({"fonts", "add", path("closed"), "New"});
    QCOMPARE(closed.code, 1);
    QVERIFY(complains(closed, path("closed/fontlist.xml"), {"saving failed", "permissions"}));
}

// --- fonts import -----------------------------------------------------------------------------------------

void tst_tlvctl::importAddsTheFontsOfTheMachine()
{
    if (!QFile::exists(SANS_MONO))
        QSKIP("needs the DejaVu fonts");
    QVERIFY(QDir().mkpath(path("fonts")) && QDir().mkpath(path("list")));
    QVERIFY(QFile::copy(SANS_MONO, path("fonts/a.ttf")));
    const QProcessEnvironment environment = fontEnvironment(path(), path("fonts"));
    writeFile(path("list/fontlist.xml"), fontList({"Monospace"}));

    // Beside the one family with a font of its own, Qt offers its three generic ones.
    const Run run = tlvctl({"fonts", "import", path("list")}, environment);
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QVERIFY(run.out.startsWith("001  DejaVu Sans Mono\n002  Sans Serif\n003  Serif\n"));
    QVERIFY(run.out.contains("4 found: 3 added, 1 already listed, 0 skipped"));
    QCOMPARE(readFile(path("list/fontlist.xml")),
             fontList({"Monospace", "DejaVu Sans Mono", "Sans Serif", "Serif"}));

    const Run again = tlvctl({"fonts", "import", path("list/")}, environment);
    QCOMPARE(again.code, 0);
    QVERIFY(again.out.startsWith("4 found: 0 added, 4 already listed, 0 skipped"));
    QCOMPARE(readFile(path("list/fontlist.xml")),
             fontList({"Monospace", "DejaVu Sans Mono", "Sans Serif", "Serif"}));
}

void tst_tlvctl::importSkipsUnusableNames()
{
    if (!QFile::exists(SANS_MONO))
        QSKIP("needs the DejaVu fonts");
    QVERIFY(QDir().mkpath(path("fonts")) && QDir().mkpath(path("list")));
    QVERIFY(QFile::copy(SANS_MONO, path("fonts/a.ttf")));
    const QByteArray name(257, 'n');
    const QProcessEnvironment environment = fontEnvironment(path(), path("fonts"), renamingRule(name));
    const Run run = tlvctl({"fonts", "import", path("list")}, environment);
    QCOMPARE(run.code, 0);
    QVERIFY(run.out.contains("4 found: 3 added, 0 already listed, 1 skipped (name too long"));
    QCOMPARE(readFile(path("list/fontlist.xml")), fontList({"Monospace", "Sans Serif", "Serif"}));
}

void tst_tlvctl::importStopsWhenNoNumberIsLeft()
{
    if (!QFile::exists(SANS_MONO))
        QSKIP("needs the DejaVu fonts");
    QVERIFY(QDir().mkpath(path("fonts")) && QDir().mkpath(path("list")));
    QVERIFY(QFile::copy(SANS_MONO, path("fonts/a.ttf")));
    const QProcessEnvironment environment = fontEnvironment(path(), path("fonts"));
    QList<QByteArray> names = manyNames(998);
    writeFile(path("list/fontlist.xml"), fontList(names));
    const Run run = tlvctl({"fonts", "import", path("list")}, environment);
    QCOMPARE(run.code, 1);
    QVERIFY(run.out.startsWith("998  DejaVu Sans Mono\n"));
    QVERIFY(run.out.contains("4 found: 1 added, 0 already listed"));
    QVERIFY(run.out.contains("3 skipped (no number left)"));
    QVERIFY(complains(run, path("list/fontlist.xml"), {"3 skipped", "999", "delete"}));
    names.append("DejaVu Sans Mono");
    QCOMPARE(readFile(path("list/fontlist.xml")), fontList(names));
}

void tst_tlvctl::importWithoutFontsAdvises()
{
    QVERIFY(QDir().mkpath(path("fonts")) && QDir().mkpath(path("list")));
    const Run run = tlvctl({"fonts", "import", path("list")}, fontEnvironment(path(), path("fonts")));
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray());
    QVERIFY(run.err.startsWith("tlvctl: ") && run.err.contains("install a font package"));
    QVERIFY(!QFile::exists(path("list/fontlist.xml")));
}

void tst_tlvctl::importRefusesADamagedListUnlessForced()
{
    if (!QFile::exists(SANS_MONO))
        QSKIP("needs the DejaVu fonts");
    QVERIFY(QDir().mkpath(path("fonts")) && QDir().mkpath(path("list")));
    QVERIFY(QFile::copy(SANS_MONO, path("fonts/a.ttf")));
    const QProcessEnvironment environment = fontEnvironment(path(), path("fonts"));
    writeFile(path("list/fontlist.xml"), DAMAGED_LIST);
    const Run refused = tlvctl({"fonts", "import", path("list")}, environment);
    QCOMPARE(refused.code, 1);
    QVERIFY(complains(refused, path("list/fontlist.xml"), {"line 4", "--force"}));
    QCOMPARE(readFile(path("list/fontlist.xml")), QByteArray(DAMAGED_LIST));

    QCOMPARE(tlvctl({"fonts", "import", "--force", path("list")}, environment).code, 0);
    QCOMPARE(readFile(path("list/fontlist.xml")),
             fontList({"Sans", "Serif", "DejaVu Sans Mono", "Monospace", "Sans Serif"}));
}

void tst_tlvctl::importReportsAMissingPlatformPlugin()
{
    const Run run = tlvctl({"fonts", "import", path()}, with("QT_QPA_PLATFORM", "nonexistent"));
    QCOMPARE(run.code, 1);
    QVERIFY(run.err.startsWith("tlvctl: ") && run.err.contains("QT_QPA_PLATFORM"));
    QVERIFY(!QFile::exists(listPath()));
}

int main(int argc, char** argv)
{
    hasPrivateRoot = enterPrivateRoot();
    // Permissions bind the superuser too in the programs that are started from here.
    prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, 0, 0, 0);
    prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH, 0, 0, 0);
    QCoreApplication application(argc, argv);
    tst_tlvctl test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_tlvctl.moc"
