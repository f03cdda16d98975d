#include "tests/stores/HistoryTest.h"
#include "tests/support/FailingNew.h"

class tst_TVNC_HistorySetting_sort : public HistoryTest
{
    Q_OBJECT

private slots:
    void init() { begin(); }

    void loadedListIsSortedAndNumbered();
    void loadLogsItsSort();

    void sortLogsItsSteps();
    void sortPutsTheNewestFirst();
    void sortDropsWhatHasNoNumber();
    void sortRebuildsEveryRecord();
    void sortRebuildsWhatIsAlmostARecord_data();
    void sortRebuildsWhatIsAlmostARecord();
    void sortReleasesTheOldRecords();
    void sortReadsEachVisitIntoAFreshRecord();
    void sortKeepsVisitsNumberedAbove998();
    void sortKeepsEveryVisitWhenMemoryRunsOut();
    void sortLogsNullRecordsAtEachNumbering();
    void equalMinutesComeInTheOrderOfTheDevice_data();
    void equalMinutesComeInTheOrderOfTheDevice();
    void secondsDoNotCountAfterAReload();
    void invalidTimesComeLast();
    void longListIsSortedAndSearched();
};

void tst_TVNC_HistorySetting_sort::loadedListIsSortedAndNumbered()
{
    loadFrom(pageInfo("old", "2010/01/01 00:00", "7") + pageInfo("new", "2012/01/01 00:00") +
             pageInfo("middle", "2011/12/31 23:59"));
    QCOMPARE(urls(), utf8("new middle old"));
    QCOMPARE(ids(), utf8("000 001 002"));
    QCOMPARE(history_->getHistoryCnt(), 3);
    TVNS_History out;
    QVERIFY(history_->getHistory(1, &out));
    QCOMPARE(out.title, utf8("t"));
    QCOMPARE(out.url, utf8("middle"));
    QCOMPARE(out.dateTime, at(2011, 12, 31, 23, 59));
}

void tst_TVNC_HistorySetting_sort::loadLogsItsSort()
{
    writeFile(path(), "<h>" + pageInfo("a", "2010/01/01 00:00") + pageInfo("b", "") + "</h>");
    load();
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::loadHistory] start\n"
                                       "3 [TVNC_XMLSetting::deleteRootChildren] 0x*\n"
                                       "3 [TVNC_XMLSetting::loadBookmark] start\n"
                                       "3 [TVNC_XMLSetting::loadBookmark] end\n"
                                       "3 [TVNC_HistorySetting::sortHistory]\n"
                                       "3 [TVNC_HistorySetting::getHistory]\n"
                                       "3 [TVNC_HistorySetting::getHistory]\n"
                                       "3 [TVNC_XMLSetting::deleteRootChildren] 0x*\n"
                                       "3 [TVNC_HistorySetting::setHistory]\n"
                                       "3 [TVNC_HistorySetting::setHistory]\n"
                                       "3 [TVNC_HistorySetting::loadHistory] end\n"));
}

void tst_TVNC_HistorySetting_sort::sortLogsItsSteps()
{
    record("a", 10, 15);
    record("b", 10, 16);
    makeNode(history_->getXMLRootNode(), "pageInfo"); // no number: tried, but not put back
    history_->sortHistory();
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::sortHistory]\n"
                                       "3 [TVNC_HistorySetting::getHistory]\n"
                                       "3 [TVNC_HistorySetting::getHistory]\n"
                                       "3 [TVNC_HistorySetting::getHistory]\n"
                                       "3 [TVNC_XMLSetting::deleteRootChildren] 0x*\n"
                                       "3 [TVNC_HistorySetting::setHistory]\n"
                                       "3 [TVNC_HistorySetting::setHistory]\n"));
    history_->deleteAllSetting();
    LogRecorder::clear();
    history_->sortHistory();
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::sortHistory]\n"
                                       "3 [TVNC_XMLSetting::deleteRootChildren] 0x*\n"));
}

void tst_TVNC_HistorySetting_sort::sortPutsTheNewestFirst()
{
    foreach (int si_minute, QList<int>() << 30 << 10 << 50 << 20 << 0 << 40 << 59 << 1) {
        TVNS_History history = visit(QString(), QString::number(si_minute), at(2011, 4, 12, 10, si_minute));
        history_->setHistory(&history);
    }
    QCOMPARE(urls(), utf8("1 59 40 0 20 50 10 30"));
    history_->sortHistory();
    QCOMPARE(urls(), utf8("59 50 40 30 20 10 1 0"));
    QCOMPARE(ids(), utf8("000 001 002 003 004 005 006 007"));
}

