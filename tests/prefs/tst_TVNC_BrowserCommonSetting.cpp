#include "tests/support/FailingNew.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/prefs/TVNC_BrowserCommonSetting.h>

typedef TVNC_BrowserCommonSetting Common;

/// What a directory without a file is saved as.
static QByteArray defaults()
{
    return readFile(testData(utf8("repostry.xml")));
}

/// A choice with its accessors and its words in the order of their codes.
struct Choice
{
    const char* pc_group;
    const char* pc_leaf;
    void (Common::*set)(char);
    char (Common::*get)();
    const char* pc_words;
    int si_default;
};

static const Choice CHOICES[] = {
    {"cookie", "acceptCookie", &Common::setRcvCookieInfo, &Common::getRcvCookieInfo, "refuse accept", 1},
    {"cache", "enableCache", &Common::setUseCacheInfo, &Common::getUseCacheInfo, "false true", 1},
    {"cache", "cacheDeleteTiming", &Common::setCacheDeleteTiming, &Common::getCacheDeleteTiming,
     "notDelete logout timeout", 0},
    {"keyboard", "priority", &Common::setSWKeyBoardTypeInfo, &Common::getSWKeyBoardTypeInfo, "usb soft", 1},
    {"javascript", "enableJavascript", &Common::setUseJavaScriptInfo, &Common::getUseJavaScriptInfo,
     "false true", 1},
    {"plugin", "enableFlashPlugin", &Common::setPlayFlashInfo, &Common::getPlayFlashInfo, "false true", 1},
    {"proxy", "enableProxy", &Common::setUseProxyInfo, &Common::getUseProxyInfo, "false true", 0},
    {"proxy", "enableHTTP11", &Common::setUseProxyHttpInfo, &Common::getUseProxyHttpInfo, "false true", 1},
    {"proxy", "enableProxyAuth", &Common::setUseProxyCertificationInfo, &Common::getUseProxyCertificationInfo,
     "false true", 0},
    {"security", "enableSSL30", &Common::setUseSSL30, &Common::getUseSSL30, "false true", 1},
    {"security", "enableTLS10", &Common::setUseTLS10, &Common::getUseTLS10, "false true", 1},
};
static const int CHOICE_COUNT = sizeof CHOICES / sizeof *CHOICES;

struct Text
{
    const char* pc_leaf;
    bool (Common::*set)(QString);
    void (Common::*get)(QString*);
    int si_maxBytes;
    const char* pc_default;
};

static const Text TEXTS[] = {
    {"hostName", &Common::setProxyServerStr, &Common::getProxyServerStr, 253, ""},
    {"portHTTP", &Common::setProxyHttpPortStr, &Common::getProxyHttpPortStr, 5, "8080"},
    {"portHTTPS", &Common::setProxyHttpsPortStr, &Common::getProxyHttpsPortStr, 5, "8080"},
    {"unusedDomain", &Common::setNoProxyDomainStr, &Common::getNoProxyDomainStr, 253, ""},
};
static const int TEXT_COUNT = sizeof TEXTS / sizeof *TEXTS;

struct Bytes
{
    const char* pc_leaf;
    bool (Common::*set)(QByteArray);
    void (Common::*get)(QByteArray*);
};

static const Bytes BYTES[] = {
    {"proxyUserName", &Common::setProxyAccountStr, &Common::getProxyAccountStr},
    {"proxyUserPass", &Common::setProxyPasswordStr, &Common::getProxyPasswordStr},
};
static const int BYTES_COUNT = sizeof BYTES / sizeof *BYTES;

