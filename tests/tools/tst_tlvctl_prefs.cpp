#include "tests/tools/TlvctlRun.h"

#include <QtCore/QDir>
#include <QtCore/QJsonArray>

#include <memory>

namespace {

/// The document that a directory without a file is saved as.
QByteArray defaults(const QString& scope)
{
    return readFile(testData(scope == "common" ? "repostry.xml" : "repostry_private.xml"));
}

/// A default document in which one leaf holds another text.
QByteArray documentWith(const QString& scope, const QByteArray& leaf, const QByteArray& text)
{
    QByteArray xml = defaults(scope);
    const QByteArray emptyElement = '<' + leaf + "/>";
    const QByteArray element = text.isEmpty() ? emptyElement : '<' + leaf + '>' + text + "</" + leaf + '>';
    if (xml.contains(emptyElement))
        return xml.replace(emptyElement, element);
    const auto start = xml.indexOf('<' + leaf + '>');
    const auto end = xml.indexOf("</" + leaf + '>') + leaf.size() + 3;
    return xml.replace(start, end - start, element);
}

} // namespace

/// tlvctl prefs
class tst_tlvctl_prefs : public QObject
{
    Q_OBJECT

private slots:
    void init() { dir_ = std::make_unique<TempDir>(); }
    void cleanup() { dir_.reset(); }

    void showPrintsAllOfTheDevice();
    void showPrintsAllOfAUser();
    void showWritesJson();
    void showOfAMissingFilePrintsTheDefaults();
    void showMarksWhatTheStoreDoesNotAnswer();
    void showMarksOddLogins();
    void showPrintsADamagedFileUpToTheDamage();
    void showEscapesWhatATerminalWouldObey();

    void getPrintsTheValueAlone();
    void getOfAMissingFilePrintsTheDefault();
    void getWritesJson();
    void getOfAnUnknownNameNamesThem();
    void getOfADamagedFilePrintsAndFails();

    void setWordIsKept_data();
    void setWordIsKept();
    void otherWordsAreTakenToo_data();
    void otherWordsAreTakenToo();
    void setTextIsKeptUpToItsLimit_data();
    void setTextIsKeptUpToItsLimit();
    void setRefusesUnknownWords_data();
    void setRefusesUnknownWords();
    void setRefusesWhatTheFileCannotKeep_data();
    void setRefusesWhatTheFileCannotKeep();
    void setIsAllOrNothing();
    void setRefusesANameTwice();
    void setToWhatItIsDoesNotWrite();
    void setMendsAWordThatWasMisspelt();
    void setFillsInWhatTheFileLacks();
    void setKeepsWhatItDoesNotKnow();
    void dryRunWritesNothing();
    void damagedFileIsNotReplaced();
    void failedSavingIsReported();

    void passwordIsReadNotNamed();
    void passwordIsKeptUpToItsLimit();
    void passwordIsShownOnlyOnDemand();

    void wrongUsage_data();
    void wrongUsage();

private:
    QString path() const { return dir_->path(); }
    QString filePath(const QString& scope) const
    {
        return path() + (scope == "common" ? "repostry.xml" : "repostry_private.xml");
    }
    QByteArray pathOf(const QString& scope) const { return filePath(scope).toUtf8(); }
    Run get(const QString& scope, const QString& name) const
    {
        return tlvctl({"prefs", "get", scope, path(), name});
    }
    Run set(const QString& scope, const QStringList& pairs) const
    {
        return tlvctl(QStringList{"prefs", "set", scope, path()} + pairs);
    }

    std::unique_ptr<TempDir> dir_;
};

// --- show -------------------------------------------------------------------------------------------------

