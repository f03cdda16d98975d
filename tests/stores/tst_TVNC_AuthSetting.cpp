#include "tests/support/FailingNew.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/Random.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/stores/TVNC_AuthSetting.h>

#include <QtCore/QDir>

#include <sys/resource.h>

/// What an update logs that deletes an entry and adds one.
static QString updateLines(int si_deleted)
{
    return QString::fromLatin1("3 [TVNC_AuthSetting::updateAuthInfo]\n"
                               "3 [TVNC_AuthSetting::deleteAuthInfo] si_nodeNum:%1\n"
                               "3 [TVNC_AuthSetting::setAuthInfo]\n"
                               "3 [TVNC_AuthSetting::addAuthInfo]\n")
        .arg(si_deleted);
}

static TVNS_AuthInfo makeInfo(const QString& hostName, const QString& portNum, int si_authType,
                              const QByteArray& user, const QByteArray& passwd)
{
    TVNS_AuthInfo info;
    info.hostName = hostName;
    info.portNum = portNum;
    info.authType = static_cast<unsigned char>(si_authType);
    info.user = user;
    info.passwd = passwd;
    return info;
}

/// A record of which only the host name matters.
static TVNS_AuthInfo makeInfo(const char* pc_hostName)
{
    return makeInfo(utf8(pc_hostName), utf8("80"), 0, "u", "p");
}

/// What a caller has in a record before it is filled.
static TVNS_AuthInfo untouched()
{
    return makeInfo(utf8("before-host"), utf8("before-port"), 77, "before-user", "before-passwd");
}

/// A record in one line, bytes in hexadecimal digits: host|port|type|user|passwd.
static QString describe(const TVNS_AuthInfo& info)
{
    return info.hostName + QLatin1Char('|') + info.portNum + QLatin1Char('|') +
           QString::number(info.authType) + QLatin1Char('|') + QString::fromLatin1(info.user.toHex()) +
           QLatin1Char('|') + QString::fromLatin1(info.passwd.toHex());
}

/// All 256 byte values and 16 more: 272 bytes.
static QByteArray longestBytes()
{
    QByteArray bytes;
    for (int i = 0; i < 272; ++i)
        bytes.append(static_cast<char>(i % 256));
    return bytes;
}

#ifndef __SANITIZE_ADDRESS__ // which keeps freed memory for a while, and finds leaks by itself
/// The most memory that the process has had so far.
static long peakKilobytes()
{
    rusage usage;
    return getrusage(RUSAGE_SELF, &usage) == 0 ? usage.ru_maxrss : -1;
}
#endif

class tst_TVNC_AuthSetting : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void entriesAreLoadedAndNumbered();

    void entriesAreSavedExactly();
    void emptyMembersAreSavedAsEmptyElements();
    void savedEntriesAreLoadedBack();

    void newestEntryIsFirst();
    void sameServerIsStoredTwice();
    void recordIsCopied();
    void elementsHaveTheirOrderAndTextTypes();
    void authTypeIsWrittenAsAWord_data();
    void authTypeIsWrittenAsAWord();
    void membersAreLimited_data();
    void membersAreLimited();
    void nullRecordIsRefused();
    void addingChecksNothing();
    void addingNullDoesNothing();
    void entryThatCannotBeCreatedIsLogged();
    void entriesFromThe1000thOnHaveNoNumber();

    void oldestGoesOnUpdate();
    void oldestGoesOnUpdateEvenWhenThereIsRoom_data();
    void oldestGoesOnUpdateEvenWhenThereIsRoom();
    void updateDeletesNothingBehindTheMaximum();
    void updateOfAnEmptyListAdds();
    void updateOfAFullListOfOne();
    void updateDeletesBeforeItRefuses();
    void updateRemovesNoneWithoutANumber();
    void maximumIsThatOfTheLastAcceptedLoad();

    void entryIsFoundByNumber();
    void absentEntryLeavesTheRecord();
    void missingElementsLeaveTheirMembers();
    void emptyElementsEmptyTheirMembers();
    void textsAreHandedOutUpToTheirLimit_data();
    void textsAreHandedOutUpToTheirLimit();
    void bytesAreHandedOutUpTo272();
    void authTypeIsReadFromItsWord_data();
    void authTypeIsReadFromItsWord();
    void base64IsReadLeniently_data();
    void base64IsReadLeniently();
    void base64IsReadAsQtReadsIt();
    void longBase64IsLeftAlone();
    void firstElementOfANameCounts();
    void elementNameIsOnlyTestedForTheCount();

    void deletedEntryLeavesNoGap();
    void deletingAnAbsentNumberOnlyRenumbers();
    void manyEntries();
    void credentialsNeverReachTheLog();
    void hostOfBlanksComesBackEmpty();

private:
    void loadFrom(const QByteArray& document, int si_max = 100);
    void add(const char* pc_hostNames);
    QString hostNames();
    QString path() const { return dirName_ + utf8("authinfo.xml"); }
    TVNC_XMLNode* root() { return auth_->getXMLRootNode(); }
    TVNC_XMLNode* element(const char* pc_name);
    QByteArray decodedUser(const QString& text);

    TVNC_AuthSetting* auth_;
    QScopedPointer<TempDir> dir_;
    QString dirName_;
};

void tst_TVNC_AuthSetting::initTestCase()
{
    // Before the first load, which later tests cannot undo: one instance serves the whole process.
    auth_ = TVNC_AuthSetting::getInstance();
    TVNS_AuthInfo info = makeInfo("lost.example.com");
    TVNS_AuthInfo out = untouched();
    QVERIFY(!root());
    QCOMPARE(auth_->getAuthInfoCnt(), 0);
    QCOMPARE(auth_->getAuthInfo(0, &out), 0);
    QCOMPARE(describe(out), describe(untouched()));
    auth_->deleteAuthInfo(0);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_AuthSetting::getAuthInfo]\n"
                                       "3 [TVNC_AuthSetting::deleteAuthInfo] si_nodeNum:0\n"));

    // The record is good, so it counts as added, but there is nothing to add it to.
    QCOMPARE(auth_->setAuthInfo(&info), 1);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_AuthSetting::setAuthInfo]\n"
                                       "3 [TVNC_AuthSetting::addAuthInfo]\n"));
    auth_->addAuthInfo(&info);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_AuthSetting::addAuthInfo]\n"));
    QCOMPARE(auth_->updateAuthInfo(&info), 1);
    QCOMPARE(LogRecorder::take(), updateLines(-1));
    QVERIFY(!root());
    QCOMPARE(auth_->getAuthInfoCnt(), 0);

