#include "tests/stores/HistoryTest.h"

#include <cstdlib>
#include <ctime>

/// Central Europe's rules for daylight saving, told in full, so that they hold without a time zone database.
static const char CENTRAL_EUROPE[] = "CET-1CEST,M3.5.0,M10.5.0/3";

/// Sets the process's time zone for a while.
class TimeZone
{
public:
    explicit TimeZone(const QByteArray& zone) : wasSet_(std::getenv("TZ")), before_(qgetenv("TZ"))
    {
        set(&zone);
    }
    ~TimeZone() { set(wasSet_ ? &before_ : nullptr); }

private:
    Q_DISABLE_COPY(TimeZone)
    static void set(const QByteArray* pc_zone)
    {
        if (pc_zone)
            setenv("TZ", pc_zone->constData(), 1);
        else
            unsetenv("TZ");
        tzset();
    }
    bool wasSet_;
    QByteArray before_;
};

class tst_TVNC_HistorySetting_times : public HistoryTest
{
    Q_OBJECT

private slots:
    void init() { begin(); }

    void laterVisitIsLess();
    void timeIsReadAsQtReadsIt_data();
    void timeIsReadAsQtReadsIt();
    void timeIsWrittenAsQtWritesIt_data();
    void timeIsWrittenAsQtWritesIt();
    void timeIsStoredAsItStands();
    void skippedTimeKeepsItsTextAndPlace_data();
    void skippedTimeKeepsItsTextAndPlace();
    void repeatedHourIsOrderedByTheClock();
};

void tst_TVNC_HistorySetting_times::laterVisitIsLess()
{
    const TVNS_History earlier = visit("z", 10, 15);
    const TVNS_History later = visit("a", 10, 16);
    QVERIFY(later < earlier);
    QVERIFY(!(earlier < later));
    QVERIFY(!(later < later));
    const TVNS_History tomorrow = visit(QString(), QString(), at(2011, 4, 13, 0, 0));
    QVERIFY(tomorrow < later);
    QVERIFY(!(later < tomorrow));
    // Seconds count as long as they are there.
    const TVNS_History second = visit(QString(), QString(), at(2011, 4, 12, 10, 15, 1));
    QVERIFY(second < earlier);
    // Times of different kinds are compared as points in time.
    const TimeZone zone(CENTRAL_EUROPE);
    const TVNS_History local = visit(QString(), QString(), at(2011, 4, 12, 10, 15));
    const TVNS_History utc =
        visit(QString(), QString(), QDateTime(QDate(2011, 4, 12), QTime(8, 16), Qt::UTC));
    QVERIFY(utc < local);
    QVERIFY(!(local < utc));
    const TVNS_History same =
        visit(QString(), QString(), QDateTime(QDate(2011, 4, 12), QTime(8, 15), Qt::UTC));
    QVERIFY(!(same < local) && !(local < same));
    // No time at all is earlier than any.
    const TVNS_History never;
    const TVNS_History longAgo = visit(QString(), QString(), at(1901, 1, 1, 0, 0));
    QVERIFY(longAgo < never);
    QVERIFY(!(never < longAgo));
    QVERIFY(!(never < never));
}

