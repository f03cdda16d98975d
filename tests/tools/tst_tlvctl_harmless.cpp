#include "tests/tools/TlvctlRun.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QJsonArray>
#include <QtCore/QLockFile>
#include <QtGui/QImage>

#include <memory>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

/// What the tool never does to a directory, whatever the command.
class tst_tlvctl_harmless : public QObject
{
    Q_OBJECT

private slots:
    void init() { dir_ = std::make_unique<TempDir>(); }
    void cleanup() { dir_.reset(); }

    void newSecretsAreTheirOwnersAlone();
    void existingFilesKeepModeAndOwner();
    void heldDirectoryIsRefused();
    void staleLockStopsNobody();
    void eightCommandsChangeOneAfterTheOther();
    void otherDocumentsAreRefused_data();
    void otherDocumentsAreRefused();
    void largeFilesTakeLittleMemory();
    void largeFilesShowABar_data();
    void largeFilesShowABar();
    void conversionsRefuseOtherDocuments();
    void conversionsRefuseDamagedSources();
    void packOfNothingReplacesNothing();
    void showHidesSecrets();
    void pipesHangNothing();
    void causesAreTold();
    void preferencesTellWhatIsAnswered();
    void portsAreNumbers();
    void picturesThatStayAreAFailure();
    void rangesAreNumbers();
    void nearestCommandIsNamed();
    void changesSpeakJson();
    void notesAreBounded();
    void leftoversAreCleared();
    void openSecretsAreClosed();
    void profilesAreLookedThrough();
    void missingListsAreTold();
    void strangeContentIsTold();
    void lockedOutOwnersAreTold();
    void repairCanBeTried();
    void needlessRepairLeavesNoCopy();

private:
    QString path(const QString& name = QString()) const { return dir_->path() + name; }
    static int modeOf(const QString& file)
    {
        struct stat info;
        return stat(file.toUtf8().constData(), &info) == 0 ? static_cast<int>(info.st_mode & 07777) : -1;
    }
    void addBookmarks(int count) const
    {
        for (int i = 0; i < count; ++i)
            QCOMPARE(tlvctl({"bookmarks", "add", path(), QString("http://%1/").arg(i)}).code, 0);
    }

    std::unique_ptr<TempDir> dir_;
};

const char COOKIES[] = "[Cookie]\ncookies=\"@ByteArray(\\0\\0\\0\\x1\\0\\0\\0\\x3\\x61=b)\"\n";

void tst_tlvctl_harmless::newSecretsAreTheirOwnersAlone()
{
    QCOMPARE(
        tlvctlReading("secret", {"auth", "add", path(), "h", "80", "--type", "basic", "--user", "u"}).code,
        0);
    QCOMPARE(modeOf(path("authinfo.xml")), 0600);
    writeFile(path("cookie.ini"), COOKIES);
    QCOMPARE(tlvctl({"cookies", "from-ini", path(), path("cookies.xml")}).code, 0);
    QCOMPARE(modeOf(path("cookies.xml")), 0600);
    QVERIFY(QFile::remove(path("cookie.ini")));
    QCOMPARE(tlvctl({"cookies", "to-ini", path("cookies.xml"), path()}).code, 0);
    QCOMPARE(modeOf(path("cookie.ini")), 0600);
}

