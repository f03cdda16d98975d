#include "tests/browser/RowFollower.h"
#include "tests/support/Random.h"
#include "tests/support/TestSupport.h"

#include <tlvlib/browser/BookmarkModel.h>
#include <tlvlib/files/TVNG_SafeSave.h>

#include <QtCore/QSortFilterProxyModel>

using Tlv::BookmarkModel;

class tst_BookmarkModel : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { TVNG_SetSafeSave(0); }

    void newBookmarkStandsInFront();
    void addressIsThereOnce();
    void refusedAdditionsTellWhy();
    void titleIsCutAndCanBeEdited();
    void picturesAreReadWhenTheyAreShown();
    void bookmarkWithoutPictureComesBackWithoutOne();
    void pictureGoesWithTheSave();
    void pictureStaysWhileTheSaveFails();
    void pictureOfTwoBookmarksGoesWithTheLast();
    void newPictureTakesNoOtherPicturesPlace();
    void fileElsewhereIsNoPicture();
    void pictureThatCannotBeWrittenIsTold();
    void rolesHaveNames();
    void proxiesSortAndSearch();
    void randomChanges_data();
    void randomChanges();
    void recordsBehindTheNumberedOnesComeUp();

private:
    QString dir() const { return dir_->path(); }
    QStringList pictures() const { return QDir(dir() + "thumbnail").entryList(QDir::Files, QDir::Name); }
    static QImage picture(Qt::GlobalColor colour)
    {
        QImage image(BookmarkModel::PictureSize, QImage::Format_RGB32);
        image.fill(colour);
        return image;
    }
    /// A file with so many bookmarks, "http://example.org/0" in front.
    void writeBookmarks(int count);

    std::unique_ptr<TempDir> dir_;
};

void tst_BookmarkModel::init()
{
    dir_ = std::make_unique<TempDir>();
    QVERIFY(QDir().mkpath(dir() + "thumbnail"));
}

void tst_BookmarkModel::writeBookmarks(int count)
{
    QByteArray xml = "<bookmarks docInfo=\"1.0\">";
    for (int i = 0; i < count; ++i)
        xml += "<bookmark><href>http://example.org/" + QByteArray::number(i) + "</href><title>Page " +
               QByteArray::number(i) + "</title><thumbnail></thumbnail></bookmark>";
    writeFile(dir() + "bookmark.xml", xml + "</bookmarks>");
}

void tst_BookmarkModel::newBookmarkStandsInFront()
{
    BookmarkModel model;
    model.load(dir());
    QSignalSpy changes(&model, &BookmarkModel::changed);
    QVERIFY(model.add("Maps", "http://example.org/maps"));
    QVERIFY(model.add("News", "http://example.org/news", picture(Qt::red)));
    QCOMPARE(changes.count(), 2);
    QCOMPARE(RowFollower::rowsOf(model),
             (QList<QStringList>{{"News", "http://example.org/news"}, {"Maps", "http://example.org/maps"}}));
    QCOMPARE(model.save(dir()), QString());
    BookmarkModel again;
    again.load(dir());
    QCOMPARE(RowFollower::rowsOf(again), RowFollower::rowsOf(model));
    QCOMPARE(again.picture(0).pixelColor(1, 1), QColor(Qt::red));
}

void tst_BookmarkModel::addressIsThereOnce()
{
    BookmarkModel model;
    model.load(dir());
    QVERIFY(model.add("Maps", "http://example.org/maps"));
    QVERIFY(model.add("News", "http://example.org/news"));
    QVERIFY(model.add("More maps", "http://example.org/maps"));
    QCOMPARE(RowFollower::rowsOf(model), (QList<QStringList>{{"More maps", "http://example.org/maps"},
                                                             {"News", "http://example.org/news"}}));
    QCOMPARE(model.find("http://example.org/news"), 1);
    QCOMPARE(model.find("http://example.org/News"), -1);
}

