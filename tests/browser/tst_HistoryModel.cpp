#include "tests/browser/RowFollower.h"
#include "tests/support/Random.h"
#include "tests/support/TestSupport.h"

#include <tlvlib/browser/HistoryModel.h>

#include <QtCore/QSortFilterProxyModel>

using Tlv::HistoryModel;

class tst_HistoryModel : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void visitStandsInFrontWithDateAndTime();
    void revisitedPageMoves();
    void oldestGoesForTheNext();
    void longerFileStaysAsLongAsItIs();
    void lateTitle();
    void titleThatIsThereChangesNothing();
    void skippedHourIsShown();
    void rolesHaveNames();
    void proxiesSortAndSearch();
    void randomChanges_data();
    void randomChanges();

private:
    QString dir() const { return dir_->path(); }
    static QDateTime at(int minute)
    {
        return QDateTime(QDate(2011, 4, 12), QTime(0, 0)).addSecs(60 * minute);
    }
    static QString url(int number) { return QString("http://example.org/%1").arg(number); }

    std::unique_ptr<TempDir> dir_;
};

void tst_HistoryModel::init()
{
    dir_ = std::make_unique<TempDir>();
}

void tst_HistoryModel::visitStandsInFrontWithDateAndTime()
{
    HistoryModel model;
    model.load(dir());
    QSignalSpy changes(&model, &HistoryModel::changed);
    model.visit(url(1), "One", at(61));
    model.visit(url(2), "Two", at(62));
    QCOMPARE(changes.count(), 2);
    QCOMPARE(RowFollower::rowsOf(model),
             (QList<QStringList>{{"2011-04-12 01:02", "Two", url(2)}, {"2011-04-12 01:01", "One", url(1)}}));
    QCOMPARE(model.index(0, 0).data(HistoryModel::DateTimeRole).toDateTime(), at(62));
    model.visit(url(3), "Three"); // now
    QVERIFY(model.index(0, 0).data(HistoryModel::DateTimeRole).toDateTime().date().year() >= 2026);
    QCOMPARE(model.save(dir()), QString());
    HistoryModel again;
    again.load(dir());
    QCOMPARE(RowFollower::rowsOf(again), RowFollower::rowsOf(model));
}

void tst_HistoryModel::revisitedPageMoves()
{
    HistoryModel model;
    model.load(dir());
    for (int i = 0; i < 3; ++i)
        model.visit(url(i), "Page", at(i));
    QSignalSpy moves(&model, &HistoryModel::rowsMoved);
    QSignalSpy insertions(&model, &HistoryModel::rowsInserted);
    RowFollower view(model);
    model.visit(url(0), "Again", at(9));
    QCOMPARE(moves.count(), 1);
    QCOMPARE(insertions.count(), 0);
    QCOMPARE(RowFollower::rowsOf(model).first(), (QStringList{"2011-04-12 00:09", "Again", url(0)}));
    QCOMPARE(model.count(), 3);
    model.visit(url(0), "And again", at(10)); // stays where it is
    QCOMPARE(moves.count(), 1);
    QCOMPARE(model.index(0, 1).data().toString(), QString("And again"));
    QVERIFY(view.agrees());
}

void tst_HistoryModel::oldestGoesForTheNext()
{
    HistoryModel model;
    model.setMaximum(3);
    model.load(dir());
    for (int i = 0; i < 3; ++i)
        model.visit(url(i), "Page", at(i));
    QCOMPARE(model.count(), 3);
    model.visit(url(3), "Page", at(3));
    QCOMPARE(model.count(), 3);
    QCOMPARE(model.find(url(0)), -1);
    QCOMPARE(model.find(url(1)), 2);
    model.visit(url(1), "Page", at(4)); // none goes for one that is there
    QCOMPARE(model.count(), 3);
}

void tst_HistoryModel::longerFileStaysAsLongAsItIs()
{
    HistoryModel model;
    model.load(dir());
    for (int i = 0; i < 6; ++i)
        model.visit(url(i), "Page", at(i));
    QCOMPARE(model.save(dir()), QString());
    model.setMaximum(3);
    model.load(dir());
    model.visit(url(9), "Page", at(9));
    QCOMPARE(model.count(), 6);
    QCOMPARE(model.find(url(3)), -1); // was number 2
}

void tst_HistoryModel::lateTitle()
{
    HistoryModel model;
    model.load(dir());
    model.visit(url(1), QString(), at(1));
    model.visit(url(2), QString(), at(2));
    QSignalSpy changes(&model, &HistoryModel::dataChanged);
    model.setTitle(url(1), "Late");
    model.setTitle(url(3), "Nobody");
    QCOMPARE(changes.count(), 1);
    QCOMPARE(model.index(1, 1).data().toString(), QString("Late"));
    QCOMPARE(model.save(dir()), QString());
    QVERIFY(readFile(dir() + "visit.xml").contains("<title>Late</title>"));
}