void tst_tlvctl_harmless::existingFilesKeepModeAndOwner()
{
    writeFile(path("cookie.ini"), COOKIES);
    QCOMPARE(tlvctl({"cookies", "from-ini", path(), path("cookies.xml")}).code, 0);
    writeFile(path("fontlist.xml"), fontList({"Sans"}));
    for (const char* name : {"cookie.ini", "cookies.xml", "fontlist.xml"}) {
        QCOMPARE(chmod(path(name).toUtf8().constData(), 0666), 0);
        if (geteuid() == 0)
            QCOMPARE(chown(path(name).toUtf8().constData(), 1234, 4321), 0);
    }
    QCOMPARE(tlvctl({"cookies", "to-ini", path("cookies.xml"), path()}).code, 0);
    QCOMPARE(tlvctl({"cookies", "from-ini", path(), path("cookies.xml")}).code, 0);
    QCOMPARE(tlvctl({"fonts", "add", path(), "Serif"}).code, 0);
    for (const char* name : {"cookie.ini", "cookies.xml", "fontlist.xml"}) {
        struct stat info;
        QCOMPARE(stat(path(name).toUtf8().constData(), &info), 0);
        QCOMPARE(static_cast<int>(info.st_mode & 0777), 0666);
        if (geteuid() == 0)
            QVERIFY(info.st_uid == 1234 && info.st_gid == 4321);
    }
}

void tst_tlvctl_harmless::heldDirectoryIsRefused()
{
    writeFile(path("fontlist.xml"), fontList({"Sans"}));
    QLockFile lock(path("tlvlib.lock"));
    QVERIFY(lock.tryLock());
    const Run run = tlvctl({"fonts", "add", path(), "Serif"});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, path(), {"in use by tst_tlvctl_harmless", QString::number(getpid())}));
    QCOMPARE(tlvctl({"check", "--repair", path()}).code, 1);
    QCOMPARE(readFile(path("fontlist.xml")), fontList({"Sans"}));
    QCOMPARE(tlvctl({"fonts", "list", path()}).code, 0); // reading needs none
    QCOMPARE(tlvctl({"fonts", "add", path(), "Serif", "--dry-run"}).code, 0);
}

void tst_tlvctl_harmless::staleLockStopsNobody()
{
    for (const QByteArray& left : {QByteArray(), QByteArray("999999\nkiosk\nelsewhere\n")}) {
        writeFile(path("tlvlib.lock"), left);
        usleep(5000);
        QCOMPARE(tlvctl({"fonts", "add", path(), "Sans"}).code, 0);
    }
    QVERIFY(!QFile::exists(path("tlvlib.lock")));
}

void tst_tlvctl_harmless::eightCommandsChangeOneAfterTheOther()
{
    std::vector<std::unique_ptr<QProcess>> runs;
    for (int i = 0; i < 8; ++i) {
        runs.push_back(std::make_unique<QProcess>());
        runs.back()->start(TLVCTL, {"fonts", "add", path(), QString("Font %1").arg(i)});
    }
    for (const auto& run : runs) {
        QVERIFY(run->waitForFinished(60000));
        QCOMPARE(run->exitCode(), 0);
    }
    QCOMPARE(jsonOf(tlvctl({"fonts", "list", "--json", path()}).out)["count"].toInt(), 8);
}

void tst_tlvctl_harmless::otherDocumentsAreRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("command");
    const auto row = [](const char* name, const QStringList& command) {
        QTest::newRow(qPrintable(command.mid(0, 2).join(' '))) << QString(name) << command;
    };
    row("bookmark.xml", {"bookmarks", "add", "DIR", "h"});
    row("bookmark.xml", {"bookmarks", "rename", "DIR", "0", "t"});
    row("bookmark.xml", {"bookmarks", "remove", "DIR", "0"});
    row("bookmark.xml", {"bookmarks", "import", "DIR", "DIR/in.html"});
    row("visit.xml", {"history", "add", "DIR", "h"});
    row("visit.xml", {"history", "remove", "DIR", "0"});
    row("authinfo.xml", {"auth", "add", "DIR", "h", "80", "--type", "basic", "--user", "u"});
    row("authinfo.xml", {"auth", "remove", "DIR", "0"});
    row("fontlist.xml", {"fonts", "add", "DIR", "f"});
    row("repostry.xml", {"prefs", "set", "common", "DIR", "proxy.host", "h"});
    row("repostry_private.xml", {"prefs", "import", "user", "DIR", "DIR/in.json"});
    row("cookies.xml", {"cookies", "import", "DIR", "DIR/in.txt", "--document", "DIR/cookies.xml"});
}