void tst_BookmarkModel::refusedAdditionsTellWhy()
{
    BookmarkModel model;
    model.setMaximum(2);
    model.load(dir());
    const QString longest = "http://" + QString(249, 'x');
    QVERIFY(!model.add("T", longest + 'y', picture(Qt::red)));
    QCOMPARE(model.errorString(),
             QString("This address is too long for a bookmark: it has 257 bytes, and 256 are the most."));
    QCOMPARE(pictures(), QStringList());
    QVERIFY(model.add("T", longest));
    QCOMPARE(model.errorString(), QString());
    QVERIFY(model.add("T", "b"));
    QVERIFY(!model.add("T", "c"));
    QCOMPARE(model.errorString(), QString("There are 2 bookmarks already. Remove one first."));
    QVERIFY(model.add("T", "b")); // takes the place of its own
    QCOMPARE(model.count(), 2);
    model.setMaximum(0);
    QCOMPARE(model.maximum(), 1);
    model.setMaximum(1000);
    QCOMPARE(model.maximum(), 999);
}

void tst_BookmarkModel::titleIsCutAndCanBeEdited()
{
    BookmarkModel model;
    model.load(dir());
    QVERIFY(model.add(QString(101, 't'), "a"));
    const QModelIndex title = model.index(0, BookmarkModel::TitleColumn);
    QCOMPARE(title.data().toString(), QString(100, 't'));
    QVERIFY(title.flags() & Qt::ItemIsEditable);
    QVERIFY(!(model.index(0, BookmarkModel::UrlColumn).flags() & Qt::ItemIsEditable));
    QVERIFY(model.setData(title, "<b>Title</b>"));
    QCOMPARE(title.data().toString(), QString("<b>Title</b>"));
    QVERIFY(model.rename(0, QString(34, QChar(0x66F8))));
    QCOMPARE(title.data().toString(), QString(33, QChar(0x66F8))); // 99 of 100 bytes
    QVERIFY(!model.setData(model.index(0, BookmarkModel::UrlColumn), "b"));
    QVERIFY(!model.rename(1, "x"));
    QVERIFY(!model.rename(-1, "x"));
    QVERIFY(model.add("T", "<i>"));
    QCOMPARE(model.index(0, 0).data(Qt::ToolTipRole).toString(), QString("&lt;i&gt;"));
}

void tst_BookmarkModel::picturesAreReadWhenTheyAreShown()
{
    BookmarkModel model;
    model.load(dir());
    QVERIFY(model.add("A", "a", picture(Qt::red)));
    QCOMPARE(pictures(), QStringList{"000001.PNG"});
    // Somebody else's file: nobody has looked at it yet.
    QVERIFY(picture(Qt::blue).save(dir() + "thumbnail/000001.PNG"));
    const QModelIndex index = model.index(0, 0);
    QCOMPARE(index.data(Qt::DecorationRole).value<QImage>().pixelColor(1, 1), QColor(Qt::blue));
    QCOMPARE(index.data(BookmarkModel::PictureUrlRole).toUrl(),
             QUrl::fromLocalFile(dir() + "thumbnail/000001.PNG"));
    QVERIFY(picture(Qt::green).save(dir() + "thumbnail/000001.PNG"));
    QCOMPARE(index.data(Qt::DecorationRole).value<QImage>().pixelColor(1, 1), QColor(Qt::blue));
    writeFile(dir() + "thumbnail/000001.PNG", "no picture");
    QCOMPARE(model.save(dir()), QString());
    model.load(dir());
    QVERIFY(model.picture(0).isNull());
    QCOMPARE(BookmarkModel::pictureOf(QImage(800, 480, QImage::Format_RGB32)).size(), QSize(160, 120));
}

void tst_BookmarkModel::bookmarkWithoutPictureComesBackWithoutOne()
{
    BookmarkModel model;
    model.load(dir());
    QVERIFY(model.add("A", "a"));
    QCOMPARE(model.index(0, 0).data(BookmarkModel::PictureUrlRole).toUrl(), QUrl());
    QCOMPARE(model.save(dir()), QString());
    model.load(dir());
    QCOMPARE(model.index(0, 0).data(BookmarkModel::PictureUrlRole).toUrl(), QUrl());
    QVERIFY(model.picture(0).isNull());
}