void tst_tlvctl_prefs::showPrintsAllOfTheDevice()
{
    QByteArray file = documentWith("common", "hostName", "proxy.example.net");
    file.replace("<proxyUserPass/>", "<proxyUserPass><![CDATA[c2VjcmV0]]></proxyUserPass>");
    file.replace("<proxyUserName/>", "<proxyUserName><![CDATA[Ym9i]]></proxyUserName>");
    writeFile(filePath("common"), file);
    for (const QString& dir : {path(), path().left(path().size() - 1)}) {
        const Run run = tlvctl({"prefs", "show", "common", dir});
        QCOMPARE(run.code, 0);
        QCOMPARE(run.err, QByteArray());
        QCOMPARE(run.out, QByteArray("name                value              meaning                         "
                                     "                      "
                                     "allowed\n"
                                     "cookies.accept      yes                cookies are accepted            "
                                     "                      "
                                     "no, yes\n"
                                     "cache.enabled       yes                the disk cache is used          "
                                     "                      "
                                     "no, yes\n"
                                     "cache.clear         never              when the disk cache is emptied  "
                                     "                      "
                                     "never, logout, timeout\n"
                                     "keyboard.priority   soft               which keyboard has priority, at "
                                     "USB or on the screen  "
                                     "usb, soft\n"
                                     "javascript.enabled  yes                pages may run JavaScript        "
                                     "                      "
                                     "no, yes\n"
                                     "flash.enabled       yes                the Flash plug-in plays         "
                                     "                      "
                                     "no, yes\n"
                                     "proxy.enabled       no                 the proxy is used               "
                                     "                      "
                                     "no, yes\n"
                                     "proxy.host          proxy.example.net  the proxy's host                "
                                     "                      "
                                     "up to 253 bytes of UTF-8\n"
                                     "proxy.http-port     8080               the proxy's port for HTTP       "
                                     "                      "
                                     "up to 5 bytes of UTF-8\n"
                                     "proxy.https-port    8080               the proxy's port for HTTPS      "
                                     "                      "
                                     "up to 5 bytes of UTF-8\n"
                                     "proxy.http11        yes                HTTP/1.1 is used through the "
                                     "proxy                    "
                                     "no, yes\n"
                                     "proxy.bypass                           domains for which the proxy is "
                                     "not used               "
                                     "up to 253 bytes of UTF-8\n"
                                     "proxy.auth          no                 the proxy asks for a login      "
                                     "                      "
                                     "no, yes\n"
                                     "proxy.user          bob                the proxy's user name           "
                                     "                      "
                                     "up to 80 bytes\n"
                                     "proxy.password      (hidden)           the proxy's password            "
                                     "                      "
                                     "up to 80 bytes\n"
                                     "security.ssl30      yes                SSL 3.0 may be used             "
                                     "                      "
                                     "no, yes\n"
                                     "security.tls10      yes                TLS 1.0 may be used             "
                                     "                      "
                                     "no, yes\n"));
    }
    QCOMPARE(readFile(filePath("common")), file);
}

void tst_tlvctl_prefs::showPrintsAllOfAUser()
{
    writeFile(filePath("user"), documentWith("user", "home", "http://example.org/"));
    const Run run = tlvctl({"prefs", "show", "user", path()});
    QCOMPARE(run.code, 0);
    QCOMPARE(
        run.out,
        QByteArray("name           value                meaning                                             "
                   "allowed\n"
                   "page.home      http://example.org/  the home page                                       "
                   "up to 256 bytes of UTF-8\n"
                   "page.startup   home                 what is shown first, the home page or the last one  "
                   "home, last\n"
                   "page.last      about:blank          the page that was shown last                        "
                   "up to 256 bytes of UTF-8\n"
                   "page.zoom      1.0                  the zoom of pages                                   "
                   "0.5, 0.6, 0.7, 0.8, 0.9, 1.0, 1.1, 1.2, 1.3, 1.4, 1.5\n"
                   "cookies.clear  never                when cookies are deleted                            "
                   "never, logout, timeout\n"
                   "auth.clear     never                when logins for servers are deleted                 "
                   "never, logout, timeout\n"
                   "page.font                           the font of pages                                   "
                   "up to 256 bytes of UTF-8\n"));
}

void tst_tlvctl_prefs::showWritesJson()
{
    writeFile(filePath("user"), documentWith("user", "Zoom", "1.25"));
    const Run run = tlvctl({"prefs", "show", "--json", "user", path()});
    QCOMPARE(run.code, 0);
    const QJsonObject list = jsonOf(run.out);
    QCOMPARE(list["file"].toString(), filePath("user"));
    QCOMPARE(list["exists"], QJsonValue(true));
    QCOMPARE(list["complete"], QJsonValue(true));
    QCOMPARE(list["count"], QJsonValue(7));
    const QJsonArray preferences = list["preferences"].toArray();
    QCOMPARE(preferences.size(), 7);
    QCOMPARE(preferences.at(1).toObject(), (QJsonObject{{"name", "page.startup"},
                                                        {"value", "home"},
                                                        {"valueBase64", QJsonValue()},
                                                        {"stored", "homepage"},
                                                        {"flaws", QJsonArray()}}));
    QCOMPARE(preferences.at(3).toObject(), (QJsonObject{{"name", "page.zoom"},
                                                        {"value", "1.0"},
                                                        {"valueBase64", QJsonValue()},
                                                        {"stored", "1.25"},
                                                        {"flaws", QJsonArray{"unknownWord"}}}));
}