void tst_tlvctl_harmless::otherDocumentsAreRefused()
{
    QFETCH(QString, name);
    QFETCH(QStringList, command);
    command.replaceInStrings("DIR", path().left(path().size() - 1));
    writeFile(path("in.html"), "<DL><DT><A HREF=\"h\">t</A></DL>");
    writeFile(path("in.json"), "{\"user\": {\"page.zoom\": \"1.0\"}}");
    writeFile(path("in.txt"), "a\tFALSE\t/\tFALSE\t0\tn\tv\n");
    const QByteArray other = "<thumbnail docInfo=\"1.0\">\n    <image src=\"1.png\"/>\n</thumbnail>\n";
    writeFile(path(name), other);
    const Run run = tlvctlReading("secret", command);
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, path(name), {"another document: its root is \"thumbnail\"", "--force"}));
    QCOMPARE(readFile(path(name)), other);
    QVERIFY(!QFile::exists(path(name + ".bak")));
    if (command.contains("remove") || command.contains("rename"))
        return; // there is nothing that these could change
    QCOMPARE(tlvctlReading("secret", command + QStringList{"--force"}).code, 0);
    QCOMPARE(readFile(path(name + ".bak")), other);
}

/// Many bookmarks, of about as many bytes.
QByteArray bookmarksOf(int bytes)
{
    QByteArray xml = "<bookmarks docInfo=\"1.0\">";
    for (int i = 0; xml.size() < bytes; ++i)
        xml +=
            "<bookmark id=\"" + QByteArray::number(i).rightJustified(3, '0') +
            "\"><href>http://example.com/</href><title>A title of some length</title><thumbnail/></bookmark>";
    return xml + "</bookmarks>";
}

void tst_tlvctl_harmless::largeFilesTakeLittleMemory()
{
#ifdef __SANITIZE_ADDRESS__
    QSKIP("the sanitizer takes memory of its own");
#endif
    const int size = 10000000;
    writeFile(path("bookmark.xml"), bookmarksOf(size));
    const auto largest = [](const QStringList& command) { // of all that ran so far
        rusage usage{};
        return tlvctl(command).code != 2 && getrusage(RUSAGE_CHILDREN, &usage) == 0 ? usage.ru_maxrss * 1024
                                                                                    : 0;
    };
    const qint64 one =
        largest({"show", path("bookmark.xml")}); // the tree that the library makes, and no more
    QVERIFY(one > size && one < 24LL * size);
    for (const QStringList& command :
         {QStringList{"bookmarks", "show", path(), "0"}, QStringList{"check", path()}})
        QVERIFY2(largest(command) < one * 3 / 2, qPrintable(command.join(' ')));
}

void tst_tlvctl_harmless::largeFilesShowABar_data()
{
    QTest::addColumn<QStringList>("command");
    QTest::addColumn<bool>("isShown");
    QTest::newRow("show") << QStringList{"show", "DIR/bookmark.xml"} << true;
    QTest::newRow("check") << QStringList{"check", "DIR"} << true;
    QTest::newRow("list") << QStringList{"bookmarks", "list", "DIR"} << true;
    QTest::newRow("XBEL") << QStringList{"bookmarks", "import", "DIR", "DIR/in.xbel"} << true;
    QTest::newRow("HTML") << QStringList{"bookmarks", "import", "DIR", "DIR/in.html"} << true;
    QTest::newRow("report") << QStringList{"report", "DIR", "DIR/out.html"} << true;
    QTest::newRow("small") << QStringList{"show", "DIR/fontlist.xml"} << false;
}