void tst_BookmarkModel::pictureGoesWithTheSave()
{
    BookmarkModel model;
    model.load(dir());
    QVERIFY(model.add("A", "a", picture(Qt::red)));
    QVERIFY(model.add("B", "b", picture(Qt::blue)));
    QCOMPARE(model.save(dir()), QString());
    model.remove(1);
    // Until the list is written, the file names the picture.
    QCOMPARE(pictures(), (QStringList{"000001.PNG", "000002.PNG"}));
    QCOMPARE(model.save(dir()), QString());
    QCOMPARE(pictures(), QStringList{"000002.PNG"});
}

void tst_BookmarkModel::pictureStaysWhileTheSaveFails()
{
    TVNG_SetSafeSave(1); // failures are only found out with it
    BookmarkModel model;
    model.load(dir());
    QVERIFY(model.add("A", "a", picture(Qt::red)));
    QCOMPARE(model.save(dir()), QString());
    const QString obstacle = dir() + "bookmark.xml.tlvsave"; // no file can be made under this name
    QVERIFY(QDir().mkpath(obstacle));
    model.remove(0);
    QVERIFY(!model.save(dir()).isEmpty());
    QCOMPARE(pictures(), QStringList{"000001.PNG"});
    QVERIFY(QDir().rmdir(obstacle));
    QCOMPARE(model.save(dir()), QString());
    QCOMPARE(pictures(), QStringList());
}

// Only files that somebody has edited have such bookmarks.
void tst_BookmarkModel::pictureOfTwoBookmarksGoesWithTheLast()
{
    BookmarkModel model;
    model.load(dir());
    QVERIFY(model.add("A", "a", picture(Qt::red)));
    QCOMPARE(model.save(dir()), QString());
    QByteArray file = readFile(dir() + "bookmark.xml");
    const auto begin = file.indexOf("<bookmark ");
    const auto end = file.indexOf("</bookmark>") + 11;
    file.insert(end, file.mid(begin, end - begin).replace(">a<", ">b<"));
    writeFile(dir() + "bookmark.xml", file);

    model.load(dir());
    QCOMPARE(model.count(), 2);
    model.remove(0);
    QCOMPARE(model.save(dir()), QString());
    QVERIFY(!model.picture(0).isNull());
    QCOMPARE(pictures(), QStringList{"000001.PNG"});
    model.remove(0);
    QCOMPARE(model.save(dir()), QString());
    QCOMPARE(pictures(), QStringList());
}

// The store counts the pictures up to the first bookmark that has no element for one.
void tst_BookmarkModel::newPictureTakesNoOtherPicturesPlace()
{
    BookmarkModel model;
    model.load(dir());
    QVERIFY(model.add("A", "a", picture(Qt::red)));
    QVERIFY(model.add("B", "b", picture(Qt::green)));
    QCOMPARE(model.save(dir()), QString());
    QByteArray file = readFile(dir() + "bookmark.xml");
    file.insert(file.indexOf("<bookmark "), "<bookmark><href>c</href><title>C</title></bookmark>");
    writeFile(dir() + "bookmark.xml", file);

    model.load(dir());
    QCOMPARE(model.count(), 3);
    QVERIFY(model.add("D", "d", picture(Qt::blue)));
    QCOMPARE(pictures(), (QStringList{"000001.PNG", "000002.PNG", "000003.PNG"}));
    QCOMPARE(QImage(dir() + "thumbnail/000001.PNG").pixelColor(1, 1), QColor(Qt::red));
    QCOMPARE(QImage(dir() + "thumbnail/000002.PNG").pixelColor(1, 1), QColor(Qt::green));
}

void tst_BookmarkModel::fileElsewhereIsNoPicture()
{
    writeFile(dir() + "visit.xml", "visits");
    writeFile(dir() + "bookmark.xml", "<bookmarks><bookmark><href>a</href><title>A</title>"
                                      "<thumbnail>../visit.xml</thumbnail></bookmark></bookmarks>");
    BookmarkModel model;
    model.load(dir());
    QCOMPARE(model.count(), 1);
    model.remove(0);
    QCOMPARE(model.save(dir()), QString());
    QCOMPARE(readFile(dir() + "visit.xml"), QByteArray("visits"));
}