#ifndef __SANITIZE_ADDRESS__
    // Kept entries would take more than ten megabytes.
    const long si_before = peakKilobytes();
    for (int i = 0; i < 20000; ++i) {
        auth_->setAuthInfo(&info);
        LogRecorder::clear();
    }
    QVERIFY(si_before > 0);
    QVERIFY2(peakKilobytes() - si_before < 4096, qPrintable(QString::number(peakKilobytes() - si_before)));
#endif

    // A root that was not loaded: the maximum is still 0, so no entry is a kept one that could go.
    auth_->createXMLRootNode();
    auth_->setAuthInfo(&info);
    auth_->setAuthInfo(&info);
    LogRecorder::clear();
    QCOMPARE(auth_->updateAuthInfo(&info), 1);
    QCOMPARE(auth_->getAuthInfoCnt(), 3);
    QCOMPARE(LogRecorder::take(), updateLines(-1));
}

void tst_TVNC_AuthSetting::init()
{
    dir_.reset(new TempDir);
    dirName_ = dir_->path();
    auth_->loadAuthInfo(&dirName_, 100);
    releaseDeferred();
    LogRecorder::clear();
}

void tst_TVNC_AuthSetting::loadFrom(const QByteArray& document, int si_max)
{
    writeFile(path(), document);
    auth_->loadAuthInfo(&dirName_, si_max);
    LogRecorder::clear();
}

/// Adds one entry for each host name of "a b c", in this order.
void tst_TVNC_AuthSetting::add(const char* pc_hostNames)
{
    foreach (const QString& hostName, utf8(pc_hostNames).split(QLatin1Char(' '))) {
        TVNS_AuthInfo info = makeInfo(hostName, utf8("80"), 0, "u", "p");
        QCOMPARE(auth_->setAuthInfo(&info), 1);
    }
    LogRecorder::clear();
}

/// The host names of all entries, by number: "c b a".
QString tst_TVNC_AuthSetting::hostNames()
{
    QStringList list;
    TVNS_AuthInfo out = untouched();
    for (int i = 0; auth_->getAuthInfo(i, &out); ++i)
        list << out.hostName;
    LogRecorder::clear();
    return list.join(QLatin1String(" "));
}

/// An element of entry 0.
TVNC_XMLNode* tst_TVNC_AuthSetting::element(const char* pc_name)
{
    QString name = utf8(pc_name);
    return root()->getXMLNodeChildren().at(0)->getXMLNodeChildByName(name);
}

/// What is read from entry 0 when its "user" element has this text.
QByteArray tst_TVNC_AuthSetting::decodedUser(const QString& text)
{
    QString own = text;
    element("user")->setText(own);
    TVNS_AuthInfo out = untouched();
    return auth_->getAuthInfo(0, &out) ? out.user : QByteArray("no entry");
}

// --- Loading ----------------------------------------------------------------------------------------------

void tst_TVNC_AuthSetting::entriesAreLoadedAndNumbered()
{
    loadFrom("<authentication docInfo='1.0'>"
             "<authInfo id='7' x='y'><hostName>a.example.com</hostName><portNum>443</portNum>"
             "<authType>NTLM</authType><user><![CDATA[YWxpY2U=]]></user>"
             "<passwd><![CDATA[c2VjcmV0]]></passwd></authInfo>"
             "<authInfo><hostName>b.example.com</hostName><portNum>80</portNum>"
             "<authType>basic</authType><user>Ym9i</user><passwd/></authInfo>"
             "</authentication>");
    QCOMPARE(describe(root()), utf8("authentication{docInfo=1.0}("
                                    "authInfo{id=000}(hostName'a.example.com',portNum'443',authType'NTLM',"
                                    "user cdata'YWxpY2U=',passwd cdata'c2VjcmV0'),"
                                    "authInfo{id=001}(hostName'b.example.com',portNum'80',authType'basic',"
                                    "user'Ym9i',passwd))"));
    QCOMPARE(auth_->getAuthInfoCnt(), 2);
    TVNS_AuthInfo out = untouched();
    QCOMPARE(auth_->getAuthInfo(0, &out), 1);
    QCOMPARE(describe(out), describe(makeInfo(utf8("a.example.com"), utf8("443"), 2, "alice", "secret")));
    QCOMPARE(auth_->getAuthInfo(1, &out), 1);
    QCOMPARE(describe(out), describe(makeInfo(utf8("b.example.com"), utf8("80"), 0, "bob", "")));
}

// --- Saving -----------------------------------------------------------------------------------------------

void tst_TVNC_AuthSetting::entriesAreSavedExactly()
{
    TVNS_AuthInfo first =
        makeInfo(utf8("first.example.com"), utf8("8080"), 0, "bob", QByteArray("\0a\0\xFF\0", 5));
    TVNS_AuthInfo second = makeInfo(utf8("日本.example.com"), utf8("443"), 1, "alice", "secret");
    TVNS_AuthInfo third = makeInfo(utf8("a<b>&\"c"), utf8("x&y"), 2, "\xFB\xFF\xFE", "");
    TVNS_AuthInfo fourth = makeInfo(utf8("fourth"), utf8("1"), 3, "u", "p");
    auth_->setAuthInfo(&first);
    auth_->setAuthInfo(&second);
    auth_->setAuthInfo(&third);
    auth_->setAuthInfo(&fourth);
    auth_->saveAuthInfo(&dirName_, 100);
    QCOMPARE(readFile(path()), QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                          "<authentication docInfo=\"1.0\">\n"
                                          "    <authInfo id=\"000\">\n"
                                          "        <hostName>fourth</hostName>\n"
                                          "        <portNum>1</portNum>\n"
                                          "        <authType/>\n"
                                          "        <user><![CDATA[dQ==]]></user>\n"
                                          "        <passwd><![CDATA[cA==]]></passwd>\n"
                                          "    </authInfo>\n"
                                          "    <authInfo id=\"001\">\n"
                                          "        <hostName>a&lt;b&gt;&amp;&quot;c</hostName>\n"
                                          "        <portNum>x&amp;y</portNum>\n"
                                          "        <authType>NTLM</authType>\n"
                                          "        <user><![CDATA[+//+]]></user>\n"
                                          "        <passwd/>\n"
                                          "    </authInfo>\n"
                                          "    <authInfo id=\"002\">\n"
                                          "        <hostName>日本.example.com</hostName>\n"
                                          "        <portNum>443</portNum>\n"
                                          "        <authType>digest</authType>\n"
                                          "        <user><![CDATA[YWxpY2U=]]></user>\n"
                                          "        <passwd><![CDATA[c2VjcmV0]]></passwd>\n"
                                          "    </authInfo>\n"
                                          "    <authInfo id=\"003\">\n"
                                          "        <hostName>first.example.com</hostName>\n"
                                          "        <portNum>8080</portNum>\n"
                                          "        <authType>basic</authType>\n"
                                          "        <user><![CDATA[Ym9i]]></user>\n"
                                          "        <passwd><![CDATA[AGEA/wA=]]></passwd>\n"
                                          "    </authInfo>\n"
                                          "</authentication>\n"));
}

