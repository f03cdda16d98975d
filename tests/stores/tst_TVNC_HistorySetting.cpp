#include "tests/stores/HistoryTest.h"
#include "tests/support/FailingNew.h"

class tst_TVNC_HistorySetting : public HistoryTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { begin(); }

    void listIsSavedExactly();
    void savedListIsLoadedBack();
    void saveNeitherSortsNorSetsTheMaximum();

    void visitGoesToTheFront();
    void samePageIsRecordedTwice();
    void nullVisitIsNotRecorded();
    void visitIsNotRecordedWhenMemoryRanOut();
    void textsHaveNoLimit();
    void awkwardTextsComeBack();
    void visitsFromThe1000thOnHaveNoNumberOfTheirOwn();

    void listBelowTheMaximumGrows();
    void fullListLosesItsOldestVisit();
    void tooLongListKeepsItsLength();
    void fullListLosesAVisitEvenForNull();
    void maximumOfOneKeepsTheNewest();
    void everyRootChildCountsForTheMaximum();
    void maximumAbove999BoundsNothing();
    void rejectedLoadKeepsTheMaximum();

    void visitIsReadByItsNumber();
    void missingElementLeavesItsField();
    void anyNumberedElementIsRead();
    void firstElementOfANameCounts();
    void countTellsNumberedVisitsOnly();

    void addressIsFoundExactly();
    void lookUpReadsUpToTheVisitFound();
    void visitWithoutAddressCountsWithThatBefore();
    void lookUpCoversTheCountOnly();

    void visitIsChangedInItsPlace();
    void changeTouchesExistingElementsOnly();
    void titleAloneIsChanged();
    void nothingIsChangedWithoutAVisit();
    void restIsNumberedAfterADeletion();
    void deletingAnUnknownNumberNumbersTheRest();
};

void tst_TVNC_HistorySetting::initTestCase()
{
    // Before the first load, which later tests cannot undo: one instance serves the whole process.
    QVERIFY(!history_->getXMLRootNode());
    QCOMPARE(history_->getHistoryCnt(), 0);
    QString url = utf8("http://a");
    QCOMPARE(history_->getHistoryIndex(url), -1);
    QCOMPARE(LogRecorder::take(), QString());

    TVNS_History lost = visit("a", 10, 15);
    TVNS_History out = visit("untouched", 1, 2);
    QVERIFY(!history_->getHistory(0, &out));
    QCOMPARE(out.title, utf8("untouched"));
    history_->setHistory(&lost);
    history_->changeHistory(0, lost);
    history_->changeHistoryTitle(0, lost.title);
    history_->deleteHistory(0);
    history_->sortHistory();
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::getHistory]\n"
                                       "3 [TVNC_HistorySetting::setHistory]\n"
                                       "3 [TVNC_HistorySetting::changeHistory]\n"
                                       "3 [TVNC_HistorySetting::changeHistoryTitle]\n"
                                       "3 [TVNC_HistorySetting::deleteHistory] si_nodeNum:0\n"
                                       "3 [TVNC_HistorySetting::sortHistory]\n"));
    QVERIFY(!history_->getXMLRootNode());

    // The maximum is 0, so that an update always deletes number -1.
    history_->updateHistory(&lost);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::updateHistory]\n"
                                       "3 [TVNC_HistorySetting::deleteHistory] si_nodeNum:-1\n"
                                       "3 [TVNC_HistorySetting::setHistory]\n"));
    QVERIFY(!history_->getXMLRootNode());

    // With a document that was not loaded, the list grows without bound.
    history_->createXMLRootNode();
    LogRecorder::clear();
    for (int i = 0; i < 3; ++i)
        history_->updateHistory(&lost);
    QCOMPARE(history_->getHistoryCnt(), 3);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::updateHistory]\n"
                                       "3 [TVNC_HistorySetting::deleteHistory] si_nodeNum:-1\n"
                                       "3 [TVNC_HistorySetting::setHistory]\n")
                                      .repeated(3));
}