void tst_BookmarkModel::pictureThatCannotBeWrittenIsTold()
{
    BookmarkModel model;
    model.load(dir());
    QVERIFY(QDir(dir() + "thumbnail").removeRecursively());
    QSignalSpy errors(&model, &BookmarkModel::pictureNotSaved);
    QVERIFY(model.add("A", "a", picture(Qt::red)));
    QCOMPARE(errors.count(), 1);
    QVERIFY(errors.first().first().toString().contains("thumbnail/"));
    QCOMPARE(model.count(), 1);
    QVERIFY(model.picture(0).isNull());
}

void tst_BookmarkModel::rolesHaveNames()
{
    BookmarkModel model;
    const QHash<int, QByteArray> names = model.roleNames();
    QCOMPARE(names.value(BookmarkModel::TitleRole), QByteArray("title"));
    QCOMPARE(names.value(BookmarkModel::UrlRole), QByteArray("url"));
    QCOMPARE(names.value(BookmarkModel::PictureUrlRole), QByteArray("pictureUrl"));
    QCOMPARE(model.headerData(0, Qt::Horizontal).toString(), QString("Title"));
    QCOMPARE(model.headerData(1, Qt::Horizontal).toString(), QString("Address"));
}

void tst_BookmarkModel::proxiesSortAndSearch()
{
    BookmarkModel model;
    model.load(dir());
    for (const char* title : {"Maps", "News", "Archive"})
        QVERIFY(model.add(title, QString("http://example.org/") + title));
    QSortFilterProxyModel proxy;
    proxy.setSourceModel(&model);
    proxy.sort(0);
    QCOMPARE(proxy.index(0, 0).data().toString(), QString("Archive"));
    QCOMPARE(proxy.index(2, 0).data().toString(), QString("News"));
    proxy.setFilterRole(BookmarkModel::UrlRole);
    proxy.setFilterFixedString("/Maps");
    QCOMPARE(proxy.rowCount(), 1);
    QVERIFY(proxy.removeRows(0, 1));
    QCOMPARE(model.find("http://example.org/Maps"), -1);
}

void tst_BookmarkModel::randomChanges_data()
{
    QTest::addColumn<int>("stored");
    QTest::newRow("empty") << 0;
    QTest::newRow("more than are numbered") << 1010;
}

void tst_BookmarkModel::randomChanges()
{
    QFETCH(int, stored);
    writeBookmarks(stored);
    BookmarkModel model;
    model.setMaximum(stored > 0 ? 999 : 20);
    model.load(dir());
    RowFollower view(model);
    Random random(4711);
    for (int i = 0; i < 300; ++i) {
        const int row = model.count() > 0 ? static_cast<int>(random.next(quint32(model.count()))) : 0;
        const QString url = QString::number(random.next(30));
        switch (random.next(8)) {
        case 0:
            model.removeRows(row, 1 + static_cast<int>(random.next(3)));
            break;
        case 1:
            model.rename(row, "Title " + url);
            break;
        case 2:
            model.remove(row);
            break;
        default:
            model.add("Page", url);
        }
        QVERIFY(i % 10 > 0 || view.agrees());
    }
    QVERIFY(view.agrees());
    QCOMPARE(view.resets(), 0);
    // What the model shows is what the store keeps.
    QCOMPARE(model.save(dir()), QString());
    BookmarkModel again;
    again.load(dir());
    QCOMPARE(RowFollower::rowsOf(again), RowFollower::rowsOf(model));
    QSignalSpy counts(&model, &BookmarkModel::countChanged);
    model.clear();
    QCOMPARE(model.count(), 0);
    QVERIFY(view.agrees());
    QVERIFY(counts.count() > 0);
}

void tst_BookmarkModel::recordsBehindTheNumberedOnesComeUp()
{
    writeBookmarks(1001);
    BookmarkModel model;
    model.setMaximum(999);
    model.load(dir());
    RowFollower view(model);
    QCOMPARE(model.count(), 999);
    QVERIFY(!model.add("One more", "new"));
    model.remove(0);
    QCOMPARE(model.count(), 999);
    QCOMPARE(model.index(998, 1).data().toString(), QString("http://example.org/999"));
    QVERIFY(model.removeRows(0, 2));
    QCOMPARE(model.count(), 998);
    QCOMPARE(model.index(997, 1).data().toString(), QString("http://example.org/1000"));
    QVERIFY(view.agrees());
}

TLVLIB_TEST_MAIN(tst_BookmarkModel)
#include "tst_BookmarkModel.moc"