void tst_TVNC_AuthSetting::emptyMembersAreSavedAsEmptyElements()
{
    TVNS_AuthInfo info = makeInfo(QString(), QString(), 1, QByteArray(), QByteArray());
    QCOMPARE(auth_->setAuthInfo(&info), 1);
    auth_->saveAuthInfo(&dirName_, 100);
    QCOMPARE(readFile(path()), QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                          "<authentication docInfo=\"1.0\">\n"
                                          "    <authInfo id=\"000\">\n"
                                          "        <hostName/>\n"
                                          "        <portNum/>\n"
                                          "        <authType>digest</authType>\n"
                                          "        <user/>\n"
                                          "        <passwd/>\n"
                                          "    </authInfo>\n"
                                          "</authentication>\n"));
    auth_->loadAuthInfo(&dirName_, 100);
    TVNS_AuthInfo out = untouched();
    QCOMPARE(auth_->getAuthInfo(0, &out), 1);
    QCOMPARE(describe(out), utf8("||1||"));
}

void tst_TVNC_AuthSetting::savedEntriesAreLoadedBack()
{
    // No line break enters the longest base64 text.
    const QByteArray base64 =
        "AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh8gISIjJCUmJygpKissLS4vMDEyMzQ1Njc4OTo7PD0+P0BBQkNERUZHSElK"
        "S0xNTk9QUVJTVFVWV1hZWltcXV5fYGFiY2RlZmdoaWprbG1ub3BxcnN0dXZ3eHl6e3x9fn+AgYKDhIWGh4iJiouMjY6PkJGSk5SV"
        "lpeYmZqbnJ2en6ChoqOkpaanqKmqq6ytrq+wsbKztLW2t7i5uru8vb6/wMHCw8TFxsfIycrLzM3Oz9DR0tPU1dbX2Nna29zd3t/g"
        "4eLj5OXm5+jp6uvs7e7v8PHy8/T19vf4+fr7/P3+/wABAgMEBQYHCAkKCwwNDg8=";
    TVNS_AuthInfo first =
        makeInfo(QString(256, QLatin1Char('h')), utf8("65535"), 2, longestBytes(), QByteArray(272, '\0'));
    TVNS_AuthInfo second = makeInfo(utf8("😀 é日 '\"<&>]]>"), utf8("]]>"), 1, "]]>", longestBytes());
    QCOMPARE(auth_->setAuthInfo(&first), 1);
    QCOMPARE(auth_->setAuthInfo(&second), 1);
    auth_->saveAuthInfo(&dirName_, 100);
    QVERIFY(readFile(path()).contains("<user><![CDATA[" + base64 + "]]></user>\n"));
    QVERIFY(readFile(path()).contains("<passwd><![CDATA[" + base64 + "]]></passwd>\n"));
    auth_->loadAuthInfo(&dirName_, 100);
    QCOMPARE(auth_->getAuthInfoCnt(), 2);
    TVNS_AuthInfo out = untouched();
    QCOMPARE(auth_->getAuthInfo(1, &out), 1);
    QCOMPARE(describe(out), describe(first));
    QCOMPARE(auth_->getAuthInfo(0, &out), 1);
    QCOMPARE(describe(out), describe(second));
}

// --- Adding -----------------------------------------------------------------------------------------------

void tst_TVNC_AuthSetting::newestEntryIsFirst()
{
    TVNS_AuthInfo a = makeInfo("a");
    TVNS_AuthInfo b = makeInfo("b");
    QCOMPARE(auth_->setAuthInfo(&a), 1);
    QCOMPARE(auth_->setAuthInfo(&b), 1);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_AuthSetting::setAuthInfo]\n"
                                       "3 [TVNC_AuthSetting::addAuthInfo]\n"
                                       "3 [TVNC_AuthSetting::setAuthInfo]\n"
                                       "3 [TVNC_AuthSetting::addAuthInfo]\n"));
    QCOMPARE(describe(root()),
             utf8("(authInfo{id=000}(hostName'b',portNum'80',authType'basic',user cdata'dQ==',"
                  "passwd cdata'cA=='),"
                  "authInfo{id=001}(hostName'a',portNum'80',authType'basic',user cdata'dQ==',"
                  "passwd cdata'cA=='))"));
}

void tst_TVNC_AuthSetting::sameServerIsStoredTwice()
{
    TVNS_AuthInfo first = makeInfo(utf8("a"), utf8("80"), 0, "alice", "first");
    TVNS_AuthInfo second = makeInfo(utf8("a"), utf8("80"), 0, "alice", "second");
    auth_->setAuthInfo(&first);
    auth_->setAuthInfo(&second);
    QCOMPARE(auth_->getAuthInfoCnt(), 2);
    TVNS_AuthInfo out = untouched();
    QCOMPARE(auth_->getAuthInfo(0, &out), 1);
    QCOMPARE(out.passwd, QByteArray("second"));
    QCOMPARE(auth_->getAuthInfo(1, &out), 1);
    QCOMPARE(out.passwd, QByteArray("first"));
}

void tst_TVNC_AuthSetting::recordIsCopied()
{
    TVNS_AuthInfo info = makeInfo(utf8("a"), utf8("80"), 1, "alice", "secret");
    auth_->setAuthInfo(&info);
    QCOMPARE(describe(info), describe(makeInfo(utf8("a"), utf8("80"), 1, "alice", "secret")));
    info.hostName[0] = QLatin1Char('x');
    info.passwd[0] = 'x';
    TVNS_AuthInfo out = untouched();
    auth_->getAuthInfo(0, &out);
    out.hostName[0] = QLatin1Char('y');
    auth_->getAuthInfo(0, &out);
    QCOMPARE(describe(out), describe(makeInfo(utf8("a"), utf8("80"), 1, "alice", "secret")));
}

void tst_TVNC_AuthSetting::elementsHaveTheirOrderAndTextTypes()
{
    // The text type is that of the element, whether or not there is text.
    TVNS_AuthInfo info = makeInfo(QString(), QString(), 9, QByteArray(), QByteArray());
    auth_->setAuthInfo(&info);
    QCOMPARE(describe(root()),
             utf8("(authInfo{id=000}(hostName,portNum,authType,user cdata'',passwd cdata''))"));
}

void tst_TVNC_AuthSetting::authTypeIsWrittenAsAWord_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("word");
    QTest::addColumn<int>("readBack");
    QTest::newRow("0") << 0 << utf8("basic") << 0;
    QTest::newRow("1") << 1 << utf8("digest") << 1;
    QTest::newRow("2") << 2 << utf8("NTLM") << 2;
    QTest::newRow("3") << 3 << utf8("") << 0;
    QTest::newRow("128") << 128 << utf8("") << 0;
    QTest::newRow("255") << 255 << utf8("") << 0;
}