// --- Saving -----------------------------------------------------------------------------------------------

void tst_TVNC_HistorySetting::listIsSavedExactly()
{
    TVNS_History older = visit(utf8("News"), utf8("http://example.com/?a&b"), at(2011, 4, 2, 9, 8, 59));
    TVNS_History newer = visit(QString(), QString(), QDateTime());
    history_->setHistory(&older);
    history_->setHistory(&newer);
    save();
    QCOMPARE(readFile(path()), QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                          "<history docInfo=\"1.0\">\n"
                                          "    <pageInfo id=\"000\">\n"
                                          "        <title/>\n"
                                          "        <url/>\n"
                                          "        <dateTime/>\n"
                                          "    </pageInfo>\n"
                                          "    <pageInfo id=\"001\">\n"
                                          "        <title>News</title>\n"
                                          "        <url>http://example.com/?a&amp;b</url>\n"
                                          "        <dateTime>2011/04/02 09:08</dateTime>\n"
                                          "    </pageInfo>\n"
                                          "</history>\n"));
}

void tst_TVNC_HistorySetting::savedListIsLoadedBack()
{
    for (int i = 0; i < 999; ++i) {
        TVNS_History history = visit(QString::number(i), QString::number(i), at(2011, 1, 1, 0, 0));
        history.dateTime = history.dateTime.addDays(i);
        history_->setHistory(&history);
    }
    save();
    const QByteArray saved = readFile(path());
    load(999);
    QCOMPARE(history_->getHistoryCnt(), 999);
    for (int i = 0; i < 999; ++i) {
        TVNS_History out;
        QVERIFY(history_->getHistory(i, &out));
        QCOMPARE(out.title, QString::number(998 - i));
        QCOMPARE(out.url, QString::number(998 - i));
        QCOMPARE(out.dateTime.date(), QDate(2011, 1, 1).addDays(998 - i));
    }
    save();
    QVERIFY(readFile(path()) == saved);
}

void tst_TVNC_HistorySetting::saveNeitherSortsNorSetsTheMaximum()
{
    record("a", 11, 0);
    record("b", 10, 0);
    QString dir = dir_->path();
    history_->saveHistory(&dir, 1);
    QCOMPARE(urls(), utf8("http://b http://a"));
    TVNS_History next = visit("d", 13, 0);
    history_->updateHistory(&next);
    QCOMPARE(urls(), utf8("http://d http://b http://a"));
}

// --- Recording --------------------------------------------------------------------------------------------

void tst_TVNC_HistorySetting::visitGoesToTheFront()
{
    TVNS_History first = visit("a", 10, 15);
    TVNS_History second = visit("b", 9, 5); // its time does not matter here
    history_->setHistory(&first);
    history_->setHistory(&second);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::setHistory]\n"
                                       "3 [TVNC_HistorySetting::setHistory]\n"));
    QCOMPARE(described(), utf8("(pageInfo{id=000}(title'b',url'http://b',dateTime'2011/04/12 09:05'),"
                               "pageInfo{id=001}(title'a',url'http://a',dateTime'2011/04/12 10:15'))"));
}

void tst_TVNC_HistorySetting::samePageIsRecordedTwice()
{
    record("a", 10, 15);
    record("a", 10, 15);
    QCOMPARE(urls(), utf8("http://a http://a"));
}

void tst_TVNC_HistorySetting::nullVisitIsNotRecorded()
{
    history_->setHistory(nullptr);
    QCOMPARE(history_->getXMLNodeCnt(), 0);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::setHistory]\n"));
}

