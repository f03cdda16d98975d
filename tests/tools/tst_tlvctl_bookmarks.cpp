#include "tests/tools/TlvctlRun.h"

#include <QtCore/QDir>
#include <QtCore/QJsonArray>
#include <QtGui/QImage>

#include <memory>

namespace {

const char START[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<bookmarks docInfo=\"1.0\">\n";
const char END[] = "</bookmarks>\n";

/// A record as the store writes it.
QByteArray record(int number, const QByteArray& href, const QByteArray& title, const QByteArray& thumbnail)
{
    const auto element = [](const QByteArray& name, const QByteArray& text) {
        return text.isEmpty() ? "        <" + name + "/>\n"
                              : "        <" + name + '>' + text + "</" + name + ">\n";
    };
    return "    <bookmark id=\"" + QByteArray::number(number).rightJustified(3, '0') + "\">\n" +
           element("href", href) + element("title", title) + element("thumbnail", thumbnail) +
           "    </bookmark>\n";
}

} // namespace

/// tlvctl bookmarks
class tst_tlvctl_bookmarks : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { dir_.reset(); }

    void listShowsBookmarks();
    void listWritesJson();
    void listOfAMissingFileIsEmpty();
    void listTellsWhatTheStoreHides();
    void listTellsWhatIsOverTheLimits();
    void listTellsWhereTheWalkStops();
    void listShowsADamagedFileUpToTheDamage();
    void listEscapesWhatATerminalWouldObey();

    void showTellsAllOfABookmark();
    void showTellsWhatIsWrongWithThePicture();
    void showWritesJson();
    void showOfAnAbsentNumberFails();

    void addedBookmarkIsFirst();
    void addedPictureGetsTheNextNumber();
    void addedPictureIsScaled_data();
    void addedPictureIsScaled();
    void pictureNeverReplacesAFile();
    void addRefusesWhatTheStoreCannotKeep_data();
    void addRefusesWhatTheStoreCannotKeep();
    void addTakesTheLongest();
    void addCutsATitleOnDemand();
    void addRefusesWhatIsNoPicture();
    void addWithAFailingSaveLeavesNoPicture();
    void dryRunWritesNothing();
    void missingPicturesStayMissing();
    void tooLongADirectoryIsRefused();
    void damagedFileIsNotReplaced();

    void renamedBookmarkKeepsTheRest();
    void renameToTheSameChangesNothing();
    void renameRefusesALongTitle();
    void renameOfAnAbsentNumberFails();

    void removeTakesThePictureToo();
    void removeKeepsAPictureThatIsShown();
    void removeKeepsPicturesOnDemand();
    void removeNeedsAllNumbers();

    void thumbnailReplacesThePicture();
    void thumbnailNeedsItsElement();

    void wrongUsage_data();
    void wrongUsage();

private:
    QString path() const { return dir_->path(); }
    QString filePath() const { return path() + "bookmark.xml"; }
    QString pictureDir() const { return path() + "thumbnail/"; }
    void writePicture(const QString& name, int width = 16, int height = 12);
    QStringList pictures() const { return QDir(pictureDir()).entryList(QDir::Files, QDir::Name); }
    QByteArray picturePath(const char* name) const { return (pictureDir() + name).toUtf8(); }

    std::unique_ptr<TempDir> dir_;
};

void tst_tlvctl_bookmarks::init()
{
    dir_ = std::make_unique<TempDir>();
}

void tst_tlvctl_bookmarks::writePicture(const QString& name, int width, int height)
{
    QVERIFY(QDir().mkpath(pictureDir()));
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    QVERIFY(image.save(pictureDir() + name, "PNG"));
}

// --- list -------------------------------------------------------------------------------------------------

void tst_tlvctl_bookmarks::listShowsBookmarks()
{
    const QByteArray file =
        START + record(0, "http://b/", "Zwei", "000002.PNG") + record(1, "http://a/", "Eins", "") + END;
    writeFile(filePath(), file);
    writePicture("000002.PNG");
    for (const QString& dir : {path(), path().left(path().size() - 1)}) {
        const Run run = tlvctl({"bookmarks", "list", dir});
        QCOMPARE(run.code, 0);
        QCOMPARE(run.err, QByteArray());
        QCOMPARE(run.out, QByteArray("no.  title  address    picture\n"
                                     "000  Zwei   http://b/  000002.PNG\n"
                                     "001  Eins   http://a/\n"
                                     "records: 2, counted by the store: 2\n"));
    }
    QCOMPARE(readFile(filePath()), file);
}