void tst_TVNC_AuthSetting::authTypeIsWrittenAsAWord()
{
    QFETCH(int, code);
    QFETCH(QString, word);
    QFETCH(int, readBack);
    TVNS_AuthInfo info = makeInfo(utf8("a"), utf8("80"), code, "u", "p");
    QCOMPARE(auth_->setAuthInfo(&info), 1);
    QCOMPARE(element("authType")->getText(), word);
    TVNS_AuthInfo out = untouched();
    QCOMPARE(auth_->getAuthInfo(0, &out), 1);
    QCOMPARE(int(out.authType), readBack);
}

void tst_TVNC_AuthSetting::membersAreLimited_data()
{
    QTest::addColumn<QString>("hostName");
    QTest::addColumn<QString>("portNum");
    QTest::addColumn<int>("userBytes");
    QTest::addColumn<int>("passwdBytes");
    QTest::addColumn<int>("result");
    const QString host = utf8("host");
    const QString port = utf8("80");
    QTest::newRow("host of 256 bytes") << QString(256, QLatin1Char('x')) << port << 1 << 1 << 1;
    QTest::newRow("host of 257 bytes") << QString(257, QLatin1Char('x')) << port << 1 << 1 << 0;
    QTest::newRow("host of 128 times two bytes") << QString(128, QChar(0xE9)) << port << 1 << 1 << 1;
    QTest::newRow("host of 128 times two bytes and one")
        << QString(128, QChar(0xE9)) + QLatin1Char('x') << port << 1 << 1 << 0;
    QTest::newRow("host of 85 times three bytes and one")
        << QString(85, QChar(0x3042)) + QLatin1Char('x') << port << 1 << 1 << 1;
    QTest::newRow("host of 86 times three bytes") << QString(86, QChar(0x3042)) << port << 1 << 1 << 0;
    QTest::newRow("host of 64 times four bytes") << utf8("😀").repeated(64) << port << 1 << 1 << 1;
    QTest::newRow("host of 64 times four bytes and one")
        << utf8("😀").repeated(64) + QLatin1Char('x') << port << 1 << 1 << 0;
    QTest::newRow("port of 5 bytes") << host << utf8("65535") << 1 << 1 << 1;
    QTest::newRow("port of 6 bytes") << host << utf8("655350") << 1 << 1 << 0;
    QTest::newRow("port of three and two bytes") << host << utf8("あé") << 1 << 1 << 1;
    QTest::newRow("port of two times three bytes") << host << utf8("ああ") << 1 << 1 << 0;
    QTest::newRow("user of 272 bytes") << host << port << 272 << 1 << 1;
    QTest::newRow("user of 273 bytes") << host << port << 273 << 1 << 0;
    QTest::newRow("password of 272 bytes") << host << port << 1 << 272 << 1;
    QTest::newRow("password of 273 bytes") << host << port << 1 << 273 << 0;
    QTest::newRow("all at their limits")
        << QString(256, QLatin1Char('x')) << utf8("65535") << 272 << 272 << 1;
    QTest::newRow("all over their limits")
        << QString(257, QLatin1Char('x')) << utf8("655350") << 273 << 273 << 0;
}

void tst_TVNC_AuthSetting::membersAreLimited()
{
    QFETCH(QString, hostName);
    QFETCH(QString, portNum);
    QFETCH(int, userBytes);
    QFETCH(int, passwdBytes);
    QFETCH(int, result);
    add("old");
    const QString before = describe(root());
    // Bytes count, also those that are zero or no UTF-8.
    TVNS_AuthInfo info =
        makeInfo(hostName, portNum, 1, QByteArray(userBytes, '\xFF'), QByteArray(passwdBytes, '\0'));
    QCOMPARE(auth_->setAuthInfo(&info), result);
    if (result) {
        QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_AuthSetting::setAuthInfo]\n"
                                           "3 [TVNC_AuthSetting::addAuthInfo]\n"));
        TVNS_AuthInfo out = untouched();
        QCOMPARE(auth_->getAuthInfo(0, &out), 1);
        QCOMPARE(describe(out), describe(info));
    } else {
        QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_AuthSetting::setAuthInfo]\n"));
        QCOMPARE(describe(root()), before);
    }
}

void tst_TVNC_AuthSetting::nullRecordIsRefused()
{
    QCOMPARE(auth_->setAuthInfo(nullptr), 0);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_AuthSetting::setAuthInfo]\n"));
    QCOMPARE(auth_->getXMLNodeCnt(), 0);
}

void tst_TVNC_AuthSetting::addingChecksNothing()
{
    TVNS_AuthInfo info = makeInfo(QString(257, QLatin1Char('x')), utf8("655350"), 1, QByteArray(273, 'u'),
                                  QByteArray(300, 'p'));
    auth_->addAuthInfo(&info);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_AuthSetting::addAuthInfo]\n"));
    QCOMPARE(auth_->getAuthInfoCnt(), 1);
    QCOMPARE(element("hostName")->getText(), info.hostName);
    QCOMPARE(element("portNum")->getText(), info.portNum);
    QCOMPARE(element("user")->getText().size(), 364);   // 273 / 3 * 4
    QCOMPARE(element("passwd")->getText().size(), 400); // 300 / 3 * 4
    // What is too long is not handed out; the rest is.
    TVNS_AuthInfo out = untouched();
    QCOMPARE(auth_->getAuthInfo(0, &out), 1);
    QCOMPARE(describe(out),
             describe(makeInfo(utf8("before-host"), utf8("before-port"), 1, "before-user", "before-passwd")));
}

void tst_TVNC_AuthSetting::addingNullDoesNothing()
{
    auth_->addAuthInfo(nullptr);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_AuthSetting::addAuthInfo]\n"));
    QCOMPARE(auth_->getXMLNodeCnt(), 0);
}

void tst_TVNC_AuthSetting::entryThatCannotBeCreatedIsLogged()
{
    add("a");
    QString extra = utf8("1");
    root()->getXMLNodeChildren().at(0)->getAttribute().append(utf8("extra"), extra);
    const QString before = describe(root());
    TVNS_AuthInfo info = makeInfo("b");
    failingNode = 1;
    const int si_result = auth_->setAuthInfo(&info);
    failingNode = 0;
    QCOMPARE(si_result, 1); // it was accepted; that memory ran out, only the log tells
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_AuthSetting::setAuthInfo]\n"
                                       "3 [TVNC_AuthSetting::addAuthInfo]\n"
                                       "1 [TVNC_XMLSetting::addXMLChild] Fail\n"));
    QCOMPARE(describe(root()), before); // not even numbered again
}

