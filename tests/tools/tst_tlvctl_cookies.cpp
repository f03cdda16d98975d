#include "tests/tools/TlvctlRun.h"

#include <tlvlib/tlvlib.h>

#include <QtCore/QDataStream>
#include <QtCore/QDir>
#include <QtCore/QJsonArray>
#include <QtCore/QSettings>

#include <memory>

namespace {

const char START[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<cookie docInfo=\"1.0\">\n";
const char END[] = "</cookie>\n";

/// An entry as the store writes it.
QByteArray entry(int number, const QByteArray& name, const QByteArray& value, const QByteArray& expires = "")
{
    const QByteArray time = expires.isEmpty() ? "<expires/>" : "<expires>" + expires + "</expires>";
    return "    <webSiteInfo id=\"" + QByteArray::number(number).rightJustified(3, '0') +
           "\">\n        <website>.example.com</website>\n        <name>" + name +
           "</name>\n        <path>/</path>\n        <secure>false</secure>\n        " + time +
           "\n        <contents><![CDATA[" + value + "]]></contents>\n    </webSiteInfo>\n";
}

/// The device's file of these raw forms, with any count before them.
QByteArray stream(int count, const QList<QByteArray>& rawForms)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << qint32(count);
    for (const QByteArray& rawForm : rawForms)
        stream << rawForm;
    return bytes;
}

QByteArray raw(const QByteArray& nameAndValue)
{
    return nameAndValue + "; domain=.example.com; path=/";
}

} // namespace

/// tlvctl cookies
class tst_tlvctl_cookies : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { dir_.reset(); }

    void listShowsIniWithoutValues();
    void listShowsDocumentWithoutValues();
    void listShowsValuesOnDemand();
    void listWritesJson();
    void listOfMissingFilesIsEmpty();
    void listOfNoDirectoryFails();
    void listTellsWhatTheCountHides_data();
    void listTellsWhatTheCountHides();
    void listTellsOtherKeys();
    void listMarksExpiredCookies();
    void listTellsWhatADocumentHides();
    void listShowsADamagedDocumentUpToTheDamage();
    void listEscapesWhatATerminalWouldObey();
    void listShowsBytesThatAreNoText();
    void unreadableIniFails();

    void toIniReplacesTheFile();
    void toIniTellsWhatIsLost();
    void toIniWorksWithAnyPath();
    void toIniOfADryRunWritesNothing();
    void toIniRefusesAMissingDocument();
    void toIniRefusesADamagedDocument();
    void toIniRefusesToLoseWhatIsNoCookie();
    void toIniTellsThatSavingFailed();

    void fromIniBringsTheDocumentUpToDate();
    void fromIniCreatesTheDocument();
    void fromIniOfADryRunWritesNothing();
    void fromIniRefusesAMissingIni();
    void fromIniRefusesADamagedDocument();
    void fromIniRefusesAMissingDirectory();

    void valuesStaySecret();
    void wrongUsage_data();
    void wrongUsage();

private:
    QString path() const { return dir_->path(); }
    QString iniPath() const { return path() + "cookie.ini"; }
    QString xmlPath() const { return path() + "cookies.xml"; }
    void writeStream(const QByteArray& bytes);
    Run run(const QStringList& arguments) { return tlvctl(arguments, with("TZ", "UTC0")); }
    QStringList namesInIni();

    std::unique_ptr<TempDir> dir_;
};

void tst_tlvctl_cookies::init()
{
    dir_ = std::make_unique<TempDir>();
}

void tst_tlvctl_cookies::writeStream(const QByteArray& bytes)
{
    QSettings settings(iniPath(), QSettings::IniFormat);
    settings.setValue("Cookie/cookies", bytes);
}

QStringList tst_tlvctl_cookies::namesInIni()
{
    QStringList names;
    QString dir = path();
    for (const QNetworkCookie& cookie : TVNC_CookieSetting::getInstance()->loadCookieInfo(&dir, 20))
        names.append(cookie.name());
    return names;
}