void tst_tlvctl_bookmarks::listWritesJson()
{
    writeFile(filePath(),
              START + record(0, "http://b/", "Zwei", "000002.PNG") + record(1, "http://a/", "", "") + END);
    writePicture("000002.PNG");
    const Run run = tlvctl({"bookmarks", "list", "--json", path()});
    const QJsonObject first{{"number", 0},           {"filePosition", 0},
                            {"flaws", QJsonArray()}, {"title", "Zwei"},
                            {"url", "http://b/"},    {"picture", pictureDir() + "000002.PNG"},
                            {"pictureExists", true}};
    const QJsonObject second{{"number", 1},           {"filePosition", 1},  {"flaws", QJsonArray()},
                             {"title", ""},           {"url", "http://a/"}, {"picture", QJsonValue()},
                             {"pictureExists", false}};
    QCOMPARE(jsonOf(run.out), (QJsonObject{{"file", filePath()},
                                           {"exists", true},
                                           {"complete", true},
                                           {"error", QJsonValue()},
                                           {"count", 2},
                                           {"renumbered", 0},
                                           {"bookmarks", QJsonArray{first, second}}}));
}

void tst_tlvctl_bookmarks::listOfAMissingFileIsEmpty()
{
    const Run run = tlvctl({"bookmarks", "list", path()});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, "records: 0, because there is no " + filePath().toUtf8() + '\n');
    QVERIFY(QDir(path()).isEmpty());
}

void tst_tlvctl_bookmarks::listTellsWhatTheStoreHides()
{
    writeFile(filePath(),
              "<b><bookmark id='9'><title>t</title><href>h</href><thumbnail>000001.PNG</thumbnail>"
              "</bookmark><folder><title>f</title></folder></b>");
    QCOMPARE(tlvctl({"bookmarks", "list", path()}).out,
             "no.   title  address  picture\n"
             "000*  t      h        000001.PNG\n"
             "001*  f\n"
             "* 000: there is no picture " +
                 picturePath("000001.PNG") +
                 "\n"
                 "* 001: element \"folder\" instead of \"bookmark\": answered, but not counted; no element "
                 "\"href\"; no "
                 "element \"thumbnail\"\n"
                 "numbers that stand otherwise in the file, and are given anew by loading: 2\n"
                 "records: 2, counted by the store: 1, marked: 2\n");
}

void tst_tlvctl_bookmarks::listTellsWhatIsOverTheLimits()
{
    writeFile(filePath(),
              START + record(0, QByteArray(256, 'x'), QByteArray(100, 't'), "") +
                  record(1, QByteArray(257, 'x'), utf8("\u00E9").repeated(50).toUtf8() + 't', "") + END);
    const QList<QByteArray> lines = tlvctl({"bookmarks", "list", path()}).out.split('\n');
    QVERIFY(lines.at(1).startsWith("000   " + QByteArray(100, 't')));
    QVERIFY(lines.at(2).startsWith("001*  "));
    QCOMPARE(lines.at(2).mid(6).trimmed(), QByteArray("about:blank"));
    QCOMPARE(lines.mid(3),
             (QList<QByteArray>{
                 "* 001: title of 101 bytes, over 100: the store does not answer it; address of 257 "
                 "bytes, over 256: the store answers \"about:blank\"",
                 "records: 2, counted by the store: 2, marked: 1", ""}));
}

void tst_tlvctl_bookmarks::listTellsWhereTheWalkStops()
{
    writePicture("000001.PNG");
    writeFile(filePath(), "<b><bookmark><title>a</title><href>h</href></bookmark><bookmark><title>b</title>"
                          "<href>h</href><thumbnail>000001.PNG</thumbnail></bookmark></b>");
    const QByteArray out = tlvctl({"bookmarks", "list", path()}).out;
    QVERIFY(out.contains("\n* 000: no element \"thumbnail\"\n"));
    QVERIFY(
        out.contains("\n* 001: there is no picture 000001.PNG; behind a bookmark without \"thumbnail\": its "
                     "picture's name is not made a path\n"));
}