void tst_TVNC_HistorySetting::visitIsNotRecordedWhenMemoryRanOut()
{
    record("a", 10, 15);
    TVNS_History history = visit("b", 10, 16);
    failingNode = 1; // the record
    history_->setHistory(&history);
    QCOMPARE(failingNode, 0);
    QCOMPARE(urls(), utf8("http://a"));
    failingNode = 3; // the address
    history_->setHistory(&history);
    QCOMPARE(failingNode, 0);
    QCOMPARE(described(), utf8("(pageInfo{id=000}(title'b',dateTime'2011/04/12 10:16'),"
                               "pageInfo{id=001}(title'a',url'http://a',dateTime'2011/04/12 10:15'))"));
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::setHistory]\n"
                                       "1 [TVNC_XMLSetting::addXMLChild] Fail\n"
                                       "3 [TVNC_HistorySetting::setHistory]\n"
                                       "1 [TVNC_XMLSetting::addXMLChild] Fail\n"));
}

void tst_TVNC_HistorySetting::textsHaveNoLimit()
{
    const QString title(100000, QChar(0x3042));
    const QString url(100000, QLatin1Char('u'));
    TVNS_History history = visit(title, url, at(2011, 4, 12, 10, 15));
    history_->setHistory(&history);
    save();
    load();
    TVNS_History out;
    QVERIFY(history_->getHistory(0, &out));
    QVERIFY(out.title == title);
    QVERIFY(out.url == url);
    QString wanted = url;
    QCOMPARE(history_->getHistoryIndex(wanted), 0);
}

void tst_TVNC_HistorySetting::awkwardTextsComeBack()
{
    const QString text = utf8("<Café> & \"日本\" 😀 ]]> '\t");
    TVNS_History bad = visit(utf8("bad\x01") + QChar(0xD800) + utf8("title"), text, at(2011, 4, 12, 10, 16));
    TVNS_History good = visit(text, text, at(2011, 4, 12, 10, 15));
    history_->setHistory(&good);
    history_->setHistory(&bad);
    save();
    load();
    TVNS_History out;
    QVERIFY(history_->getHistory(0, &out));
    QCOMPARE(out.title, utf8("badtitle"));
    QVERIFY(history_->getHistory(1, &out));
    QCOMPARE(out.title, text);
    QCOMPARE(out.url, text);
}

void tst_TVNC_HistorySetting::visitsFromThe1000thOnHaveNoNumberOfTheirOwn()
{
    for (int i = 0; i < 1002; ++i) {
        TVNS_History history = visit(QString(), QString::number(i), at(2011, 4, 12, 10, 15));
        history_->setHistory(&history);
        QCOMPARE(history_->getHistoryCnt(), qMin(i + 1, 999));
    }
    TVNS_History out;
    QVERIFY(history_->getHistory(998, &out));
    QCOMPARE(out.url, QString::number(1001 - 998));
    QVERIFY(!history_->getHistory(999, &out));
    // They were number 998 when the next visit pushed them on, and nobody took that from them.
    QVERIFY(ids().endsWith(utf8(" 997 998 998 998 998")));
    QString url = utf8("0");
    QCOMPARE(history_->getHistoryIndex(url), -1);
}

// --- Recording with the maximum ---------------------------------------------------------------------------

void tst_TVNC_HistorySetting::listBelowTheMaximumGrows()
{
    load(3);
    LogRecorder::clear();
    for (int i = 0; i < 3; ++i) {
        TVNS_History history = visit("a", 10, i);
        history_->updateHistory(&history);
    }
    QCOMPARE(history_->getHistoryCnt(), 3);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::updateHistory]\n"
                                       "3 [TVNC_HistorySetting::setHistory]\n"
                                       "3 [TVNC_HistorySetting::updateHistory]\n"
                                       "3 [TVNC_HistorySetting::setHistory]\n"
                                       "3 [TVNC_HistorySetting::updateHistory]\n"
                                       "3 [TVNC_HistorySetting::setHistory]\n"));
}