// --- list -------------------------------------------------------------------------------------------------

void tst_tlvctl_cookies::listShowsIniWithoutValues()
{
    writeFile(iniPath(), readFile(testData("cookie.ini")));
    for (const QString& file : {path(), path().left(path().size() - 1), iniPath()}) {
        const Run run = this->run({"cookies", "list", file});
        QCOMPARE(run.code, 0);
        QCOMPARE(run.err, QByteArray());
        QCOMPARE(run.out,
                 QByteArray("no.  name    domain            path  flags            expires\n"
                            "000  SID     .example.com      /     secure HttpOnly  2031/05/06 07:08:09\n"
                            "001  lang    www.example.jp    /app\n"
                            "002  prefs   shop.example.org  /                      2030/12/31 23:59:59\n"
                            "003  empty   example.net       /\n"
                            "004  utf8    example.net       /                      2029/02/28 00:00:00\n"
                            "005  spaced  example.net       /a/b  secure           2029/02/28 00:00:00\n"
                            "006  pct     127.0.0.1         /     HttpOnly\n"
                            "records: 7, counted by the store: 7\n"));
    }
    QCOMPARE(readFile(iniPath()), readFile(testData("cookie.ini")));
}

void tst_tlvctl_cookies::listShowsDocumentWithoutValues()
{
    writeFile(xmlPath(),
              START + entry(0, "a", "secret", "2031/05/06 07:08:09") + entry(1, "b", "secret") + END);
    const Run run = this->run({"cookies", "list", xmlPath()});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.out, QByteArray("no.  name  domain        path  flags  expires\n"
                                 "000  a     .example.com  /            2031/05/06 07:08:09\n"
                                 "001  b     .example.com  /\n"
                                 "records: 2, counted by the store: 2\n"));
}

void tst_tlvctl_cookies::listShowsValuesOnDemand()
{
    writeStream(stream(1, {raw("a=secret")}));
    writeFile(xmlPath(), START + entry(0, "a", "hidden") + END);
    QVERIFY(run({"cookies", "list", "--show-values", path()}).out.contains("  secret\n"));
    QVERIFY(run({"cookies", "list", "--show-values", xmlPath()}).out.contains("  hidden\n"));
}

void tst_tlvctl_cookies::listWritesJson()
{
    writeStream(stream(1, {raw("a=secret; HttpOnly; expires=Tue, 06-May-2031 07:08:09 GMT")}));
    const Run ini = run({"cookies", "list", "--json", "--show-values", path()});
    QJsonObject cookie{{"number", 0},           {"filePosition", 0},
                       {"flaws", QJsonArray()}, {"domain", ".example.com"},
                       {"name", "a"},           {"nameBase64", QJsonValue()},
                       {"path", "/"},           {"secure", false},
                       {"httpOnly", true},      {"expires", "2031/05/06 07:08:09"},
                       {"value", "secret"},     {"valueBase64", QJsonValue()}};
    QCOMPARE(jsonOf(ini.out), (QJsonObject{{"file", iniPath()},
                                           {"exists", true},
                                           {"count", 1},
                                           {"remarks", QJsonArray()},
                                           {"cookies", QJsonArray{cookie}}}));

    writeFile(xmlPath(), START + entry(0, "a", "secret") + END);
    const Run document = run({"cookies", "list", "--json", xmlPath()});
    cookie["httpOnly"] = QJsonValue();
    cookie["expires"] = QJsonValue();
    cookie.remove("value");
    cookie.remove("valueBase64");
    QCOMPARE(jsonOf(document.out), (QJsonObject{{"file", xmlPath()},
                                                {"exists", true},
                                                {"complete", true},
                                                {"error", QJsonValue()},
                                                {"count", 1},
                                                {"remarks", QJsonArray()},
                                                {"cookies", QJsonArray{cookie}}}));
}