void tst_tlvctl_bookmarks::listShowsADamagedFileUpToTheDamage()
{
    writeFile(filePath(), START + record(0, "h", "t", "") + "<bookmark></wrong>");
    const Run run = tlvctl({"bookmarks", "list", path()});
    QCOMPARE(run.code, 1);
    QVERIFY(run.out.contains("\n000   t      h\n"));
    QVERIFY(complains(run, filePath(), {"damaged at line 8"}));
}

void tst_tlvctl_bookmarks::listEscapesWhatATerminalWouldObey()
{
    writeFile(filePath(), START + record(0, "h&#10;h", "t\xE2\x80\xAEt", "a&#9;b") + END);
    for (const QStringList& arguments :
         {QStringList{"list", path()}, {"list", "--json", path()}, {"show", path(), "0"}}) {
        const Run run = tlvctl(QStringList("bookmarks") + arguments);
        QCOMPARE(run.code, 0);
        QVERIFY(isHarmless(run.out));
        QVERIFY(run.out.contains("202"));
    }
}

// --- show -------------------------------------------------------------------------------------------------

void tst_tlvctl_bookmarks::showTellsAllOfABookmark()
{
    writeFile(filePath(), START + record(0, "http://b/", "Zwei", "") +
                              record(1, "http://a/", "Eins", "000002.PNG") + END);
    writePicture("000002.PNG", 40, 30);
    const QByteArray bytes = QByteArray::number(QFileInfo(pictureDir() + "000002.PNG").size());
    const Run run = tlvctl({"bookmarks", "show", path(), "001"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, "number   001\n"
                      "title    Eins\n"
                      "address  http://a/\n"
                      "picture  " +
                          picturePath("000002.PNG") + " (40 x 30, " + bytes + " bytes)\n");
    QVERIFY(tlvctl({"bookmarks", "show", path(), "0"}).out.endsWith("picture  none\n"));
}

void tst_tlvctl_bookmarks::showTellsWhatIsWrongWithThePicture()
{
    writeFile(filePath(), START + record(0, "h", "t", "000001.PNG") + END);
    QVERIFY(tlvctl({"bookmarks", "show", path(), "0"})
                .out.contains("picture  " + picturePath("000001.PNG") + " (there is no such file)\n"));
    QVERIFY(QDir().mkpath(pictureDir()));
    writeFile(pictureDir() + "000001.PNG", "none");
    QVERIFY(tlvctl({"bookmarks", "show", path(), "0"})
                .out.contains("picture  " + picturePath("000001.PNG") + " (no PNG, 4 bytes)\n"));
}

void tst_tlvctl_bookmarks::showWritesJson()
{
    writeFile(filePath(), START + record(0, "h", "t", "000001.PNG") + END);
    writePicture("000001.PNG", 40, 30);
    const QJsonObject bookmark =
        jsonOf(tlvctl({"bookmarks", "show", "--json", path(), "0"}).out)["bookmark"].toObject();
    QCOMPARE(bookmark["title"].toString(), QString("t"));
    QCOMPARE(bookmark["pictureWidth"].toInt(), 40);
    QCOMPARE(bookmark["pictureHeight"].toInt(), 30);
}

void tst_tlvctl_bookmarks::showOfAnAbsentNumberFails()
{
    writeFile(filePath(), START + record(0, "h", "t", "") + END);
    const Run run = tlvctl({"bookmarks", "show", path(), "1"});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, filePath(), {"there is no record 001"}));
}

// --- add --------------------------------------------------------------------------------------------------