void tst_tlvctl_prefs::showOfAMissingFilePrintsTheDefaults()
{
    const Run run = tlvctl({"prefs", "show", "user", path()});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QVERIFY(run.out.contains("\npage.zoom      1.0          the zoom of pages"));
    QVERIFY(!run.out.contains('*'));
    QVERIFY(run.out.endsWith("\nthese are the defaults, because there is nothing to read in " +
                             pathOf("user") + '\n'));
    const QJsonObject list = jsonOf(tlvctl({"prefs", "show", "--json", "common", path()}).out);
    QCOMPARE(list["exists"], QJsonValue(false));
    QCOMPARE(list["preferences"].toArray().size(), 17);
    QCOMPARE(list["preferences"].toArray().at(0).toObject()["stored"], QJsonValue(QJsonValue::Null));
    QVERIFY(QDir(path()).isEmpty());
}

void tst_tlvctl_prefs::showMarksWhatTheStoreDoesNotAnswer()
{
    writeFile(filePath("user"),
              "<repostry><pageInfo><home></home><startup>Lastpage</startup><lastPageURL>" +
                  QByteArray(257, 'x') +
                  "</lastPageURL></pageInfo><cookie><cookieDeleteTiming>logout</cookieDeleteTiming>"
                  "</cookie></repostry>");
    const Run run = tlvctl({"prefs", "show", "user", path()});
    QCOMPARE(run.code, 0);
    const QList<QByteArray> lines = run.out.split('\n');
    QVERIFY(lines.at(1).startsWith("page.home*     about:blank  "));
    QVERIFY(lines.at(2).startsWith("page.startup*  home         "));
    QVERIFY(lines.at(3).startsWith("page.last*     about:blank  "));
    QVERIFY(lines.at(4).startsWith("page.zoom*     1.0          "));
    QVERIFY(lines.at(5).startsWith("cookies.clear  logout       "));
    QCOMPARE(
        lines.mid(8),
        (QList<QByteArray>{"* page.home: the file holds an empty text",
                           "* page.startup: the file holds \"Lastpage\", which is none of homepage, lastpage",
                           "* page.last: the file holds 257 bytes, over 256",
                           "* page.zoom: not in the file: the store answers the default",
                           "* auth.clear: not in the file: the store answers the default",
                           "* page.font: not in the file: the store answers the default", ""}));
}

void tst_tlvctl_prefs::showMarksOddLogins()
{
    // 81 bytes, which the store does not answer, and what is no base64.
    writeFile(filePath("common"), documentWith("common", "proxyUserPass", QByteArray(81, 'p').toBase64())
                                      .replace("<proxyUserName/>", "<proxyUserName>Ym 9i</proxyUserName>"));
    const Run run = tlvctl({"prefs", "show", "common", path()});
    QCOMPARE(run.code, 0);
    QVERIFY(run.out.contains("\nproxy.user*         bob "));
    QVERIFY(run.out.endsWith(
        "\n* proxy.user: not the base64 of up to 80 bytes throughout: the store answers what it can\n"
        "* proxy.password: not the base64 of up to 80 bytes throughout: the store answers what it can\n"));
    QVERIFY(!run.out.contains("cHBw") && !run.out.contains("81"));
}

void tst_tlvctl_prefs::showPrintsADamagedFileUpToTheDamage()
{
    writeFile(filePath("user"), defaults("user").replace("</startup>", "</start>"));
    const Run run = tlvctl({"prefs", "show", "user", path()});
    QCOMPARE(run.code, 1);
    QVERIFY(run.out.contains("\npage.home       about:blank "));
    QVERIFY(run.out.contains("\npage.zoom*      1.0 "));
    QVERIFY(complains(run, filePath("user"), {"damaged at line 5"}));
    writeFile(filePath("user"), "");
    const Run empty = tlvctl({"prefs", "show", "user", path()});
    QCOMPARE(empty.code, 1);
    QVERIFY(empty.out.endsWith("nothing to read in " + pathOf("user") + '\n'));
    QVERIFY(complains(empty, filePath("user"), {"damaged"}));
}