void tst_TVNC_AuthSetting::entriesFromThe1000thOnHaveNoNumber()
{
    QByteArray document = "<authentication>";
    for (int i = 0; i < 1000; ++i)
        document += "<authInfo><hostName>h" + QByteArray::number(i) + "</hostName></authInfo>";
    loadFrom(document + "</authentication>");
    QCOMPARE(auth_->getXMLNodeCnt(), 1000);
    QCOMPARE(auth_->getAuthInfoCnt(), 999);
    TVNS_AuthInfo out = untouched();
    QCOMPARE(auth_->getAuthInfo(998, &out), 1);
    QCOMPARE(out.hostName, utf8("h998"));
    QCOMPARE(auth_->getAuthInfo(999, &out), 0);
    add("new");
    QCOMPARE(auth_->getXMLNodeCnt(), 1001);
    QCOMPARE(auth_->getAuthInfoCnt(), 999);
    QCOMPARE(auth_->getAuthInfo(0, &out), 1);
    QCOMPARE(out.hostName, utf8("new"));
    // h998 keeps the number that it had. The first to bear a number is the one that is found.
    QCOMPARE(auth_->getAuthInfo(998, &out), 1);
    QCOMPARE(out.hostName, utf8("h997"));
    // As soon as there is a number for them again, they are back.
    auth_->deleteAuthInfo(0);
    auth_->deleteAuthInfo(0);
    QCOMPARE(auth_->getAuthInfo(998, &out), 1);
    QCOMPARE(out.hostName, utf8("h999"));
}

// --- Updating ---------------------------------------------------------------------------------------------

void tst_TVNC_AuthSetting::oldestGoesOnUpdate()
{
    auth_->loadAuthInfo(&dirName_, 3);
    add("c b a");
    QPointer<TVNC_XMLNode> oldest(root()->getXMLNodeChildren().at(2));
    TVNS_AuthInfo info = makeInfo("new");
    QCOMPARE(auth_->updateAuthInfo(&info), 1);
    QCOMPARE(LogRecorder::take(), updateLines(2));
    QCOMPARE(hostNames(), utf8("new a b"));
    QCOMPARE(auth_->getAuthInfoCnt(), 3);
    QVERIFY(!oldest.isNull());
    releaseDeferred();
    QVERIFY(oldest.isNull());
}

void tst_TVNC_AuthSetting::oldestGoesOnUpdateEvenWhenThereIsRoom_data()
{
    QTest::addColumn<int>("maximum");
    QTest::newRow("room for one") << 3;
    QTest::newRow("room for many") << 10;
    QTest::newRow("no bound") << 2147483647;
}

void tst_TVNC_AuthSetting::oldestGoesOnUpdateEvenWhenThereIsRoom()
{
    QFETCH(int, maximum);
    auth_->loadAuthInfo(&dirName_, maximum);
    add("b a");
    TVNS_AuthInfo info = makeInfo("new");
    QCOMPARE(auth_->updateAuthInfo(&info), 1);
    QCOMPARE(LogRecorder::take(), updateLines(1));
    QCOMPARE(hostNames(), utf8("new a"));
}

void tst_TVNC_AuthSetting::updateDeletesNothingBehindTheMaximum()
{
    add("e d c b a");
    auth_->saveAuthInfo(&dirName_, 100);
    auth_->loadAuthInfo(&dirName_, 3);
    LogRecorder::clear();
    TVNS_AuthInfo info = makeInfo("new");
    QCOMPARE(auth_->updateAuthInfo(&info), 1);
    QCOMPARE(LogRecorder::take(), updateLines(2));
    QCOMPARE(hostNames(), utf8("new a b d e"));
    QCOMPARE(auth_->getAuthInfoCnt(), 5);
}

void tst_TVNC_AuthSetting::updateOfAnEmptyListAdds()
{
    TVNS_AuthInfo info = makeInfo("new");
    QCOMPARE(auth_->updateAuthInfo(&info), 1);
    QCOMPARE(LogRecorder::take(), updateLines(-1));
    QCOMPARE(hostNames(), utf8("new"));
}

void tst_TVNC_AuthSetting::updateOfAFullListOfOne()
{
    auth_->loadAuthInfo(&dirName_, 1);
    add("a");
    TVNS_AuthInfo info = makeInfo("new");
    QCOMPARE(auth_->updateAuthInfo(&info), 1);
    QCOMPARE(LogRecorder::take(), updateLines(0));
    QCOMPARE(hostNames(), utf8("new"));
}

void tst_TVNC_AuthSetting::updateDeletesBeforeItRefuses()
{
    add("c b a");
    TVNS_AuthInfo refused = makeInfo("new");
    refused.portNum = utf8("123456");
    QCOMPARE(auth_->updateAuthInfo(&refused), 0);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_AuthSetting::updateAuthInfo]\n"
                                       "3 [TVNC_AuthSetting::deleteAuthInfo] si_nodeNum:2\n"
                                       "3 [TVNC_AuthSetting::setAuthInfo]\n"));
    QCOMPARE(hostNames(), utf8("a b"));
    QCOMPARE(auth_->updateAuthInfo(nullptr), 0);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_AuthSetting::updateAuthInfo]\n"
                                       "3 [TVNC_AuthSetting::deleteAuthInfo] si_nodeNum:1\n"
                                       "3 [TVNC_AuthSetting::setAuthInfo]\n"));
    QCOMPARE(hostNames(), utf8("a"));
}

void tst_TVNC_AuthSetting::updateRemovesNoneWithoutANumber()
{
    QByteArray document = "<authentication>";
    for (int i = 0; i < 1000; ++i)
        document += "<authInfo/>";
    document += "</authentication>";
    TVNS_AuthInfo info = makeInfo("new");
    loadFrom(document, 5000);
    QCOMPARE(auth_->updateAuthInfo(&info), 1);
    QCOMPARE(LogRecorder::take(), updateLines(999));
    QCOMPARE(auth_->getXMLNodeCnt(), 1001);
    loadFrom(document, 999);
    QCOMPARE(auth_->updateAuthInfo(&info), 1);
    QCOMPARE(auth_->getXMLNodeCnt(), 1000);
    QCOMPARE(LogRecorder::take(), updateLines(998));
}

void tst_TVNC_AuthSetting::maximumIsThatOfTheLastAcceptedLoad()
{
    add("e d c b a");
    auth_->saveAuthInfo(&dirName_, 100);
    auth_->loadAuthInfo(&dirName_, 3);
    // Neither refused loads nor saves change it.
    QString empty;
    auth_->loadAuthInfo(&dirName_, 0);
    auth_->loadAuthInfo(&empty, 2);
    auth_->loadAuthInfo(nullptr, 2);
    auth_->saveAuthInfo(&dirName_, 2);
    LogRecorder::clear();
    TVNS_AuthInfo info = makeInfo("new");
    auth_->updateAuthInfo(&info);
    QCOMPARE(LogRecorder::take(), updateLines(2));
    // All children of the root count, whatever their name.
    loadFrom("<authentication><authInfo/><other/></authentication>", 2147483647);
    auth_->updateAuthInfo(&info);
    QCOMPARE(LogRecorder::take(), updateLines(1));
    QCOMPARE(childNames(root()), utf8("authInfo authInfo"));
}