void tst_tlvctl_bookmarks::addedBookmarkIsFirst()
{
    const Run first = tlvctl({"bookmarks", "add", path(), "http://a/?x=1&y", "--title", "Ein <b>"});
    QCOMPARE(first.code, 0);
    QCOMPARE(first.err, QByteArray());
    QCOMPARE(first.out, QByteArray("added    000  Ein <b>  http://a/?x=1&y\n"));
    QCOMPARE(tlvctl({"bookmarks", "add", path(), "http://b/"}).code, 0);
    QCOMPARE(readFile(filePath()), START + record(0, "http://b/", "", "") +
                                       record(1, "http://a/?x=1&amp;y", "Ein &lt;b&gt;", "") + END);
    QVERIFY(!QFile::exists(pictureDir()));
}

void tst_tlvctl_bookmarks::addedPictureGetsTheNextNumber()
{
    writeFile(filePath(), START + record(0, "h", "t", "000041.PNG") + END);
    writePicture("../page.png", 30, 20);
    const Run run = tlvctl({"bookmarks", "add", path(), "http://b/", "--image", path() + "page.png"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, "added    000    http://b/\nadded         " + picturePath("000042.PNG") + '\n');
    QCOMPARE(readFile(filePath()),
             START + record(0, "http://b/", "", "000042.PNG") + record(1, "h", "t", "000041.PNG") + END);
    QCOMPARE(pictures(), QStringList{"000042.PNG"});
    QCOMPARE(QImage(pictureDir() + "000042.PNG").size(), QSize(30, 20));
}

void tst_tlvctl_bookmarks::addedPictureIsScaled_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QSize>("scaled");
    QTest::newRow("fits") << QSize(160, 120) << QStringList() << QSize(160, 120);
    QTest::newRow("too wide") << QSize(320, 120) << QStringList() << QSize(160, 60);
    QTest::newRow("too high") << QSize(160, 480) << QStringList() << QSize(40, 120);
    QTest::newRow("very wide") << QSize(3200, 2) << QStringList() << QSize(160, 1);
    QTest::newRow("another size") << QSize(160, 120) << QStringList{"--image-size", "80x80"} << QSize(80, 60);
}

void tst_tlvctl_bookmarks::addedPictureIsScaled()
{
    QFETCH(QSize, size);
    QFETCH(QStringList, options);
    QFETCH(QSize, scaled);
    writePicture("../page.png", size.width(), size.height());
    const Run run =
        tlvctl(QStringList{"bookmarks", "add", path(), "h", "--image", path() + "page.png"} + options);
    QCOMPARE(run.code, 0);
    QCOMPARE(QImage(pictureDir() + "000001.PNG").size(), scaled);
}

void tst_tlvctl_bookmarks::pictureNeverReplacesAFile()
{
    writePicture("../page.png");
    writePicture("000001.PNG", 1, 1); // no bookmark shows it
    QCOMPARE(tlvctl({"bookmarks", "add", path(), "h", "--image", path() + "page.png"}).code, 0);
    QCOMPARE(pictures(), (QStringList{"000001.PNG", "000002.PNG"}));
    QCOMPARE(QImage(pictureDir() + "000001.PNG").size(), QSize(1, 1));
}

void tst_tlvctl_bookmarks::addRefusesWhatTheStoreCannotKeep_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QStringList>("words");
    QTest::newRow("no address") << QString() << QString() << QStringList{"the address \"\" is empty"};
    QTest::newRow("long address") << QString(257, 'x') << QString()
                                  << QStringList{"the address", "has 257 bytes of UTF-8, more than the 256"};
    QTest::newRow("long title") << QString("h") << utf8("\u3042").repeated(34)
                                << QStringList{"the title", "has 102 bytes of UTF-8, more than the 100",
                                               "--clip"};
    QTest::newRow("control character")
        << QString("h\x07") << QString() << QStringList{"the address", "control"};
    QTest::newRow("blank title") << QString("h") << QString("  ") << QStringList{"the title", "blanks"};
}

void tst_tlvctl_bookmarks::addRefusesWhatTheStoreCannotKeep()
{
    QFETCH(QString, url);
    QFETCH(QString, title);
    QFETCH(QStringList, words);
    const Run run = tlvctl({"bookmarks", "add", path(), url, "--title", title});
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray());
    QVERIFY(complains(run, filePath(), words + QStringList{"nothing was changed"}));
    QVERIFY(!QFile::exists(filePath()));
}