void tst_tlvctl_prefs::showEscapesWhatATerminalWouldObey()
{
    writeFile(
        filePath("user"),
        documentWith("user", "home", "a&#9;b\xE2\x80\xAE").replace(">homepage<", ">\xE2\x80\xAEhomepage<"));
    for (const QStringList& arguments : {QStringList{"show", "user", path()},
                                         {"show", "--json", "user", path()},
                                         {"get", "user", path(), "page.home"}}) {
        const Run run = tlvctl(QStringList("prefs") + arguments);
        QCOMPARE(run.code, 0);
        QVERIFY(isHarmless(run.out));
        QVERIFY(run.out.contains("202"));
    }
}

// --- get --------------------------------------------------------------------------------------------------

void tst_tlvctl_prefs::getPrintsTheValueAlone()
{
    writeFile(filePath("user"), documentWith("user", "home", utf8("http://b\u00FCcher.example/").toUtf8()));
    const Run run = get("user", "page.home");
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.out, utf8("http://b\u00FCcher.example/\n").toUtf8());
    QCOMPARE(get("user", "page.font").out, QByteArray("\n"));
}

void tst_tlvctl_prefs::getOfAMissingFilePrintsTheDefault()
{
    const Run run = get("common", "proxy.https-port");
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, QByteArray("8080\n"));
    QVERIFY(QDir(path()).isEmpty());
}

void tst_tlvctl_prefs::getWritesJson()
{
    // A user name that is no UTF-8.
    writeFile(filePath("common"), documentWith("common", "proxyUserName", "/w=="));
    const Run run = tlvctl({"prefs", "get", "--json", "common", path(), "proxy.user"});
    QCOMPARE(run.code, 0);
    QCOMPARE(jsonOf(run.out), (QJsonObject{{"name", "proxy.user"},
                                           {"value", QJsonValue()},
                                           {"valueBase64", "/w=="},
                                           {"stored", "/w=="},
                                           {"flaws", QJsonArray()}}));
}

void tst_tlvctl_prefs::getOfAnUnknownNameNamesThem()
{
    const Run run = get("user", "proxy.host");
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(run.err, "tlvctl: " + pathOf("user") +
                          ": there is no preference \"proxy.host\"; there are page.home, page.startup, "
                          "page.last, page.zoom, cookies.clear, auth.clear, page.font\n");
}

void tst_tlvctl_prefs::getOfADamagedFilePrintsAndFails()
{
    writeFile(filePath("user"), defaults("user").replace("</repostry>\n", ""));
    const Run run = get("user", "page.startup");
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray("home\n"));
    QVERIFY(complains(run, filePath("user"), {"damaged"}));
}

// --- set --------------------------------------------------------------------------------------------------

void tst_tlvctl_prefs::setWordIsKept_data()
{
    QTest::addColumn<QString>("scope");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("was");
    QTest::addColumn<QString>("word");
    QTest::addColumn<QByteArray>("leaf");
    QTest::addColumn<QByteArray>("stored");
    const auto row = [](const char* scope, const char* name, const char* was, const char* word,
                        const char* leaf, const char* stored) {
        QTest::newRow(qPrintable(QString(name) + ' ' + word))
            << QString(scope) << QString(name) << QString(was) << QString(word) << QByteArray(leaf)
            << QByteArray(stored);
    };
    row("common", "cookies.accept", "yes", "no", "acceptCookie", "refuse");
    row("common", "cache.enabled", "yes", "no", "enableCache", "false");
    row("common", "cache.clear", "never", "logout", "cacheDeleteTiming", "logout");
    row("common", "cache.clear", "never", "timeout", "cacheDeleteTiming", "timeout");
    row("common", "keyboard.priority", "soft", "usb", "priority", "usb");
    row("common", "javascript.enabled", "yes", "no", "enableJavascript", "false");
    row("common", "flash.enabled", "yes", "no", "enableFlashPlugin", "false");
    row("common", "proxy.enabled", "no", "yes", "enableProxy", "true");
    row("common", "proxy.http11", "yes", "no", "enableHTTP11", "false");
    row("common", "proxy.auth", "no", "yes", "enableProxyAuth", "true");
    row("common", "security.ssl30", "yes", "no", "enableSSL30", "false");
    row("common", "security.tls10", "yes", "no", "enableTLS10", "false");
    row("user", "page.startup", "home", "last", "startup", "lastpage");
    for (const char* zoom : {"0.5", "0.6", "0.7", "0.8", "0.9", "1.1", "1.2", "1.3", "1.4", "1.5"})
        row("user", "page.zoom", "1.0", zoom, "Zoom", zoom);
    row("user", "cookies.clear", "never", "logout", "cookieDeleteTiming", "logout");
    row("user", "cookies.clear", "never", "timeout", "cookieDeleteTiming", "timeout");
    row("user", "auth.clear", "never", "logout", "authInfoDeleteTiming", "logout");
    row("user", "auth.clear", "never", "timeout", "authInfoDeleteTiming", "timeout");
}