void tst_tlvctl_harmless::largeFilesShowABar()
{
    QFETCH(QStringList, command);
    QFETCH(bool, isShown);
    command.replaceInStrings("DIR", path().left(path().size() - 1));
    writeFile(path("fontlist.xml"), fontList({"Sans"}));
    writeFile(path("bookmark.xml"), bookmarksOf(3000000));
    writeFile(path("in.xbel"), "<xbel>" + QByteArray(3000000, ' ') + "</xbel>");
    writeFile(path("in.html"), "<DL>" + QByteArray(3000000, ' ') + "</DL>");
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    QVERIFY(terminal >= 0 && grantpt(terminal) == 0 && unlockpt(terminal) == 0);
    QProcess process;
    process.setStandardErrorFile(ptsname(terminal));
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(TLVCTL, command);
    QVERIFY(process.waitForFinished(120000));
    std::vector<char> bytes(65536);
    const ssize_t count = read(terminal, bytes.data(), bytes.size());
    const QByteArray shown(bytes.data(), static_cast<int>(std::max<ssize_t>(0, count)));
    close(terminal);
    QCOMPARE(shown.startsWith("\r[" + QByteArray(40, ' ') + "]   0 %"), isShown);
    QCOMPARE(shown.contains('#'), isShown);
    QVERIFY(!isShown || shown.contains("\r\033[K")); // the line is empty behind it
}

void tst_tlvctl_harmless::conversionsRefuseOtherDocuments()
{
    addBookmarks(2);
    const QByteArray bookmarks = readFile(path("bookmark.xml"));
    writeFile(path("cookie.ini"), COOKIES);
    const Run from = tlvctl({"cookies", "from-ini", path(), path("bookmark.xml")});
    QCOMPARE(from.code, 1);
    QVERIFY(complains(from, path("bookmark.xml"), {"another document", "\"bookmarks\""}));
    const Run to = tlvctl({"cookies", "to-ini", path("bookmark.xml"), path()});
    QCOMPARE(to.code, 1);
    QVERIFY(complains(to, path("bookmark.xml"), {"another document"}));
    QCOMPARE(readFile(path("cookie.ini")), QByteArray(COOKIES));

    QCOMPARE(tlvctl({"cookies", "from-ini", path(), path("bookmark.xml"), "--force"}).code, 0);
    QCOMPARE(readFile(path("bookmark.xml.bak")), bookmarks);
}

void tst_tlvctl_harmless::conversionsRefuseDamagedSources()
{
    writeFile(path("cookie.ini"), COOKIES);
    QCOMPARE(tlvctl({"cookies", "from-ini", path(), path("cookies.xml")}).code, 0);
    const QByteArray document = readFile(path("cookies.xml"));
    const QList<QByteArray> sources = {QByteArray(COOKIES).replace("Cookie]", "Dookie]"),
                                       QByteArray(COOKIES).left(30), QByteArray(), QByteArray("no INI file")};
    for (const QByteArray& source : sources) {
        writeFile(path("cookie.ini"), source);
        const Run run = tlvctl({"cookies", "from-ini", path(), path("cookies.xml")});
        QCOMPARE(run.code, 1);
        QVERIFY(complains(run, path("cookie.ini"), {"nothing was changed"}));
        QCOMPARE(readFile(path("cookies.xml")), document);
    }
}

void tst_tlvctl_harmless::packOfNothingReplacesNothing()
{
    QVERIFY(QDir().mkdir(path("pictures")));
    writeFile(path("pictures/1.png"), "x");
    QCOMPARE(tlvctl({"thumbnails", "pack", path("pictures"), path("pack.xml")}).code, 0);
    const QByteArray pack = readFile(path("pack.xml"));
    QVERIFY(QFile::remove(path("pictures/1.png")));
    const Run run = tlvctl({"thumbnails", "pack", path("pictures"), path("pack.xml")});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, path("pictures/"), {"holds no pictures", "nothing was written"}));
    QCOMPARE(readFile(path("pack.xml")), pack);
}

