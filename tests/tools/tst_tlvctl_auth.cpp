#include "tests/tools/TlvctlRun.h"

#include <tlvlib/tlvlib.h>

#include <QtCore/QDir>
#include <QtCore/QJsonArray>

#include <csignal>
#include <functional>
#include <memory>

#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <utmp.h>

namespace {

const char START[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<authentication docInfo=\"1.0\">\n";
const char END[] = "</authentication>\n";

/// A record as the store writes it. User name and password are base64.
QByteArray record(int number, const QByteArray& host, const QByteArray& port, const QByteArray& type,
                  const QByteArray& user, const QByteArray& password)
{
    return "    <authInfo id=\"" + QByteArray::number(number).rightJustified(3, '0') +
           "\">\n        <hostName>" + host + "</hostName>\n        <portNum>" + port +
           "</portNum>\n        <authType>" + type + "</authType>\n        <user><![CDATA[" + user +
           "]]></user>\n        <passwd><![CDATA[" + password + "]]></passwd>\n    </authInfo>\n";
}

/// "alice" with "secret", "bob" with "hunter2", "carol" with "letmein", newest first, as the store writes
/// them.
QByteArray threeEntries()
{
    return START + record(0, "a.example", "443", "digest", "YWxpY2U=", "c2VjcmV0") +
           record(1, "b.example", "80", "basic", "Ym9i", "aHVudGVyMg==") +
           record(2, "c.example", "8080", "NTLM", "Y2Fyb2w=", "bGV0bWVpbg==") + END;
}

/// So many entries with a host name and user of their own.
QByteArray manyEntries(int count)
{
    QByteArray xml = START;
    for (int i = 0; i < count; ++i) {
        const QByteArray number = QByteArray::number(i);
        xml += record(i, 'h' + number, "80", "basic", ('u' + number).toBase64(), "c2VjcmV0");
    }
    return xml + END;
}

/// Whether nothing of these passwords, plain or encoded, is in what the tool said.
bool keepsSecret(const Run& run, const QList<QByteArray>& passwords)
{
    for (const QByteArray& password : passwords) {
        for (const QByteArray& form : {password, password.toBase64(), password.toHex()}) {
            if (run.out.contains(form) || run.err.contains(form)) {
                qWarning("%s is told", form.constData());
                return false;
            }
        }
    }
    return true;
}

const QList<QByteArray> THREE_PASSWORDS{"secret", "hunter2", "letmein"};

const char DAMAGED[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                       "<authentication docInfo=\"1.0\">\n"
                       "<authInfo><hostName>a.example</hostName><portNum>80</portNum>"
                       "<authType>basic</authType><user>Ym9i</user><passwd>aHVudGVyMg==</passwd></authInfo>\n"
                       "<authInfo><passwd>c2VjcmV0</password>\n"
                       "</authentication>\n";

/// What a run on a terminal of its own left behind.
struct TerminalRun
{
    QByteArray screen;
    int status = -1;     ///< as wait() has it
    bool echoes = false; ///< whether the terminal shows again what is typed
};

/// Runs the tool on a terminal, and types as soon as it asks.
TerminalRun onTerminal(const QStringList& arguments, const QByteArray& typed)
{
    TerminalRun run;
    QList<QByteArray> bytes{TLVCTL};
    for (const QString& argument : arguments)
        bytes.append(argument.toUtf8());
    std::vector<char*> argv;
    for (QByteArray& argument : bytes)
        argv.push_back(argument.data());
    argv.push_back(nullptr);

    int terminal = -1;
    int programSide = -1;
    if (openpty(&terminal, &programSide, nullptr, nullptr, nullptr) != 0)
        return run;
    const pid_t child = fork();
    if (child == 0) {
        login_tty(programSide);
        execv(TLVCTL, argv.data());
        _exit(127);
    }
    bool hasTyped = false;
    char buffer[4096];
    for (;;) {
        fd_set readable;
        FD_ZERO(&readable);
        FD_SET(terminal, &readable);
        timeval patience{0, 20000};
        if (select(terminal + 1, &readable, nullptr, nullptr, &patience) > 0) {
            const ssize_t count = read(terminal, buffer, sizeof(buffer));
            if (count > 0)
                run.screen.append(buffer, static_cast<int>(count));
        } else if (waitpid(child, &run.status, WNOHANG) == child) {
            break;
        }
        if (!hasTyped && run.screen.contains("Password: ")) {
            hasTyped = write(terminal, typed.constData(), static_cast<size_t>(typed.size())) > 0;
        }
    }
    termios settings;
    run.echoes = tcgetattr(programSide, &settings) == 0 && (settings.c_lflag & ECHO) != 0;
    close(programSide);
    close(terminal);
    run.screen.replace('\r', "");
    return run;
}

} // namespace

/// tlvctl auth
class tst_tlvctl_auth : public QObject
{
    Q_OBJECT

private slots:
    void init() { dir_ = std::make_unique<TempDir>(); }
    void cleanup() { dir_.reset(); }

    void listShowsEntriesWithoutPasswords();
    void listShowsPasswordsOnDemand();
    void listWritesJsonWithoutPasswords();
    void listWritesPasswordsIntoJsonOnDemand();
    void listOfMissingFileIsEmpty();
    void lengthOfAPasswordMakesNoDifference();
    void bytesThatAreNoTextAreShownInBase64();
    void listShowsWhatTheStoreAnswersAtItsLimits();
    void listTellsWhatIsOverTheLimits();
    void listTellsWhatElseIsOdd();
    void listTellsOfGapsInTheNumbering();
    void listTellsOfEntriesWithoutANumber();
    void listAgreesWithTheStore();
    void listOfDamagedFileShowsWhatIsRead();
    void listNeedsAReadableFile();
    void listEscapesHostileTexts();
    void addWritesExactlyThisFile();
    void addKnowsTheTypes_data();
    void addKnowsTheTypes();
    void addPutsTheEntryInFront();
    void addRemovesTheOldestOfAFullList();
    void addToAListOverItsMaximumKeepsItsLength();
    void addReadsThePasswordAsItIs_data();
    void addReadsThePasswordAsItIs();
    void addReportsAnUnreadablePasswordFile();
    void addTakesValuesUpToTheLimits();
    void addRefusesBadValues_data();
    void addRefusesBadValues();
    void addRefusesALongPassword_data();
    void addRefusesALongPassword();
    void addDoesNotReadAnEndlessPassword();
    void addNeedsItsOptions_data();
    void addNeedsItsOptions();
    void commandLineNeverHoldsThePassword();
    void addAsksOnATerminalWithoutEcho();
    void addOnATerminalGivesUpAtItsEnd();
    void addOnATerminalEndsWithASignal();
    void removeTakesNumbersFromBeforeTheCommand();
    void removeReachesNumbersBeyondTheUsualOnes();
    void removeRefusesAnAbsentNumber();
    void dryRunWritesNothing();
    void changesRefuseADamagedFileUnlessForced();
    void changesDetectWriteErrors();

private:
    /// A path in the test's own directory.
    QString path(const QString& name = QString()) const { return dir_->path() + name; }
    QString filePath() const { return path("authinfo.xml"); }

    QStringList addCommand(const QString& host, const QString& port, const QString& user) const
    {
        return {"auth", "add", path(), host, port, "--type", "basic", "--user", user};
    }
    QJsonObject listAsJson() const
    {
        return jsonOf(tlvctl({"auth", "list", "--json", "--show-passwords", path()}).out);
    }

    std::unique_ptr<TempDir> dir_;
};

void tst_tlvctl_auth::listShowsEntriesWithoutPasswords()
{
    writeFile(filePath(), threeEntries());
    const QString withoutSlash = path().left(path().size() - 1);
    for (const QString& dir : {path(), withoutSlash}) {
        const Run run = tlvctl({"auth", "list", dir});
        QCOMPARE(run.code, 0);
        QCOMPARE(run.err, QByteArray());
        QCOMPARE(run.out, QByteArray("no.  host       port  type    user\n"
                                     "000  a.example  443   digest  alice\n"
                                     "001  b.example  80    basic   bob\n"
                                     "002  c.example  8080  NTLM    carol\n"
                                     "records: 3, counted by the store: 3\n"));
    }
    QCOMPARE(readFile(filePath()), threeEntries());
}

void tst_tlvctl_auth::listShowsPasswordsOnDemand()
{
    writeFile(filePath(), threeEntries());
    const Run run = tlvctl({"auth", "list", "--show-passwords", path()});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, QByteArray("no.  host       port  type    user   password\n"
                                 "000  a.example  443   digest  alice  secret\n"
                                 "001  b.example  80    basic   bob    hunter2\n"
                                 "002  c.example  8080  NTLM    carol  letmein\n"
                                 "records: 3, counted by the store: 3\n"));
}

void tst_tlvctl_auth::listWritesJsonWithoutPasswords()
{
    writeFile(filePath(), START + record(0, "a.example", "443", "digest", "YWxpY2U=", "c2VjcmV0") + END);
    const Run run = tlvctl({"auth", "list", "--json", path()});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QVERIFY(keepsSecret(run, THREE_PASSWORDS));
    const QJsonObject entry{
        {"number", 0},   {"filePosition", 0}, {"flaws", QJsonArray()}, {"host", "a.example"},
        {"port", "443"}, {"type", "digest"},  {"user", "alice"},       {"userBase64", QJsonValue()}};
    const QJsonObject expected{{"file", filePath()},          {"exists", true}, {"complete", true},
                               {"error", QJsonValue()},       {"count", 1},     {"renumbered", 0},
                               {"entries", QJsonArray{entry}}};
    QCOMPARE(jsonOf(run.out), expected);
}

void tst_tlvctl_auth::listWritesPasswordsIntoJsonOnDemand()
{
    writeFile(filePath(), threeEntries());
    const QJsonArray entries = listAsJson()["entries"].toArray();
    QCOMPARE(entries.size(), 3);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(entries.at(i).toObject()["password"].toString().toUtf8(), THREE_PASSWORDS.at(i));
        QVERIFY(entries.at(i).toObject()["passwordBase64"].isNull());
    }
}