class tst_TVNC_BrowserCommonSetting : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void missingFileGivesTheDefaults();
    void savedPreferencesAreLoadedBack();
    void rootOfAnotherNameIsRenamedAndKeepsItsChildren();
    void rootOfTheRightNameKeepsItsAttributes();
    void missingPreferencesAreAppended();
    void fillingInEmptiesTheTextOfTheGroup();
    void firstElementOfANameCounts();
    void existingPreferencesStayWhateverTheirText();
    void saveWritesTheTreeAsItIs();
    void keyBoardTypeIsInNoDocument();

    void codesAreWrittenAsWords_data();
    void codesAreWrittenAsWords();
    void wordsAreReadAsCodes_data();
    void wordsAreReadAsCodes();
    void missingChoiceReadsAsItsDefault();
    void setterCreatesWhatIsMissing();
    void setterKeepsTheOrder();

    void textsAreLimited_data();
    void textsAreLimited();
    void longTextInTheDocumentReadsAsTheDefault_data();
    void longTextInTheDocumentReadsAsTheDefault();
    void missingTextReadsAsTheDefault();
    void portsHoldAnyText();
    void nullIsIgnored();

    void loginIsLimitedTo80Bytes();
    void loginIsABase64Section();
    void anyBytesComeBack();
    void loginInTheDocumentIsReadLeniently_data();
    void loginInTheDocumentIsReadLeniently();
    void missingLoginReadsAsEmpty();
    void preferencesNeverReachTheLog();
    void memoryThatRunsOut();

private:
    void loadFrom(const QByteArray& document);
    QString textOf(const char* pc_group, const char* pc_leaf);
    void setTextOf(const char* pc_group, const char* pc_leaf, const QString& text);
    QString file() const { return dirName_ + utf8("repostry.xml"); }
    TVNC_XMLNode* root() { return common_->getXMLRootNode(); }

    Common* common_;
    QScopedPointer<TempDir> dir_;
    QString dirName_;
};