void tst_tlvctl_harmless::showHidesSecrets()
{
    QCOMPARE(
        tlvctlReading("secret", {"auth", "add", path(), "h", "80", "--type", "basic", "--user", "u"}).code,
        0);
    writeFile(path("cookies.xml"),
              "<cookie><webSiteInfo id=\"000\"><contents>hush</contents></webSiteInfo></cookie>");
    const QByteArray secret = QByteArray("secret").toBase64();
    for (const QStringList& options : {QStringList(), {"--json"}}) {
        QVERIFY(!tlvctl(QStringList{"show", path("authinfo.xml")} + options).out.contains(secret));
        QVERIFY(!tlvctl(QStringList{"show", path("cookies.xml")} + options).out.contains("hush"));
    }
    QVERIFY(tlvctl({"show", path("authinfo.xml")}).out.contains("(hidden)"));
    QVERIFY(tlvctl({"show", path("authinfo.xml"), "--show-secrets"}).out.contains(secret));
    QVERIFY(tlvctl({"show", path("cookies.xml"), "--show-secrets"}).out.contains("hush"));
}

void tst_tlvctl_harmless::pipesHangNothing()
{
    for (const char* name : {"bookmark.xml", "visit.xml", "authinfo.xml", "fontlist.xml", "cookie.ini",
                             "repostry.xml", "pack.xml", "page.png"})
        QCOMPARE(mkfifo(path(name).toUtf8().constData(), 0600), 0);
    const QString dir = path();
    const QList<QStringList> commands = {{"check", dir},
                                         {"check", "--repair", dir},
                                         {"show", path("bookmark.xml")},
                                         {"bookmarks", "list", dir},
                                         {"bookmarks", "show", dir, "0"},
                                         {"bookmarks", "add", dir, "h", "--force"},
                                         {"bookmarks", "add", dir, "h", "--image", path("page.png")},
                                         {"history", "list", dir},
                                         {"history", "add", dir, "h", "--force"},
                                         {"auth", "list", dir},
                                         {"fonts", "add", dir, "f", "--force"},
                                         {"cookies", "list", dir},
                                         {"cookies", "from-ini", dir, path("cookies.xml"), "--force"},
                                         {"prefs", "show", "common", dir},
                                         {"prefs", "set", "common", dir, "proxy.host", "h", "--force"},
                                         {"thumbnails", "list", path("pack.xml")}};
    for (const QStringList& command : commands) {
        const Run run = tlvctl(command);
        QVERIFY2(run.code == 1, qPrintable(command.join(' ')));
    }
}

void tst_tlvctl_harmless::causesAreTold()
{
    writeFile(path("fontlist.xml"), fontList({"Sans"}));
    QCOMPARE(chmod(path("fontlist.xml").toUtf8().constData(), 0444), 0);
    for (const QStringList& option : {QStringList(), {"--dry-run"}}) {
        const Run run = tlvctl(QStringList{"fonts", "add", path(), "Serif"} + option);
        QCOMPARE(run.code, 1);
        QVERIFY(complains(run, path("fontlist.xml"), {"permission denied"}));
    }
    writeFile(path("visit.xml"), "<history>\n<pageInfo id=\"000\"><title>a\xFF</title></pageInfo></history>");
    const Run encoding = tlvctl({"show", path("visit.xml")});
    QCOMPARE(encoding.code, 1);
    QVERIFY(complains(encoding, path("visit.xml"), {"line 2, column 28", "byte 37, 0xff, is no UTF-8"}));
    const Run reading = tlvctl({"bookmarks", "show", path(), "7"});
    QVERIFY(reading.code == 1 && !reading.err.contains("nothing was changed"));
    const Run mistyped = tlvctl({"fonts", "list", path("nowhere")});
    QVERIFY(mistyped.code == 1 && !mistyped.err.contains("mkdir"));
    writeFile(path("page.jpg"), QByteArray("\xFF\xD8\xFF\xE0\0\x10JFIF", 10));
    const Run image = tlvctl({"bookmarks", "add", path(), "h", "--image", path("page.jpg")});
    QVERIFY(complains(image, path("page.jpg"), {"cannot be read as a picture"})); // one message, and no other
}