void tst_tlvctl_prefs::setWordIsKept()
{
    QFETCH(QString, scope);
    QFETCH(QString, name);
    QFETCH(QString, was);
    QFETCH(QString, word);
    QFETCH(QByteArray, leaf);
    QFETCH(QByteArray, stored);
    const QByteArray before = defaults(scope);
    writeFile(filePath(scope), before);
    const Run run = set(scope, {name, word});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.out, QString("%1: %2 -> %3\n").arg(name, was, word).toUtf8());
    QCOMPARE(readFile(filePath(scope)), documentWith(scope, leaf, stored));
    QCOMPARE(get(scope, name).out, word.toUtf8() + '\n');
    QCOMPARE(set(scope, {name, was}).code, 0);
    QCOMPARE(readFile(filePath(scope)), before);
}

void tst_tlvctl_prefs::otherWordsAreTakenToo_data()
{
    QTest::addColumn<QString>("scope");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("word");
    QTest::addColumn<QByteArray>("value");
    const auto row = [](const char* scope, const char* name, const char* word, const char* value) {
        QTest::newRow(qPrintable(QString(name) + ' ' + word))
            << QString(scope) << QString(name) << QString(word) << QByteArray(value);
    };
    row("common", "cache.enabled", "off", "no");
    row("common", "cache.enabled", "false", "no");
    row("common", "cache.enabled", "0", "no");
    row("common", "cache.enabled", "NO", "no");
    row("common", "proxy.enabled", "on", "yes");
    row("common", "proxy.enabled", "true", "yes");
    row("common", "proxy.enabled", "1", "yes");
    row("user", "page.zoom", "50%", "0.5");
    row("user", "page.zoom", "70%", "0.7");
    row("user", "page.zoom", "110%", "1.1");
    row("user", "page.zoom", "150%", "1.5");
}

void tst_tlvctl_prefs::otherWordsAreTakenToo()
{
    QFETCH(QString, scope);
    QFETCH(QString, name);
    QFETCH(QString, word);
    QFETCH(QByteArray, value);
    QCOMPARE(set(scope, {name, word}).code, 0);
    QCOMPARE(get(scope, name).out, value + '\n');
}

void tst_tlvctl_prefs::setTextIsKeptUpToItsLimit_data()
{
    QTest::addColumn<QString>("scope");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("leaf");
    QTest::addColumn<int>("limit");
    QTest::addColumn<bool>("isLogin");
    QTest::newRow("proxy.host") << "common"
                                << "proxy.host" << QByteArray("hostName") << 253 << false;
    QTest::newRow("proxy.http-port") << "common"
                                     << "proxy.http-port" << QByteArray("portHTTP") << 5 << false;
    QTest::newRow("proxy.https-port") << "common"
                                      << "proxy.https-port" << QByteArray("portHTTPS") << 5 << false;
    QTest::newRow("proxy.bypass") << "common"
                                  << "proxy.bypass" << QByteArray("unusedDomain") << 253 << false;
    QTest::newRow("proxy.user") << "common"
                                << "proxy.user" << QByteArray("proxyUserName") << 80 << true;
    QTest::newRow("page.home") << "user"
                               << "page.home" << QByteArray("home") << 256 << false;
    QTest::newRow("page.last") << "user"
                               << "page.last" << QByteArray("lastPageURL") << 256 << false;
    QTest::newRow("page.font") << "user"
                               << "page.font" << QByteArray("fontName") << 256 << false;
}