void tst_tlvctl_cookies::listOfMissingFilesIsEmpty()
{
    const Run ini = run({"cookies", "list", path()});
    QCOMPARE(ini.code, 0);
    QCOMPARE(ini.out, "records: 0, because there is no " + iniPath().toUtf8() + '\n');
    const Run document = run({"cookies", "list", xmlPath()});
    QCOMPARE(document.code, 0);
    QCOMPARE(document.out, "records: 0, because there is no " + xmlPath().toUtf8() + '\n');
    QCOMPARE(jsonOf(run({"cookies", "list", "--json", path()}).out)["exists"], QJsonValue(false));
    QVERIFY(QDir(path()).isEmpty());
}

void tst_tlvctl_cookies::listOfNoDirectoryFails()
{
    const Run run = this->run({"cookies", "list", path() + "none/cookie.ini"});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, path() + "none", {"no such directory", "check the spelling"}));
}

void tst_tlvctl_cookies::listTellsWhatTheCountHides_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("remark");
    QTest::addColumn<int>("count");
    QTest::newRow("too many") << stream(3, {raw("a=1"), raw("b=2")})
                              << QByteArray("the file says that it holds 3 entries, but there are 2\n") << 2;
    QTest::newRow("all there are") << stream(-1, {raw("a=1")})
                                   << QByteArray("damaged: the number of entries is none, and 1 are there\n")
                                   << 1;
    QTest::newRow("too few") << stream(1, {raw("a=1"), raw("b=2")})
                             << QByteArray(
                                    "behind the 1 entries that the file says it holds, 36 bytes are not "
                                    "read\n")
                             << 1;
    QTest::newRow("none") << stream(0, {raw("a=1")})
                          << QByteArray(
                                 "behind the 0 entries that the file says it holds, 36 bytes are not read\n")
                          << 0;
    QTest::newRow("cut off") << stream(2, {raw("a=1"), raw("b=2")}).chopped(1)
                             << QByteArray("entry 2 is cut off: it is left out\n") << 1;
    QTest::newRow("no cookie") << stream(2, {"; ;", raw("b=2")})
                               << QByteArray("entry 1 holds 0 cookies instead of one\n") << 1;
    QTest::newRow("two cookies") << stream(1, {"a=1\nb=2"})
                                 << QByteArray("entry 1 holds 2 cookies instead of one\n") << 2;
    QTest::newRow("no list") << QByteArray("\0\0", 2) << QByteArray("the file holds no list of cookies\n")
                             << 0;
}

void tst_tlvctl_cookies::listTellsWhatTheCountHides()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, remark);
    QFETCH(int, count);
    writeStream(bytes);
    const Run run = this->run({"cookies", "list", path()});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, iniPath(), {"damaged"}));
    QVERIFY2(run.out.contains(remark), run.out.constData());
    QVERIFY(run.out.endsWith("records: " + QByteArray::number(count) +
                             ", counted by the store: " + QByteArray::number(count) + '\n'));
}

void tst_tlvctl_cookies::listTellsOtherKeys()
{
    writeStream(stream(0, {}));
    {
        QSettings settings(iniPath(), QSettings::IniFormat);
        settings.setValue("Cookie/more", 1);
    }
    QCOMPARE(run({"cookies", "list", path()}).out,
             QByteArray("key \"Cookie/more\" is not the store's: saving removes it\n"
                        "records: 0, counted by the store: 0\n"));
}

void tst_tlvctl_cookies::listMarksExpiredCookies()
{
    writeStream(stream(1, {raw("a=1; expires=Fri, 01-Jan-1999 00:00:00 GMT")}));
    QCOMPARE(run({"cookies", "list", path()}).out,
             QByteArray("no.   name  domain        path  flags  expires\n"
                        "000*  a     .example.com  /            1999/01/01 00:00:00\n"
                        "* 000: expired\n"
                        "records: 1, counted by the store: 1, marked: 1\n"));
}

