#include "tests/tools/TlvctlRun.h"

#include <QtCore/QDir>
#include <QtCore/QJsonArray>

#include <memory>

/// tlvctl check
class tst_tlvctl_check : public QObject
{
    Q_OBJECT

private slots:
    void init() { dir_ = std::make_unique<TempDir>(); }
    void cleanup() { dir_.reset(); }

    void cleanFilesAreClean();
    void emptyDirectoryHasNoFiles();
    void findingsAreTold_data();
    void findingsAreTold();
    void picturesAreCounted();
    void longDirectoryIsTold();
    void unreadableFileIsTold();
    void findingsAreWrittenAsJson();
    void repairKeepsACopy();
    void repairOfNothingWritesNothing();
    void repairNeverReplacesACopy();
    void repairThatFailsIsTold();
    void titlesCannotSpeakToTheTerminal();
    void wrongUsage();

private:
    QString path(const QString& name = QString()) const { return dir_->path() + name; }
    Run check(const QStringList& options = {}) const
    {
        return tlvctl(QStringList{"check", path()} + options);
    }

    std::unique_ptr<TempDir> dir_;
};

const char BOOKMARKS[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                         "<bookmarks docInfo=\"1.0\">\n"
                         "    <bookmark id=\"000\">\n"
                         "        <href>h</href>\n"
                         "        <title>t</title>\n"
                         "        <thumbnail/>\n"
                         "    </bookmark>\n"
                         "</bookmarks>\n";

void tst_tlvctl_check::cleanFilesAreClean()
{
    writeFile(path("bookmark.xml"), BOOKMARKS);
    writeFile(path("fontlist.xml"), fontList({"Sans"}));
    writeFile(path("cookie.ini"), readFile(testData("cookie.ini")));
    QVERIFY(QFile::setPermissions(path("cookie.ini"), QFile::ReadOwner | QFile::WriteOwner));
    QCOMPARE(tlvctl({"prefs", "set", "user", path(), "page.zoom", "1.1"}).code, 0);
    const Run run = check();
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QByteArray expected;
    for (const char* name : {"fontlist.xml", "repostry_private.xml", "bookmark.xml", "cookie.ini"})
        expected += path(name).toUtf8() + ": clean\n";
    QCOMPARE(run.out, expected + "files: 4, findings: 0\n");
}

void tst_tlvctl_check::emptyDirectoryHasNoFiles()
{
    const Run run = check();
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, QByteArray("files: 0, findings: 0\n"));
    const Run missing = tlvctl({"check", path("none")});
    QCOMPARE(missing.code, 1);
    QVERIFY(complains(missing, path("none"), {"no such directory"}));
}

void tst_tlvctl_check::findingsAreTold_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QList<QByteArray>>("lines");
    const auto row = [](const char* test, const char* name, const QByteArray& bytes,
                        const QList<QByteArray>& lines) {
        QTest::newRow(test) << QString(name) << bytes << lines;
    };
    row("damage", "fontlist.xml", DAMAGED_LIST,
        {"damaged at line 4, column 31 (Opening and ending tag mismatch): what stands behind that place is "
         "not read, "
         "and saving loses it"});
    row("no document", "fontlist.xml", "none",
        {"damaged at line 1, column 1 (Start tag expected): what stands behind that place is not read, and "
         "saving "
         "loses it"});
    row("beyond the numbers", "fontlist.xml", fontList(manyNames(1000)).replace(" id=\"999\"", ""),
        {"---  Font 999: has no number: cannot be asked for"});
    row("long font", "fontlist.xml", fontList({QByteArray(257, 'f')}),
        {"000  " + QByteArray(257, 'f') + ": name of 257 bytes, over 256: the store answers an empty one"});
    row("gap", "bookmark.xml", QByteArray(BOOKMARKS).replace("000", "007"),
        {"numbers that stand otherwise in the file, and are given anew by loading: 1"});
    row("long title", "bookmark.xml", QByteArray(BOOKMARKS).replace(">t<", '>' + QByteArray(101, 't') + '<'),
        {"000: title of 101 bytes, over 100: the store does not answer it"});
    row("odd login", "authinfo.xml",
        "<authentication><authInfo "
        "id=\"000\"><hostName>h</hostName><portNum>80</portNum><authType>none</authType>"
        "<user>dQ==</user><passwd>cA==</passwd></authInfo></authentication>",
        {"000: type \"none\" is none of \"basic\", \"digest\", \"NTLM\": the store answers \"basic\""});
    row("misspelt preference", "repostry_private.xml",
        "<repostry><pageInfo><home>h</home><startup>home</startup><lastPageURL>l</lastPageURL><Zoom>1.0</"
        "Zoom>"
        "</pageInfo><cookie><cookieDeleteTiming>notDelete</cookieDeleteTiming></cookie><authInfo>"
        "<authInfoDeleteTiming>notDelete</authInfoDeleteTiming></authInfo><font><fontName/></font></"
        "repostry>",
        {"page.startup: the file holds \"home\", which is none of homepage, lastpage"});
    row("count that lies", "cookie.ini",
        "[Cookie]\ncookies=\"@ByteArray(\\0\\0\\0\\x3\\0\\0\\0\\x3\\x61=b)\"\n",
        {"the file says that it holds 3 entries, but there are 1"});
}