void tst_TVNC_BrowserCommonSetting::initTestCase()
{
    // Before the first load, which later tests cannot undo: one instance serves the whole process.
    common_ = Common::getInstance();
    QVERIFY(!root());
    for (int i = 0; i < CHOICE_COUNT; ++i) {
        (common_->*CHOICES[i].set)(static_cast<char>(1 - CHOICES[i].si_default));
        QCOMPARE(int((common_->*CHOICES[i].get)()), CHOICES[i].si_default);
    }
    for (int i = 0; i < TEXT_COUNT; ++i) {
        QString out = utf8("before");
        QVERIFY(!(common_->*TEXTS[i].set)(utf8("x")));
        (common_->*TEXTS[i].get)(&out);
        QCOMPARE(out, utf8("before"));
    }
    for (int i = 0; i < BYTES_COUNT; ++i) {
        QByteArray out = "before";
        QVERIFY(!(common_->*BYTES[i].set)("x"));
        (common_->*BYTES[i].get)(&out);
        QCOMPARE(out, QByteArray("before"));
    }
    QCOMPARE(int(common_->getKeyBoardTypeInfo()), 0);
    QVERIFY(!root());
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_BrowserCommonSetting::init()
{
    dir_.reset(new TempDir);
    dirName_ = dir_->path();
    common_->loadSetting(&dirName_);
    releaseDeferred();
    LogRecorder::clear();
}

void tst_TVNC_BrowserCommonSetting::loadFrom(const QByteArray& document)
{
    writeFile(file(), document);
    common_->loadSetting(&dirName_);
    LogRecorder::clear();
}

QString tst_TVNC_BrowserCommonSetting::textOf(const char* pc_group, const char* pc_leaf)
{
    TVNC_XMLNode* pc_node = common_->getGrandchildNode(utf8(pc_group), utf8(pc_leaf));
    return pc_node ? pc_node->getText() : utf8("no element");
}

void tst_TVNC_BrowserCommonSetting::setTextOf(const char* pc_group, const char* pc_leaf, const QString& text)
{
    QString own = text;
    common_->getGrandchildNode(utf8(pc_group), utf8(pc_leaf))->setText(own);
}

// --- The document -----------------------------------------------------------------------------------------

void tst_TVNC_BrowserCommonSetting::missingFileGivesTheDefaults()
{
    for (int i = 0; i < CHOICE_COUNT; ++i)
        QCOMPARE(int((common_->*CHOICES[i].get)()), CHOICES[i].si_default);
    for (int i = 0; i < TEXT_COUNT; ++i) {
        QString out = utf8("before");
        (common_->*TEXTS[i].get)(&out);
        QCOMPARE(out, utf8(TEXTS[i].pc_default));
    }
    for (int i = 0; i < BYTES_COUNT; ++i) {
        QByteArray out = "before";
        (common_->*BYTES[i].get)(&out);
        QVERIFY(out.isEmpty());
    }
}

void tst_TVNC_BrowserCommonSetting::savedPreferencesAreLoadedBack()
{
    common_->setRcvCookieInfo(0);
    common_->setCacheDeleteTiming(2);
    common_->setUseProxyInfo(1);
    QVERIFY(common_->setProxyServerStr(utf8("proxy.日本")));
    QVERIFY(common_->setProxyHttpPortStr(utf8("3128")));
    QVERIFY(common_->setProxyAccountStr("alice"));
    QVERIFY(common_->setProxyPasswordStr(QByteArray("s]]>\0\xFF", 6)));
    common_->saveSetting(&dirName_);
    QByteArray expected = defaults();
    expected.replace("<acceptCookie>accept<", "<acceptCookie>refuse<");
    expected.replace("<cacheDeleteTiming>notDelete<", "<cacheDeleteTiming>timeout<");
    expected.replace("<enableProxy>false<", "<enableProxy>true<");
    expected.replace("<hostName/>", "<hostName>proxy.日本</hostName>");
    expected.replace("<portHTTP>8080<", "<portHTTP>3128<");
    expected.replace("<proxyUserName/>", "<proxyUserName><![CDATA[YWxpY2U=]]></proxyUserName>");
    expected.replace("<proxyUserPass/>", "<proxyUserPass><![CDATA[c11dPgD/]]></proxyUserPass>");
    QCOMPARE(readFile(file()), expected);

    TempDir other;
    QString otherName = other.path();
    common_->loadSetting(&otherName);
    QCOMPARE(int(common_->getUseProxyInfo()), 0);
    common_->loadSetting(&dirName_);
    QCOMPARE(int(common_->getRcvCookieInfo()), 0);
    QCOMPARE(int(common_->getCacheDeleteTiming()), 2);
    QCOMPARE(int(common_->getUseProxyInfo()), 1);
    QString text;
    QByteArray bytes;
    common_->getProxyServerStr(&text);
    QCOMPARE(text, utf8("proxy.日本"));
    common_->getProxyPasswordStr(&bytes);
    QCOMPARE(bytes, QByteArray("s]]>\0\xFF", 6));
    common_->saveSetting(&dirName_);
    QCOMPARE(readFile(file()), expected);
}

void tst_TVNC_BrowserCommonSetting::rootOfAnotherNameIsRenamedAndKeepsItsChildren()
{
    loadFrom("<repostry a='1' docInfo='0.5'><foreign x='y'>text</foreign>"
             "<cookie z='1'><acceptCookie>refuse</acceptCookie></cookie></repostry>");
    common_->saveSetting(&dirName_);
    QByteArray expected = defaults();
    expected.replace("    <cookie>\n        <acceptCookie>accept</acceptCookie>\n    </cookie>\n",
                     "    <foreign x=\"y\">text</foreign>\n"
                     "    <cookie z=\"1\">\n        <acceptCookie>refuse</acceptCookie>\n    </cookie>\n");
    QCOMPARE(readFile(file()), expected);
}

void tst_TVNC_BrowserCommonSetting::rootOfTheRightNameKeepsItsAttributes()
{
    loadFrom("<repostry_common docInfo='9' x='y'/>");
    common_->saveSetting(&dirName_);
    QByteArray expected = defaults();
    expected.replace("<repostry_common docInfo=\"1.0\">", "<repostry_common docInfo=\"9\" x=\"y\">");
    QCOMPARE(readFile(file()), expected);
}

void tst_TVNC_BrowserCommonSetting::missingPreferencesAreAppended()
{
    loadFrom("<repostry_common docInfo='1.0'>"
             "<security><enableTLS10>false</enableTLS10><foreign/></security>"
             "<cache><other>kept</other><enableCache>false</enableCache></cache></repostry_common>");
    QVERIFY(describe(root()).startsWith(utf8("repostry_common{docInfo=1.0}("
                                             "security(enableTLS10'false',foreign,enableSSL30'true'),"
                                             "cache(other'kept',enableCache'false',"
                                             "cacheDeleteTiming'notDelete'),"
                                             "cookie(acceptCookie'accept'),keyboard(")));
    QCOMPARE(childNames(root()), utf8("security cache cookie keyboard javascript plugin proxy"));
}

void tst_TVNC_BrowserCommonSetting::fillingInEmptiesTheTextOfTheGroup()
{
    loadFrom("<repostry_common><cookie>text<acceptCookie>x</acceptCookie></cookie>"
             "<cache>text<enableCache>x</enableCache></cache></repostry_common>");
    QCOMPARE(root()->getXMLNodeChildren().at(0)->getText(), utf8("text")); // nothing was missing
    QCOMPARE(root()->getXMLNodeChildren().at(1)->getText(), QString());
}

void tst_TVNC_BrowserCommonSetting::firstElementOfANameCounts()
{
    loadFrom("<repostry_common><cookie/><cookie><acceptCookie>refuse</acceptCookie></cookie>"
             "<cache><enableCache>false</enableCache><enableCache>true</enableCache></cache>"
             "</repostry_common>");
    QCOMPARE(int(common_->getRcvCookieInfo()), 1); // the first group had none, and got the default
    QCOMPARE(int(common_->getUseCacheInfo()), 0);
}

void tst_TVNC_BrowserCommonSetting::existingPreferencesStayWhateverTheirText()
{
    const QByteArray document = "<repostry_common docInfo=\"1.0\"><cookie><acceptCookie/></cookie>"
                                "<proxy><portHTTP>1234567</portHTTP><enableProxy>TRUE</enableProxy>"
                                "</proxy></repostry_common>";
    loadFrom(document);
    QCOMPARE(textOf("cookie", "acceptCookie"), QString());
    QCOMPARE(textOf("proxy", "portHTTP"), utf8("1234567"));
    QCOMPARE(textOf("proxy", "enableProxy"), utf8("TRUE"));
    common_->saveSetting(&dirName_);
    QVERIFY(readFile(file()).contains("<portHTTP>1234567</portHTTP>"));
}

void tst_TVNC_BrowserCommonSetting::saveWritesTheTreeAsItIs()
{
    QString name = utf8("renamed");
    root()->setName(name);
    root()->getXMLNodeChildren().at(0)->setName(name);
    common_->saveSetting(&dirName_);
    QVERIFY(readFile(file()).contains("<renamed docInfo=\"1.0\">\n    <renamed>\n"));
}

void tst_TVNC_BrowserCommonSetting::keyBoardTypeIsInNoDocument()
{
    common_->setKeyBoardTypeInfo(static_cast<char>(200));
    common_->saveSetting(&dirName_);
    QCOMPARE(readFile(file()), defaults());
    common_->loadSetting(&dirName_);
    QCOMPARE(int(static_cast<unsigned char>(common_->getKeyBoardTypeInfo())), 200);
    common_->setKeyBoardTypeInfo(0);
    QCOMPARE(int(common_->getKeyBoardTypeInfo()), 0);
}

// --- Choices ----------------------------------------------------------------------------------------------

void tst_TVNC_BrowserCommonSetting::codesAreWrittenAsWords_data()
{
    QTest::addColumn<int>("si_choice");
    QTest::addColumn<int>("si_code");
    QTest::addColumn<QString>("word");
    for (int i = 0; i < CHOICE_COUNT; ++i) {
        const QStringList words = utf8(CHOICES[i].pc_words).split(QLatin1Char(' '));
        static const int CODES[] = {0, 1, 2, 3, 7, 127, 128, 255};
        for (int j = 0; j < 8; ++j) {
            const int si_code = CODES[j];
            // What is no code stands for the default.
            const QString word = si_code < words.size() ? words.at(si_code) : words.at(CHOICES[i].si_default);
            QTest::newRow(qPrintable(utf8(CHOICES[i].pc_leaf) + QString::fromLatin1(" %1").arg(si_code)))
                << i << si_code << word;
        }
    }
    // Once more by hand: what is easily taken for a mistake.
    QTest::newRow("cookies are accepted for 2") << 0 << 2 << utf8("accept");
    QTest::newRow("the cache is on for 2") << 1 << 2 << utf8("true");
    QTest::newRow("the proxy is off for 2") << 6 << 2 << utf8("false");
    QTest::newRow("the proxy's login is off for 255") << 8 << 255 << utf8("false");
    QTest::newRow("the cache stays for 7") << 2 << 7 << utf8("notDelete");
}

void tst_TVNC_BrowserCommonSetting::codesAreWrittenAsWords()
{
    QFETCH(int, si_choice);
    QFETCH(int, si_code);
    QFETCH(QString, word);
    const Choice& choice = CHOICES[si_choice];
    (common_->*choice.set)(static_cast<char>(si_code));
    QCOMPARE(textOf(choice.pc_group, choice.pc_leaf), word);
    QCOMPARE(utf8(choice.pc_words).split(QLatin1Char(' ')).indexOf(word), int((common_->*choice.get)()));
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_BrowserCommonSetting::wordsAreReadAsCodes_data()
{
    QTest::addColumn<int>("si_choice");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("si_code");
    for (int i = 0; i < CHOICE_COUNT; ++i) {
        const QStringList words = utf8(CHOICES[i].pc_words).split(QLatin1Char(' '));
        for (int j = 0; j < words.size(); ++j) {
            QTest::newRow(qPrintable(utf8(CHOICES[i].pc_leaf) + utf8(" ") + words.at(j)))
                << i << words.at(j) << j;
            QTest::newRow(qPrintable(utf8(CHOICES[i].pc_leaf) + utf8(" capital ") + words.at(j)))
                << i << words.at(j).toUpper() << CHOICES[i].si_default;
            QTest::newRow(qPrintable(utf8(CHOICES[i].pc_leaf) + utf8(" blank ") + words.at(j)))
                << i << words.at(j) + utf8(" ") << CHOICES[i].si_default;
        }
        QTest::newRow(qPrintable(utf8(CHOICES[i].pc_leaf) + utf8(" empty")))
            << i << QString() << CHOICES[i].si_default;
        QTest::newRow(qPrintable(utf8(CHOICES[i].pc_leaf) + utf8(" never")))
            << i << utf8("never") << CHOICES[i].si_default;
    }
    // Once more by hand: what is easily taken for a mistake.
    QTest::newRow("a misspelt off is on") << 1 << utf8("False") << 1;
    QTest::newRow("a misspelt proxy is off") << 6 << utf8("TRUE") << 0;
}

void tst_TVNC_BrowserCommonSetting::wordsAreReadAsCodes()
{
    QFETCH(int, si_choice);
    QFETCH(QString, text);
    QFETCH(int, si_code);
    const Choice& choice = CHOICES[si_choice];
    (common_->*choice.set)(static_cast<char>(1 - choice.si_default)); // so that an unread text is noticed
    setTextOf(choice.pc_group, choice.pc_leaf, text);
    QCOMPARE(int((common_->*choice.get)()), si_code);
    QCOMPARE(textOf(choice.pc_group, choice.pc_leaf), text);
}

void tst_TVNC_BrowserCommonSetting::missingChoiceReadsAsItsDefault()
{
    common_->createXMLRootNode();
    for (int i = 0; i < CHOICE_COUNT; ++i)
        QCOMPARE(int((common_->*CHOICES[i].get)()), CHOICES[i].si_default);
}

void tst_TVNC_BrowserCommonSetting::setterCreatesWhatIsMissing()
{
    common_->createXMLRootNode();
    common_->setUseTLS10(0);
    common_->setUseProxyInfo(1);
    QVERIFY(common_->setProxyPasswordStr("x"));
    QCOMPARE(describe(root()), utf8("(security(enableTLS10'false'),"
                                    "proxy(enableProxy'true',proxyUserPass cdata'eA=='))"));
}

void tst_TVNC_BrowserCommonSetting::setterKeepsTheOrder()
{
    loadFrom("<repostry_common><cache y='z'>text<enableCache a='b'><![CDATA[false]]></enableCache></cache>"
             "</repostry_common>");
    common_->setUseCacheInfo(1);
    QVERIFY(describe(root()).startsWith(
        utf8("repostry_common(cache{y=z}(enableCache{a=b}'true',cacheDeleteTiming'notDelete')")));
}

// --- Texts ------------------------------------------------------------------------------------------------

void tst_TVNC_BrowserCommonSetting::textsAreLimited_data()
{
    QTest::addColumn<int>("si_text");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("accepted");
    for (int i = 0; i < TEXT_COUNT; ++i) {
        const int si_max = TEXTS[i].si_maxBytes;
        const QString leaf = utf8(TEXTS[i].pc_leaf);
        QTest::newRow(qPrintable(leaf + utf8(" empty"))) << i << QString() << true;
        QTest::newRow(qPrintable(leaf + utf8(" longest"))) << i << utf8("x").repeated(si_max) << true;
        QTest::newRow(qPrintable(leaf + utf8(" too long"))) << i << utf8("x").repeated(si_max + 1) << false;
        QTest::newRow(qPrintable(leaf + utf8(" longest in two bytes")))
            << i << utf8("x") + utf8("é").repeated(si_max / 2) << true;
        QTest::newRow(qPrintable(leaf + utf8(" too long in two bytes")))
            << i << utf8("é").repeated(si_max / 2 + 1) << false;
    }
}

void tst_TVNC_BrowserCommonSetting::textsAreLimited()
{
    QFETCH(int, si_text);
    QFETCH(QString, text);
    QFETCH(bool, accepted);
    const Text& row = TEXTS[si_text];
    const QString before = describe(root());
    QCOMPARE((common_->*row.set)(text), accepted);
    if (!accepted)
        QCOMPARE(describe(root()), before);
    QString out = utf8("before");
    (common_->*row.get)(&out);
    QCOMPARE(out, accepted ? text : utf8(row.pc_default));
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_BrowserCommonSetting::longTextInTheDocumentReadsAsTheDefault_data()
{
    QTest::addColumn<int>("si_text");
    for (int i = 0; i < TEXT_COUNT; ++i)
        QTest::newRow(TEXTS[i].pc_leaf) << i;
}

void tst_TVNC_BrowserCommonSetting::longTextInTheDocumentReadsAsTheDefault()
{
    QFETCH(int, si_text);
    const Text& row = TEXTS[si_text];
    const QString tooLong = utf8("x").repeated(row.si_maxBytes + 1);
    setTextOf("proxy", row.pc_leaf, tooLong);
    QString out = utf8("before");
    (common_->*row.get)(&out);
    QCOMPARE(out, utf8(row.pc_default));
    QCOMPARE(textOf("proxy", row.pc_leaf), tooLong);
    setTextOf("proxy", row.pc_leaf, tooLong.mid(1));
    (common_->*row.get)(&out);
    QCOMPARE(out, tooLong.mid(1));
}

void tst_TVNC_BrowserCommonSetting::missingTextReadsAsTheDefault()
{
    common_->createXMLRootNode();
    for (int i = 0; i < TEXT_COUNT; ++i) {
        QString out = utf8("before");
        (common_->*TEXTS[i].get)(&out);
        QCOMPARE(out, utf8(TEXTS[i].pc_default));
    }
}

void tst_TVNC_BrowserCommonSetting::portsHoldAnyText()
{
    QString out;
    QVERIFY(common_->setProxyHttpPortStr(utf8("65535")));
    QVERIFY(common_->setProxyHttpPortStr(utf8("abc")));
    QVERIFY(!common_->setProxyHttpPortStr(utf8("100000")));
    common_->getProxyHttpPortStr(&out);
    QCOMPARE(out, utf8("abc"));
    common_->getProxyHttpsPortStr(&out);
    QCOMPARE(out, utf8("8080"));
}

void tst_TVNC_BrowserCommonSetting::nullIsIgnored()
{
    for (int i = 0; i < TEXT_COUNT; ++i)
        (common_->*TEXTS[i].get)(nullptr);
    for (int i = 0; i < BYTES_COUNT; ++i)
        (common_->*BYTES[i].get)(nullptr);
    QCOMPARE(LogRecorder::take(), QString());
}

// --- The login for the proxy ------------------------------------------------------------------------------

void tst_TVNC_BrowserCommonSetting::loginIsLimitedTo80Bytes()
{
    for (int i = 0; i < BYTES_COUNT; ++i) {
        const QByteArray longest(80, 'x');
        QByteArray out;
        QVERIFY((common_->*BYTES[i].set)(longest));
        QCOMPARE(int(textOf("proxy", BYTES[i].pc_leaf).size()), 108);
        const QString before = describe(root());
        QVERIFY(!(common_->*BYTES[i].set)(longest + 'x'));
        QCOMPARE(describe(root()), before);
        (common_->*BYTES[i].get)(&out);
        QCOMPARE(out, longest);
        QVERIFY((common_->*BYTES[i].set)(QByteArray()));
        (common_->*BYTES[i].get)(&out);
        QVERIFY(out.isEmpty());
    }
}

void tst_TVNC_BrowserCommonSetting::loginIsABase64Section()
{
    QVERIFY(common_->setProxyAccountStr("\xFB\xFF\xFE"));
    TVNC_XMLNode* pc_node = common_->getGrandchildNode(utf8("proxy"), utf8("proxyUserName"));
    QCOMPARE(describe(pc_node), utf8("proxyUserName cdata'+//+'"));
}

void tst_TVNC_BrowserCommonSetting::anyBytesComeBack()
{
    QByteArray all;
    for (int i = 0; i < 256; ++i)
        all.append(static_cast<char>(i));
    for (int i = 0; i < 256; i += 64) {
        QByteArray out;
        QVERIFY(common_->setProxyPasswordStr(all.mid(i, 64)));
        common_->saveSetting(&dirName_);
        common_->loadSetting(&dirName_);
        common_->getProxyPasswordStr(&out);
        QCOMPARE(out, all.mid(i, 64));
    }
}

void tst_TVNC_BrowserCommonSetting::loginInTheDocumentIsReadLeniently_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("character data") << QByteArray("YWxpY2U=") << QByteArray("alice");
    QTest::newRow("line breaks") << QByteArray("\n YWxp\n Y2U=\n") << QByteArray("alice");
    QTest::newRow("no fill") << QByteArray("YWxpY2U") << QByteArray("alice");
    QTest::newRow("empty") << QByteArray() << QByteArray();
    QTest::newRow("80 bytes") << QByteArray(80, 'x').toBase64() << QByteArray(80, 'x');
    QTest::newRow("81 bytes") << QByteArray(81, 'x').toBase64() << QByteArray();
    QTest::newRow("80000 bytes") << QByteArray(80000, 'x').toBase64() << QByteArray();
}

void tst_TVNC_BrowserCommonSetting::loginInTheDocumentIsReadLeniently()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, bytes);
    loadFrom("<r><proxy><proxyUserPass>" + text + "</proxyUserPass></proxy></r>");
    QByteArray out = "before";
    common_->getProxyPasswordStr(&out);
    QCOMPARE(out, bytes);
}

