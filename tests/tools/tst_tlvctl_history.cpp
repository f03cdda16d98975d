#include "tests/tools/TlvctlRun.h"

#include <tlvlib/tlvlib.h>

#include <QtCore/QDir>
#include <QtCore/QJsonArray>

#include <memory>

namespace {

const char START[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<history docInfo=\"1.0\">\n";
const char END[] = "</history>\n";

/// A record as the store writes it.
QByteArray record(int number, const QByteArray& time, const QByteArray& title, const QByteArray& url)
{
    return "    <pageInfo id=\"" + QByteArray::number(number).rightJustified(3, '0') +
           "\">\n        <title>" + title + "</title>\n        <url>" + url + "</url>\n        <dateTime>" +
           time + "</dateTime>\n    </pageInfo>\n";
}

/// Three visits that the store wrote.
QByteArray threeVisits()
{
    return START + record(0, "2011/04/12 10:15", "Weather", "http://example.com/weather") +
           record(1, "2011/04/12 09:58", "News", "http://example.com/") +
           record(2, "2011/04/11 23:00", "Old", "http://old/") + END;
}

/// A time that goes back by a minute with each number.
QByteArray timeOf(int number)
{
    return QDateTime(QDate(2011, 4, 12), QTime(12, 0), Qt::UTC)
        .addSecs(-60 * number)
        .toString("yyyy/MM/dd hh:mm")
        .toUtf8();
}

/// So many visits, newest first, as the store writes them up to 999.
QByteArray manyVisits(int count)
{
    QByteArray xml = START;
    for (int i = 0; i < count; ++i)
        xml += record(i, timeOf(i), "T" + QByteArray::number(i), "http://" + QByteArray::number(i) + '/');
    return xml + END;
}

const char DAMAGED[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                       "<history docInfo=\"1.0\">\n"
                       "<pageInfo><title>A</title><url>http://a/</url>"
                       "<dateTime>2011/04/12 10:15</dateTime></pageInfo>\n"
                       "<pageInfo><title>B</titel>\n"
                       "</history>\n";

} // namespace

/// tlvctl history
class tst_tlvctl_history : public QObject
{
    Q_OBJECT

private slots:
    void init() { dir_ = std::make_unique<TempDir>(); }
    void cleanup() { dir_.reset(); }

    void listShowsTheVisits();
    void listWritesJson();
    void listOfMissingFileIsEmpty();
    void listIsSortedAsTheStoreSorts();
    void listTellsWhatLoadingChanges();
    void listTellsOfGapsInTheNumbering();
    void listTellsWhatLoadingDrops();
    void listShowsVisitsThatKeepNoNumber();
    void listAgreesWithTheStore();
    void listOfDamagedFileShowsWhatIsRead();
    void listNeedsAReadableFile();
    void listEscapesHostileTexts();
    void listIntoAPipeCutsNothing();
    void findShowsTheNewestVisit();
    void findWritesJson();
    void findEndsWithOneWhenThereIsNone();
    void findInADamagedFileTellsSo();
    void addWritesExactlyThisFile();
    void addTakesTheTimeOfNow();
    void addPutsTheVisitInFront();
    void addMovesARevisitedAddress();
    void addKeepsTheTitleOfARevisitedAddress();
    void addRemovesTheOldestOfAFullList();
    void addToAListOverItsMaximumKeepsItsLength();
    void addTellsTheNumberAfterSorting();
    void addTakesATimeThatTheClockSkips();
    void addTakesLongTexts();
    void addRefusesBadTexts_data();
    void addRefusesBadTexts();
    void addRefusesBadTimes_data();
    void addRefusesBadTimes();
    void maximumMustBeInRange_data();
    void maximumMustBeInRange();
    void addTellsWhatLoadingHasDropped();
    void removeTakesNumbersFromBeforeTheCommand();
    void removeRefusesAnAbsentNumber_data();
    void removeRefusesAnAbsentNumber();
    void removeRefusesWhatIsNoNumber_data();
    void removeRefusesWhatIsNoNumber();
    void largeFilesAreListedAndChanged();
    void dryRunWritesNothing();
    void changesRefuseADamagedFileUnlessForced();
    void changesDetectWriteErrors();

private:
    /// A path in the test's own directory.
    QString path(const QString& name = QString()) const { return dir_->path() + name; }
    QString filePath() const { return path("visit.xml"); }

    QJsonObject listAsJson() const { return jsonOf(tlvctl({"history", "list", "--json", path()}).out); }

    std::unique_ptr<TempDir> dir_;
};

void tst_tlvctl_history::listShowsTheVisits()
{
    writeFile(filePath(), threeVisits());
    const QString withoutSlash = path().left(path().size() - 1);
    for (const QString& dir : {path(), withoutSlash}) {
        const Run run = tlvctl({"history", "list", dir});
        QCOMPARE(run.code, 0);
        QCOMPARE(run.err, QByteArray());
        QCOMPARE(run.out, QByteArray("no.  time              title    address\n"
                                     "000  2011/04/12 10:15  Weather  http://example.com/weather\n"
                                     "001  2011/04/12 09:58  News     http://example.com/\n"
                                     "002  2011/04/11 23:00  Old      http://old/\n"
                                     "records: 3, counted by the store: 3\n"));
    }
    QCOMPARE(readFile(filePath()), threeVisits());
}

void tst_tlvctl_history::listWritesJson()
{
    writeFile(filePath(), START + record(0, "2011/04/12 10:15", "Weather", "http://w/") +
                              record(1, "2011/04/12 09:58", "", "http://n/") + END);
    const Run run = tlvctl({"history", "list", "--json", path()});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    const QJsonObject first{{"number", 0},           {"filePosition", 0},
                            {"flaws", QJsonArray()}, {"time", "2011/04/12 10:15"},
                            {"title", "Weather"},    {"url", "http://w/"}};
    const QJsonObject second{{"number", 1},           {"filePosition", 1},
                             {"flaws", QJsonArray()}, {"time", "2011/04/12 09:58"},
                             {"title", ""},           {"url", "http://n/"}};
    const QJsonObject expected{
        {"file", filePath()}, {"exists", true},  {"complete", true}, {"error", QJsonValue()},
        {"count", 2},         {"renumbered", 0}, {"sorted", true},   {"visits", QJsonArray{first, second}}};
    QCOMPARE(jsonOf(run.out), expected);
}

void tst_tlvctl_history::listOfMissingFileIsEmpty()
{
    const Run run = tlvctl({"history", "list", path()});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, "records: 0, because there is no " + filePath().toUtf8() + '\n');
    const QJsonObject json = listAsJson();
    QCOMPARE(json["exists"], QJsonValue(false));
    QCOMPARE(json["count"], QJsonValue(0));
    QCOMPARE(json["visits"], QJsonValue(QJsonArray()));
    QVERIFY(!QFile::exists(filePath()));
}

void tst_tlvctl_history::listIsSortedAsTheStoreSorts()
{
    writeFile(filePath(), START + record(0, "2011/04/11 10:15", "Old", "http://old/") +
                              record(1, "2011/04/12 10:15", "New", "http://new/") + END);
    const Run run = tlvctl({"history", "list", path()});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out,
             QByteArray("no.  time              title  address\n"
                        "000  2011/04/12 10:15  New    http://new/\n"
                        "001  2011/04/11 10:15  Old    http://old/\n"
                        "the order in the file is another one: loading sorts the newest visit first\n"
                        "records: 2, counted by the store: 2\n"));
    const QJsonObject json = listAsJson();
    QCOMPARE(json["sorted"], QJsonValue(false));
    QCOMPARE(json["visits"].toArray().at(0).toObject()["filePosition"], QJsonValue(1));
}