void tst_TVNC_HistorySetting::fullListLosesItsOldestVisit()
{
    for (int i = 0; i < 50; ++i) {
        TVNS_History history = visit(QString(), QString::number(i), at(2011, 4, 12, 10, i));
        history_->updateHistory(&history);
    }
    QCOMPARE(history_->getHistoryCnt(), 50);
    LogRecorder::clear();
    QPointer<TVNC_XMLNode> oldest(history_->getXMLRootNode()->getXMLNodeChildren().at(49));
    TVNS_History history = visit(QString(), utf8("51st"), at(2011, 4, 12, 10, 51));
    history_->updateHistory(&history);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::updateHistory]\n"
                                       "3 [TVNC_HistorySetting::deleteHistory] si_nodeNum:49\n"
                                       "3 [TVNC_HistorySetting::setHistory]\n"));
    QCOMPARE(history_->getHistoryCnt(), 50);
    QVERIFY(urls().startsWith(utf8("51st 49 48 ")));
    QVERIFY(urls().endsWith(utf8(" 2 1")));
    QVERIFY(ids().endsWith(utf8(" 048 049")));
    QVERIFY(!oldest.isNull());
    releaseDeferred();
    QVERIFY(oldest.isNull());
}

void tst_TVNC_HistorySetting::tooLongListKeepsItsLength()
{
    QByteArray records;
    for (int i = 0; i < 52; ++i)
        records += pageInfo(QByteArray::number(i),
                            "2011/04/12 10:" + QByteArray::number(59 - i / 2).rightJustified(2, '0'));
    loadFrom(records);
    QStringList expected = urls().split(utf8(" "));
    QCOMPARE(expected.size(), 52);
    TVNS_History history = visit(QString(), utf8("new"), at(2011, 4, 12, 11, 0));
    history_->updateHistory(&history);
    QCOMPARE(history_->getHistoryCnt(), 52);
    expected.removeAt(49);
    expected.prepend(utf8("new"));
    QCOMPARE(urls(), expected.join(utf8(" ")));
}

void tst_TVNC_HistorySetting::fullListLosesAVisitEvenForNull()
{
    loadFrom(pageInfo("a", "2012/01/03 00:00") + pageInfo("b", "2012/01/02 00:00"), 2);
    history_->updateHistory(nullptr);
    QCOMPARE(urls(), utf8("a"));
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::updateHistory]\n"
                                       "3 [TVNC_HistorySetting::deleteHistory] si_nodeNum:1\n"
                                       "3 [TVNC_HistorySetting::setHistory]\n"));
}

void tst_TVNC_HistorySetting::maximumOfOneKeepsTheNewest()
{
    load(1);
    for (int i = 0; i < 3; ++i) {
        TVNS_History history = visit(QString(), QString::number(i), at(2011, 4, 12, 10, i));
        history_->updateHistory(&history);
        QCOMPARE(urls(), QString::number(i));
    }
}

void tst_TVNC_HistorySetting::everyRootChildCountsForTheMaximum()
{
    load(2);
    record("a", 10, 15);
    makeNode(history_->getXMLRootNode(), "stray");
    TVNS_History history = visit("b", 10, 16);
    history_->updateHistory(&history); // deletes number 1, which the stray element does not have
    QCOMPARE(urls(), utf8("http://b http://a -"));
    history_->updateHistory(&history); // deletes number 1, the visit of a
    QCOMPARE(urls(), utf8("http://b http://b -"));
}

void tst_TVNC_HistorySetting::maximumAbove999BoundsNothing()
{
    QByteArray records;
    for (int i = 0; i < 1000; ++i)
        records += pageInfo("x", "2011/04/12 10:15", QByteArray::number(i));
    loadFrom(records, 1000);
    QCOMPARE(history_->getXMLNodeCnt(), 1000);
    TVNS_History history = visit("b", 10, 16);
    history_->updateHistory(&history);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::updateHistory]\n"
                                       "3 [TVNC_HistorySetting::deleteHistory] si_nodeNum:999\n"
                                       "3 [TVNC_HistorySetting::setHistory]\n"));
    QCOMPARE(history_->getXMLNodeCnt(), 1001);
}