void tst_TVNC_HistorySetting_times::timeIsReadAsQtReadsIt_data()
{
    QTest::addColumn<QString>("text");
    const char* const pc_texts[] = {"2011/04/12 10:15",
                                    "1000/01/01 00:00",
                                    "0999/12/31 23:59",
                                    "0100/01/01 00:00",
                                    "0099/01/01 00:00",
                                    "0000/01/01 00:00",
                                    "7999/12/31 23:59",
                                    "8000/01/01 00:00",
                                    "9999/12/31 23:59",
                                    "10000/01/01 00:00",
                                    "2012/02/29 12:00",
                                    "2011/02/29 12:00",
                                    "2011/13/01 12:00",
                                    "2011/00/01 12:00",
                                    "2011/01/00 12:00",
                                    "2011/04/12 23:59",
                                    "2011/04/12 24:00",
                                    "2011/04/12 10:60",
                                    "2011/04/12 1O:15",
                                    "2011-04-12 10:15",
                                    "2011/04-12 10:15",
                                    "2011/04/12T10:15",
                                    "2011/04/12 10.15",
                                    "2011/4/12 10:15",
                                    "2011/04/12 9:15",
                                    "2011/04/12 10:15:30",
                                    "2011/04/12",
                                    " 2011/04/12 10:15",
                                    "2011/04/12 10:15 ",
                                    "+011/04/12 10:15",
                                    "-011/04/12 10:15",
                                    "2011/+4/12 10:15",
                                    "2011/ 4/12 10:15",
                                    "1582/10/10 10:10",
                                    "２０11/04/12 10:15",
                                    "yesterday at noon",
                                    ""};
    for (size_t i = 0; i < sizeof pc_texts / sizeof *pc_texts; ++i)
        QTest::newRow(*pc_texts[i] ? pc_texts[i] : "empty") << utf8(pc_texts[i]);
}

void tst_TVNC_HistorySetting_times::timeIsReadAsQtReadsIt()
{
    QFETCH(QString, text);
    const TimeZone zone("UTC0"); // where no time is skipped
    record("a", 10, 15);
    QString name = utf8("dateTime");
    history_->getXMLRootNode()->getXMLNodeChildren().at(0)->getXMLNodeChildByName(name)->setText(text);
    const QDateTime expected = QDateTime::fromString(text, utf8("yyyy/MM/dd hh:mm"));
    TVNS_History out = visit("before", 1, 2);
    QVERIFY(history_->getHistory(0, &out));
    QCOMPARE(out.dateTime.isValid(), expected.isValid());
    QCOMPARE(out.dateTime.date(), expected.date());
    QCOMPARE(out.dateTime.time(), expected.time());
    QCOMPARE(out.dateTime.timeSpec(), expected.timeSpec());
}

void tst_TVNC_HistorySetting_times::timeIsWrittenAsQtWritesIt_data()
{
    QTest::addColumn<QDate>("date");
    QTest::addColumn<QTime>("time");
    QTest::newRow("usual") << QDate(2011, 4, 2) << QTime(3, 4);
    QTest::newRow("seconds") << QDate(2011, 4, 12) << QTime(23, 59, 59, 999);
    QTest::newRow("year 999") << QDate(999, 12, 31) << QTime(1, 2);
    QTest::newRow("year 1000") << QDate(1000, 1, 1) << QTime(1, 2);
    QTest::newRow("year 1") << QDate(1, 1, 1) << QTime(1, 2);
    QTest::newRow("year 9999") << QDate(9999, 12, 31) << QTime(1, 2);
    QTest::newRow("year 10000") << QDate(10000, 1, 1) << QTime(1, 2);
    QTest::newRow("before our era") << QDate(-44, 3, 15) << QTime(1, 2);
    QTest::newRow("no date") << QDate() << QTime(1, 2);
    QTest::newRow("no time") << QDate(2011, 4, 12) << QTime(); // midnight for Qt
    QTest::newRow("neither") << QDate() << QTime();
}

void tst_TVNC_HistorySetting_times::timeIsWrittenAsQtWritesIt()
{
    QFETCH(QDate, date);
    QFETCH(QTime, time);
    const TimeZone zone("UTC0");
    const QDateTime dateTime(date, time);
    TVNS_History history = visit(QString(), QString(), dateTime);
    history_->setHistory(&history);
    QCOMPARE(dateTimeText(0), dateTime.toString(utf8("yyyy/MM/dd hh:mm")));
}