void tst_tlvctl_auth::listOfMissingFileIsEmpty()
{
    const Run run = tlvctl({"auth", "list", path()});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, "records: 0, because there is no " + filePath().toUtf8() + '\n');
    QCOMPARE(listAsJson()["exists"], QJsonValue(false));
    QCOMPARE(listAsJson()["entries"], QJsonValue(QJsonArray()));
    QVERIFY(!QFile::exists(filePath()));
}

void tst_tlvctl_auth::lengthOfAPasswordMakesNoDifference()
{
    for (const QStringList& options : {QStringList(), QStringList("--json")}) {
        QList<QByteArray> outputs;
        for (const int length : {0, 1, 8, 272}) {
            writeFile(filePath(), START +
                                      record(0, "a.example", "443", "digest",
                                             "YWxpY2U=", QByteArray(length, 'p').toBase64()) +
                                      END);
            outputs.append(tlvctl(QStringList{"auth", "list", path()} + options).out);
            QCOMPARE(outputs.last(), outputs.first());
        }
    }
}

void tst_tlvctl_auth::bytesThatAreNoTextAreShownInBase64()
{
    // "a", 0, 0xFF is no UTF-8; "a", 0, "b" is.
    writeFile(filePath(), START + record(0, "h", "80", "basic", "YQD/", "YQBi") +
                              record(1, "h", "80", "basic", "YQBi", "YQD/") + END);
    const Run run = tlvctl({"auth", "list", "--show-passwords", path()});
    QVERIFY(run.out.contains("\n000  h     80    basic  base64:YQD/  a\\x00b\n"));
    QVERIFY(run.out.contains("\n001  h     80    basic  a\\x00b       base64:YQD/\n"));
    QVERIFY(!tlvctl({"auth", "list", path()}).out.contains("YQBi"));

    const QJsonArray entries = listAsJson()["entries"].toArray();
    const QString zero = QString("a") + QChar(0) + 'b';
    QVERIFY(entries.at(0).toObject()["user"].isNull());
    QCOMPARE(entries.at(0).toObject()["userBase64"].toString(), QString("YQD/"));
    QCOMPARE(entries.at(0).toObject()["password"].toString(), zero);
    QVERIFY(entries.at(0).toObject()["passwordBase64"].isNull());
    QCOMPARE(entries.at(1).toObject()["user"].toString(), zero);
    QVERIFY(entries.at(1).toObject()["userBase64"].isNull());
    QVERIFY(entries.at(1).toObject()["password"].isNull());
    QCOMPARE(entries.at(1).toObject()["passwordBase64"].toString(), QString("YQD/"));
}