void tst_tlvctl_bookmarks::addTakesTheLongest()
{
    const QString url = utf8("\u00E9").repeated(128);
    const QString title = utf8("\u00E9").repeated(50);
    QCOMPARE(tlvctl({"bookmarks", "add", path(), url, "--title", title}).code, 0);
    QCOMPARE(readFile(filePath()), START + record(0, url.toUtf8(), title.toUtf8(), "") + END);
}

void tst_tlvctl_bookmarks::addCutsATitleOnDemand()
{
    const QString title = utf8("\u3042").repeated(34);
    QCOMPARE(tlvctl({"bookmarks", "add", path(), "h", "--clip", "--title", title}).code, 0);
    QCOMPARE(readFile(filePath()), START + record(0, "h", title.left(33).toUtf8(), "") + END);
}

void tst_tlvctl_bookmarks::addRefusesWhatIsNoPicture()
{
    writeFile(path() + "page.png", "none");
    for (const QString& file : {path() + "page.png", path() + "missing.png"}) {
        const Run run = tlvctl({"bookmarks", "add", path(), "h", "--image", file});
        QCOMPARE(run.code, 1);
        QVERIFY(complains(run, file, {"nothing was changed", "cannot be read as a picture"}));
    }
    QVERIFY(!QFile::exists(filePath()));
    QVERIFY(!QFile::exists(pictureDir()));
}

void tst_tlvctl_bookmarks::addWithAFailingSaveLeavesNoPicture()
{
    writePicture("../page.png");
    writeFile(filePath(), START + record(0, "h", "t", "") + END);
    QVERIFY(QFile::setPermissions(filePath(), QFile::ReadOwner));
    const Run run = tlvctl({"bookmarks", "add", path(), "h", "--image", path() + "page.png"});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, filePath(), {"permission denied"}));
    QCOMPARE(pictures(), QStringList());
}

void tst_tlvctl_bookmarks::dryRunWritesNothing()
{
    const QByteArray file = START + record(0, "h", "t", "000001.PNG") + END;
    writeFile(filePath(), file);
    writePicture("000001.PNG");
    writePicture("../page.png");
    const Run add =
        tlvctl({"bookmarks", "add", "--dry-run", path(), "http://b/", "--image", path() + "page.png"});
    QCOMPARE(add.code, 0);
    QCOMPARE(add.out, "dry run: nothing is written to " + filePath().toUtf8() +
                          ", where this would change:\n"
                          "added    000    http://b/\nadded         " +
                          picturePath("000002.PNG") + '\n');
    const Run remove = tlvctl({"bookmarks", "remove", "--dry-run", path(), "0"});
    QVERIFY(remove.out.endsWith("removed  000  t  h\nremoved       " + picturePath("000001.PNG") + '\n'));
    QCOMPARE(tlvctl({"bookmarks", "rename", "--dry-run", path(), "0", "new"}).code, 0);
    QCOMPARE(tlvctl({"bookmarks", "thumbnail", "--dry-run", path(), "0", path() + "page.png"}).code, 0);
    QCOMPARE(readFile(filePath()), file);
    QCOMPARE(pictures(), QStringList{"000001.PNG"});
}

void tst_tlvctl_bookmarks::missingPicturesStayMissing()
{
    // The store would make "thumbnail/" of them.
    writeFile(filePath(), START + record(0, "h", "t", "") + record(1, "h", "t", "000001.PNG") + END);
    QCOMPARE(tlvctl({"bookmarks", "rename", path(), "1", "new"}).code, 0);
    QCOMPARE(readFile(filePath()),
             START + record(0, "h", "t", "") + record(1, "h", "new", "000001.PNG") + END);
}