void tst_TVNC_HistorySetting::rejectedLoadKeepsTheMaximum()
{
    load(1);
    QString dir = dir_->path();
    QString empty;
    history_->loadHistory(&dir, 0);
    history_->loadHistory(&empty, 20);
    record("a", 10, 15);
    TVNS_History history = visit("b", 10, 16);
    history_->updateHistory(&history);
    QCOMPARE(urls(), utf8("http://b"));
}

// --- Reading ----------------------------------------------------------------------------------------------

void tst_TVNC_HistorySetting::visitIsReadByItsNumber()
{
    record("a", 10, 15);
    record("b", 10, 16);
    TVNS_History out;
    QCOMPARE(history_->getHistory(1, &out), true);
    QCOMPARE(out.title, utf8("a"));
    QCOMPARE(out.url, utf8("http://a"));
    QCOMPARE(out.dateTime, at(2011, 4, 12, 10, 15));
    QCOMPARE(out.dateTime.timeSpec(), Qt::LocalTime);
    QCOMPARE(history_->getHistory(2, &out), false);
    QCOMPARE(history_->getHistory(-1, &out), false);
    QCOMPARE(history_->getHistory(2147483647, &out), false);
    QCOMPARE(history_->getHistory(0, nullptr), false);
    QCOMPARE(out.title, utf8("a")); // untouched
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::getHistory]\n"
                                       "3 [TVNC_HistorySetting::getHistory]\n"
                                       "3 [TVNC_HistorySetting::getHistory]\n"
                                       "3 [TVNC_HistorySetting::getHistory]\n"
                                       "3 [TVNC_HistorySetting::getHistory]\n"));
}

void tst_TVNC_HistorySetting::missingElementLeavesItsField()
{
    record("a", 10, 15);
    TVNC_XMLNode* pc_record = history_->getXMLRootNode()->getXMLNodeChildren().at(0);
    TVNS_History out = visit("before", 1, 2);
    delete pc_record->getXMLNodeChildren().at(0);
    QVERIFY(history_->getHistory(0, &out));
    QCOMPARE(out.title, utf8("before"));
    QCOMPARE(out.url, utf8("http://a"));
    QCOMPARE(out.dateTime, at(2011, 4, 12, 10, 15));
    out = visit("before", 1, 2);
    delete pc_record->getXMLNodeChildren().at(0);
    QVERIFY(history_->getHistory(0, &out));
    QCOMPARE(out.url, utf8("http://before"));
    out = visit("before", 1, 2);
    delete pc_record->getXMLNodeChildren().at(0);
    QVERIFY(history_->getHistory(0, &out));
    QCOMPARE(out.dateTime, at(2011, 4, 12, 1, 2));
    // An element without text is there, and empties its field.
    makeNode(pc_record, "dateTime");
    makeNode(pc_record, "title");
    QVERIFY(history_->getHistory(0, &out));
    QVERIFY(!out.dateTime.isValid());
    QCOMPARE(out.title, QString());
}

void tst_TVNC_HistorySetting::anyNumberedElementIsRead()
{
    TVNC_XMLNode* pc_other = makeNode(history_->getXMLRootNode(), "other");
    addAttribute(pc_other, "id", utf8("000"));
    makeNode(pc_other, "title", "Other");
    TVNS_History out;
    QVERIFY(history_->getHistory(0, &out));
    QCOMPARE(out.title, utf8("Other"));
    QCOMPARE(history_->getHistoryCnt(), 0);
}

void tst_TVNC_HistorySetting::firstElementOfANameCounts()
{
    TVNC_XMLNode* pc_record = makeNode(history_->getXMLRootNode(), "pageInfo");
    addAttribute(pc_record, "id", utf8("000"));
    makeNode(pc_record, "url", "first");
    makeNode(pc_record, "url", "second");
    TVNS_History out;
    QVERIFY(history_->getHistory(0, &out));
    QCOMPARE(out.url, utf8("first"));
    TVNS_History change = visit("changed", 10, 15);
    history_->changeHistory(0, change);
    QCOMPARE(described(), utf8("(pageInfo{id=000}(url'http://changed',url'second'))"));
}