void tst_tlvctl_auth::listShowsWhatTheStoreAnswersAtItsLimits()
{
    const QByteArray host = utf8("\u00E9").repeated(128).toUtf8();
    const QByteArray user(272, 'u');
    const QByteArray password(272, 'p');
    writeFile(filePath(),
              START + record(0, host, "65535", "basic", user.toBase64(), password.toBase64()) + END);
    const Run run = tlvctl({"auth", "list", "--show-passwords", path()});
    QVERIFY(run.out.contains("000  " + host + "  65535  basic  " + user + "  " + password + '\n'));
    QVERIFY(run.out.endsWith("records: 1, counted by the store: 1\n"));
    const QJsonObject entry = listAsJson()["entries"].toArray().at(0).toObject();
    QCOMPARE(entry["flaws"].toArray(), QJsonArray());
    QCOMPARE(entry["host"].toString().toUtf8(), host);
    QCOMPARE(entry["user"].toString().toUtf8(), user);
    QCOMPARE(entry["password"].toString().toUtf8(), password);
}

void tst_tlvctl_auth::listTellsWhatIsOverTheLimits()
{
    const QByteArray host = utf8("\u00E9").repeated(128).toUtf8() + 'x';
    const QByteArray user = QByteArray(273, 'u').toBase64();
    const QByteArray password = QByteArray(273, 'p').toBase64();
    writeFile(filePath(), START + record(0, host, "655350", "basic", user, password) + END);
    const QByteArray notes = "* 000: \"hostName\" of 257 bytes, over 256: the store does not answer it; "
                             "\"portNum\" of 6 bytes, over 5: the store does not answer it; "
                             "\"user\" is over 272 bytes: the store does not answer it; "
                             "\"passwd\" is over 272 bytes: the store does not answer it\n"
                             "records: 1, counted by the store: 1, marked: 1\n";
    const Run run = tlvctl({"auth", "list", path()});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, "no.   host  port  type   user\n"
                      "000*              basic\n" +
                          notes);
    QVERIFY(!run.out.contains("273") && !run.out.contains("pppp"));
    const Run shown = tlvctl({"auth", "list", "--show-passwords", path()});
    QVERIFY(shown.out.endsWith(notes));
    QVERIFY(!shown.out.contains("pppp"));
    const QJsonObject entry = listAsJson()["entries"].toArray().at(0).toObject();
    QCOMPARE(entry["flaws"].toArray(),
             (QJsonArray{"hostTooLong", "portTooLong", "userTooLong", "passwordTooLong"}));
    QCOMPARE(entry["host"].toString(), QString());
    QCOMPARE(entry["user"].toString(), QString());
    QCOMPARE(entry["password"].toString(), QString());
}

void tst_tlvctl_auth::listTellsWhatElseIsOdd()
{
    writeFile(filePath(),
              "<authentication><login id=\"000\"><hostName>a</hostName><portNum>1</portNum>"
              "<authType>Digest</authType><user>Ym9i</user><passwd>x</passwd></login>"
              "<authInfo id=\"001\"/>"
              "<authInfo id=\"002\"><hostName>c</hostName><portNum>http</portNum><authType></authType>"
              "<user>Ym 9i</user><passwd>c2VjcmV0</passwd></authInfo></authentication>");
    const Run run = tlvctl({"auth", "list", path()});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out,
             QByteArray("no.   host  port  type   user\n"
                        "000*  a     1     basic  bob\n"
                        "001*              basic\n"
                        "002*  c     http  basic  bob\n"
                        "* 000: element \"login\" instead of \"authInfo\": answered, but not counted; type "
                        "\"Digest\" is none of \"basic\", \"digest\", \"NTLM\": the store answers \"basic\"; "
                        "\"passwd\" is not all base64: the store reads what is\n"
                        "* 001: no element \"hostName\"; no element \"portNum\"; no element \"authType\"; no "
                        "element \"user\"; no element \"passwd\"\n"
                        "* 002: type \"\" is none of \"basic\", \"digest\", \"NTLM\": the store answers "
                        "\"basic\"; \"user\" is not all base64: the store reads what is\n"
                        "records: 3, counted by the store: 2, marked: 3\n"));
    const QJsonArray entries = listAsJson()["entries"].toArray();
    QCOMPARE(entries.at(0).toObject()["flaws"].toArray(),
             (QJsonArray{"notNamedAuthInfo", "typeUnknown", "passwordNotBase64"}));
    QCOMPARE(entries.at(2).toObject()["flaws"].toArray(), (QJsonArray{"typeUnknown", "userNotBase64"}));
}