void tst_tlvctl_cookies::listTellsWhatADocumentHides()
{
    writeFile(xmlPath(), "<cookie><webSiteInfo id='0'><name>a</name><secure>yes</secure><website>w</website>"
                         "<path>/</path><expires>soon</expires><contents>v</contents></webSiteInfo>"
                         "<other id='7'><website/><name>b</name><path/><secure>true</secure><expires/>"
                         "<contents/></other><webSiteInfo/></cookie>");
    QCOMPARE(
        run({"cookies", "list", xmlPath()}).out,
        QByteArray(
            "no.   name  domain  path  flags   expires\n"
            "000*  a     w       /             soon\n"
            "007*  b                   secure\n"
            "---*\n"
            "* 000: secure is \"yes\", neither \"true\" nor \"false\": read as \"false\"; expiry \"soon\" "
            "is not of the form \"yyyy/MM/dd hh:mm:ss\": read as none\n"
            "* 007: has no number from 0 to 2: the store does not see it; element \"other\" instead of "
            "\"webSiteInfo\"\n"
            "* --- (record 3 of the file): has no number from 0 to 2: the store does not see it; no "
            "element \"website\": read as empty; no element \"name\": read as empty; no element "
            "\"path\": read as empty; no element \"secure\": read as empty; no element \"expires\": read "
            "as empty; no element \"contents\": read as empty\n"
            "records: 3, counted by the store: 1, marked: 3\n"));

    QByteArray many = START;
    for (int i = 0; i < 21; ++i)
        many += entry(i, "n" + QByteArray::number(i), "v");
    writeFile(xmlPath(), many + END);
    QVERIFY(run({"cookies", "list", xmlPath()})
                .out.endsWith("the conversions look at the first 20 entries only\n"
                              "records: 21, counted by the store: 21\n"));
}

void tst_tlvctl_cookies::listShowsADamagedDocumentUpToTheDamage()
{
    writeFile(xmlPath(), START + entry(0, "a", "v") + "<webSiteInfo></wrong>");
    const Run run = this->run({"cookies", "list", xmlPath()});
    QCOMPARE(run.code, 1);
    QVERIFY(run.out.contains("000   a     .example.com  /\n"));
    QVERIFY(complains(run, xmlPath(), {"damaged at line 11"}));
    QCOMPARE(jsonOf(this->run({"cookies", "list", "--json", xmlPath()}).out)["complete"], QJsonValue(false));
}

void tst_tlvctl_cookies::listEscapesWhatATerminalWouldObey()
{
    writeStream(stream(1, {"a\x1B[31m=\x1B[2J; domain=.example.com; path=/\x07"}));
    for (const QStringList& options : {QStringList(), QStringList("--show-values"), QStringList("--json")}) {
        const Run run = this->run(QStringList{"cookies", "list", path()} + options);
        QCOMPARE(run.code, 0);
        QVERIFY(run.out.contains("[31m"));
        QVERIFY(isHarmless(run.out));
    }
}

void tst_tlvctl_cookies::listShowsBytesThatAreNoText()
{
    writeStream(stream(1, {raw("a\xFF=\xFE")}));
    const Run run = this->run({"cookies", "list", "--show-values", path()});
    QVERIFY(run.out.contains("base64:Yf8="));
    QVERIFY(run.out.contains("base64:/g=="));
    const QJsonObject cookie =
        jsonOf(this->run({"cookies", "list", "--json", path()}).out)["cookies"].toArray().at(0).toObject();
    QVERIFY(cookie["name"].isNull());
    QCOMPARE(cookie["nameBase64"].toString(), QString("Yf8="));
}

void tst_tlvctl_cookies::unreadableIniFails()
{
    QVERIFY(QDir().mkdir(iniPath()));
    const Run run = this->run({"cookies", "list", path()});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, iniPath(), {"cannot be read", "make it a readable file"}));
}

// --- to-ini -----------------------------------------------------------------------------------------------