void tst_tlvctl_history::listTellsWhatLoadingChanges()
{
    writeFile(filePath(),
              "<history>"
              "<pageInfo id=\"000\"><title>Fine</title><url>http://0/</url>"
              "<dateTime>2011/04/12 10:15</dateTime></pageInfo>"
              "<page id=\"001\"><title>Other</title><url>http://1/</url>"
              "<dateTime>2011/04/12 10:14</dateTime></page>"
              "<pageInfo id=\"002\"><title>No address</title><dateTime>2011/04/12 10:13</dateTime></pageInfo>"
              "<pageInfo id=\"003\" pinned=\"1\"><title>More</title><url>http://3/</url>"
              "<dateTime>2011/04/12 10:12</dateTime><icon>x</icon></pageInfo>"
              "<pageInfo id=\"004\"><title>When</title><url>http://4/</url>"
              "<dateTime>yester-day</dateTime></pageInfo>"
              "</history>");
    const Run run = tlvctl({"history", "list", path()});
    QCOMPARE(run.code, 0);
    QCOMPARE(
        run.out,
        QByteArray("no.   time              title       address\n"
                   "000   2011/04/12 10:15  Fine        http://0/\n"
                   "001*  2011/04/12 10:14  Other       http://1/\n"
                   "002*  2011/04/12 10:13  No address\n"
                   "003*  2011/04/12 10:12  More        http://3/\n"
                   "004*                    When        http://4/\n"
                   "* 001: element \"page\" instead of \"pageInfo\": loading makes it one\n"
                   "* 002: no element \"url\": loading adds an empty one\n"
                   "* 003: holds more than title, address and time: loading drops the rest\n"
                   "* 004: time \"yester-day\" is not of the form \"yyyy/MM/dd hh:mm\": loading empties it\n"
                   "records: 5, counted by the store: 5, marked: 4\n"));

    const QJsonArray visits = listAsJson()["visits"].toArray();
    QCOMPARE(visits.at(0).toObject()["flaws"].toArray(), QJsonArray());
    QCOMPARE(visits.at(1).toObject()["flaws"].toArray(), QJsonArray{"notNamedPageInfo"});
    QCOMPARE(visits.at(2).toObject()["flaws"].toArray(), QJsonArray{"elementMissing"});
    QCOMPARE(visits.at(3).toObject()["flaws"].toArray(), QJsonArray{"surplusContent"});
    QCOMPARE(visits.at(4).toObject()["flaws"].toArray(), QJsonArray{"timeUnreadable"});
    QVERIFY(visits.at(4).toObject()["time"].isNull());
}