void tst_tlvctl_auth::listTellsOfGapsInTheNumbering()
{
    writeFile(filePath(), threeEntries().replace("id=\"001\"", "id=\"005\"").replace(" id=\"002\"", ""));
    const Run run = tlvctl({"auth", "list", path()});
    QVERIFY(run.out.endsWith("\n002  c.example  8080  NTLM    carol\n"
                             "numbers that stand otherwise in the file, and are given anew by loading: 2\n"
                             "records: 3, counted by the store: 3\n"));
    QCOMPARE(listAsJson()["renumbered"], QJsonValue(2));
}

void tst_tlvctl_auth::listTellsOfEntriesWithoutANumber()
{
    writeFile(filePath(),
              manyEntries(1001).replace("id=\"999\"", "id=\"998\"").replace("id=\"1000\"", "id=\"1500\""));
    const QList<QByteArray> lines = tlvctl({"auth", "list", path()}).out.split('\n');
    QCOMPARE(lines.at(999), QByteArray("998   h998   80    basic  u998"));
    QCOMPARE(lines.at(1000), QByteArray("---*  h999   80    basic  u999"));
    QCOMPARE(lines.at(1001), QByteArray("1500  h1000  80    basic  u1000"));
    QCOMPARE(lines.at(1002),
             QByteArray("* --- (record 1000 of the file): has no number: cannot be asked for"));
    QCOMPARE(lines.at(1003), QByteArray("records: 1001, counted by the store: 999, marked: 1"));
}

void tst_tlvctl_auth::listAgreesWithTheStore()
{
    QByteArray xml = "<authentication>";
    const QList<QByteArray> users{"Ym9i",
                                  "",
                                  "****",
                                  "YQD/",
                                  "YWI=",
                                  "YWJj\nZGVm",
                                  QByteArray(400, 'A'),
                                  QByteArray(363, 'A'),
                                  QByteArray(362, 'A')};
    const QList<QByteArray> types{"basic", "digest", "NTLM", "ntlm", "", " digest"};
    for (int i = 0; i < 1100; ++i) {
        const QByteArray host(i % 7 == 3 ? 257 : 256, 'h');
        const QByteArray id = i % 5 == 0 ? QByteArray::number(i + 1) : QByteArray("x");
        xml += "<authInfo id=\"" + id + "\"><hostName>" + host + "</hostName><portNum>" +
               QByteArray(i % 8, '1') + "</portNum><authType>" + types.at(i % 6) + "</authType><user>" +
               users.at(i % 9) + "</user><passwd>" + users.at((i / 9) % 9) + "</passwd></authInfo>";
    }
    writeFile(filePath(), xml + "</authentication>");
    const QJsonObject json = listAsJson();

    TVNC_AuthSetting& store = *TVNC_AuthSetting::getInstance();
    QString dir = path();
    store.loadAuthInfo(&dir, 999);
    QCOMPARE(json["count"].toInt(), store.getAuthInfoCnt());
    const QJsonArray entries = json["entries"].toArray();
    QCOMPARE(entries.size(), 1100);
    int numbered = 0;
    const auto bytes = [](const QJsonObject& entry, const QString& name) {
        if (entry[name].isNull())
            return QByteArray::fromBase64(entry[name + "Base64"].toString().toLatin1());
        return entry[name].toString().toUtf8();
    };
    for (const QJsonValue& value : entries) {
        const QJsonObject entry = value.toObject();
        QCOMPARE(entry["flaws"].toArray().contains("noNumber"), entry["number"].isNull());
        if (entry["number"].isNull())
            continue;
        ++numbered;
        TVNS_AuthInfo info;
        QCOMPARE(store.getAuthInfo(entry["number"].toInt(), &info), 1);
        QCOMPARE(entry["host"].toString(), info.hostName);
        QCOMPARE(entry["port"].toString(), info.portNum);
        const QStringList words{"basic", "digest", "NTLM"};
        QCOMPARE(entry["type"].toString(), words.at(info.authType));
        QCOMPARE(bytes(entry, "user"), info.user);
        QCOMPARE(bytes(entry, "password"), info.passwd);
    }
    QVERIFY(numbered > 999);
}

void tst_tlvctl_auth::listOfDamagedFileShowsWhatIsRead()
{
    writeFile(filePath(), DAMAGED);
    const Run run = tlvctl({"auth", "list", path()});
    QCOMPARE(run.code, 1);
    QVERIFY(run.out.contains("\n000   a.example  80    basic  bob\n"));
    QVERIFY(complains(run, filePath(), {"line 4", "everything behind that place is not read"}));
    QVERIFY(keepsSecret(run, THREE_PASSWORDS));
    const Run json = tlvctl({"auth", "list", "--json", path()});
    QCOMPARE(json.code, 1);
    QCOMPARE(jsonOf(json.out)["complete"], QJsonValue(false));
    QCOMPARE(jsonOf(json.out)["error"].toObject()["line"].toInt(), 4);
    QVERIFY(keepsSecret(json, THREE_PASSWORDS));
}