void tst_tlvctl_cookies::toIniReplacesTheFile()
{
    writeStream(stream(3, {raw("kept=1"), raw("changed=1"), raw("removed=1")}));
    const QByteArray document = START + entry(0, "added", "1", "2031/05/06 07:08:09") +
                                entry(1, "kept", "1") + entry(2, "changed", "2") + END;
    writeFile(xmlPath(), document);
    const Run run = this->run({"cookies", "to-ini", xmlPath(), path()});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.out, "added    000  added  .example.com  /\n"
                      "changed  002  changed  .example.com  /\n"
                      "removed  002  removed  .example.com  /\n"
                      "unchanged: 1\n"
                      "as it was, the file is in " +
                          iniPath().toUtf8() +
                          ".bak\n"
                          "\n" +
                          iniPath().toUtf8() +
                          "\n"
                          "no.  name     domain        path  flags  expires\n"
                          "000  added    .example.com  /            2031/05/06 07:08:09\n"
                          "001  kept     .example.com  /\n"
                          "002  changed  .example.com  /\n"
                          "records: 3, counted by the store: 3\n"
                          "\n" +
                          xmlPath().toUtf8() +
                          "\n"
                          "no.  name     domain        path  flags  expires\n"
                          "000  added    .example.com  /            2031/05/06 07:08:09\n"
                          "001  kept     .example.com  /\n"
                          "002  changed  .example.com  /\n"
                          "records: 3, counted by the store: 3\n");
    QCOMPARE(readFile(xmlPath()), document);
    QSettings settings(iniPath(), QSettings::IniFormat);
    QCOMPARE(settings.value("Cookie/cookies").toByteArray(),
             stream(3, {"added=1; expires=Tue, 06-May-2031 07:08:09 GMT; domain=.example.com; path=/",
                        raw("kept=1"), raw("changed=2")}));
}

void tst_tlvctl_cookies::toIniTellsWhatIsLost()
{
    QByteArray document = START;
    for (int i = 0; i < 22; ++i)
        document += entry(i, "n" + QByteArray::number(i), "v");
    writeFile(xmlPath(), document + END);
    writeStream(stream(1, {raw("n0=v; HttpOnly")}));
    const Run run = this->run({"cookies", "to-ini", xmlPath(), path()});
    QCOMPARE(run.code, 0);
    QVERIFY(run.out.contains("changed  000  n0  .example.com  /\n"));
    QVERIFY(run.out.contains("\nentries of the document that are not converted: 2\n"));
    QVERIFY(run.out.contains("\ncookies that were HttpOnly, which the document does not hold: 1\n"));
    QCOMPARE(namesInIni().size(), 20);
}

void tst_tlvctl_cookies::toIniWorksWithAnyPath()
{
    const QString dir = path() + "dé 日本/";
    QVERIFY(QDir().mkdir(dir));
    writeFile(dir + "cook ies.xml", START + entry(0, "a", "v") + END);
    const Run run = this->run({"cookies", "to-ini", dir + "cook ies.xml", dir});
    QCOMPARE(run.code, 0);
    QVERIFY(readFile(dir + "cookie.ini").contains("a=v; domain=.example.com; path=/"));
    QVERIFY(run.out.contains("\n" + dir.toUtf8() + "cookie.ini\n"));
    const Run back = this->run({"cookies", "from-ini", dir, dir + "new.xml"});
    QCOMPARE(back.code, 0);
    QCOMPARE(readFile(dir + "new.xml"), START + entry(0, "a", "v") + END);
}