void tst_tlvctl_history::listTellsOfGapsInTheNumbering()
{
    writeFile(filePath(), START + record(0, timeOf(0), "A", "a") + record(2, timeOf(1), "B", "b") +
                              record(7, timeOf(2), "C", "c") + END);
    const Run run = tlvctl({"history", "list", path()});
    QVERIFY(run.out.endsWith("\nnumbers that stand otherwise in the file, and are given anew by loading: 2\n"
                             "records: 3, counted by the store: 3\n"));
    QVERIFY(run.out.contains("\n001  " + timeOf(1) + "  B "));
    QCOMPARE(listAsJson()["renumbered"], QJsonValue(2));
}

void tst_tlvctl_history::listTellsWhatLoadingDrops()
{
    QByteArray xml = manyVisits(1001);
    writeFile(filePath(), xml.replace("id=\"999\"", "id=\"998\"").replace("id=\"1000\"", "id=\"998\""));
    const Run run = tlvctl({"history", "list", path()});
    QCOMPARE(run.code, 0);
    const QList<QByteArray> lines = run.out.split('\n');
    QCOMPARE(lines.at(999), "998   " + timeOf(998) + "  T998   http://998/");
    QCOMPARE(lines.at(1000), "---*  " + timeOf(999) + "  T999   http://999/");
    QCOMPARE(lines.at(1001), "---*  " + timeOf(1000) + "  T1000  http://1000/");
    QCOMPARE(lines.at(1002), QByteArray("* --- (record 1000 of the file): is dropped by loading: the store "
                                        "numbers the first 999 records, and takes over no others"));
    QVERIFY(lines.at(1003).startsWith("* --- (record 1001 of the file): is dropped by loading"));
    QCOMPARE(lines.at(1004), QByteArray("records: 1001, counted by the store: 999, marked: 2"));
    const QJsonObject dropped = listAsJson()["visits"].toArray().at(1000).toObject();
    QVERIFY(dropped["number"].isNull());
    QCOMPARE(dropped["filePosition"], QJsonValue(1000));
    QCOMPARE(dropped["flaws"].toArray(), QJsonArray{"dropped"});
}

void tst_tlvctl_history::listShowsVisitsThatKeepNoNumber()
{
    // A number of its own below the count of records lets one of them survive the loading, but no further.
    writeFile(filePath(), manyVisits(1001));
    const QJsonObject json = listAsJson();
    const QJsonArray visits = json["visits"].toArray();
    QCOMPARE(visits.size(), 1001);
    QCOMPARE(json["count"], QJsonValue(999));
    for (const int i : {999, 1000}) {
        const QJsonObject visit = visits.at(i).toObject();
        QVERIFY(visit["number"].isNull());
        QCOMPARE(visit["title"].toString(), QString("T%1").arg(i));
        QCOMPARE(visit["flaws"].toArray(), QJsonArray{"noNumber"});
    }
}

void tst_tlvctl_history::listAgreesWithTheStore()
{
    // Times of which many are the same, and some none.
    QByteArray xml = "<history>";
    for (int i = 0; i < 1200; ++i) {
        const QByteArray time = i % 50 == 7 ? "soon" : timeOf(i * 7 % 20);
        const QByteArray number = i < 999 ? "x" : QByteArray::number(i % 3 == 0 ? i : 5);
        xml += "<pageInfo id=\"" + number + "\"><title>T" + QByteArray::number(i) + "</title><url>u" +
               QByteArray::number(i % 400) + "</url><dateTime>" + time + "</dateTime></pageInfo>";
    }
    writeFile(filePath(), xml + "</history>");
    const QJsonObject json = listAsJson();

    TVNC_HistorySetting& store = *TVNC_HistorySetting::getInstance();
    QString dir = path();
    store.loadHistory(&dir, 999);
    QCOMPARE(json["count"].toInt(), store.getHistoryCnt());
    const QJsonArray visits = json["visits"].toArray();
    QCOMPARE(visits.size(), 1200);
    int dropped = 0;
    for (int i = 0; i < visits.size(); ++i) {
        const QJsonObject visit = visits.at(i).toObject();
        const QString title = visit["title"].toString();
        QCOMPARE(title, QString("T%1").arg(visit["filePosition"].toInt()));
        if (visit["flaws"].toArray().contains("dropped")) {
            ++dropped;
            continue;
        }
        QCOMPARE(visit["number"].isNull(), i >= 999);
        if (i >= 999)
            continue;
        QCOMPARE(visit["number"].toInt(), i);
        TVNS_History history;
        QVERIFY(store.getHistory(i, &history));
        QCOMPARE(history.title, title);
        QCOMPARE(history.url, visit["url"].toString());
        QCOMPARE(history.dateTime.toString("yyyy/MM/dd hh:mm"), visit["time"].toString());
    }
    QCOMPARE(1200 - dropped, store.getXMLNodeCnt());
    QVERIFY(dropped > 0);
    releaseDeferred();
}