void tst_tlvctl_prefs::setTextIsKeptUpToItsLimit()
{
    QFETCH(QString, scope);
    QFETCH(QString, name);
    QFETCH(QByteArray, leaf);
    QFETCH(int, limit);
    QFETCH(bool, isLogin);
    // Two bytes each, and a last one of one byte, if the limit is odd.
    const QByteArray longest = utf8("\u00E9").repeated(limit / 2).toUtf8() + (limit % 2 == 0 ? "" : "x");
    const Run run = set(scope, {name, QString::fromUtf8(longest), "--force"}); // letters are no port
    QCOMPARE(run.code, 0);
    QVERIFY(run.out.endsWith(" -> " + longest + '\n'));
    const QByteArray stored = isLogin ? "<![CDATA[" + longest.toBase64() + "]]>" : longest;
    const QByteArray file = documentWith(scope, leaf, stored);
    QCOMPARE(readFile(filePath(scope)), file);
    QCOMPARE(get(scope, name).out, longest + '\n');

    const Run tooLong = set(scope, {name, QString::fromUtf8(longest + 'y')});
    QCOMPARE(tooLong.code, 1);
    QCOMPARE(tooLong.out, QByteArray());
    QCOMPARE(tooLong.err,
             QString("tlvctl: %1: nothing was changed: %2 has %3 bytes, more than the %4 that the store "
                     "takes\n")
                 .arg(filePath(scope), name)
                 .arg(limit + 1)
                 .arg(limit)
                 .toUtf8());
    QCOMPARE(readFile(filePath(scope)), file);

    const Run emptied = set(scope, {name, ""});
    QCOMPARE(emptied.code, 0);
    const bool isPage =
        name == "page.home" || name == "page.last"; // empty ones are answered as the blank page
    QCOMPARE(emptied.out, name.toUtf8() + ": " + longest + " -> \"\"" +
                              (isPage ? ", which is answered as about:blank\n" : "\n"));
    QCOMPARE(readFile(filePath(scope)), documentWith(scope, leaf, ""));
}

void tst_tlvctl_prefs::setRefusesUnknownWords_data()
{
    QTest::addColumn<QString>("scope");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("word");
    QTest::addColumn<QByteArray>("allowed");
    QTest::newRow("switch") << "common"
                            << "proxy.enabled"
                            << "maybe" << QByteArray("no, yes");
    QTest::newRow("empty") << "common"
                           << "proxy.enabled"
                           << "" << QByteArray("no, yes");
    QTest::newRow("timing") << "common"
                            << "cache.clear"
                            << "notDelete" << QByteArray("never, logout, timeout");
    QTest::newRow("keyboard") << "common"
                              << "keyboard.priority"
                              << "yes" << QByteArray("usb, soft");
    QTest::newRow("start page") << "user"
                                << "page.startup"
                                << "lastpage" << QByteArray("home, last");
    const QByteArray zooms = "0.5, 0.6, 0.7, 0.8, 0.9, 1.0, 1.1, 1.2, 1.3, 1.4, 1.5";
    QTest::newRow("zoom below") << "user"
                                << "page.zoom"
                                << "0.4" << zooms;
    QTest::newRow("zoom above") << "user"
                                << "page.zoom"
                                << "160%" << zooms;
    QTest::newRow("zoom between") << "user"
                                  << "page.zoom"
                                  << "1.05" << zooms;
}

void tst_tlvctl_prefs::setRefusesUnknownWords()
{
    QFETCH(QString, scope);
    QFETCH(QString, name);
    QFETCH(QString, word);
    QFETCH(QByteArray, allowed);
    const Run run = set(scope, {name, word});
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(run.err, "tlvctl: " + pathOf(scope) + ": nothing was changed: " + name.toUtf8() +
                          " cannot be \"" + word.toUtf8() + "\"; it can be one of " + allowed + '\n');
    QVERIFY(QDir(path()).isEmpty());
}

void tst_tlvctl_prefs::setRefusesWhatTheFileCannotKeep_data()
{
    QTest::addColumn<QString>("value");
    QTest::newRow("blanks") << QString("  ");
    QTest::newRow("control character") << QString("a\x01z");
    QTest::newRow("carriage return") << QString("a\rz");
}

void tst_tlvctl_prefs::setRefusesWhatTheFileCannotKeep()
{
    QFETCH(QString, value);
    const Run run = set("user", {"page.font", value});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, filePath("user"), {"nothing was changed: page.font", "cannot keep"}));
    QVERIFY(QDir(path()).isEmpty());
}

void tst_tlvctl_prefs::setIsAllOrNothing()
{
    writeFile(filePath("common"), defaults("common"));
    const Run bad = set("common", {"proxy.host", "h", "proxy.http-port", "123456"});
    QCOMPARE(bad.code, 1);
    QCOMPARE(readFile(filePath("common")), defaults("common"));
    const Run good = set("common", {"proxy.host", "h", "proxy.http-port", "12345", "proxy.auth", "no"});
    QCOMPARE(good.code, 0);
    QCOMPARE(good.out, QByteArray("proxy.host: \"\" -> h\n"
                                  "proxy.http-port: 8080 -> 12345\n"
                                  "proxy.auth: no, as it was\n"));
    QCOMPARE(readFile(filePath("common")),
             documentWith("common", "hostName", "h").replace("<portHTTP>8080", "<portHTTP>12345"));
}