void tst_tlvctl_auth::listNeedsAReadableFile()
{
    const Run noDirectory = tlvctl({"auth", "list", path("none/")});
    QCOMPARE(noDirectory.code, 1);
    QVERIFY(complains(noDirectory, path("none"), {"check the spelling"}));

    writeFile(filePath(), threeEntries());
    QFile::setPermissions(filePath(), QFileDevice::Permissions());
    const Run unreadable = tlvctl({"auth", "list", path()});
    QCOMPARE(unreadable.code, 1);
    QCOMPARE(unreadable.out, QByteArray());
    QVERIFY(complains(unreadable, filePath(), {"Permission denied"}));
}

void tst_tlvctl_auth::listEscapesHostileTexts()
{
    const QByteArray hostile = utf8("a\n9\u202E\x1b[31m").toUtf8().toBase64();
    writeFile(filePath(), START +
                              record(0, utf8("h\n999  \u202E").toUtf8(), utf8("\u009B").toUtf8(),
                                     utf8("\u202E").toUtf8(), hostile, hostile) +
                              END);
    const Run run = tlvctl({"auth", "list", "--show-passwords", path()});
    QCOMPARE(run.code, 0);
    QVERIFY(run.out.contains("000*  h\\n999  \\u{202E}  \\x9B  basic  a\\n9\\u{202E}\\x1B[31m  "
                             "a\\n9\\u{202E}\\x1B[31m\n"));
    QVERIFY(isHarmless(run.out));
    QVERIFY(isHarmless(tlvctl({"auth", "list", "--json", "--show-passwords", path()}).out));
    QVERIFY(isHarmless(tlvctl({"auth", "remove", path(), "0"}).out));
}

void tst_tlvctl_auth::addWritesExactlyThisFile()
{
    const Run run = tlvctlReading("secret\n", {"auth", "add", path(), utf8("h\u00F6st&"), "443", "--type",
                                               "digest", "--user", "alice"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.out, utf8("added    000  h\u00F6st&  443  digest  alice\n").toUtf8());
    QCOMPARE(readFile(filePath()), utf8("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                        "<authentication docInfo=\"1.0\">\n"
                                        "    <authInfo id=\"000\">\n"
                                        "        <hostName>h\u00F6st&amp;</hostName>\n"
                                        "        <portNum>443</portNum>\n"
                                        "        <authType>digest</authType>\n"
                                        "        <user><![CDATA[YWxpY2U=]]></user>\n"
                                        "        <passwd><![CDATA[c2VjcmV0]]></passwd>\n"
                                        "    </authInfo>\n"
                                        "</authentication>\n")
                                       .toUtf8());
    QCOMPARE(QDir(path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{"authinfo.xml"});
}

void tst_tlvctl_auth::addKnowsTheTypes_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QByteArray>("stored");
    QTest::newRow("basic") << "basic" << QByteArray("basic");
    QTest::newRow("digest") << "digest" << QByteArray("digest");
    QTest::newRow("ntlm") << "ntlm" << QByteArray("NTLM");
    QTest::newRow("NTLM") << "NTLM" << QByteArray("NTLM");
}

void tst_tlvctl_auth::addKnowsTheTypes()
{
    QFETCH(QString, option);
    QFETCH(QByteArray, stored);
    const Run run =
        tlvctlReading("secret", {"auth", "add", path(), "h", "80", "--user", "bob", "--type", option});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, "added    000  h  80  " + stored + "  bob\n");
    QCOMPARE(readFile(filePath()), START + record(0, "h", "80", stored, "Ym9i", "c2VjcmV0") + END);
}

void tst_tlvctl_auth::addPutsTheEntryInFront()
{
    writeFile(filePath(), START + record(0, "b.example", "80", "basic", "Ym9i", "aHVudGVyMg==") + END);
    const Run run = tlvctlReading("secret", addCommand("b.example", "80", "bob"));
    QCOMPARE(run.code, 0);
    QVERIFY(keepsSecret(run, THREE_PASSWORDS));
    QCOMPARE(readFile(filePath()), START + record(0, "b.example", "80", "basic", "Ym9i", "c2VjcmV0") +
                                       record(1, "b.example", "80", "basic", "Ym9i", "aHVudGVyMg==") + END);
}