void tst_tlvctl_check::findingsAreTold()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QFETCH(QList<QByteArray>, lines);
    writeFile(path(name), bytes);
    QVERIFY(QFile::setPermissions(path(name), QFile::ReadOwner | QFile::WriteOwner));
    const Run run = check();
    QCOMPARE(run.code, 1);
    QCOMPARE(run.err, QByteArray());
    QByteArray expected = path(name).toUtf8() + ":\n";
    for (const QByteArray& line : lines)
        expected += "    " + line + '\n';
    QCOMPARE(run.out, expected + "files: 1, findings: " + QByteArray::number(lines.size()) + '\n');
    QCOMPARE(readFile(path(name)), bytes);
}

void tst_tlvctl_check::picturesAreCounted()
{
    writeFile(path("bookmark.xml"),
              QByteArray(BOOKMARKS).replace("<thumbnail/>", "<thumbnail>000001.PNG</thumbnail>"));
    QVERIFY(QDir().mkpath(path("thumbnail")));
    writeFile(path("thumbnail/000002.PNG"), "x");
    const Run run = check();
    QCOMPARE(run.code, 1);
    const QByteArray dir = path("thumbnail/").toUtf8();
    QCOMPARE(run.out, path("bookmark.xml").toUtf8() + ":\n    000: there is no picture " + dir +
                          "000001.PNG\n    no bookmark shows the file " + dir +
                          "000002.PNG\nfiles: 1, findings: 2\n");
}

void tst_tlvctl_check::longDirectoryIsTold()
{
    const QByteArray tooLong =
        "1 bytes too long: paths of pictures pass the store's limit of 256 bytes, and saving "
        "empties their names\n";
    const auto madeUpTo = [this](int size) {
        QString dir = path();
        while (dir.size() < size)
            dir += QString(qMin(200, size - dir.size() - 1), 'd') + '/';
        QDir().mkpath(dir);
        writeFile(dir + "bookmark.xml", BOOKMARKS);
        return tlvctl({"check", dir});
    };
    QCOMPARE(madeUpTo(226).code, 0);
    QVERIFY(madeUpTo(227).out.contains("    the directory's path may grow by 9 bytes at most"));
    QVERIFY(madeUpTo(236).out.contains("    the directory's path may grow by 0 bytes at most"));
    QVERIFY(madeUpTo(237).out.contains("    the directory's path is " + tooLong));
}

void tst_tlvctl_check::unreadableFileIsTold()
{
    writeFile(path("bookmark.xml"), BOOKMARKS);
    QVERIFY(QFile::setPermissions(path("bookmark.xml"), QFile::WriteOwner));
    const Run run = check();
    QCOMPARE(run.code, 1);
    QVERIFY(run.out.contains(
        "    cannot be read: Permission denied; the store is empty then, and saving replaces the file\n"));
    const Run repaired = check({"--repair"});
    QCOMPARE(repaired.code, 1);
    QVERIFY(complains(repaired, path("bookmark.xml"), {"is not repaired", "make it readable"}));
    QVERIFY(QFile::setPermissions(path("bookmark.xml"), QFile::ReadOwner));
    QCOMPARE(readFile(path("bookmark.xml")), QByteArray(BOOKMARKS));
}