void tst_tlvctl_prefs::setRefusesANameTwice()
{
    const Run run = set("user", {"page.zoom", "1.1", "page.font", "f", "page.zoom", "1.2"});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, filePath("user"), {"nothing was changed: page.zoom is set twice"}));
    QVERIFY(QDir(path()).isEmpty());
}

void tst_tlvctl_prefs::setToWhatItIsDoesNotWrite()
{
    // Saving would give it another form.
    const QByteArray file = "<repostry><pageInfo><Zoom>1.2</Zoom><home/></pageInfo></repostry>";
    writeFile(filePath("user"), file);
    const Run run = set("user", {"page.zoom", "120%", "page.home", ""});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, QByteArray("page.zoom: 1.2, as it was\npage.home: \"\", as it was\n"));
    QCOMPARE(readFile(filePath("user")), file);
}

void tst_tlvctl_prefs::setMendsAWordThatWasMisspelt()
{
    writeFile(filePath("common"), documentWith("common", "enableProxy", "TRUE"));
    const Run run = set("common", {"proxy.enabled", "no"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, QByteArray("proxy.enabled: no -> no\n"));
    QCOMPARE(readFile(filePath("common")), defaults("common"));
}

void tst_tlvctl_prefs::setFillsInWhatTheFileLacks()
{
    const Run run = set("user", {"page.zoom", "1.0"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out,
             QByteArray("preferences that the file lacks, and that get their defaults by loading: 7\n"
                        "page.zoom: 1.0 -> 1.0\n"));
    QCOMPARE(readFile(filePath("user")), defaults("user"));
}

void tst_tlvctl_prefs::setKeepsWhatItDoesNotKnow()
{
    const QByteArray file =
        defaults("user")
            .replace("    <font>\n", "    <mine a=\"1\">text</mine>\n    <font>\n")
            .replace("        <fontName/>\n", "        <fontName/>\n        <fontSize>12</fontSize>\n");
    writeFile(filePath("user"), file);
    QCOMPARE(set("user", {"page.font", "Sans"}).code, 0);
    QCOMPARE(readFile(filePath("user")),
             QByteArray(file).replace("<fontName/>", "<fontName>Sans</fontName>"));
}

void tst_tlvctl_prefs::dryRunWritesNothing()
{
    writeFile(filePath("user"), defaults("user"));
    const Run run = set("user", {"page.zoom", "0.5", "--dry-run"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, "dry run: nothing is written to " + pathOf("user") +
                          ", where this would change:\npage.zoom: 1.0 -> 0.5\n");
    QCOMPARE(readFile(filePath("user")), defaults("user"));
}

void tst_tlvctl_prefs::damagedFileIsNotReplaced()
{
    const QByteArray file = defaults("user").replace("</startup>", "</start>");
    writeFile(filePath("user"), file);
    const Run run = set("user", {"page.zoom", "0.5"});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, filePath("user"), {"damaged at line 5", "nothing was changed", "--force"}));
    QCOMPARE(readFile(filePath("user")), file);
    QCOMPARE(set("user", {"page.zoom", "0.5", "--force"}).code, 0);
    QCOMPARE(readFile(filePath("user")), documentWith("user", "Zoom", "0.5"));
}

void tst_tlvctl_prefs::failedSavingIsReported()
{
    writeFile(filePath("user"), defaults("user"));
    QVERIFY(QFile::setPermissions(filePath("user"), QFile::ReadOwner));
    const Run run = set("user", {"page.zoom", "0.5"});
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray());
    QVERIFY(complains(run, filePath("user"), {"permission denied"}));
    QCOMPARE(readFile(filePath("user")), defaults("user"));
}

// --- The password -----------------------------------------------------------------------------------------

void tst_tlvctl_prefs::passwordIsReadNotNamed()
{
    const Run named = set("common", {"proxy.password", "hunter2"});
    QCOMPARE(named.code, 1);
    QVERIFY(complains(named, filePath("common"), {"nothing was changed", "\"-\"", "--password-file"}));
    QVERIFY(!named.err.contains("hunter2"));
    QVERIFY(QDir(path()).isEmpty());

    writeFile(filePath("common"), defaults("common"));
    const QByteArray file = documentWith("common", "proxyUserPass", "<![CDATA[aHVudGVyMg==]]>");
    const QStringList arguments{"prefs", "set", "common", path(), "proxy.password", "-"};
    const Run read = tlvctlReading("hunter2\n", arguments);
    QCOMPARE(read.code, 0);
    QCOMPARE(read.out, QByteArray("proxy.password: another one\n"));
    QCOMPARE(readFile(filePath("common")), file);
    QCOMPARE(tlvctlReading("hunter2\n", arguments).out, QByteArray("proxy.password: (hidden), as it was\n"));

    writeFile(path() + "secret", "hunter3\n");
    const Run fromFile = tlvctl(arguments + QStringList{"--password-file", path() + "secret"});
    QCOMPARE(fromFile.code, 0);
    QCOMPARE(readFile(filePath("common")),
             documentWith("common", "proxyUserPass", "<![CDATA[aHVudGVyMw==]]>"));
}