void tst_tlvctl_auth::addRemovesTheOldestOfAFullList()
{
    writeFile(filePath(), threeEntries());
    const Run run = tlvctlReading("secret", addCommand("n", "1", "new") + QStringList{"--max", "3"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, QByteArray("removed  002  c.example  8080  NTLM  carol\n"
                                 "added    000  n  1  basic  new\n"));
    QVERIFY(keepsSecret(run, THREE_PASSWORDS));
    QCOMPARE(readFile(filePath()), START + record(0, "n", "1", "basic", "bmV3", "c2VjcmV0") +
                                       record(1, "a.example", "443", "digest", "YWxpY2U=", "c2VjcmV0") +
                                       record(2, "b.example", "80", "basic", "Ym9i", "aHVudGVyMg==") + END);
    // One less, and there is room.
    QCOMPARE(tlvctlReading("", addCommand("m", "1", "new") + QStringList{"--max", "4"}).out,
             QByteArray("added    000  m  1  basic  new\n"));
    QCOMPARE(readFile(filePath()).count("<authInfo"), 4);

    writeFile(filePath(), manyEntries(999));
    const Run full = tlvctlReading("secret", addCommand("n", "1", "new"));
    QCOMPARE(full.out, QByteArray("removed  998  h998  80  basic  u998\nadded    000  n  1  basic  new\n"));
    QCOMPARE(listAsJson()["count"], QJsonValue(999));
}

void tst_tlvctl_auth::addToAListOverItsMaximumKeepsItsLength()
{
    writeFile(filePath(), manyEntries(5));
    const Run run = tlvctlReading("secret", addCommand("n", "1", "new") + QStringList{"--max", "3"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, QByteArray("removed  002  h2  80  basic  u2\nadded    000  n  1  basic  new\n"));
    QCOMPARE(readFile(filePath()).count("<authInfo"), 5);
    QVERIFY(readFile(filePath()).contains("<hostName>h4<"));
}

void tst_tlvctl_auth::addReadsThePasswordAsItIs_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QByteArray>("password");
    const QByteArray raw("a\0\xFF\x1b\n b", 7);
    QTest::newRow("nothing") << QByteArray("") << QByteArray("");
    QTest::newRow("no line break") << QByteArray("secret") << QByteArray("secret");
    QTest::newRow("line break") << QByteArray("secret\n") << QByteArray("secret");
    QTest::newRow("line break of two") << QByteArray("secret\r\n") << QByteArray("secret");
    QTest::newRow("only one of them goes") << QByteArray("secret\n\n") << QByteArray("secret\n");
    QTest::newRow("blanks stay") << QByteArray(" secret ") << QByteArray(" secret ");
    QTest::newRow("carriage return alone") << QByteArray("secret\r") << QByteArray("secret\r");
    QTest::newRow("any bytes") << raw << raw;
    QTest::newRow("272 bytes") << QByteArray(272, '\xFF') << QByteArray(272, '\xFF');
    QTest::newRow("272 bytes and a line break") << QByteArray(272, 'p') + "\r\n" << QByteArray(272, 'p');
}

void tst_tlvctl_auth::addReadsThePasswordAsItIs()
{
    QFETCH(QByteArray, input);
    QFETCH(QByteArray, password);
    writeFile(path("password"), input);
    const Run fromInput = tlvctlReading(input, addCommand("h", "80", "bob"));
    QCOMPARE(fromInput.code, 0);
    const QByteArray file = readFile(filePath());
    if (!password.isEmpty())
        QCOMPARE(file, START + record(0, "h", "80", "basic", "Ym9i", password.toBase64()) + END);

    QFile::remove(filePath());
    const Run fromFile = tlvctlReading("other", addCommand("h", "80", "bob") +
                                                    QStringList{"--password-file", path("password")});
    QCOMPARE(fromFile.code, 0);
    QCOMPARE(fromFile.err, QByteArray());
    QCOMPARE(readFile(filePath()), file);

    TVNC_AuthSetting& store = *TVNC_AuthSetting::getInstance();
    QString dir = path();
    store.loadAuthInfo(&dir, 999);
    TVNS_AuthInfo info;
    info.passwd = "untouched";
    QCOMPARE(store.getAuthInfo(0, &info), 1);
    QCOMPARE(info.passwd, password);
}

void tst_tlvctl_auth::addReportsAnUnreadablePasswordFile()
{
    const auto add = [this](const QString& file) {
        return tlvctlReading("secret", addCommand("h", "80", "bob") + QStringList{"--password-file", file});
    };
    const Run missing = add(path("none"));
    QCOMPARE(missing.code, 1);
    QVERIFY(complains(missing, path("none"), {"the password cannot be read", "No such file"}));
    const Run directory = add(path());
    QCOMPARE(directory.code, 1);
    QVERIFY(complains(directory, path(), {"Is a directory"}));
    writeFile(path("password"), "secret");
    QFile::setPermissions(path("password"), QFileDevice::Permissions());
    const Run closed = add(path("password"));
    QCOMPARE(closed.code, 1);
    QVERIFY(complains(closed, path("password"), {"Permission denied"}));
    QVERIFY(!QFile::exists(filePath()));
}

void tst_tlvctl_auth::addTakesValuesUpToTheLimits()
{
    const QString host = utf8("\u00E9").repeated(128);
    const QString user = utf8("\u00E9").repeated(136);
    QCOMPARE(tlvctlReading("secret", addCommand(host, "65535", user)).code, 0);
    QCOMPARE(readFile(filePath()),
             START + record(0, host.toUtf8(), "65535", "basic", user.toUtf8().toBase64(), "c2VjcmV0") + END);
    // The store takes any text for a port, and an empty user name.
    QCOMPARE(tlvctlReading("secret", addCommand("h", "https", "")).code, 0);
    const QJsonObject entry = listAsJson()["entries"].toArray().at(0).toObject();
    QCOMPARE(entry["port"].toString(), QString("https"));
    QCOMPARE(entry["user"].toString(), QString());
}

void tst_tlvctl_auth::addRefusesBadValues_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<QString>("port");
    QTest::addColumn<QString>("user");
    QTest::addColumn<QStringList>("words");
    QTest::newRow("no host") << ""
                             << "80"
                             << "u" << QStringList{"the host name \"\" is empty"};
    QTest::newRow("host of 257 bytes") << utf8("\u00E9").repeated(128) + 'x' << "80"
                                       << "u" << QStringList{"the host name ", "257 bytes", "256"};
    QTest::newRow("host of blanks") << " "
                                    << "80"
                                    << "u" << QStringList{"the host name \" \" consists of blanks"};
    QTest::newRow("control character") << "a\x1b[31m"
                                       << "80"
                                       << "u" << QStringList{"\\x1B", "control characters"};
    QTest::newRow("no port") << "h"
                             << ""
                             << "u" << QStringList{"the port \"\" is empty"};
    QTest::newRow("port of 6 bytes") << "h"
                                     << "655350"
                                     << "u" << QStringList{"the port \"655350\" has 6 bytes", "5"};
    QTest::newRow("port of 6 bytes in 3 characters")
        << "h" << utf8("\u00E9\u00E9\u00E9") << "u" << QStringList{"6 bytes"};
    QTest::newRow("user of 273 bytes")
        << "h"
        << "80" << utf8("\u00E9").repeated(136) + 'x' << QStringList{"the user name has 273 bytes", "272"};
}