void tst_tlvctl_check::findingsAreWrittenAsJson()
{
    writeFile(path("fontlist.xml"), fontList({"Sans"}));
    writeFile(path("bookmark.xml"), QByteArray(BOOKMARKS).replace("000", "007"));
    const Run run = check({"--json"});
    QCOMPARE(run.code, 1);
    const QJsonArray files = QJsonDocument::fromJson(run.out).array();
    QCOMPARE(files.size(), 2);
    QCOMPARE(files.at(0).toObject(),
             (QJsonObject{{"file", path("fontlist.xml")}, {"findings", QJsonArray()}}));
    QCOMPARE(files.at(1).toObject()["findings"].toArray().size(), 1);
}

void tst_tlvctl_check::repairKeepsACopy()
{
    writeFile(path("fontlist.xml"), DAMAGED_LIST);
    const Run run = check({"--repair"});
    QCOMPARE(run.code, 1); // one record is lost
    const QByteArray file = path("fontlist.xml").toUtf8();
    QCOMPARE(
        run.out,
        file +
            ":\n    lost: 1 records: damaged at line 4, column 31 (Opening and ending tag mismatch): what "
            "stands behind that place is not read, and saving loses it\n    what "
            "could not be read is in " +
            file + ".rejected\n    as it was, the file is in " + file +
            ".bak\nfiles: 1, findings: 1, remaining: 0, lost records: 1\n");
    QCOMPARE(readFile(path("fontlist.xml.bak")), QByteArray(DAMAGED_LIST));
    QCOMPARE(readFile(path("fontlist.xml.rejected")), QByteArray("<font id=\"001\">Serif</fond>\n"));
    QCOMPARE(readFile(path("fontlist.xml")), fontList({"Sans", "Mono"}));
    QCOMPARE(check().code, 0);

    const QByteArray liar = "[Cookie]\ncookies=\"@ByteArray(\\0\\0\\0\\x3\\0\\0\\0\\x3\\x61=b)\"\n";
    writeFile(path("cookie.ini"), liar);
    QCOMPARE(check({"--repair"}).code, 0);
    QCOMPARE(readFile(path("cookie.ini.bak")), liar);
    QCOMPARE(check().code, 0);
}

void tst_tlvctl_check::repairOfNothingWritesNothing()
{
    // Saving would give it another form.
    const QByteArray file = "<fontlist><font id='000'>Sans</font></fontlist>";
    writeFile(path("fontlist.xml"), file);
    const Run run = check({"--repair"});
    QCOMPARE(run.code, 0);
    QCOMPARE(readFile(path("fontlist.xml")), file);
    QCOMPARE(QDir(path()).entryList(QDir::Files), QStringList{"fontlist.xml"});
}

void tst_tlvctl_check::repairNeverReplacesACopy()
{
    writeFile(path("fontlist.xml.bak"), "mine");
    writeFile(path("fontlist.xml"), DAMAGED_LIST);
    QCOMPARE(check({"--repair"}).code, 1);
    QCOMPARE(readFile(path("fontlist.xml.bak")), QByteArray("mine"));
    QCOMPARE(readFile(path("fontlist.xml.bak2")), QByteArray(DAMAGED_LIST));
}

void tst_tlvctl_check::repairThatFailsIsTold()
{
    writeFile(path("fontlist.xml"), DAMAGED_LIST);
    QVERIFY(QFile::setPermissions(path(), QFile::ReadOwner | QFile::ExeOwner));
    const Run run = check({"--repair"});
    QVERIFY(QFile::setPermissions(path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, path("fontlist.xml"), {"nothing was changed", "cannot be copied"}));
    QCOMPARE(readFile(path("fontlist.xml")), QByteArray(DAMAGED_LIST));
}

void tst_tlvctl_check::titlesCannotSpeakToTheTerminal()
{
    writeFile(path("fontlist.xml"), fontList({"\xE2\x80\xAE" + QByteArray(300, 'f')}));
    writeFile(path("repostry.xml"), "<r><cookie><acceptCookie>\xE2\x80\xAE</acceptCookie></cookie></r>");
    for (const QStringList& options : {QStringList(), {"--json"}}) {
        const Run run = check(options);
        QCOMPARE(run.code, 1);
        QVERIFY(isHarmless(run.out));
        QVERIFY(run.out.contains("202"));
    }
}

void tst_tlvctl_check::wrongUsage()
{
    const Run run = check({"--dry-run"});
    QCOMPARE(run.code, 2);
    QCOMPARE(run.err, QByteArray("tlvctl: --dry-run goes with --repair; see \"tlvctl check --help\"\n"));
}

TLVCTL_TEST_MAIN(tst_tlvctl_check)
#include "tst_tlvctl_check.moc"