void tst_HistoryModel::titleThatIsThereChangesNothing()
{
    HistoryModel model;
    model.load(dir());
    model.visit("a", "Page");
    QSignalSpy changes(&model, &HistoryModel::changed);
    model.setTitle("a", "Page");
    QCOMPARE(changes.count(), 0); // nothing is written for that
    model.setTitle("a", "page");
    QCOMPARE(changes.count(), 1);
}

void tst_HistoryModel::skippedHourIsShown()
{
    // 02:30 of that night was on no clock of Berlin, and is no valid time for Qt there.
    writeFile(dir() + "visit.xml", "<history docInfo=\"1.0\"><pageInfo><title>T</title><url>u</url>"
                                   "<dateTime>2011/03/27 02:30</dateTime></pageInfo></history>");
    HistoryModel model;
    model.load(dir());
    QCOMPARE(model.index(0, 0).data().toString(), QString("2011-03-27 02:30"));
    writeFile(dir() + "visit.xml", "<history docInfo=\"1.0\"><pageInfo><title>T</title><url>u</url>"
                                   "<dateTime>never</dateTime></pageInfo></history>");
    model.load(dir());
    QCOMPARE(model.index(0, 0).data().toString(), QString());
}

void tst_HistoryModel::rolesHaveNames()
{
    HistoryModel model;
    const QHash<int, QByteArray> names = model.roleNames();
    QCOMPARE(names.value(HistoryModel::DateTimeRole), QByteArray("dateTime"));
    QCOMPARE(names.value(HistoryModel::TitleRole), QByteArray("title"));
    QCOMPARE(names.value(HistoryModel::UrlRole), QByteArray("url"));
}

void tst_HistoryModel::proxiesSortAndSearch()
{
    HistoryModel model;
    model.load(dir());
    for (int i = 0; i < 12; ++i)
        model.visit(url(i), QString("Page %1").arg(i), at(60 * i));
    QSortFilterProxyModel proxy;
    proxy.setSourceModel(&model);
    proxy.sort(HistoryModel::TimeColumn, Qt::AscendingOrder);
    QCOMPARE(proxy.index(0, HistoryModel::UrlColumn).data().toString(), url(0));
    proxy.setFilterKeyColumn(-1); // all of them
    proxy.setFilterCaseSensitivity(Qt::CaseInsensitive);
    proxy.setFilterFixedString("PAGE 1");
    QCOMPARE(proxy.rowCount(), 3); // 1, 10, 11
}

void tst_HistoryModel::randomChanges_data()
{
    QTest::addColumn<int>("stored");
    QTest::addColumn<int>("maximum");
    QTest::newRow("short") << 0 << 10;
    QTest::newRow("as many as are numbered") << 999 << 999;
    QTest::newRow("more than are numbered") << 1010 << 999;
    QTest::newRow("more than the maximum") << 1010 << 5;
}

void tst_HistoryModel::randomChanges()
{
    QFETCH(int, stored);
    QFETCH(int, maximum);
    QByteArray xml = "<history docInfo=\"1.0\">";
    for (int i = 0; i < stored; ++i)
        xml += "<pageInfo><title>Old</title><url>" + url(i).toLatin1() + "</url><dateTime>" +
               at(-i).toString("yyyy/MM/dd hh:mm").toLatin1() + "</dateTime></pageInfo>";
    writeFile(dir() + "visit.xml", xml + "</history>");
    HistoryModel model;
    model.setMaximum(maximum);
    model.load(dir());
    RowFollower view(model);
    Random random(815);
    for (int i = 1; i <= 200; ++i) {
        const int row = model.count() > 0 ? static_cast<int>(random.next(quint32(model.count()))) : 0;
        switch (random.next(8)) {
        case 0:
            model.remove(row);
            break;
        case 1:
            model.setTitle(url(static_cast<int>(random.next(40))), "New title");
            break;
        default:
            model.visit(url(static_cast<int>(random.next(40))), "Page", at(i));
        }
        QVERIFY(i % 10 > 0 || view.agrees());
        QCOMPARE(model.count(), TVNC_HistorySetting::getInstance()->getHistoryCnt());
    }
    QVERIFY(view.agrees());
    QCOMPARE(view.resets(), 0);
    QCOMPARE(model.save(dir()), QString());
    HistoryModel again;
    again.load(dir());
    QCOMPARE(RowFollower::rowsOf(again), RowFollower::rowsOf(model));
}

int main(int argc, char** argv)
{
    qputenv("TZ", "Europe/Berlin");
    QCoreApplication application(argc, argv);
    tst_HistoryModel test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_HistoryModel.moc"