// --- Reading ----------------------------------------------------------------------------------------------

void tst_TVNC_AuthSetting::entryIsFoundByNumber()
{
    add("b a");
    TVNS_AuthInfo out = untouched();
    QCOMPARE(auth_->getAuthInfo(1, &out), 1);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_AuthSetting::getAuthInfo]\n"));
    QCOMPARE(out.hostName, utf8("b"));
    QCOMPARE(auth_->getAuthInfo(0, &out), 1);
    QCOMPARE(out.hostName, utf8("a"));
}

void tst_TVNC_AuthSetting::absentEntryLeavesTheRecord()
{
    add("b a");
    TVNS_AuthInfo out = untouched();
    QCOMPARE(auth_->getAuthInfo(-1, &out), 0);
    QCOMPARE(auth_->getAuthInfo(2, &out), 0);
    QCOMPARE(auth_->getAuthInfo(2147483647, &out), 0);
    QCOMPARE(describe(out), describe(untouched()));
    QCOMPARE(auth_->getAuthInfo(0, nullptr), 0);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_AuthSetting::getAuthInfo]\n"
                                       "3 [TVNC_AuthSetting::getAuthInfo]\n"
                                       "3 [TVNC_AuthSetting::getAuthInfo]\n"
                                       "3 [TVNC_AuthSetting::getAuthInfo]\n"));
}

void tst_TVNC_AuthSetting::missingElementsLeaveTheirMembers()
{
    loadFrom("<authentication><authInfo/><authInfo><portNum>80</portNum></authInfo></authentication>");
    TVNS_AuthInfo out = untouched();
    QCOMPARE(auth_->getAuthInfo(0, &out), 1);
    TVNS_AuthInfo expected = untouched();
    expected.authType = 0; // the one that is always set
    QCOMPARE(describe(out), describe(expected));
    out = untouched();
    QCOMPARE(auth_->getAuthInfo(1, &out), 1);
    expected.portNum = utf8("80");
    QCOMPARE(describe(out), describe(expected));
}

void tst_TVNC_AuthSetting::emptyElementsEmptyTheirMembers()
{
    loadFrom("<authentication><authInfo><hostName/><portNum/><authType/><user/><passwd> </passwd>"
             "</authInfo></authentication>");
    TVNS_AuthInfo out = untouched();
    QCOMPARE(auth_->getAuthInfo(0, &out), 1);
    QCOMPARE(describe(out), utf8("||0||"));
}

void tst_TVNC_AuthSetting::textsAreHandedOutUpToTheirLimit_data()
{
    QTest::addColumn<QString>("hostName");
    QTest::addColumn<bool>("hostIsHandedOut");
    QTest::addColumn<QString>("portNum");
    QTest::addColumn<bool>("portIsHandedOut");
    QTest::newRow("at the limit") << QString(256, QLatin1Char('x')) << true << utf8("65535") << true;
    QTest::newRow("one over") << QString(257, QLatin1Char('x')) << false << utf8("655350") << false;
    QTest::newRow("at the limit in multi-byte characters")
        << QString(128, QChar(0xE9)) << true << utf8("あé") << true;
    QTest::newRow("over the limit in multi-byte characters")
        << QString(129, QChar(0xE9)) << false << utf8("ああ") << false;
    QTest::newRow("only the host is too long") << QString(86, QChar(0x3042)) << false << utf8("80") << true;
    QTest::newRow("only the port is too long") << utf8("a") << true << utf8("éé80") << false;
}

void tst_TVNC_AuthSetting::textsAreHandedOutUpToTheirLimit()
{
    QFETCH(QString, hostName);
    QFETCH(bool, hostIsHandedOut);
    QFETCH(QString, portNum);
    QFETCH(bool, portIsHandedOut);
    loadFrom("<authentication><authInfo><hostName>" + hostName.toUtf8() + "</hostName><portNum>" +
             portNum.toUtf8() +
             "</portNum><authType>digest</authType><user>dQ==</user><passwd>cA==</passwd>"
             "</authInfo></authentication>");
    TVNS_AuthInfo out = untouched();
    QCOMPARE(auth_->getAuthInfo(0, &out), 1);
    QCOMPARE(describe(out), describe(makeInfo(hostIsHandedOut ? hostName : utf8("before-host"),
                                              portIsHandedOut ? portNum : utf8("before-port"), 1, "u", "p")));
}

void tst_TVNC_AuthSetting::bytesAreHandedOutUpTo272()
{
    const QByteArray fits = QByteArray(272, 'x').toBase64();
    const QByteArray over = QByteArray(273, 'x').toBase64();
    loadFrom("<authentication>"
             "<authInfo><user>" +
             fits + "</user><passwd>" + over + "</passwd></authInfo><authInfo><user><![CDATA[" + over +
             "]]></user><passwd><![CDATA[" + fits + "]]></passwd></authInfo></authentication>");
    TVNS_AuthInfo out = untouched();
    QCOMPARE(auth_->getAuthInfo(0, &out), 1);
    QCOMPARE(out.user, QByteArray(272, 'x'));
    QCOMPARE(out.passwd, QByteArray("before-passwd"));
    out = untouched();
    QCOMPARE(auth_->getAuthInfo(1, &out), 1);
    QCOMPARE(out.user, QByteArray("before-user"));
    QCOMPARE(out.passwd, QByteArray(272, 'x'));
}

void tst_TVNC_AuthSetting::authTypeIsReadFromItsWord_data()
{
    QTest::addColumn<QByteArray>("element");
    QTest::addColumn<int>("code");
    QTest::newRow("basic") << QByteArray("<authType>basic</authType>") << 0;
    QTest::newRow("digest") << QByteArray("<authType>digest</authType>") << 1;
    QTest::newRow("NTLM") << QByteArray("<authType>NTLM</authType>") << 2;
    QTest::newRow("CDATA section") << QByteArray("<authType><![CDATA[NTLM]]></authType>") << 2;
    QTest::newRow("Digest") << QByteArray("<authType>Digest</authType>") << 0;
    QTest::newRow("DIGEST") << QByteArray("<authType>DIGEST</authType>") << 0;
    QTest::newRow("ntlm") << QByteArray("<authType>ntlm</authType>") << 0;
    QTest::newRow("blank in front") << QByteArray("<authType> digest</authType>") << 0;
    QTest::newRow("blank behind") << QByteArray("<authType>NTLM </authType>") << 0;
    QTest::newRow("line breaks") << QByteArray("<authType>\nNTLM\n</authType>") << 0;
    QTest::newRow("beginning of a word") << QByteArray("<authType>diges</authType>") << 0;
    QTest::newRow("longer than a word") << QByteArray("<authType>NTLMv2</authType>") << 0;
    QTest::newRow("number") << QByteArray("<authType>1</authType>") << 0;
    QTest::newRow("empty") << QByteArray("<authType/>") << 0;
    QTest::newRow("missing") << QByteArray("") << 0;
    QTest::newRow("name in other case") << QByteArray("<AuthType>NTLM</AuthType>") << 0;
}