void tst_tlvctl_prefs::passwordIsKeptUpToItsLimit()
{
    const QStringList arguments{"prefs", "set", "common", path(), "proxy.password", "-"};
    writeFile(filePath("common"), defaults("common"));
    QCOMPARE(tlvctlReading(QByteArray(80, 'p'), arguments).code, 0);
    const QByteArray file =
        documentWith("common", "proxyUserPass", "<![CDATA[" + QByteArray(80, 'p').toBase64() + "]]>");
    QCOMPARE(readFile(filePath("common")), file);
    const Run run = tlvctlReading(QByteArray(81, 'q'), arguments);
    QCOMPARE(run.code, 1);
    QVERIFY(run.err.contains("nothing was changed") && run.err.contains("more than the 80 bytes"));
    QVERIFY(!run.err.contains("qq") && !run.err.contains("81"));
    QCOMPARE(readFile(filePath("common")), file);
}

void tst_tlvctl_prefs::passwordIsShownOnlyOnDemand()
{
    writeFile(filePath("common"), documentWith("common", "proxyUserPass", "aHVudGVyMg=="));
    for (const QStringList& arguments : {QStringList{"show", "common", path()},
                                         {"show", "--json", "common", path()},
                                         {"set", "common", path(), "proxy.host", "h", "--dry-run"}}) {
        const Run run = tlvctl(QStringList("prefs") + arguments);
        QCOMPARE(run.code, 0);
        QVERIFY(!run.out.contains("hunter2") && !run.out.contains("aHVudGVyMg"));
    }
    for (const QStringList& options : {QStringList(), {"--json"}}) {
        const Run refused = tlvctl(QStringList{"prefs", "get", "common", path(), "proxy.password"} + options);
        QCOMPARE(refused.code, 1);
        QCOMPARE(refused.out, QByteArray());
        QVERIFY(
            complains(refused, filePath("common"), {"proxy.password is only shown with --show-passwords"}));
    }
    QVERIFY(tlvctl({"prefs", "show", "--show-passwords", "common", path()})
                .out.contains("\nproxy.password      hunter2  the proxy's password "));
    QCOMPARE(tlvctl({"prefs", "get", "--show-passwords", "common", path(), "proxy.password"}).out,
             QByteArray("hunter2\n"));
    const QJsonObject password =
        jsonOf(tlvctl({"prefs", "show", "--json", "--show-passwords", "common", path()}).out)["preferences"]
            .toArray()
            .at(14)
            .toObject();
    QCOMPARE(password["name"].toString(), QString("proxy.password"));
    QCOMPARE(password["value"].toString(), QString("hunter2"));
}

// --- Wrong usage ------------------------------------------------------------------------------------------

void tst_tlvctl_prefs::wrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("scope") << QStringList{"show", "both", "/tmp"}
                           << QByteArray("tlvctl: \"both\" is neither \"common\" nor \"user\"; see \"tlvctl "
                                         "prefs show --help\"\n");
    QTest::newRow("no directory") << QStringList{"get", "user"}
                                  << QByteArray("tlvctl: missing argument DIR; see \"tlvctl prefs get "
                                                "--help\"\n");
    QTest::newRow("no value") << QStringList{"set", "user", "/tmp", "page.home"}
                              << QByteArray("tlvctl: missing argument VALUE; see \"tlvctl prefs set "
                                            "--help\"\n");
    QTest::newRow("odd count") << QStringList{"set", "user", "/tmp", "page.home", "x", "page.zoom"}
                               << QByteArray("tlvctl: the last name has no value; see \"tlvctl prefs set "
                                             "--help\"\n");
}

void tst_tlvctl_prefs::wrongUsage()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, message);
    const Run run = tlvctl(QStringList("prefs") + arguments);
    QCOMPARE(run.code, 2);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(run.err, message);
}

TLVCTL_TEST_MAIN(tst_tlvctl_prefs)
#include "tst_tlvctl_prefs.moc"