void tst_TVNC_HistorySetting_times::timeIsStoredAsItStands()
{
    // Also one that is told in UTC: it comes back as the local time of the same figures.
    const TimeZone zone(CENTRAL_EUROPE);
    TVNS_History history = visit(QString(), QString(), QDateTime(QDate(2011, 4, 12), QTime(10, 15), Qt::UTC));
    history_->setHistory(&history);
    QCOMPARE(dateTimeText(0), utf8("2011/04/12 10:15"));
    TVNS_History out;
    QVERIFY(history_->getHistory(0, &out));
    QCOMPARE(out.dateTime, at(2011, 4, 12, 10, 15));
    QCOMPARE(out.dateTime.timeSpec(), Qt::LocalTime);
}

void tst_TVNC_HistorySetting_times::skippedTimeKeepsItsTextAndPlace_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::newRow("Berlin") << QByteArray("Europe/Berlin");
    QTest::newRow("Central Europe") << QByteArray(CENTRAL_EUROPE);
    QTest::newRow("none skipped") << QByteArray("UTC0");
}

void tst_TVNC_HistorySetting_times::skippedTimeKeepsItsTextAndPlace()
{
    QFETCH(QByteArray, zone);
    const TimeZone changed(zone);
    // In the night of the change, the clock goes from 01:59 to 03:00.
    loadFrom(pageInfo("a", "2026/03/29 02:30") + pageInfo("b", "2026/03/29 03:20") +
             pageInfo("c", "2026/03/29 01:50") + pageInfo("d", "2026/03/29 02:00") +
             pageInfo("e", "2026/03/29 03:00") + pageInfo("f", "2026/03/29 02:59") +
             pageInfo("g", "2026/03/29 01:20"));
    QCOMPARE(urls(), utf8("b e f a d c g"));
    QCOMPARE(dateTimeText(2), utf8("2026/03/29 02:59"));
    QCOMPARE(dateTimeText(3), utf8("2026/03/29 02:30"));
    QCOMPARE(dateTimeText(4), utf8("2026/03/29 02:00"));

    // The record carries it to the browser and back.
    TVNS_History out;
    QVERIFY(history_->getHistory(3, &out));
    QCOMPARE(out.dateTime.date(), QDate(2026, 3, 29));
    QCOMPARE(out.dateTime.time(), QTime(2, 30));
    QCOMPARE(out.dateTime.timeSpec(), Qt::LocalTime);
    history_->changeHistory(6, out);
    QCOMPARE(dateTimeText(6), utf8("2026/03/29 02:30"));
    TVNS_History copy = out;
    history_->setHistory(&copy);
    QCOMPARE(dateTimeText(0), utf8("2026/03/29 02:30"));
    save();
    QCOMPARE(readFile(path()).count("<dateTime>2026/03/29 02:30</dateTime>"), 3);

    const TVNS_History before = visit(QString(), QString(), at(2026, 3, 29, 1, 59));
    const TVNS_History after = visit(QString(), QString(), at(2026, 3, 29, 3, 0));
    QVERIFY(after < out && !(out < after));
    QVERIFY(out < before && !(before < out));
    QVERIFY(!(out < copy) && !(copy < out));
}

void tst_TVNC_HistorySetting_times::repeatedHourIsOrderedByTheClock()
{
    // In this night the clock shows 02:00 to 02:59 twice; the file does not tell which one was meant.
    const TimeZone zone(CENTRAL_EUROPE);
    QByteArray records;
    QStringList expected;
    for (int i = 0; i < 60; ++i) {
        const QByteArray minute = QByteArray::number((i * 7) % 60).rightJustified(2, '0');
        // Dates in summer and winter between them, so that conversions would not always guess the same.
        records += pageInfo(minute, "2026/10/25 02:" + minute) +
                   pageInfo("x", i % 2 ? "2025/01/01 12:00" : "2025/07/01 12:00");
        expected.prepend(QString::number(i).rightJustified(2, QLatin1Char('0')));
    }
    loadFrom(records);
    const QStringList sorted = urls().split(utf8(" "));
    QVERIFY(QStringList(sorted.mid(0, 60)) == expected);
}

TLVLIB_TEST_MAIN(tst_TVNC_HistorySetting_times)
#include "tst_TVNC_HistorySetting_times.moc"