void tst_TVNC_BrowserCommonSetting::missingLoginReadsAsEmpty()
{
    common_->createXMLRootNode();
    for (int i = 0; i < BYTES_COUNT; ++i) {
        QByteArray out = "before";
        (common_->*BYTES[i].get)(&out);
        QVERIFY(out.isEmpty());
    }
}

void tst_TVNC_BrowserCommonSetting::preferencesNeverReachTheLog()
{
    QByteArray out;
    QVERIFY(common_->setProxyAccountStr("secret"));
    QVERIFY(common_->setProxyPasswordStr("secret"));
    common_->saveSetting(&dirName_);
    common_->loadSetting(&dirName_);
    common_->getProxyPasswordStr(&out);
    const QString log = LogRecorder::take();
    QVERIFY(log.contains(utf8("3 [TVNC_BrowserCommonSetting::loadSetting] end\n")));
    QVERIFY(!log.contains(utf8("secret")));
    QVERIFY(!log.contains(QString::fromLatin1(QByteArray("secret").toBase64())));
}

void tst_TVNC_BrowserCommonSetting::memoryThatRunsOut()
{
    const LeaksAreExpected leaks(root());
    common_->createXMLRootNode();
    failingNode = 1; // the group
    const bool b_written = common_->setProxyServerStr(utf8("x"));
    failingNode = 0;
    QVERIFY(!b_written);
    QCOMPARE(describe(root()), QString());
    failingNode = 2; // the leaf, which is not reported
    const bool b_writtenWithoutLeaf = common_->setProxyServerStr(utf8("x"));
    failingNode = 0;
    QVERIFY(b_writtenWithoutLeaf);
    QCOMPARE(describe(root()), utf8("(proxy)"));
    failingNode = 1; // the root, in the reader and where the file is missing
    failingObject = 1;
    common_->loadSetting(&dirName_);
    failingNode = 0;
    failingObject = 0;
    QVERIFY(!root());
    QCOMPARE(int(common_->getRcvCookieInfo()), 1);
    common_->loadSetting(&dirName_);
    QVERIFY(root());
}

TLVLIB_TEST_MAIN(tst_TVNC_BrowserCommonSetting)
#include "tst_TVNC_BrowserCommonSetting.moc"