void tst_tlvctl_cookies::toIniOfADryRunWritesNothing()
{
    writeStream(stream(1, {raw("a=1")}));
    const QByteArray before = readFile(iniPath());
    writeFile(xmlPath(), START + entry(0, "b", "1") + END);
    const Run run = this->run({"cookies", "to-ini", "--dry-run", xmlPath(), path()});
    QCOMPARE(run.code, 0);
    QVERIFY(run.out.startsWith("dry run: nothing is written to " + iniPath().toUtf8() +
                               ", where this would change:\n"
                               "added    000  b  .example.com  /\n"
                               "removed  000  a  .example.com  /\n"
                               "unchanged: 0\n"));
    QCOMPARE(readFile(iniPath()), before);
    QCOMPARE(QDir(path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             (QStringList{"cookie.ini", "cookies.xml"}));
}

void tst_tlvctl_cookies::toIniRefusesAMissingDocument()
{
    writeStream(stream(1, {raw("a=1")}));
    const Run run = this->run({"cookies", "to-ini", xmlPath(), path()});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, xmlPath(), {"no such file", "nothing was changed", "--force"}));
    QCOMPARE(namesInIni(), QStringList{"a"});
    QCOMPARE(this->run({"cookies", "to-ini", "--force", xmlPath(), path()}).code, 0);
    QCOMPARE(readFile(iniPath()), QByteArray("[Cookie]\ncookies=@ByteArray(\\0\\0\\0\\0)\n"));
}

void tst_tlvctl_cookies::toIniRefusesADamagedDocument()
{
    writeStream(stream(1, {raw("a=1")}));
    const QByteArray before = readFile(iniPath());
    writeFile(xmlPath(), START + entry(0, "b", "1") + "<wrong>");
    const Run run = this->run({"cookies", "to-ini", xmlPath(), path()});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, xmlPath(), {"damaged at line", "nothing was changed", "--force"}));
    QCOMPARE(readFile(iniPath()), before);
    QCOMPARE(this->run({"cookies", "to-ini", "--force", xmlPath(), path()}).code, 0);
    QVERIFY(readFile(iniPath()).contains("b=1"));
}

void tst_tlvctl_cookies::toIniRefusesToLoseWhatIsNoCookie()
{
    writeFile(iniPath(), "[Other]\nkey=1\n");
    writeFile(xmlPath(), START + entry(0, "b", "1") + END);
    const Run run = this->run({"cookies", "to-ini", xmlPath(), path()});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, iniPath(), {"holds more than whole cookies", "Other/key", "--force"}));
    QCOMPARE(readFile(iniPath()), QByteArray("[Other]\nkey=1\n"));
    QCOMPARE(this->run({"cookies", "to-ini", "--force", xmlPath(), path()}).code, 0);
    QVERIFY(!readFile(iniPath()).contains("Other"));
}

void tst_tlvctl_cookies::toIniTellsThatSavingFailed()
{
    const QString dir = path() + "locked/";
    QVERIFY(QDir().mkdir(dir));
    writeFile(xmlPath(), START + entry(0, "b", "1") + END);
    QVERIFY(QFile::setPermissions(dir, QFile::ReadOwner | QFile::ExeOwner));
    const Run run = this->run({"cookies", "to-ini", xmlPath(), dir});
    QVERIFY(QFile::setPermissions(dir, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, dir + "cookie.ini", {"saving failed", "permissions"}));
    QVERIFY(QDir(dir).isEmpty());
}

// --- from-ini ---------------------------------------------------------------------------------------------

void tst_tlvctl_cookies::fromIniBringsTheDocumentUpToDate()
{
    writeStream(stream(3, {raw("new=1; HttpOnly"), raw("kept=1"), raw("changed=2")}));
    writeFile(xmlPath(),
              START + entry(0, "kept", "1") + entry(1, "changed", "1") + entry(2, "gone", "1") + END);
    const Run run = this->run({"cookies", "from-ini", path(), xmlPath()});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QVERIFY2(run.out.startsWith("added    000  new  .example.com  /\n"
                                "changed  001  changed  .example.com  /\n"
                                "removed  002  gone  .example.com  /\n"
                                "unchanged: 1\n"
                                "cookies that are HttpOnly, which the document does not hold: 1\n"
                                "as it was, the file is in " +
                                xmlPath().toUtf8() +
                                ".bak\n"
                                "\n"),
             run.out.constData());
    QVERIFY(run.out.contains('\n' + iniPath().toUtf8() +
                             "\nno.  name     domain        path  flags     expires\n"));
    QVERIFY(
        run.out.contains('\n' + xmlPath().toUtf8() + "\nno.  name     domain        path  flags  expires\n"));
    QCOMPARE(readFile(xmlPath()),
             START + entry(0, "new", "1") + entry(1, "changed", "2") + entry(2, "kept", "1") + END);
}