void tst_tlvctl_harmless::preferencesTellWhatIsAnswered()
{
    const Run run = tlvctl({"prefs", "set", "user", path(), "page.home", ""});
    QCOMPARE(run.code, 0);
    QVERIFY(run.out.contains(", which is answered as about:blank\n"));
    QCOMPARE(tlvctl({"prefs", "get", "user", path(), "page.home"}).out, QByteArray("about:blank\n"));
}

void tst_tlvctl_harmless::portsAreNumbers()
{
    for (const char* port : {"abc", "0", "65536", "-1"}) {
        const Run run = tlvctl({"prefs", "set", "common", path(), "--", "proxy.http-port", port});
        QCOMPARE(run.code, 1);
        QVERIFY(complains(run, path("repostry.xml"), {"no port from 1 to 65535", "--force"}));
    }
    for (const char* port : {"1", "65535"})
        QCOMPARE(tlvctl({"prefs", "set", "common", path(), "proxy.http-port", port}).code, 0);
    QCOMPARE(tlvctl({"prefs", "set", "common", path(), "proxy.http-port", "abc", "--force"}).code, 0);
}

void tst_tlvctl_harmless::picturesThatStayAreAFailure()
{
    QImage picture(4, 4, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QVERIFY(picture.save(path("page.png")));
    QCOMPARE(tlvctl({"bookmarks", "add", path(), "h", "--image", path("page.png")}).code, 0);
    QCOMPARE(chmod(path("thumbnail").toUtf8().constData(), 0555), 0);
    const Run run = tlvctl({"bookmarks", "remove", path(), "0"});
    QCOMPARE(chmod(path("thumbnail").toUtf8().constData(), 0755), 0);
    QCOMPARE(run.code, 1);
    QVERIFY(run.out.contains("(cannot be removed)"));
}

void tst_tlvctl_harmless::rangesAreNumbers()
{
    addBookmarks(5);
    QCOMPARE(tlvctl({"bookmarks", "remove", path(), "0-2"}).code, 0);
    QCOMPARE(jsonOf(tlvctl({"bookmarks", "list", "--json", path()}).out)["count"].toInt(), 2);
    for (const char* range : {"2-0", "0-", "-", "0-99999"})
        QCOMPARE(tlvctl({"bookmarks", "remove", path(), range}).code, 2);
    QCOMPARE(tlvctl({"bookmarks", "remove", path(), "0-2"}).code, 1); // 002 is gone
    QCOMPARE(jsonOf(tlvctl({"bookmarks", "list", "--json", path()}).out)["count"].toInt(), 2);
}

void tst_tlvctl_harmless::nearestCommandIsNamed()
{
    QCOMPARE(
        tlvctl({"bokmarks"}).err,
        QByteArray(
            "tlvctl: unknown command \"bokmarks\"; did you mean \"bookmarks\"?; see \"tlvctl --help\"\n"));
    QVERIFY(!tlvctl({"zzzzzzzzzz"}).err.contains("did you mean"));
}

void tst_tlvctl_harmless::changesSpeakJson()
{
    const QJsonObject json = jsonOf(tlvctl({"fonts", "add", path(), "Sans", "--json"}).out);
    QCOMPARE(json["file"].toString(), path("fontlist.xml"));
    QCOMPARE(json["dryRun"].toBool(), false);
    QCOMPARE(json["changes"].toArray(), QJsonArray{"000  Sans"});

    writeFile(path("cookie.ini"), COOKIES);
    const QJsonObject from =
        jsonOf(tlvctl({"cookies", "from-ini", path(), path("cookies.xml"), "--json"}).out);
    QCOMPARE(from["file"].toString(), path("cookies.xml"));
    QCOMPARE(from["changes"].toArray(), (QJsonArray{"added    000  a    ", "unchanged: 0"}));
    const QJsonObject to =
        jsonOf(tlvctl({"cookies", "to-ini", path("cookies.xml"), path(), "--json", "--dry-run"}).out);
    QCOMPARE(to["file"].toString(), path("cookie.ini"));
    QCOMPARE(to["dryRun"].toBool(), true);
    QCOMPARE(to["changes"].toArray(), QJsonArray{"unchanged: 1"});
}

void tst_tlvctl_harmless::notesAreBounded()
{
    QByteArray xml = "<bookmarks docInfo=\"1.0\">";
    for (int i = 0; i < 100; ++i)
        xml +=
            "<bookmark id=\"" + QByteArray::number(i).rightJustified(3, '0') + "\"><href>h</href></bookmark>";
    writeFile(path("bookmark.xml"), xml + "</bookmarks>");
    const QByteArray out = tlvctl({"bookmarks", "list", path()}).out;
    QCOMPARE(out.count("\n* "), 21);
    QVERIFY(out.contains("\n* and 80 more, which --json tells\n"));
}

void tst_tlvctl_harmless::leftoversAreCleared()
{
    writeFile(path("fontlist.xml"), fontList({"Sans"}));
    writeFile(path("fontlist.xml.tlvsave"), "half");
    const Run run = tlvctl({"check", path()});
    QCOMPARE(run.code, 1);
    QVERIFY(run.out.contains(".tlvsave:\n    is left over from an interrupted save\n"));
    QCOMPARE(tlvctl({"check", "--repair", path()}).code, 0);
    QVERIFY(!QFile::exists(path("fontlist.xml.tlvsave")));
    QCOMPARE(QDir(path()).entryList(QDir::Files), QStringList{"fontlist.xml"});

    writeFile(path("visit.xml.tlvsave"), "all that there is");
    QCOMPARE(tlvctl({"check", "--repair", path()}).code, 1);
    QVERIFY(QFile::exists(path("visit.xml.tlvsave")));
}

void tst_tlvctl_harmless::openSecretsAreClosed()
{
    QCOMPARE(
        tlvctlReading("secret", {"auth", "add", path(), "h", "80", "--type", "basic", "--user", "u"}).code,
        0);
    QCOMPARE(chmod(path("authinfo.xml").toUtf8().constData(), 0644), 0);
    const Run run = tlvctl({"check", path()});
    QCOMPARE(run.code, 1);
    QVERIFY(run.out.contains("others may open it (mode 0644)"));
    QCOMPARE(tlvctl({"check", "--repair", path()}).code, 0);
    QCOMPARE(modeOf(path("authinfo.xml")), 0600);
}

void tst_tlvctl_harmless::profilesAreLookedThrough()
{
    for (const char* below : {"user", "common"}) {
        QVERIFY(QDir().mkdir(path(below)));
        writeFile(path(below) + "/fontlist.xml", DAMAGED_LIST);
    }
    const Run run = tlvctl({"check", path()});
    QCOMPARE(run.code, 1);
    QVERIFY(run.out.endsWith("files: 2, findings: 2\n"));
}

void tst_tlvctl_harmless::missingListsAreTold()
{
    QVERIFY(QDir().mkdir(path("thumbnail")));
    writeFile(path("thumbnail/000001.PNG"), "");
    const Run run = tlvctl({"check", path()});
    QCOMPARE(run.code, 1);
    QVERIFY(run.out.contains("is missing, but its pictures are there"));
    writeFile(path("Visit.xml"), "<history/>");
    writeFile(path("bookmarks.xml"), "<r/>");
    writeFile(path("authinfo.xml.bak"), "");
    const QByteArray out = tlvctl({"check", path()}).out;
    QVERIFY(out.contains("it may be meant for visit.xml"));
    QVERIFY(out.contains("it may be meant for bookmark.xml"));
    QVERIFY(out.contains("there is no authinfo.xml, but this is beside it"));
}

void tst_tlvctl_harmless::strangeContentIsTold()
{
    const auto findingsOf = [this](const QByteArray& xml) {
        writeFile(path("fontlist.xml"), xml);
        return tlvctl({"check", path()}).out;
    };
    QVERIFY(findingsOf("<fontlist><font id=\"000\">Sa<!-- -->ns</font></fontlist>")
                .contains("    a comment at line 1"));
    QVERIFY(
        findingsOf("<fontlist><font id=\"000\" x=\"\">S</font></fontlist>").contains("the attribute \"x\""));
    QVERIFY(
        findingsOf("<fontlist>text<font id=\"000\">S</font></fontlist>").contains("text between elements"));
    QVERIFY(findingsOf("<history/>").contains("its root is \"history\" instead of \"fontlist\""));
    QVERIFY(findingsOf("<fontlist><font id=\"000\">S</font><font id=\"000\">T</font></fontlist>")
                .contains("numbers that stand otherwise"));
    writeFile(path("authinfo.xml"),
              "<authentication docInfo=\"1.0\"><authInfo id=\"000\"><user>a</user><user>b</user></authInfo>"
              "</authentication>");
    QVERIFY(tlvctl({"check", path()}).out.contains("    a second element \"user\" at line 1, column "));
    writeFile(path("repostry.xml"), "<repostry_common docInfo=\"1.0\"><proxy/><proxy/></repostry_common>");
    QVERIFY(tlvctl({"check", path()}).out.contains("    a second element \"proxy\" at line 1, column "));
    QVERIFY(tlvctl({"check", "--repair", path()}).out.contains("    remains: a second element \"proxy\""));
}

void tst_tlvctl_harmless::lockedOutOwnersAreTold()
{
    if (geteuid() != 0)
        QSKIP("only the superuser gives files away");
    writeFile(path("fontlist.xml"), fontList({"Sans"}));
    const QByteArray file = path("fontlist.xml").toUtf8();
    const auto tellsMode = [&](mode_t mode, const char* told) {
        return chmod(file.constData(), mode) == 0 &&
               tlvctl({"check", path()})
                   .out.contains(
                       QByteArray("may not be read by the owner of its directory (the file's owner is "
                                  "1234, its mode ") +
                       told + ')');
    };
    QCOMPARE(chown(file.constData(), 1234, 4321), 0);
    QVERIFY(!tellsMode(0644, "0644"));
    QVERIFY(!tellsMode(0604, "0604"));
    QCOMPARE(chmod(file.constData(), 0640), 0);
    QCOMPARE(tlvctl({"check", path()}).code, 1); // of another group, too
    QCOMPARE(chown(file.constData(), 1234, 0), 0);
    QCOMPARE(tlvctl({"check", path()}).code, 0);
    QVERIFY(chmod(file.constData(), 0) == 0 && chown(file.constData(), 0, 0) == 0);
    const Run run = tlvctl({"check", path()});
    QCOMPARE(run.code, 1);
    QVERIFY(run.out.contains("cannot be read: Permission denied"));
}

void tst_tlvctl_harmless::repairCanBeTried()
{
    writeFile(path("fontlist.xml"), DAMAGED_LIST);
    const Run run = tlvctl({"check", "--repair", "--dry-run", path()});
    QCOMPARE(run.code, 1);
    QVERIFY(run.out.contains("    lost: 1 records: damaged at line 4"));
    QCOMPARE(readFile(path("fontlist.xml")), QByteArray(DAMAGED_LIST));
    QCOMPARE(QDir(path()).entryList(QDir::Files), QStringList{"fontlist.xml"});
}

void tst_tlvctl_harmless::needlessRepairLeavesNoCopy()
{
    writeFile(path("fontlist.xml"), fontList({QByteArray(257, 'f')}));
    for (int i = 0; i < 3; ++i) {
        const Run run = tlvctl({"check", "--repair", path()});
        QCOMPARE(run.code, 1);
        QVERIFY(run.out.contains("    remains: 000  fff"));
    }
    QCOMPARE(QDir(path()).entryList(QDir::Files), QStringList{"fontlist.xml"});
}

TLVCTL_TEST_MAIN(tst_tlvctl_harmless)
#include "tst_tlvctl_harmless.moc"