void tst_tlvctl_history::listOfDamagedFileShowsWhatIsRead()
{
    writeFile(filePath(), DAMAGED);
    const Run run = tlvctl({"history", "list", path()});
    QCOMPARE(run.code, 1);
    QVERIFY(run.out.contains("2011/04/12 10:15  A"));
    QVERIFY(complains(run, filePath(), {"line 4", "everything behind that place is not read"}));
    const Run json = tlvctl({"history", "list", "--json", path()});
    QCOMPARE(json.code, 1);
    QCOMPARE(jsonOf(json.out)["complete"], QJsonValue(false));
    QCOMPARE(jsonOf(json.out)["error"].toObject()["line"].toInt(), 4);
}

void tst_tlvctl_history::listNeedsAReadableFile()
{
    const Run noDirectory = tlvctl({"history", "list", path("none/")});
    QCOMPARE(noDirectory.code, 1);
    QVERIFY(complains(noDirectory, path("none"), {"check the spelling"}));

    writeFile(filePath(), threeVisits());
    QFile::setPermissions(filePath(), QFileDevice::Permissions());
    for (const QStringList& command :
         {QStringList{"list", path()}, QStringList{"find", path(), "http://old/"}}) {
        const Run unreadable = tlvctl(QStringList("history") + command);
        QCOMPARE(unreadable.code, 1);
        QCOMPARE(unreadable.out, QByteArray());
        QVERIFY(complains(unreadable, filePath(), {"Permission denied"}));
    }
}

void tst_tlvctl_history::listEscapesHostileTexts()
{
    writeFile(filePath(),
              utf8("<history><pageInfo id=\"000\"><title>a\n999  \u202Eb</title><url>\\\u009B</url>"
                   "<dateTime>\u202E</dateTime></pageInfo></history>")
                  .toUtf8());
    const Run run = tlvctl({"history", "list", path()});
    QCOMPARE(run.code, 0);
    QVERIFY(run.out.contains("  a\\n999  \\u{202E}b  \\\\\\x9B\n"));
    QVERIFY(run.out.contains("time \"\\u{202E}\" is not"));
    QVERIFY(isHarmless(run.out));
    QVERIFY(isHarmless(tlvctl({"history", "list", "--json", path()}).out));
    QVERIFY(isHarmless(tlvctl({"history", "find", path(), utf8("\\\u009B")}).out));
    QVERIFY(isHarmless(tlvctl({"history", "find", path(), utf8("\u202E")}).err));
    QVERIFY(isHarmless(tlvctl({"history", "remove", path(), "0"}).out));
}

void tst_tlvctl_history::listIntoAPipeCutsNothing()
{
    const QByteArray title(5000, 't');
    const QByteArray url(70000, 'u');
    writeFile(filePath(), START + record(0, timeOf(0), title, url) + record(1, timeOf(1), "s", "v") + END);
    const Run run = tlvctl({"history", "list", path()});
    QVERIFY(run.out.contains("000  " + timeOf(0) + "  " + title + "  " + url + '\n'));
    QVERIFY(run.out.contains("001  " + timeOf(1) + "  s" + QByteArray(61, ' ') + "v\n"));
}