void tst_tlvctl_cookies::fromIniCreatesTheDocument()
{
    writeStream(stream(1, {raw("a=1")}));
    QCOMPARE(run({"cookies", "from-ini", path(), xmlPath()}).code, 0);
    QCOMPARE(readFile(xmlPath()), START + entry(0, "a", "1") + END);
}

void tst_tlvctl_cookies::fromIniOfADryRunWritesNothing()
{
    writeStream(stream(1, {raw("a=1")}));
    const Run run = this->run({"cookies", "from-ini", "--dry-run", path(), xmlPath()});
    QCOMPARE(run.code, 0);
    QVERIFY(run.out.startsWith("dry run: nothing is written to " + xmlPath().toUtf8()));
    QVERIFY(!QFile::exists(xmlPath()));
}

void tst_tlvctl_cookies::fromIniRefusesAMissingIni()
{
    const QByteArray document = START + entry(0, "a", "1") + END;
    writeFile(xmlPath(), document);
    const Run run = this->run({"cookies", "from-ini", path(), xmlPath()});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, iniPath(), {"no such file", "nothing was changed", "--force"}));
    QCOMPARE(readFile(xmlPath()), document);
    QCOMPARE(this->run({"cookies", "from-ini", "--force", path(), xmlPath()}).code, 0);
    QVERIFY(!readFile(xmlPath()).contains("webSiteInfo"));
}

void tst_tlvctl_cookies::fromIniRefusesADamagedDocument()
{
    writeStream(stream(1, {raw("a=1")}));
    const QByteArray document = START + entry(0, "b", "1") + "<wrong>";
    writeFile(xmlPath(), document);
    const Run run = this->run({"cookies", "from-ini", path(), xmlPath()});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, xmlPath(), {"damaged at line", "nothing was changed", "--force"}));
    QCOMPARE(readFile(xmlPath()), document);
}

void tst_tlvctl_cookies::fromIniRefusesAMissingDirectory()
{
    writeStream(stream(1, {raw("a=1")}));
    const Run run = this->run({"cookies", "from-ini", path(), path() + "none/cookies.xml"});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, path() + "none", {"no such directory"}));
}

// --- All of them ------------------------------------------------------------------------------------------

void tst_tlvctl_cookies::valuesStaySecret()
{
    writeStream(stream(2, {raw("a=secretvalue"), raw("b=secretvalue2")}));
    for (const QStringList& arguments : {QStringList{"cookies", "list", path()},
                                         {"cookies", "list", "--json", path()},
                                         {"cookies", "from-ini", path(), xmlPath()},
                                         {"cookies", "list", xmlPath()},
                                         {"cookies", "to-ini", xmlPath(), path()}}) {
        const Run run = this->run(arguments);
        QCOMPARE(run.code, 0);
        QVERIFY(run.out.contains('a'));
        QVERIFY(!run.out.contains("secretvalue"));
        QVERIFY(!run.err.contains("secretvalue"));
    }
}

void tst_tlvctl_cookies::wrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("no file") << QStringList{"cookies", "list"};
    QTest::newRow("two files") << QStringList{"cookies", "list", "a", "b"};
    QTest::newRow("no directory") << QStringList{"cookies", "to-ini", "a"};
    QTest::newRow("no document") << QStringList{"cookies", "from-ini", "a"};
    QTest::newRow("no such command") << QStringList{"cookies", "show"};
}

void tst_tlvctl_cookies::wrongUsage()
{
    QFETCH(QStringList, arguments);
    const Run run = this->run(arguments);
    QCOMPARE(run.code, 2);
    QCOMPARE(run.out, QByteArray());
    QVERIFY(run.err.contains("--help"));
}

TLVCTL_TEST_MAIN(tst_tlvctl_cookies)
#include "tst_tlvctl_cookies.moc"