void tst_tlvctl_auth::addRefusesBadValues()
{
    QFETCH(QString, host);
    QFETCH(QString, port);
    QFETCH(QString, user);
    QFETCH(QStringList, words);
    const Run run = tlvctlReading("secret", addCommand(host, port, user));
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray());
    QVERIFY(complains(run, filePath(), QStringList("nothing was added") + words));
    QVERIFY(isHarmless(run.err));
    QVERIFY(keepsSecret(run, THREE_PASSWORDS));
    QVERIFY(!QFile::exists(filePath()));
}

void tst_tlvctl_auth::addRefusesALongPassword_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::newRow("273 bytes") << QByteArray(273, 'p');
    QTest::newRow("273 bytes and a line break") << QByteArray(273, 'p') + '\n';
    QTest::newRow("273 bytes and a line break of two") << QByteArray(273, 'p') + "\r\n";
    QTest::newRow("a megabyte") << QByteArray(1000000, 'p');
}

void tst_tlvctl_auth::addRefusesALongPassword()
{
    QFETCH(QByteArray, input);
    writeFile(filePath(), threeEntries());
    writeFile(path("password"), input);
    const Run run =
        tlvctlReading("", addCommand("h", "80", "bob") + QStringList{"--password-file", path("password")});
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray());
    QVERIFY(complains(run, path("password"), {"nothing was changed", "more than the 272 bytes"}));
    QVERIFY(!run.err.contains("pppp") && !run.err.contains("273"));
    QCOMPARE(readFile(filePath()), threeEntries());
}

void tst_tlvctl_auth::addDoesNotReadAnEndlessPassword()
{
    const Run run = shell("\"$tlvctl\" auth add \"$1\" h 80 --type basic --user u < /dev/zero", path());
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, "standard input", {"more than the 272 bytes"}));
    QVERIFY(!QFile::exists(filePath()));
}

void tst_tlvctl_auth::addNeedsItsOptions_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("problem");
    QTest::newRow("no type") << QStringList{"--user", "u"} << QByteArray("missing option --type");
    QTest::newRow("no user") << QStringList{"--type", "basic"} << QByteArray("missing option --user");
    QTest::newRow("unknown type") << QStringList{"--user", "u", "--type", "%1kerberos"}
                                  << QByteArray("type \"%1kerberos\" is none of basic, digest, ntlm");
    QTest::newRow("maximum") << QStringList{"--user", "u", "--type", "basic", "--max", "0"}
                             << QByteArray("maximum \"0\" is no number from 1 to 999");
    QTest::newRow("password") << QStringList{"--user", "u", "--type", "basic", "--password=secret"}
                              << QByteArray("unknown option 'password'");
}

void tst_tlvctl_auth::addNeedsItsOptions()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, problem);
    const Run run = tlvctlReading("secret", QStringList{"auth", "add", path(), "h", "80"} + options);
    QCOMPARE(run.code, 2);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(run.err, "tlvctl: " + problem + "; see \"tlvctl auth add --help\"\n");
    QVERIFY(keepsSecret(run, THREE_PASSWORDS));
    QVERIFY(!QFile::exists(filePath()));
}

void tst_tlvctl_auth::commandLineNeverHoldsThePassword()
{
    QProcess process;
    process.setProcessEnvironment(plainEnvironment());
    process.start(TLVCTL, addCommand("h", "80", "bob"));
    QVERIFY(process.waitForStarted());
    process.write("hunter2"); // the input stays open, and the tool waits for more
    QVERIFY(process.waitForBytesWritten());
    const QString processDirectory = QString("/proc/%1/").arg(process.processId());
    QByteArray commandLine;
    for (int i = 0; i < 500 && !commandLine.contains("--user"); ++i) {
        QTest::qWait(10);
        commandLine = readFile(processDirectory + "cmdline");
    }
    QVERIFY(commandLine.contains("--user"));
    QTest::qWait(200); // by now it has read what there is
    QVERIFY(!process.waitForFinished(0));
    for (const char* file : {"cmdline", "environ", "comm"})
        QVERIFY(!readFile(processDirectory + file).contains("hunter2"));
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    QVERIFY(readFile(filePath()).contains("aHVudGVyMg=="));
}

void tst_tlvctl_auth::addAsksOnATerminalWithoutEcho()
{
    const TerminalRun run = onTerminal(addCommand("h", "80", "bob"), "hunter2\n");
    QVERIFY(WIFEXITED(run.status));
    QCOMPARE(WEXITSTATUS(run.status), 0);
    QCOMPARE(run.screen, QByteArray("Password: \nadded    000  h  80  basic  bob\n"));
    QVERIFY(run.echoes);
    QCOMPARE(readFile(filePath()), START + record(0, "h", "80", "basic", "Ym9i", "aHVudGVyMg==") + END);

    const TerminalRun tooLong = onTerminal(addCommand("h", "80", "bob"), QByteArray(273, 'p') + '\n');
    QCOMPARE(WEXITSTATUS(tooLong.status), 1);
    QVERIFY(tooLong.screen.contains("more than the 272 bytes"));
    QVERIFY(!tooLong.screen.contains("ppp"));
    QVERIFY(tooLong.echoes);
}

void tst_tlvctl_auth::addOnATerminalGivesUpAtItsEnd()
{
    const TerminalRun run = onTerminal(addCommand("h", "80", "bob"), "\x04"); // Control-D
    QVERIFY(WIFEXITED(run.status));
    QCOMPARE(WEXITSTATUS(run.status), 1);
    QVERIFY(run.screen.contains("the password cannot be read"));
    QVERIFY(run.echoes);
    QVERIFY(!QFile::exists(filePath()));
}