void tst_TVNC_AuthSetting::authTypeIsReadFromItsWord()
{
    QFETCH(QByteArray, element);
    QFETCH(int, code);
    loadFrom("<authentication><authInfo>" + element + "</authInfo></authentication>");
    TVNS_AuthInfo out = untouched();
    QCOMPARE(auth_->getAuthInfo(0, &out), 1);
    QCOMPARE(int(out.authType), code);
}

void tst_TVNC_AuthSetting::base64IsReadLeniently_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray secret("secret");
    QTest::newRow("as written") << utf8("c2VjcmV0") << secret;
    QTest::newRow("line breaks") << utf8("c2Vj\ncmV0\r\n") << secret;
    QTest::newRow("blanks and tabs") << utf8(" c2 Vj\tcm V0 ") << secret;
    QTest::newRow("other characters") << utf8("c2.V-j_c*m#V!0~") << secret;
    QTest::newRow("alphabet of URLs has no - and _") << utf8("-__-") << QByteArray();
    QTest::newRow("letters that are not ASCII") << utf8("c2ÄVjあcm😀V0") << secret;
    QTest::newRow("fullwidth letters are none") << utf8("c2VjcmV0ＡＡＡＡ") << secret;
    QTest::newRow("zero character") << utf8("c2Vj") + QChar(0) + utf8("cmV0") << secret;
    QTest::newRow("letters by their low byte only")
        << utf8("c2Vj") + QChar(0x4141) + QChar(0x0141) + utf8("cmV0") << secret;
    QTest::newRow("half of a surrogate pair") << utf8("c2Vj") + QChar(0xD800) + utf8("cmV0") << secret;
    QTest::newRow("padding") << utf8("YWxpY2U=") << QByteArray("alice");
    QTest::newRow("padding missing") << utf8("YWxpY2U") << QByteArray("alice");
    QTest::newRow("too much padding") << utf8("YWxpY2U=====") << QByteArray("alice");
    QTest::newRow("padding in front") << utf8("==c2VjcmV0") << secret;
    QTest::newRow("padding inside") << utf8("c2V=jcmV0") << secret;
    // The bits run on behind the padding: 010011 010000 010011 010000.
    QTest::newRow("two texts with padding") << utf8("TQ==TQ==") << QByteArray("\x4D\x04\xD0", 3);
    QTest::newRow("bits that are left over") << utf8("TV") << QByteArray("M");
    QTest::newRow("one letter") << utf8("T") << QByteArray();
    QTest::newRow("padding alone") << utf8("====") << QByteArray();
    QTest::newRow("empty") << utf8("") << QByteArray();
    QTest::newRow("zero bytes") << utf8("AAAA") << QByteArray(3, '\0');
    QTest::newRow("plus and slash") << utf8("+//+") << QByteArray("\xFB\xFF\xFE");
}

void tst_TVNC_AuthSetting::base64IsReadLeniently()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, bytes);
    add("a");
    QCOMPARE(decodedUser(text), bytes);
    // Qt skips the same characters. Not by way of toUtf8(): with half of a pair, Qt 4 loses the character
    // behind it, too.
    QCOMPARE(QByteArray::fromBase64(text.toLatin1()), bytes);
}

void tst_TVNC_AuthSetting::base64IsReadAsQtReadsIt()
{
    // Texts of every length up to well over the limit, of letters, padding and anything else, in a fixed
    // sequence.
    add("a");
    Random random(12345);
    int si_handedOut = 0;
    int si_leftAlone = 0;
    for (int i = 0; i < 3000; ++i) {
        QString text;
        for (int si_length = i % 1000; si_length > 0; --si_length) {
            // One in sixteen is any character below U+0800, the others are ASCII that can be printed.
            text.append(QChar(random.next(16) == 0 ? random.next(0x800) : 0x20 + random.next(0x5F)));
        }
        const QByteArray decoded = QByteArray::fromBase64(text.toUtf8());
        ++(decoded.size() <= 272 ? si_handedOut : si_leftAlone);
        QCOMPARE(decodedUser(text), decoded.size() <= 272 ? decoded : QByteArray("before-user"));
    }
    // The sequence reaches both sides.
    QVERIFY(si_handedOut > 100);
    QVERIFY(si_leftAlone > 100);
}

void tst_TVNC_AuthSetting::longBase64IsLeftAlone()
{
    add("a");
    // 363 letters hold 272 bytes and two bits, 364 hold 273 bytes.
    QCOMPARE(decodedUser(QString(363, QLatin1Char('A'))), QByteArray(272, '\0'));
    QCOMPARE(decodedUser(QString(364, QLatin1Char('A'))), QByteArray("before-user"));
    QCOMPARE(decodedUser(QString(4000000, QLatin1Char('A'))), QByteArray("before-user"));
    // What is no letter does not count.
    QCOMPARE(decodedUser(QString(363, QLatin1Char('A')) + QString(4000000, QLatin1Char('='))),
             QByteArray(272, '\0'));
    QCOMPARE(decodedUser(QString(4000000, QLatin1Char(' ')) + utf8("YWxpY2U=")), QByteArray("alice"));
}

void tst_TVNC_AuthSetting::firstElementOfANameCounts()
{
    loadFrom("<authentication><authInfo>"
             "<passwd>cDE=</passwd><user>dTE=</user><authType>NTLM</authType><portNum>1</portNum>"
             "<hostName>first</hostName>"
             "<hostName>second</hostName><portNum>2</portNum><authType>digest</authType>"
             "<user>dTI=</user><passwd>cDI=</passwd></authInfo></authentication>");
    TVNS_AuthInfo out = untouched();
    QCOMPARE(auth_->getAuthInfo(0, &out), 1);
    QCOMPARE(describe(out), describe(makeInfo(utf8("first"), utf8("1"), 2, "u1", "p1")));
}