void tst_tlvctl_history::findShowsTheNewestVisit()
{
    writeFile(filePath(), START + record(0, timeOf(0), "A", "http://a/") +
                              record(1, timeOf(1), "B", "http://b/") +
                              record(2, timeOf(2), "B, before", "http://b/") + END);
    const Run run = tlvctl({"history", "find", path(), "http://b/"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.out, "number   001\ntime     " + timeOf(1) + "\ntitle    B\naddress  http://b/\n");
}

void tst_tlvctl_history::findWritesJson()
{
    writeFile(filePath(), threeVisits());
    const Run run = tlvctl({"history", "find", "--json", path(), "http://old/"});
    QCOMPARE(run.code, 0);
    const QJsonObject visit{{"number", 2},           {"filePosition", 2},
                            {"flaws", QJsonArray()}, {"time", "2011/04/11 23:00"},
                            {"title", "Old"},        {"url", "http://old/"}};
    QCOMPARE(jsonOf(run.out)["visit"].toObject(), visit);

    const Run absent = tlvctl({"history", "find", "--json", path(), "http://new/"});
    QCOMPARE(absent.code, 1);
    QVERIFY(jsonOf(absent.out)["visit"].isNull());
    QVERIFY(complains(absent, filePath(), {"no visit of \"http://new/\""}));
}

void tst_tlvctl_history::findEndsWithOneWhenThereIsNone()
{
    writeFile(filePath(), threeVisits());
    for (const char* url : {"http://example.com", "HTTP://EXAMPLE.COM/", ""}) {
        const Run run = tlvctl({"history", "find", path(), url});
        QCOMPARE(run.code, 1);
        QCOMPARE(run.out, QByteArray());
        QVERIFY(complains(run, filePath(), {QString("no visit of \"%1\"").arg(url), "history list"}));
    }
    QFile::remove(filePath());
    QCOMPARE(tlvctl({"history", "find", path(), "http://old/"}).code, 1);
}

void tst_tlvctl_history::findInADamagedFileTellsSo()
{
    writeFile(filePath(), DAMAGED);
    const Run found = tlvctl({"history", "find", path(), "http://a/"});
    QCOMPARE(found.code, 1);
    QVERIFY(found.out.startsWith("number   000\n"));
    QVERIFY(complains(found, filePath(), {"line 4"}));
}

void tst_tlvctl_history::addWritesExactlyThisFile()
{
    const Run run = tlvctl({"history", "add", path(), "http://a/?b&c", "--title", utf8("<\u65E5>"), "--time",
                            "2011/04/12 10:15"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.out, utf8("added    000  2011/04/12 10:15  <\u65E5>  http://a/?b&c\n").toUtf8());
    QCOMPARE(readFile(filePath()), utf8("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                        "<history docInfo=\"1.0\">\n"
                                        "    <pageInfo id=\"000\">\n"
                                        "        <title>&lt;\u65E5&gt;</title>\n"
                                        "        <url>http://a/?b&amp;c</url>\n"
                                        "        <dateTime>2011/04/12 10:15</dateTime>\n"
                                        "    </pageInfo>\n"
                                        "</history>\n")
                                       .toUtf8());
    QCOMPARE(QDir(path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{"visit.xml"});
}

void tst_tlvctl_history::addTakesTheTimeOfNow()
{
    const auto now = [] { return QDateTime::currentDateTime().toString("yyyy/MM/dd hh:mm"); };
    const QString before = now();
    QCOMPARE(tlvctl({"history", "add", path(), "http://a/"}).code, 0);
    const QString time = listAsJson()["visits"].toArray().at(0).toObject()["time"].toString();
    QVERIFY(before <= time && time <= now());
}

void tst_tlvctl_history::addPutsTheVisitInFront()
{
    writeFile(filePath(), START + record(0, timeOf(0), "A", "http://a/") + END);
    const Run run =
        tlvctl({"history", "add", path(), "http://b/", "--title", "B", "--time", "2011/04/13 00:00"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, QByteArray("added    000  2011/04/13 00:00  B  http://b/\n"));
    QCOMPARE(readFile(filePath()), START + record(0, "2011/04/13 00:00", "B", "http://b/") +
                                       record(1, timeOf(0), "A", "http://a/") + END);
}

void tst_tlvctl_history::addMovesARevisitedAddress()
{
    writeFile(filePath(), threeVisits());
    const Run run = tlvctl(
        {"history", "add", path(), "http://example.com/", "--title", "Today", "--time", "2011/04/13 00:00"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, QByteArray("removed  001  2011/04/12 09:58  News  http://example.com/\n"
                                 "added    000  2011/04/13 00:00  Today  http://example.com/\n"));
    QCOMPARE(readFile(filePath()),
             START + record(0, "2011/04/13 00:00", "Today", "http://example.com/") +
                 record(1, "2011/04/12 10:15", "Weather", "http://example.com/weather") +
                 record(2, "2011/04/11 23:00", "Old", "http://old/") + END);
}

void tst_tlvctl_history::addKeepsTheTitleOfARevisitedAddress()
{
    writeFile(filePath(), threeVisits());
    QCOMPARE(tlvctl({"history", "add", path(), "http://old/", "--time", "2011/04/13 00:00"}).code, 0);
    QVERIFY(readFile(filePath()).startsWith(START + record(0, "2011/04/13 00:00", "Old", "http://old/")));
    const Run emptied =
        tlvctl({"history", "add", path(), "http://old/", "--time", "2011/04/13 00:01", "--title", ""});
    QCOMPARE(emptied.code, 0);
    QVERIFY(readFile(filePath()).contains("<title></title>") || readFile(filePath()).contains("<title/>"));
    QVERIFY(!readFile(filePath()).contains("Old"));
}

void tst_tlvctl_history::addRemovesTheOldestOfAFullList()
{
    writeFile(filePath(), threeVisits());
    const QStringList add{"history", "add", path(), "http://new/", "--time", "2011/04/13 00:00"};
    const Run run = tlvctl(add + QStringList{"--max", "3"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, QByteArray("removed  002  2011/04/11 23:00  Old  http://old/\n"
                                 "added    000  2011/04/13 00:00    http://new/\n"));
    const QByteArray file = readFile(filePath());
    QCOMPARE(file.count("<pageInfo"), 3);
    QVERIFY(!file.contains("http://old/"));

    // A revisited address makes room itself.
    const Run again =
        tlvctl({"history", "add", path(), "http://new/", "--time", "2011/04/14 00:00", "--max=3"});
    QCOMPARE(again.out, QByteArray("removed  000  2011/04/13 00:00    http://new/\n"
                                   "added    000  2011/04/14 00:00    http://new/\n"));
    QCOMPARE(readFile(filePath()).count("<pageInfo"), 3);

    writeFile(filePath(), manyVisits(999));
    const Run full = tlvctl(add);
    QCOMPARE(full.code, 0);
    QCOMPARE(full.out, "removed  998  " + timeOf(998) + "  T998  http://998/\n" +
                           "added    000  2011/04/13 00:00    http://new/\n");
    QCOMPARE(listAsJson()["count"], QJsonValue(999));
}

void tst_tlvctl_history::addToAListOverItsMaximumKeepsItsLength()
{
    writeFile(filePath(), manyVisits(5));
    const Run run =
        tlvctl({"history", "add", path(), "http://new/", "--time", "2011/04/13 00:00", "--max", "3"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, "removed  002  " + timeOf(2) + "  T2  http://2/\n" +
                          "added    000  2011/04/13 00:00    http://new/\n");
    QCOMPARE(readFile(filePath()).count("<pageInfo"), 5);

    // The visit behind the revisited one is named by the number that it had.
    const Run revisit =
        tlvctl({"history", "add", path(), "http://0/", "--time", "2011/04/14 00:00", "--max", "2"});
    QCOMPARE(revisit.code, 0);
    QCOMPARE(revisit.out, "removed  001  " + timeOf(0) + "  T0  http://0/\n" + "removed  002  " + timeOf(1) +
                              "  T1  http://1/\n" + "added    000  2011/04/14 00:00  T0  http://0/\n");
    QCOMPARE(readFile(filePath()).count("<pageInfo"), 4);
}

void tst_tlvctl_history::addTellsTheNumberAfterSorting()
{
    writeFile(filePath(), threeVisits());
    const Run run = tlvctl({"history", "add", path(), "http://b/", "--time", "2011/04/12 00:00"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, QByteArray("added    002  2011/04/12 00:00    http://b/\n"));
    // It stands in front until the next loading, as what a browser adds does.
    QVERIFY(readFile(filePath()).startsWith(START + QByteArray("    <pageInfo id=\"000\">\n")));
    QVERIFY(readFile(filePath()).indexOf("http://b/") < readFile(filePath()).indexOf("weather"));
    const Run found = tlvctl({"history", "find", path(), "http://b/"});
    QVERIFY(found.out.startsWith("number   002\n"));
}

void tst_tlvctl_history::addTakesATimeThatTheClockSkips()
{
    const QProcessEnvironment environment = with("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    const QString time = "2011/03/27 02:30";
    const Run run = tlvctl({"history", "add", path(), "http://a/", "--time", time}, environment);
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, QByteArray("added    000  2011/03/27 02:30    http://a/\n"));
    QVERIFY(readFile(filePath()).contains("<dateTime>2011/03/27 02:30</dateTime>"));
    const Run list = tlvctl({"history", "list", path()}, environment);
    QVERIFY(list.out.contains("\n000  2011/03/27 02:30  "));
    QVERIFY(!list.out.contains('*'));
}

void tst_tlvctl_history::addTakesLongTexts()
{
    const QString title(10000, 't');
    const QString url(100000, 'u');
    const Run run = tlvctl({"history", "add", path(), url, "--title", title});
    QCOMPARE(run.code, 0);
    QVERIFY(readFile(filePath())
                .contains("<title>" + title.toUtf8() + "</title>\n        <url>" + url.toUtf8() + "</url>"));
}

void tst_tlvctl_history::addRefusesBadTexts_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("reason");
    QTest::newRow("no address") << ""
                                << "T"
                                << "the address is empty";
    QTest::newRow("blanks") << "  "
                            << "T"
                            << "the address \"  \" consists of blanks";
    QTest::newRow("control character") << "http://\x01"
                                       << "T"
                                       << "control characters";
    QTest::newRow("title of blanks") << "http://a/"
                                     << " \t"
                                     << "the title \" \\t\" consists of blanks";
    QTest::newRow("title with an escape sequence") << "http://a/"
                                                   << "\x1b[31m"
                                                   << "control characters";
}

void tst_tlvctl_history::addRefusesBadTexts()
{
    QFETCH(QString, url);
    QFETCH(QString, title);
    QFETCH(QString, reason);
    writeFile(filePath(), "<history/>");
    const Run run = tlvctl({"history", "add", path(), url, "--title", title});
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray());
    QVERIFY(complains(run, filePath(), {"nothing was added", reason}));
    QVERIFY(isHarmless(run.err));
    QCOMPARE(readFile(filePath()), QByteArray("<history/>"));
}

void tst_tlvctl_history::addRefusesBadTimes_data()
{
    QTest::addColumn<QString>("time");
    for (const char* time : {"", "now", "2011/04/12", "2011/4/12 10:15", "2011-04-12 10:15",
                             "2011/04/12T10:15", "2011/02/29 10:15", "2011/04/12 24:00", "2011/04/12 10:60",
                             "2011/04/12 10:15:00", " 2011/04/12 10:15", "2011/04/12 10:15 "})
        QTest::newRow(qPrintable(QString("\"%1\"").arg(time))) << time;
}

void tst_tlvctl_history::addRefusesBadTimes()
{
    QFETCH(QString, time);
    const Run run = tlvctl({"history", "add", path(), "http://a/", "--time", time});
    QCOMPARE(run.code, 2);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(run.err, QString("tlvctl: time \"%1\" is none of the form \"yyyy/MM/dd hh:mm\", such as "
                              "\"2011/04/12 10:15\"; see \"tlvctl history add --help\"\n")
                          .arg(time)
                          .toUtf8());
    QVERIFY(!QFile::exists(filePath()));
}

void tst_tlvctl_history::maximumMustBeInRange_data()
{
    QTest::addColumn<QString>("maximum");
    for (const char* maximum : {"0", "1000", "-1", "", "x", "5 ", "+5", "99999999999", "%2"})
        QTest::newRow(qPrintable(QString("\"%1\"").arg(maximum))) << maximum;
}

void tst_tlvctl_history::maximumMustBeInRange()
{
    QFETCH(QString, maximum);
    for (const QStringList& command :
         {QStringList{"add", path(), "http://a/"}, QStringList{"remove", path(), "0"}}) {
        const Run run = tlvctl(QStringList("history") + command + QStringList("--max=" + maximum));
        QCOMPARE(run.code, 2);
        QVERIFY(run.err.startsWith("tlvctl: maximum \"" + maximum.toUtf8() +
                                   "\" is no number from 1 to 999; see \"tlvctl history "));
        QVERIFY(!QFile::exists(filePath()));
    }
    QCOMPARE(tlvctl({"history", "add", path(), "http://a/", "--max", "1"}).code, 0);
    QCOMPARE(tlvctl({"history", "add", path(), "http://b/", "--max", "999"}).code, 0);
}

void tst_tlvctl_history::addTellsWhatLoadingHasDropped()
{
    QByteArray xml = manyVisits(1000);
    xml.replace("id=\"999\"", "id=\"998\"").replace("<dateTime>" + timeOf(3), "<dateTime>soon");
    writeFile(filePath(), xml);
    const Run run = tlvctl({"history", "remove", path(), "000"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out,
             "loaded   998  time \"soon\" is not of the form \"yyyy/MM/dd hh:mm\": loading empties it\n"
             "dropped  --- (record 1000 of the file)  " +
                 timeOf(999) + "  T999  http://999/\n" + "removed  000  " + timeOf(0) + "  T0  http://0/\n");
    QCOMPARE(readFile(filePath()).count("<pageInfo"), 998);
}

void tst_tlvctl_history::removeTakesNumbersFromBeforeTheCommand()
{
    writeFile(filePath(), manyVisits(6));
    const Run run = tlvctl({"history", "remove", path(), "4", "000", "01", "4"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.out, "removed  000  " + timeOf(0) + "  T0  http://0/\n" + "removed  001  " + timeOf(1) +
                          "  T1  http://1/\n" + "removed  004  " + timeOf(4) + "  T4  http://4/\n");
    QCOMPARE(readFile(filePath()), START + record(0, timeOf(2), "T2", "http://2/") +
                                       record(1, timeOf(3), "T3", "http://3/") +
                                       record(2, timeOf(5), "T5", "http://5/") + END);

    QCOMPARE(tlvctl({"history", "remove", path(), "0", "1", "2"}).code, 0);
    QCOMPARE(readFile(filePath()),
             QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<history docInfo=\"1.0\"/>\n"));
}

void tst_tlvctl_history::removeRefusesAnAbsentNumber_data()
{
    QTest::addColumn<QStringList>("numbers");
    QTest::addColumn<QString>("absent");
    QTest::newRow("the next") << QStringList{"3"} << "003";
    QTest::newRow("one of several") << QStringList{"0", "7", "1"} << "007";
    QTest::newRow("far") << QStringList{"2147483647"} << "2147483647";
}

void tst_tlvctl_history::removeRefusesAnAbsentNumber()
{
    QFETCH(QStringList, numbers);
    QFETCH(QString, absent);
    writeFile(filePath(), threeVisits());
    const Run run = tlvctl(QStringList{"history", "remove", path()} + numbers);
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray());
    QVERIFY(complains(run, filePath(), {"nothing was changed", "no record " + absent + ';'}));
    QCOMPARE(readFile(filePath()), threeVisits());

    QFile::remove(filePath());
    QCOMPARE(tlvctl(QStringList{"history", "remove", path()} + numbers).code, 1);
    QVERIFY(!QFile::exists(filePath()));
}

void tst_tlvctl_history::removeRefusesWhatIsNoNumber_data()
{
    QTest::addColumn<QString>("number");
    for (const char* number : {"x", "", " 1", "+1", "0x1", "1.0", "---", "99999999999", "\xD9\xA1"})
        QTest::newRow(qPrintable(QString("\"%1\"").arg(number))) << utf8(number);
}

void tst_tlvctl_history::removeRefusesWhatIsNoNumber()
{
    QFETCH(QString, number);
    writeFile(filePath(), threeVisits());
    const Run run = tlvctl({"history", "remove", path(), "--", "0", number});
    QCOMPARE(run.code, 2);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(run.err, "tlvctl: \"" + number.toUtf8() +
                          "\" is no number of a record; see \"tlvctl history remove --help\"\n");
    QCOMPARE(readFile(filePath()), threeVisits());
}

void tst_tlvctl_history::largeFilesAreListedAndChanged()
{
    QByteArray xml = "<history>";
    for (int i = 0; i < 100000; ++i)
        xml += "<pageInfo><title>T" + QByteArray::number(i) +
               "</title><url>u</url><dateTime>2011/04/12 10:15</dateTime></pageInfo>";
    writeFile(filePath(), xml + "</history>");
    const Run list = tlvctl({"history", "list", path()});
    QCOMPARE(list.code, 0);
    QVERIFY(list.out.endsWith("\nrecords: 100000, counted by the store: 999, marked: 99001\n"));

    QStringList numbers;
    for (int i = 998; i > 0; --i)
        numbers.append(QString::number(i));
    const Run remove = tlvctl(QStringList{"history", "remove", path()} + numbers);
    QCOMPARE(remove.code, 0);
    QCOMPARE(remove.out.count("\nremoved  "), 998);
    QCOMPARE(remove.out.count("dropped  "), 99001);
    QCOMPARE(readFile(filePath()).count("<pageInfo"), 1);
}

void tst_tlvctl_history::dryRunWritesNothing()
{
    const QByteArray heading =
        "dry run: nothing is written to " + filePath().toUtf8() + ", where this would change:\n";
    const Run fresh =
        tlvctl({"history", "add", "--dry-run", path(), "http://a/", "--time", "2011/04/12 10:15"});
    QCOMPARE(fresh.code, 0);
    QCOMPARE(fresh.out, heading + "added    000  2011/04/12 10:15    http://a/\n");
    QVERIFY(QDir(path()).isEmpty());

    writeFile(filePath(), threeVisits());
    const Run add = tlvctl(
        {"history", "add", "--dry-run", path(), "http://b/", "--time", "2011/04/12 00:00", "--max", "3"});
    QCOMPARE(add.code, 0);
    QCOMPARE(add.out, heading + "removed  002  2011/04/11 23:00  Old  http://old/\n"
                                "added    002  2011/04/12 00:00    http://b/\n");
    const Run remove = tlvctl({"history", "remove", "--dry-run", path(), "2"});
    QCOMPARE(remove.code, 0);
    QCOMPARE(remove.out, heading + "removed  002  2011/04/11 23:00  Old  http://old/\n");
    QCOMPARE(tlvctl({"history", "remove", "--dry-run", path(), "3"}).code, 1);
    QCOMPARE(readFile(filePath()), threeVisits());
}

void tst_tlvctl_history::changesRefuseADamagedFileUnlessForced()
{
    writeFile(filePath(), DAMAGED);
    for (const QStringList& command :
         {QStringList{"add", path(), "http://b/"}, QStringList{"remove", path(), "0"},
          QStringList{"add", "--dry-run", path(), "http://b/"}}) {
        const Run run = tlvctl(QStringList("history") + command);
        QCOMPARE(run.code, 1);
        QCOMPARE(run.out, QByteArray());
        QVERIFY(complains(run, filePath(), {"line 4", "lose", "--force"}));
        QCOMPARE(readFile(filePath()), QByteArray(DAMAGED));
    }
    const Run forced =
        tlvctl({"history", "add", "--force", path(), "http://b/", "--time", "2011/04/12 11:00"});
    QCOMPARE(forced.code, 0);
    const QByteArray file = readFile(filePath());
    QVERIFY(file.indexOf("<url>http://b/</url>") > 0);
    QVERIFY(file.indexOf("<url>http://a/</url>") > file.indexOf("<url>http://b/</url>"));
    QCOMPARE(tlvctl({"history", "list", path()}).code, 0);
}

void tst_tlvctl_history::changesDetectWriteErrors()
{
    writeFile(filePath(), threeVisits());
    QFile::setPermissions(filePath(), QFileDevice::ReadOwner);
    for (const QStringList& command :
         {QStringList{"add", path(), "http://b/"}, QStringList{"remove", path(), "0"}}) {
        const Run run = tlvctl(QStringList("history") + command);
        QCOMPARE(run.code, 1);
        QCOMPARE(run.out, QByteArray());
        QVERIFY(complains(run, filePath(), {"permission denied", "make the file writable"}));
        QCOMPARE(readFile(filePath()), threeVisits());
    }
    // What would be saved can still be seen.
    QCOMPARE(tlvctl({"history", "remove", "--dry-run", path(), "0"}).code, 1);
}

TLVCTL_TEST_MAIN(tst_tlvctl_history)
#include "tst_tlvctl_history.moc"