void tst_tlvctl_bookmarks::tooLongADirectoryIsRefused()
{
    for (const int size : {236, 237}) {
        const QString dir = path() + QString(size - path().toUtf8().size() - 1, 'd') + '/';
        QVERIFY(QDir().mkdir(dir));
        const QByteArray file = START + record(0, "h", "t", "000001.PNG") + END;
        writeFile(dir + "bookmark.xml", file);
        const Run run = tlvctl({"bookmarks", "add", dir, "http://b/"});
        QCOMPARE(run.code, size == 236 ? 0 : 1);
        if (size == 236) {
            QVERIFY(readFile(dir + "bookmark.xml").contains("000001.PNG"));
        } else {
            QVERIFY(complains(run, dir, {"237 bytes", "236", "\".\""}));
            QCOMPARE(readFile(dir + "bookmark.xml"), file);
        }
    }
}

void tst_tlvctl_bookmarks::damagedFileIsNotReplaced()
{
    const QByteArray file = START + record(0, "h", "t", "") + "<bookmark></wrong>";
    writeFile(filePath(), file);
    const Run run = tlvctl({"bookmarks", "add", path(), "http://b/"});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, filePath(), {"damaged at line 8", "--force"}));
    QCOMPARE(readFile(filePath()), file);
    QCOMPARE(tlvctl({"bookmarks", "add", "--force", path(), "http://b/"}).code, 0);
}

// --- rename -----------------------------------------------------------------------------------------------

void tst_tlvctl_bookmarks::renamedBookmarkKeepsTheRest()
{
    writePicture("000001.PNG");
    writeFile(filePath(), START + record(0, "a", "x", "") + record(1, "b", "y", "000001.PNG") + END);
    const Run run = tlvctl({"bookmarks", "rename", path(), "001", "new"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, QByteArray("renamed  001  new  b\n"));
    QCOMPARE(readFile(filePath()),
             START + record(0, "a", "x", "") + record(1, "b", "new", "000001.PNG") + END);
    QCOMPARE(pictures(), QStringList{"000001.PNG"});
}

void tst_tlvctl_bookmarks::renameToTheSameChangesNothing()
{
    writeFile(filePath(), "<bookmarks><bookmark><title>t</title></bookmark></bookmarks>");
    const Run run = tlvctl({"bookmarks", "rename", path(), "0", "t"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, QByteArray("as is    000  t  \n"));
    QCOMPARE(readFile(filePath()),
             QByteArray("<bookmarks><bookmark><title>t</title></bookmark></bookmarks>"));
}

void tst_tlvctl_bookmarks::renameRefusesALongTitle()
{
    const QByteArray file = START + record(0, "h", "t", "") + END;
    writeFile(filePath(), file);
    const Run run = tlvctl({"bookmarks", "rename", path(), "0", QString(101, 'x')});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, filePath(), {"101 bytes", "--clip"}));
    QCOMPARE(readFile(filePath()), file);
    QCOMPARE(tlvctl({"bookmarks", "rename", "--clip", path(), "0", QString(101, 'x')}).code, 0);
    QCOMPARE(readFile(filePath()), START + record(0, "h", QByteArray(100, 'x'), "") + END);
}

void tst_tlvctl_bookmarks::renameOfAnAbsentNumberFails()
{
    writeFile(filePath(), START + record(0, "h", "t", "") + END);
    const Run run = tlvctl({"bookmarks", "rename", path(), "1", "x"});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, filePath(), {"nothing was changed", "there is no record 001"}));
}

// --- remove -----------------------------------------------------------------------------------------------