void tst_TVNC_HistorySetting::countTellsNumberedVisitsOnly()
{
    record("a", 10, 15);
    record("b", 10, 16);
    makeNode(history_->getXMLRootNode(), "pageInfo");
    QCOMPARE(history_->getHistoryCnt(), 2);
    QString id = utf8("id");
    history_->deleteXMLNodeByID(0, id);
    QCOMPARE(history_->getHistoryCnt(), 1); // the number 1 of two children
    QCOMPARE(LogRecorder::take(), QString());
}

// --- Looking up -------------------------------------------------------------------------------------------

void tst_TVNC_HistorySetting::addressIsFoundExactly()
{
    record("a", 10, 15);
    record("b", 10, 16);
    record("a", 10, 17);
    record("c", 10, 18);
    QString url = utf8("http://a");
    QCOMPARE(history_->getHistoryIndex(url), 1); // the newer one
    url = utf8("http://c");
    QCOMPARE(history_->getHistoryIndex(url), 0);
    url = utf8("http://A");
    QCOMPARE(history_->getHistoryIndex(url), -1);
    url = utf8("http://a/");
    QCOMPARE(history_->getHistoryIndex(url), -1);
    url = QString();
    QCOMPARE(history_->getHistoryIndex(url), -1);
}

void tst_TVNC_HistorySetting::lookUpReadsUpToTheVisitFound()
{
    QString url = utf8("http://a");
    QCOMPARE(history_->getHistoryIndex(url), -1);
    QCOMPARE(LogRecorder::take(), QString());
    record("a", 10, 15);
    record("b", 10, 16);
    record("c", 10, 17);
    url = utf8("http://b");
    QCOMPARE(history_->getHistoryIndex(url), 1);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::getHistory]\n"
                                       "3 [TVNC_HistorySetting::getHistory]\n"));
    url = utf8("absent");
    QCOMPARE(history_->getHistoryIndex(url), -1);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::getHistory]\n"
                                       "3 [TVNC_HistorySetting::getHistory]\n"
                                       "3 [TVNC_HistorySetting::getHistory]\n"));
}

void tst_TVNC_HistorySetting::visitWithoutAddressCountsWithThatBefore()
{
    record("a", 10, 15);
    record("b", 10, 16);
    record("c", 10, 17);
    const QList<TVNC_XMLNode*> records = history_->getXMLRootNode()->getXMLNodeChildren();
    delete records.at(1)->getXMLNodeChildren().at(1);
    delete records.at(0)->getXMLNodeChildren().at(1);
    QString url = utf8("http://a");
    QCOMPARE(history_->getHistoryIndex(url), 2);
    url = utf8("");
    QCOMPARE(history_->getHistoryIndex(url), 0); // nothing before it
    makeNode(records.at(0), "url", "http://c");
    url = utf8("http://c");
    QCOMPARE(history_->getHistoryIndex(url), 0);
    delete records.at(0); // a gap at number 0 is passed over
    LogRecorder::clear();
    url = utf8("http://a");
    QCOMPARE(history_->getHistoryIndex(url), -1); // number 2 is at the count of 1 or above
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::getHistory]\n"));
}

void tst_TVNC_HistorySetting::lookUpCoversTheCountOnly()
{
    // The element of another name takes a number, but does not count, so the last visit is not tried.
    TVNC_XMLNode* pc_root = history_->getXMLRootNode();
    makeNode(pc_root, "other");
    makeNode(makeNode(pc_root, "pageInfo"), "url", "a");
    makeNode(makeNode(pc_root, "pageInfo"), "url", "b");
    QString id = utf8("id");
    history_->setIDforChildren(id);
    QCOMPARE(history_->getHistoryCnt(), 2);
    QString url = utf8("a");
    QCOMPARE(history_->getHistoryIndex(url), 1);
    url = utf8("b");
    QCOMPARE(history_->getHistoryIndex(url), -1);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::getHistory]\n"
                                       "3 [TVNC_HistorySetting::getHistory]\n"
                                       "3 [TVNC_HistorySetting::getHistory]\n"
                                       "3 [TVNC_HistorySetting::getHistory]\n"));
}