void tst_tlvctl_auth::addOnATerminalEndsWithASignal()
{
    const TerminalRun run = onTerminal(addCommand("h", "80", "bob"), "hunt\x03"); // Control-C
    QVERIFY(WIFSIGNALED(run.status));
    QCOMPARE(WTERMSIG(run.status), SIGINT);
    QVERIFY(run.echoes);
    QVERIFY(!run.screen.contains("hunt"));
    QVERIFY(!QFile::exists(filePath()));
}

void tst_tlvctl_auth::removeTakesNumbersFromBeforeTheCommand()
{
    writeFile(filePath(), threeEntries());
    const Run run = tlvctl({"auth", "remove", path(), "2", "000"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.out, QByteArray("removed  000  a.example  443  digest  alice\n"
                                 "removed  002  c.example  8080  NTLM  carol\n"));
    QVERIFY(keepsSecret(run, THREE_PASSWORDS));
    QCOMPARE(readFile(filePath()),
             START + record(0, "b.example", "80", "basic", "Ym9i", "aHVudGVyMg==") + END);
}

void tst_tlvctl_auth::removeReachesNumbersBeyondTheUsualOnes()
{
    writeFile(filePath(), manyEntries(1002).replace("id=\"1001\"", "id=\"1500\""));
    const Run run = tlvctl({"auth", "remove", path(), "1500", "998", "0"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, QByteArray("removed  000  h0  80  basic  u0\n"
                                 "removed  998  h998  80  basic  u998\n"
                                 "removed  1500  h1001  80  basic  u1001\n"));
    const QJsonArray entries = listAsJson()["entries"].toArray();
    QCOMPARE(entries.size(), 999);
    QCOMPARE(entries.at(0).toObject()["host"].toString(), QString("h1"));
    QCOMPARE(entries.at(997).toObject()["host"].toString(), QString("h999"));
    QCOMPARE(entries.at(998).toObject()["host"].toString(), QString("h1000"));
}

void tst_tlvctl_auth::removeRefusesAnAbsentNumber()
{
    writeFile(filePath(), threeEntries());
    const Run run = tlvctl({"auth", "remove", path(), "0", "3"});
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray());
    QVERIFY(complains(run, filePath(), {"nothing was changed", "no record 003"}));
    QCOMPARE(readFile(filePath()), threeEntries());
    const Run bad = tlvctl({"auth", "remove", path(), "0", "x"});
    QCOMPARE(bad.code, 2);
    QCOMPARE(bad.err,
             QByteArray("tlvctl: \"x\" is no number of a record; see \"tlvctl auth remove --help\"\n"));
    QCOMPARE(readFile(filePath()), threeEntries());
}

void tst_tlvctl_auth::dryRunWritesNothing()
{
    const QByteArray heading =
        "dry run: nothing is written to " + filePath().toUtf8() + ", where this would change:\n";
    const Run fresh = tlvctlReading("secret", addCommand("h", "80", "bob") + QStringList("--dry-run"));
    QCOMPARE(fresh.code, 0);
    QCOMPARE(fresh.out, heading + "added    000  h  80  basic  bob\n");
    QVERIFY(QDir(path()).isEmpty());

    writeFile(filePath(), threeEntries());
    const Run add = tlvctlReading("x", addCommand("h", "80", "bob") + QStringList{"--dry-run", "--max=3"});
    QCOMPARE(add.out, heading + "removed  002  c.example  8080  NTLM  carol\n"
                                "added    000  h  80  basic  bob\n");
    const Run remove = tlvctl({"auth", "remove", "--dry-run", path(), "1"});
    QCOMPARE(remove.code, 0);
    QCOMPARE(remove.out, heading + "removed  001  b.example  80  basic  bob\n");
    QCOMPARE(readFile(filePath()), threeEntries());
}

void tst_tlvctl_auth::changesRefuseADamagedFileUnlessForced()
{
    writeFile(filePath(), DAMAGED);
    for (const QStringList& command :
         {addCommand("h", "80", "new"), QStringList{"auth", "remove", path(), "0"}}) {
        const Run run = tlvctlReading("letmein", command);
        QCOMPARE(run.code, 1);
        QCOMPARE(run.out, QByteArray());
        QVERIFY(complains(run, filePath(), {"line 4", "lose", "--force"}));
        QVERIFY(keepsSecret(run, THREE_PASSWORDS));
        QCOMPARE(readFile(filePath()), QByteArray(DAMAGED));
    }
    const Run forced = tlvctlReading("letmein", addCommand("h", "80", "new") + QStringList("--force"));
    QCOMPARE(forced.code, 0);
    QVERIFY(readFile(filePath()).startsWith(START + record(0, "h", "80", "basic", "bmV3", "bGV0bWVpbg==")));
    QVERIFY(readFile(filePath()).contains("<hostName>a.example</hostName>"));
}

void tst_tlvctl_auth::changesDetectWriteErrors()
{
    writeFile(filePath(), threeEntries());
    QFile::setPermissions(filePath(), QFileDevice::ReadOwner);
    for (const QStringList& command :
         {addCommand("h", "80", "new"), QStringList{"auth", "remove", path(), "0"}}) {
        const Run run = tlvctlReading("secret", command);
        QCOMPARE(run.code, 1);
        QCOMPARE(run.out, QByteArray());
        QVERIFY(complains(run, filePath(), {"permission denied", "make the file writable"}));
        QVERIFY(keepsSecret(run, THREE_PASSWORDS));
        QCOMPARE(readFile(filePath()), threeEntries());
    }
}

TLVCTL_TEST_MAIN(tst_tlvctl_auth)
#include "tst_tlvctl_auth.moc"