void tst_TVNC_HistorySetting_sort::sortDropsWhatHasNoNumber()
{
    TVNC_XMLNode* pc_root = history_->getXMLRootNode();
    const char* const pc_ids[] = {"5", "001", "x", "1", "-1", "6", "0"};
    for (size_t i = 0; i < sizeof pc_ids / sizeof *pc_ids; ++i) {
        TVNC_XMLNode* pc_record = makeNode(pc_root, "pageInfo");
        addAttribute(pc_record, "id", utf8(pc_ids[i]));
        makeNode(pc_record, "url", pc_ids[i]);
        makeNode(pc_record, "dateTime",
                 QByteArray("2011/04/12 10:5" + QByteArray::number(9 - int(i))).constData());
    }
    makeNode(makeNode(pc_root, "pageInfo"), "url", "none");
    TVNC_XMLNode* pc_far = makeNode(pc_root, "pageInfo");
    addAttribute(pc_far, "id", utf8("9")); // at the number of children or above
    history_->sortHistory();
    QCOMPARE(urls(), utf8("5 001 6 0"));
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::sortHistory]\n") +
                                      utf8("3 [TVNC_HistorySetting::getHistory]\n").repeated(9) +
                                      utf8("3 [TVNC_XMLSetting::deleteRootChildren] 0x*\n"
                                           "3 [TVNC_HistorySetting::setHistory]\n"
                                           "3 [TVNC_HistorySetting::setHistory]\n"
                                           "3 [TVNC_HistorySetting::setHistory]\n"
                                           "3 [TVNC_HistorySetting::setHistory]\n"));
}

void tst_TVNC_HistorySetting_sort::sortRebuildsEveryRecord()
{
    loadFrom("\n <other a='b'>text<dateTime>no time</dateTime><more><deep/></more>"
             "<url x='y'><![CDATA[u]]></url><url>second</url></other>"
             "<pageInfo><![CDATA[text]]><title><sub/>T</title></pageInfo>");
    QCOMPARE(described(), utf8("history{docInfo=1.0}("
                               "pageInfo{id=000}(title,url'u',dateTime),"
                               "pageInfo{id=001}(title'T',url,dateTime))"));
}

void tst_TVNC_HistorySetting_sort::sortRebuildsWhatIsAlmostARecord_data()
{
    QTest::addColumn<QByteArray>("record");
    const QByteArray title("<title>T</title>"), url("<url>U</url>"),
        time("<dateTime>2011/04/12 10:15</dateTime>");
    QTest::newRow("as it should be") << "<pageInfo>" + title + url + time + "</pageInfo>";
    QTest::newRow("name") << "<page>" + title + url + time + "</page>";
    QTest::newRow("text") << "<pageInfo>text" + title + url + time + "</pageInfo>";
    QTest::newRow("a fourth element") << "<pageInfo>" + title + url + time + "<more/></pageInfo>";
    QTest::newRow("order") << "<pageInfo>" + time + title + url + "</pageInfo>";
    QTest::newRow("order of the last two") << "<pageInfo>" + title + time + url + "</pageInfo>";
    QTest::newRow("attribute of the title")
        << "<pageInfo><title lang='en'>T</title>" + url + time + "</pageInfo>";
    QTest::newRow("child of the title") << "<pageInfo><title>T<b/></title>" + url + time + "</pageInfo>";
    QTest::newRow("attribute of the address")
        << "<pageInfo>" + title + "<url a='b'>U</url>" + time + "</pageInfo>";
    QTest::newRow("child of the address") << "<pageInfo>" + title + "<url>U<b/></url>" + time + "</pageInfo>";
    QTest::newRow("attribute of the time")
        << "<pageInfo>" + title + url + "<dateTime a='b'>2011/04/12 10:15</dateTime></pageInfo>";
    QTest::newRow("CDATA") << "<pageInfo><title><![CDATA[T]]></title>" + url + time + "</pageInfo>";
}

void tst_TVNC_HistorySetting_sort::sortRebuildsWhatIsAlmostARecord()
{
    QFETCH(QByteArray, record);
    loadFrom(record);
    QCOMPARE(described(), utf8("history{docInfo=1.0}("
                               "pageInfo{id=000}(title'T',url'U',dateTime'2011/04/12 10:15'))"));
}

void tst_TVNC_HistorySetting_sort::sortReleasesTheOldRecords()
{
    record("a", 10, 15);
    QPointer<TVNC_XMLNode> root(history_->getXMLRootNode());
    QPointer<TVNC_XMLNode> old(root->getXMLNodeChildren().at(0));
    history_->sortHistory();
    QVERIFY(!old.isNull());
    QVERIFY(root->getXMLNodeChildren().at(0) != old);
    releaseDeferred();
    QVERIFY(old.isNull());
    QVERIFY(!root.isNull());
    QCOMPARE(history_->getXMLRootNode(), root.data());
    QCOMPARE(described(), utf8("(pageInfo{id=000}(title'a',url'http://a',dateTime'2011/04/12 10:15'))"));
}