// --- Changing and deleting --------------------------------------------------------------------------------

void tst_TVNC_HistorySetting::visitIsChangedInItsPlace()
{
    record("a", 10, 15);
    record("b", 10, 16);
    TVNS_History change = visit("new", 23, 59);
    history_->changeHistory(1, change);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::changeHistory]\n"));
    QCOMPARE(described(), utf8("(pageInfo{id=000}(title'b',url'http://b',dateTime'2011/04/12 10:16'),"
                               "pageInfo{id=001}(title'new',url'http://new',dateTime'2011/04/12 23:59'))"));
    save();
    QCOMPARE(urls(), utf8("http://b http://new"));
    load();
    QCOMPARE(urls(), utf8("http://new http://b"));
    change.dateTime = QDateTime();
    history_->changeHistory(0, change);
    QCOMPARE(dateTimeText(0), QString());
}

void tst_TVNC_HistorySetting::changeTouchesExistingElementsOnly()
{
    TVNC_XMLNode* pc_record = makeNode(history_->getXMLRootNode(), "pageInfo");
    addAttribute(pc_record, "id", utf8("000"));
    addAttribute(makeNode(pc_record, "title", "t", 1), "lang", utf8("en"));
    TVNS_History change = visit("new", 23, 59);
    history_->changeHistory(0, change);
    QCOMPARE(described(), utf8("(pageInfo{id=000}(title{lang=en} cdata'new'))"));
    delete pc_record->getXMLNodeChildren().at(0);
    makeNode(pc_record, "dateTime");
    makeNode(pc_record, "url");
    history_->changeHistory(0, change);
    history_->changeHistoryTitle(0, change.title);
    QCOMPARE(described(), utf8("(pageInfo{id=000}(dateTime'2011/04/12 23:59',url'http://new'))"));
}

void tst_TVNC_HistorySetting::titleAloneIsChanged()
{
    record("a", 10, 15);
    QString title = utf8("new");
    history_->changeHistoryTitle(0, title);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::changeHistoryTitle]\n"));
    QCOMPARE(described(), utf8("(pageInfo{id=000}(title'new',url'http://a',dateTime'2011/04/12 10:15'))"));
}

void tst_TVNC_HistorySetting::nothingIsChangedWithoutAVisit()
{
    record("a", 10, 15);
    const QString before = described();
    TVNS_History change = visit("new", 23, 59);
    history_->changeHistory(1, change);
    history_->changeHistory(-1, change);
    history_->changeHistoryTitle(1, change.title);
    QCOMPARE(described(), before);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::changeHistory]\n"
                                       "3 [TVNC_HistorySetting::changeHistory]\n"
                                       "3 [TVNC_HistorySetting::changeHistoryTitle]\n"));
}

void tst_TVNC_HistorySetting::restIsNumberedAfterADeletion()
{
    record("a", 10, 15);
    record("b", 10, 16);
    record("c", 10, 17);
    history_->deleteHistory(1);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::deleteHistory] si_nodeNum:1\n"));
    QCOMPARE(urls(), utf8("http://c http://a"));
    QCOMPARE(ids(), utf8("000 001"));
}

void tst_TVNC_HistorySetting::deletingAnUnknownNumberNumbersTheRest()
{
    record("a", 10, 15);
    makeNode(history_->getXMLRootNode(), "pageInfo");
    history_->deleteHistory(7);
    QCOMPARE(ids(), utf8("000 001"));
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_HistorySetting::deleteHistory] si_nodeNum:7\n"));
}

TLVLIB_TEST_MAIN(tst_TVNC_HistorySetting)
#include "tst_TVNC_HistorySetting.moc"