void tst_TVNC_AuthSetting::elementNameIsOnlyTestedForTheCount()
{
    loadFrom("<authentication><other><hostName>a</hostName></other>"
             "<authInfo><hostName>b</hostName></authInfo>"
             "<AuthInfo><hostName>c</hostName></AuthInfo></authentication>");
    QCOMPARE(auth_->getAuthInfoCnt(), 1);
    QCOMPARE(hostNames(), utf8("a b c"));
}

// --- Deleting ---------------------------------------------------------------------------------------------

void tst_TVNC_AuthSetting::deletedEntryLeavesNoGap()
{
    add("d c b a");
    auth_->deleteAuthInfo(1);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_AuthSetting::deleteAuthInfo] si_nodeNum:1\n"));
    QCOMPARE(auth_->getAuthInfoCnt(), 3);
    QCOMPARE(hostNames(), utf8("a c d"));
    auth_->deleteAuthInfo(0);
    auth_->deleteAuthInfo(1);
    QCOMPARE(hostNames(), utf8("c"));
    auth_->deleteAuthInfo(0);
    QCOMPARE(auth_->getAuthInfoCnt(), 0);
    QCOMPARE(auth_->getXMLNodeCnt(), 0);
}

void tst_TVNC_AuthSetting::deletingAnAbsentNumberOnlyRenumbers()
{
    loadFrom("<authentication><authInfo/><authInfo/></authentication>");
    addAttribute(root()->getXMLNodeChildren().at(1), "extra", utf8("1"));
    auth_->deleteAuthInfo(2);
    QCOMPARE(describe(root()), utf8("authentication(authInfo{id=000},authInfo{id=001})"));
    auth_->deleteAuthInfo(-1);
    auth_->deleteAuthInfo(-2147483647 - 1);
    auth_->deleteAuthInfo(2147483647);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_AuthSetting::deleteAuthInfo] si_nodeNum:2\n"
                                       "3 [TVNC_AuthSetting::deleteAuthInfo] si_nodeNum:-1\n"
                                       "3 [TVNC_AuthSetting::deleteAuthInfo] si_nodeNum:-2147483648\n"
                                       "3 [TVNC_AuthSetting::deleteAuthInfo] si_nodeNum:2147483647\n"));
    QCOMPARE(auth_->getAuthInfoCnt(), 2);
}

// --- All together -----------------------------------------------------------------------------------------

void tst_TVNC_AuthSetting::manyEntries()
{
    // With work that grows with the square of the number of entries this would not end.
    QByteArray document = "<authentication>";
    for (int i = 0; i < 100000; ++i)
        document += "<authInfo id='" + QByteArray::number(i) + "'><user>dQ==</user></authInfo>";
    loadFrom(document + "</authentication>", 998);
    QCOMPARE(auth_->getXMLNodeCnt(), 100000);
    // From position 999 on they keep the numbers of the file.
    QCOMPARE(auth_->getAuthInfoCnt(), 100000);
    TVNS_AuthInfo info = makeInfo("new");
    TVNS_AuthInfo out = untouched();
    for (int i = 0; i < 200; ++i)
        QCOMPARE(auth_->updateAuthInfo(&info), 1);
    QCOMPARE(auth_->getXMLNodeCnt(), 100000);
    // The deletions let the entry with number 999 move up to position 998, and the additions moved it back,
    // where it keeps the 998 that it was given in between. So 999 is the one number that nobody has.
    QCOMPARE(auth_->getAuthInfoCnt(), 99999);
    QCOMPARE(auth_->getAuthInfo(999, &out), 0);
    QCOMPARE(auth_->getAuthInfo(1000, &out), 1);
    auth_->saveAuthInfo(&dirName_, 1);
    auth_->loadAuthInfo(&dirName_, 1);
    QCOMPARE(auth_->getXMLNodeCnt(), 100000);
    QCOMPARE(auth_->getAuthInfoCnt(), 99999);
    auth_->deleteAllSetting();
    releaseDeferred();
    for (int i = 0; i < 10000; ++i)
        QCOMPARE(auth_->setAuthInfo(&info), 1);
    QCOMPARE(auth_->getXMLNodeCnt(), 10000);
    QCOMPARE(auth_->getAuthInfoCnt(), 999);
}

void tst_TVNC_AuthSetting::credentialsNeverReachTheLog()
{
    TVNS_AuthInfo info = makeInfo(utf8("hostQQQ"), utf8("QQQ"), 2, "userQQQ", "passwdQQQ");
    TVNS_AuthInfo refused = info;
    refused.passwd = QByteArray("passwdQQQ").repeated(40);
    TVNS_AuthInfo out = untouched();
    QString absent = dirName_ + utf8("absent/");
    LogRecorder::clear();
    auth_->setAuthInfo(&info);
    auth_->addAuthInfo(&info);
    auth_->addAuthInfo(&refused);
    auth_->updateAuthInfo(&info);
    auth_->setAuthInfo(&refused);
    auth_->updateAuthInfo(&refused);
    failingNode = 1;
    auth_->setAuthInfo(&info);
    failingNode = 3; // an element of the entry
    auth_->setAuthInfo(&info);
    failingNode = 0;
    QCOMPARE(auth_->getAuthInfo(0, &out), 1);
    auth_->saveAuthInfo(&dirName_, 1);
    auth_->saveAuthInfo(&absent, 1);
    auth_->loadAuthInfo(&dirName_, 100);
    auth_->getAuthInfo(0, &out);
    auth_->getAuthInfoCnt();
    auth_->deleteAuthInfo(0);
    // A damaged file with credentials in it.
    const QByteArray document = readFile(path());
    writeFile(path(), document.left(document.size() - 60));
    auth_->loadAuthInfo(&dirName_, 100);
    auth_->deleteAllSetting();

    const QStringList lines = LogRecorder::takeLines();
    QVERIFY(lines.size() > 40);
    QVERIFY(lines.contains(utf8("1 [TVNC_XMLSetting::addXMLChild] Fail")));
    QStringList secrets;
    secrets << utf8("QQQ") << utf8("dXNlclFRU") << utf8("cGFzc3dkUVFR"); // the last two as base64
    foreach (const QString& secret, secrets) {
        QVERIFY(document.contains(secret.toLatin1()) && lines.filter(secret, Qt::CaseInsensitive).isEmpty());
    }
}

void tst_TVNC_AuthSetting::hostOfBlanksComesBackEmpty()
{
    TVNS_AuthInfo info = makeInfo("   ");
    QCOMPARE(auth_->setAuthInfo(&info), 1);
    auth_->saveAuthInfo(&dirName_, 100);
    auth_->loadAuthInfo(&dirName_, 100);
    TVNS_AuthInfo out = untouched();
    QCOMPARE(auth_->getAuthInfo(0, &out), 1);
    QCOMPARE(describe(out), describe(makeInfo("")));
}

TLVLIB_TEST_MAIN(tst_TVNC_AuthSetting)
#include "tst_TVNC_AuthSetting.moc"