void tst_TVNC_HistorySetting_sort::sortReadsEachVisitIntoAFreshRecord()
{
    loadFrom(pageInfo("a", "2011/04/12 10:15") + "<pageInfo><title>bare</title></pageInfo>");
    QCOMPARE(described(), utf8("history{docInfo=1.0}("
                               "pageInfo{id=000}(title't',url'a',dateTime'2011/04/12 10:15'),"
                               "pageInfo{id=001}(title'bare',url,dateTime))"));
}

void tst_TVNC_HistorySetting_sort::sortKeepsVisitsNumberedAbove998()
{
    QByteArray numbered;
    QByteArray unnumbered;
    for (int i = 0; i < 1002; ++i) {
        const QByteArray url = QByteArray::number(i);
        const QByteArray day = QByteArray::number(2000 + i) + "/04/12 10:15";
        numbered += pageInfo(url, day, url);
        unnumbered += pageInfo(url, day);
    }
    // A number that the file gives to a record past the 999th stands. Their last number on the way back
    // stays.
    loadFrom(numbered);
    QCOMPARE(history_->getXMLNodeCnt(), 1002);
    QVERIFY(urls().startsWith(utf8("1001 1000 999 ")));
    QVERIFY(urls().endsWith(utf8(" 2 1 0")));
    QVERIFY(ids().endsWith(utf8(" 996 997 998 998 998 998")));
    // Those without are lost, and so are those that this library wrote, being all number 998.
    save();
    load();
    QCOMPARE(history_->getXMLNodeCnt(), 999);
    QVERIFY(urls().endsWith(utf8(" 5 4 3")));
    loadFrom(unnumbered);
    QCOMPARE(history_->getXMLNodeCnt(), 999);
    QVERIFY(urls().startsWith(utf8("998 997 ")));
    QVERIFY(urls().endsWith(utf8(" 2 1 0")));
}

void tst_TVNC_HistorySetting_sort::sortKeepsEveryVisitWhenMemoryRunsOut()
{
    record("b", 10, 16);
    record("a", 10, 15);
    record("c", 10, 17);
    const QString before = described();
    failingNode = 5; // four nodes a visit: the second that is put back
    history_->sortHistory();
    QCOMPARE(failingNode, 0);
    QCOMPARE(described(), before);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::sortHistory]\n"
                                       "3 [TVNC_HistorySetting::getHistory]\n"
                                       "3 [TVNC_HistorySetting::getHistory]\n"
                                       "3 [TVNC_HistorySetting::getHistory]\n"
                                       "3 [TVNC_XMLSetting::deleteRootChildren] 0x*\n"
                                       "3 [TVNC_HistorySetting::setHistory]\n"
                                       "3 [TVNC_HistorySetting::setHistory]\n"
                                       "1 [TVNC_XMLSetting::addXMLChild] Fail\n"
                                       "1 [TVNG_ifMemory] Fail\n"));
    failingNode = 8; // the time of the second: a part of a visit does not stand for it
    history_->sortHistory();
    QCOMPARE(failingNode, 0);
    QCOMPARE(described(), before);
    history_->sortHistory();
    QCOMPARE(urls(), utf8("http://c http://b http://a"));
}

void tst_TVNC_HistorySetting_sort::sortLogsNullRecordsAtEachNumbering()
{
    record("a", 10, 15);
    record("b", 10, 16);
    history_->getXMLRootNode()->getXMLNodeChildren().prepend(nullptr);
    history_->sortHistory();
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::sortHistory]\n"
                                       "3 [TVNC_HistorySetting::getHistory]\n"
                                       "3 [TVNC_HistorySetting::getHistory]\n"
                                       "3 [TVNC_HistorySetting::getHistory]\n"
                                       "3 [TVNC_XMLSetting::deleteRootChildren] 0x*\n"
                                       "1 [TVNC_XMLSetting::deleteRootChildren] 0x* Why Pass??\n"
                                       "3 [TVNC_HistorySetting::setHistory]\n"
                                       "1 [TVNC_XMLSetting::setIDforChildren] 0x* Why Pass??\n"
                                       "3 [TVNC_HistorySetting::setHistory]\n"
                                       "1 [TVNC_XMLSetting::setIDforChildren] 0x* Why Pass??\n"
                                       "1 [TVNC_XMLSetting::setIDforChildren] 0x* Why Pass??\n"));
    QCOMPARE(urls(), utf8("http://b http://a -"));
    history_->getXMLRootNode()->getXMLNodeChildren().removeAll(nullptr);
}