void tst_tlvctl_bookmarks::removeTakesThePictureToo()
{
    for (const char* name : {"000001.PNG", "000002.PNG", "000003.PNG"})
        writePicture(name);
    writeFile(filePath(), START + record(0, "c", "z", "000003.PNG") + record(1, "b", "y", "000002.PNG") +
                              record(2, "a", "x", "000001.PNG") + END);
    const Run run = tlvctl({"bookmarks", "remove", path(), "000", "2"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, "removed  000  z  c\nremoved  002  x  a\nremoved       " + picturePath("000003.PNG") +
                          "\nremoved       " + picturePath("000001.PNG") + '\n');
    QCOMPARE(readFile(filePath()), START + record(0, "b", "y", "000002.PNG") + END);
    QCOMPARE(pictures(), QStringList{"000002.PNG"});
}

void tst_tlvctl_bookmarks::removeKeepsAPictureThatIsShown()
{
    writePicture("000001.PNG");
    writeFile(filePath(),
              START + record(0, "b", "y", "000001.PNG") + record(1, "a", "x", "000001.PNG") + END);
    QCOMPARE(tlvctl({"bookmarks", "remove", path(), "0"}).out, QByteArray("removed  000  y  b\n"));
    QCOMPARE(pictures(), QStringList{"000001.PNG"});
}

void tst_tlvctl_bookmarks::removeKeepsPicturesOnDemand()
{
    writePicture("000001.PNG");
    writeFile(filePath(), START + record(0, "b", "y", "000001.PNG") + END);
    QCOMPARE(tlvctl({"bookmarks", "remove", "--keep-image", path(), "0"}).code, 0);
    QCOMPARE(pictures(), QStringList{"000001.PNG"});
}

void tst_tlvctl_bookmarks::removeNeedsAllNumbers()
{
    const QByteArray file = START + record(0, "b", "y", "000001.PNG") + END;
    writePicture("000001.PNG");
    writeFile(filePath(), file);
    const Run run = tlvctl({"bookmarks", "remove", path(), "0", "1"});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, filePath(), {"nothing was changed", "there is no record 001"}));
    QCOMPARE(readFile(filePath()), file);
    QCOMPARE(pictures(), QStringList{"000001.PNG"});
}

// --- thumbnail --------------------------------------------------------------------------------------------

void tst_tlvctl_bookmarks::thumbnailReplacesThePicture()
{
    writePicture("000001.PNG");
    writePicture("../page.png", 10, 10);
    writeFile(filePath(), START + record(0, "b", "y", "") + record(1, "a", "x", "000001.PNG") + END);
    const Run run = tlvctl({"bookmarks", "thumbnail", path(), "1", path() + "page.png"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, "changed  001  x  a\nadded         " + picturePath("000002.PNG") + "\nremoved       " +
                          picturePath("000001.PNG") + '\n');
    QCOMPARE(readFile(filePath()), START + record(0, "b", "y", "") + record(1, "a", "x", "000002.PNG") + END);
    QCOMPARE(pictures(), QStringList{"000002.PNG"});

    // A bookmark that had none gets one.
    QCOMPARE(tlvctl({"bookmarks", "thumbnail", path(), "0", path() + "page.png"}).code, 0);
    QCOMPARE(readFile(filePath()),
             START + record(0, "b", "y", "000003.PNG") + record(1, "a", "x", "000002.PNG") + END);
}

void tst_tlvctl_bookmarks::thumbnailNeedsItsElement()
{
    const QByteArray file = "<bookmarks><bookmark><title>t</title></bookmark></bookmarks>";
    writePicture("../page.png");
    writeFile(filePath(), file);
    const Run run = tlvctl({"bookmarks", "thumbnail", path(), "0", path() + "page.png"});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, filePath(), {"bookmark 000 has no element \"thumbnail\"", "add it again"}));
    QCOMPARE(readFile(filePath()), file);
    QCOMPARE(pictures(), QStringList());
}

void tst_tlvctl_bookmarks::wrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("no directory") << QStringList{"list"};
    QTest::newRow("no address") << QStringList{"add", "."};
    QTest::newRow("no number") << QStringList{"remove", "."};
    QTest::newRow("a word for a number") << QStringList{"remove", ".", "one"};
    QTest::newRow("a number below 0") << QStringList{"show", ".", "--", "-1"};
    QTest::newRow("no title") << QStringList{"rename", ".", "0"};
    QTest::newRow("no size") << QStringList{"add", ".", "h", "--image-size", "large"};
    QTest::newRow("an empty size") << QStringList{"add", ".", "h", "--image-size", "0x10"};
}

void tst_tlvctl_bookmarks::wrongUsage()
{
    QFETCH(QStringList, arguments);
    const Run run = tlvctl(QStringList("bookmarks") + arguments);
    QCOMPARE(run.code, 2);
    QCOMPARE(run.out, QByteArray());
    QVERIFY(run.err.contains("--help"));
}

TLVCTL_TEST_MAIN(tst_tlvctl_bookmarks)
#include "tst_tlvctl_bookmarks.moc"