void tst_TVNC_HistorySetting_sort::equalMinutesComeInTheOrderOfTheDevice_data()
{
    QTest::addColumn<QStringList>("minutes");
    QTest::addColumn<QString>("order");
    // A line: count, number of distinct minutes, "in:", the minutes, "out:", the order. Measured on a device.
    int si_lines = 0;
    foreach (const QByteArray& line, readFile(testData(utf8("tie-order.txt"))).split('\n')) {
        if (line.isEmpty())
            continue;
        const QStringList fields = QString::fromLatin1(line).simplified().split(utf8(" "));
        const int si_count = fields.at(0).toInt();
        QCOMPARE(static_cast<int>(fields.size()), 4 + 2 * si_count);
        QTest::newRow((fields.at(0) + utf8(" visits, up to ") + fields.at(1) + utf8(" minutes")).toLatin1())
            << QStringList(fields.mid(3, si_count)) << QStringList(fields.mid(4 + si_count)).join(utf8(" "));
        ++si_lines;
    }
    QCOMPARE(si_lines, 48);
}

void tst_TVNC_HistorySetting_sort::equalMinutesComeInTheOrderOfTheDevice()
{
    QFETCH(QStringList, minutes);
    QFETCH(QString, order);
    QByteArray records;
    for (int i = 0; i < minutes.size(); ++i) {
        const QString text = QDateTime(QDate(2011, 4, 12), QTime(0, 0), Qt::UTC)
                                 .addSecs(60 * minutes.at(i).toInt())
                                 .toString(utf8("yyyy/MM/dd hh:mm"));
        records += pageInfo(QByteArray::number(i), text.toLatin1());
    }
    loadFrom(records);
    QCOMPARE(urls(), order);
}

void tst_TVNC_HistorySetting_sort::secondsDoNotCountAfterAReload()
{
    TVNS_History older = visit(utf8("older"), utf8("older"), at(2011, 4, 12, 10, 15, 5));
    TVNS_History newer = visit(utf8("newer"), utf8("newer"), at(2011, 4, 12, 10, 15, 40));
    TVNS_History newest = visit(utf8("newest"), utf8("newest"), at(2011, 4, 12, 10, 15, 50));
    TVNS_History latest = visit(utf8("latest"), utf8("latest"), at(2011, 4, 12, 10, 15, 59));
    history_->setHistory(&older);
    history_->setHistory(&newer);
    QCOMPARE(dateTimeText(0), utf8("2011/04/12 10:15"));
    QCOMPARE(dateTimeText(1), utf8("2011/04/12 10:15"));
    TVNS_History out;
    QVERIFY(history_->getHistory(0, &out));
    QCOMPARE(out.dateTime, at(2011, 4, 12, 10, 15, 0));
    save();
    load();
    QCOMPARE(urls(), utf8("newer older"));
    // Two stay as they are; four of one minute do not ("4 1" in the measured orders).
    history_->setHistory(&newest);
    history_->setHistory(&latest);
    save();
    load();
    QCOMPARE(urls(), utf8("older newer latest newest"));
}

void tst_TVNC_HistorySetting_sort::invalidTimesComeLast()
{
    loadFrom(pageInfo("bad", "yesterday") + pageInfo("new", "2011/04/12 10:15") +
             pageInfo("old", "1950/01/01 00:00"));
    QCOMPARE(urls(), utf8("new old bad"));
    QCOMPARE(dateTimeText(2), QString()); // the unreadable text is gone
    TVNS_History out;
    QVERIFY(history_->getHistory(2, &out));
    QVERIFY(!out.dateTime.isValid());
}

void tst_TVNC_HistorySetting_sort::longListIsSortedAndSearched()
{
    // Steps that go through the whole list for each visit would take minutes here.
    const int si_count = 60000;
    QByteArray records;
    for (int i = 0; i < si_count; ++i) {
        const int si_minute = static_cast<int>((i * 7919LL) % si_count);
        const QDateTime dateTime = QDateTime(QDate(2011, 1, 1), QTime(0, 0), Qt::UTC).addSecs(60 * si_minute);
        records += pageInfo(QByteArray::number(si_minute),
                            dateTime.toString(utf8("yyyy/MM/dd hh:mm")).toLatin1(), QByteArray::number(i));
    }
    loadFrom(records);
    QStringList expected;
    for (int i = si_count - 1; i >= 0; --i)
        expected << QString::number(i);
    QVERIFY(urls() == expected.join(utf8(" ")));
    QCOMPARE(history_->getHistoryCnt(), 999);
    QString url = QString::number(si_count - 1 - 998);
    for (int i = 0; i < 100; ++i)
        QCOMPARE(history_->getHistoryIndex(url), 998);
    LogRecorder::clear();
    releaseDeferred();
}

TLVLIB_TEST_MAIN(tst_TVNC_HistorySetting_sort)
#include "tst_TVNC_HistorySetting_sort.moc"
