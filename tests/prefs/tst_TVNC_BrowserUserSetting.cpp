#include "tests/support/LogRecorder.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/prefs/TVNC_BrowserUserSetting.h>

typedef TVNC_BrowserUserSetting User;

/// What a directory without a file is saved as.
static QByteArray defaults()
{
    return readFile(testData(utf8("repostry_private.xml")));
}

struct Text
{
    const char* pc_group;
    const char* pc_leaf;
    bool (User::*set)(QString);
    void (User::*get)(QString*);
    const char* pc_otherwise; ///< the answer when there is no text that can be handed out
    const char* pc_empty;     ///< the answer for an empty text
    const char* pc_nullLine;
};

static const Text TEXTS[] = {
    {"pageInfo", "home", &User::setHomePage, &User::getHomePage, "about:blank", "about:blank",
     "2 [TVNC_BrowserUserSetting::getHomePage] Parameter is NULL."},
    {"pageInfo", "lastPageURL", &User::setLastPage, &User::getLastPage, "about:blank", "about:blank",
     "2 [TVNC_BrowserUserSetting::getLastPage] Parameter is NULL."},
    {"font", "fontName", &User::setFontName, &User::getFontName, "", "",
     "2 [TVNC_BrowserUserSetting::getFontName] Parameter is NULL."},
};
static const int TEXT_COUNT = sizeof TEXTS / sizeof *TEXTS;

struct Timing
{
    const char* pc_group;
    const char* pc_leaf;
    void (User::*set)(char);
    char (User::*get)();
};

static const Timing TIMINGS[] = {
    {"cookie", "cookieDeleteTiming", &User::setCookieDeleteTiming, &User::getCookieDeleteTiming},
    {"authInfo", "authInfoDeleteTiming", &User::setCertificationDeleteTiming,
     &User::getCertificationDeleteTiming},
};
static const int TIMING_COUNT = sizeof TIMINGS / sizeof *TIMINGS;

class tst_TVNC_BrowserUserSetting : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void savedPreferencesAreLoadedBack();
    void rootOfAnotherNameIsRenamedAndKeepsItsChildren();
    void rootOfTheRightNameKeepsItsAttributes();
    void missingPreferencesAreAppended();

    void lastPageIsShownFirstForOneAlone_data();
    void lastPageIsShownFirstForOneAlone();
    void startUpIsReadFromItsWord_data();
    void startUpIsReadFromItsWord();
    void timingsAreWrittenAsWords_data();
    void timingsAreWrittenAsWords();
    void timingsAreReadFromTheirWords_data();
    void timingsAreReadFromTheirWords();
    void timingsAreIndependent();

    void textsAreLimitedTo256Bytes_data();
    void textsAreLimitedTo256Bytes();
    void textsInTheDocument_data();
    void textsInTheDocument();
    void nullIsLogged();

    void zoomCodesAreWrittenAsFactors_data();
    void zoomCodesAreWrittenAsFactors();
    void refusedZoomCreatesTheGroupOrEmptiesItsText_data();
    void refusedZoomCreatesTheGroupOrEmptiesItsText();
    void zoomIsReadFromItsText_data();
    void zoomIsReadFromItsText();

private:
    void loadFrom(const QByteArray& document);
    QString textOf(const char* pc_group, const char* pc_leaf);
    void setTextOf(const char* pc_group, const char* pc_leaf, const QString& text);
    QString file() const { return dirName_ + utf8("repostry_private.xml"); }
    TVNC_XMLNode* root() { return user_->getXMLRootNode(); }

    User* user_;
    QScopedPointer<TempDir> dir_;
    QString dirName_;
};

void tst_TVNC_BrowserUserSetting::initTestCase()
{
    // Before the first load, which later tests cannot undo: one instance serves the whole process.
    user_ = User::getInstance();
    QVERIFY(!root());
    user_->setStartUp(1);
    QCOMPARE(int(user_->getStartUp()), 0);
    for (int i = 0; i < TIMING_COUNT; ++i) {
        (user_->*TIMINGS[i].set)(1);
        QCOMPARE(int((user_->*TIMINGS[i].get)()), 0);
    }
    QVERIFY(!user_->setZoomInfo(3));
    QCOMPARE(int(user_->getZoomInfo()), 6);
    QCOMPARE(LogRecorder::take(), QString());
    for (int i = 0; i < TEXT_COUNT; ++i) {
        QString out = utf8("before");
        QVERIFY(!(user_->*TEXTS[i].set)(utf8("x")));
        (user_->*TEXTS[i].get)(&out);
        QCOMPARE(out, utf8("before"));
        QCOMPARE(LogRecorder::take(), QString());
        (user_->*TEXTS[i].get)(nullptr);
        QCOMPARE(LogRecorder::take(), utf8(TEXTS[i].pc_nullLine) + QLatin1Char('\n'));
    }
    QVERIFY(!root());
}

void tst_TVNC_BrowserUserSetting::init()
{
    dir_.reset(new TempDir);
    dirName_ = dir_->path();
    user_->loadSetting(&dirName_);
    releaseDeferred();
    LogRecorder::clear();
}

void tst_TVNC_BrowserUserSetting::loadFrom(const QByteArray& document)
{
    writeFile(file(), document);
    user_->loadSetting(&dirName_);
    LogRecorder::clear();
}

QString tst_TVNC_BrowserUserSetting::textOf(const char* pc_group, const char* pc_leaf)
{
    TVNC_XMLNode* pc_node = user_->getGrandchildNode(utf8(pc_group), utf8(pc_leaf));
    return pc_node ? pc_node->getText() : utf8("no element");
}

void tst_TVNC_BrowserUserSetting::setTextOf(const char* pc_group, const char* pc_leaf, const QString& text)
{
    QString own = text;
    user_->getGrandchildNode(utf8(pc_group), utf8(pc_leaf))->setText(own);
}

// --- The document -----------------------------------------------------------------------------------------

void tst_TVNC_BrowserUserSetting::savedPreferencesAreLoadedBack()
{
    QVERIFY(user_->setHomePage(utf8("http://a/?b=c&d")));
    QVERIFY(user_->setLastPage(utf8("http://日本/")));
    QVERIFY(user_->setFontName(utf8("VL ゴシック")));
    QVERIFY(user_->setZoomInfo(11));
    user_->setStartUp(1);
    user_->setCookieDeleteTiming(1);
    user_->setCertificationDeleteTiming(2);
    user_->saveSetting(&dirName_);
    QByteArray expected = defaults();
    expected.replace("<home>about:blank<", "<home>http://a/?b=c&amp;d<");
    expected.replace("<lastPageURL>about:blank<", "<lastPageURL>http://日本/<");
    expected.replace("<fontName/>", "<fontName>VL ゴシック</fontName>");
    expected.replace("<Zoom>1.0<", "<Zoom>1.5<");
    expected.replace("<startup>homepage<", "<startup>lastpage<");
    expected.replace("<cookieDeleteTiming>notDelete<", "<cookieDeleteTiming>logout<");
    expected.replace("<authInfoDeleteTiming>notDelete<", "<authInfoDeleteTiming>timeout<");
    QCOMPARE(readFile(file()), expected);

    TempDir other;
    QString otherName = other.path();
    user_->loadSetting(&otherName);
    QCOMPARE(int(user_->getZoomInfo()), 6);
    user_->loadSetting(&dirName_);
    QString out;
    user_->getLastPage(&out);
    QCOMPARE(out, utf8("http://日本/"));
    QCOMPARE(int(user_->getZoomInfo()), 11);
    user_->saveSetting(&dirName_);
    QCOMPARE(readFile(file()), expected);
}

void tst_TVNC_BrowserUserSetting::rootOfAnotherNameIsRenamedAndKeepsItsChildren()
{
    // The name of the device's preferences is another one here.
    loadFrom("<repostry_common a='1'><foreign/><font><fontName>F</fontName></font></repostry_common>");
    QCOMPARE(childNames(root()), utf8("foreign font pageInfo cookie authInfo"));
    user_->saveSetting(&dirName_);
    QVERIFY(readFile(file()).contains("\n<repostry docInfo=\"1.0\">\n    <foreign/>\n    <font>\n"
                                      "        <fontName>F</fontName>\n    </font>\n    <pageInfo>\n"));
}

void tst_TVNC_BrowserUserSetting::rootOfTheRightNameKeepsItsAttributes()
{
    loadFrom("<repostry x='y'/>");
    user_->saveSetting(&dirName_);
    QByteArray expected = defaults();
    expected.replace("docInfo=\"1.0\"", "x=\"y\"");
    QCOMPARE(readFile(file()), expected);
}

void tst_TVNC_BrowserUserSetting::missingPreferencesAreAppended()
{
    loadFrom("<repostry><pageInfo><Zoom>2.0</Zoom><home/></pageInfo></repostry>");
    QCOMPARE(describe(root()),
             utf8("repostry(pageInfo(Zoom'2.0',home,startup'homepage',lastPageURL'about:blank'),"
                  "cookie(cookieDeleteTiming'notDelete'),authInfo(authInfoDeleteTiming'notDelete'),"
                  "font(fontName))"));
}

// --- Choices ----------------------------------------------------------------------------------------------

void tst_TVNC_BrowserUserSetting::lastPageIsShownFirstForOneAlone_data()
{
    QTest::addColumn<int>("si_code");
    QTest::addColumn<QString>("word");
    QTest::newRow("0") << 0 << utf8("homepage");
    QTest::newRow("1") << 1 << utf8("lastpage");
    QTest::newRow("2") << 2 << utf8("homepage");
    QTest::newRow("255") << 255 << utf8("homepage");
}

void tst_TVNC_BrowserUserSetting::lastPageIsShownFirstForOneAlone()
{
    QFETCH(int, si_code);
    QFETCH(QString, word);
    setTextOf("pageInfo", "startup", utf8("x"));
    user_->setStartUp(static_cast<char>(si_code));
    QCOMPARE(textOf("pageInfo", "startup"), word);
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_BrowserUserSetting::startUpIsReadFromItsWord_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("si_code");
    QTest::newRow("homepage") << utf8("homepage") << 0;
    QTest::newRow("lastpage") << utf8("lastpage") << 1;
    QTest::newRow("capitals") << utf8("LastPage") << 0;
    QTest::newRow("blank") << utf8(" lastpage") << 0;
    QTest::newRow("empty") << QString() << 0;
}

void tst_TVNC_BrowserUserSetting::startUpIsReadFromItsWord()
{
    QFETCH(QString, text);
    QFETCH(int, si_code);
    setTextOf("pageInfo", "startup", text);
    QCOMPARE(int(user_->getStartUp()), si_code);
    user_->createXMLRootNode();
    QCOMPARE(int(user_->getStartUp()), 0);
}

void tst_TVNC_BrowserUserSetting::timingsAreWrittenAsWords_data()
{
    QTest::addColumn<int>("si_timing");
    QTest::addColumn<int>("si_code");
    QTest::addColumn<QString>("word");
    for (int i = 0; i < TIMING_COUNT; ++i) {
        const QString leaf = utf8(TIMINGS[i].pc_leaf);
        QTest::newRow(qPrintable(leaf + utf8(" 0"))) << i << 0 << utf8("notDelete");
        QTest::newRow(qPrintable(leaf + utf8(" 1"))) << i << 1 << utf8("logout");
        QTest::newRow(qPrintable(leaf + utf8(" 2"))) << i << 2 << utf8("timeout");
        QTest::newRow(qPrintable(leaf + utf8(" 3"))) << i << 3 << utf8("notDelete");
        QTest::newRow(qPrintable(leaf + utf8(" 255"))) << i << 255 << utf8("notDelete");
    }
}

void tst_TVNC_BrowserUserSetting::timingsAreWrittenAsWords()
{
    QFETCH(int, si_timing);
    QFETCH(int, si_code);
    QFETCH(QString, word);
    const Timing& timing = TIMINGS[si_timing];
    setTextOf(timing.pc_group, timing.pc_leaf, utf8("x"));
    (user_->*timing.set)(static_cast<char>(si_code));
    QCOMPARE(textOf(timing.pc_group, timing.pc_leaf), word);
}

void tst_TVNC_BrowserUserSetting::timingsAreReadFromTheirWords_data()
{
    QTest::addColumn<int>("si_timing");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("si_code");
    for (int i = 0; i < TIMING_COUNT; ++i) {
        const QString leaf = utf8(TIMINGS[i].pc_leaf);
        QTest::newRow(qPrintable(leaf + utf8(" notDelete"))) << i << utf8("notDelete") << 0;
        QTest::newRow(qPrintable(leaf + utf8(" logout"))) << i << utf8("logout") << 1;
        QTest::newRow(qPrintable(leaf + utf8(" timeout"))) << i << utf8("timeout") << 2;
        QTest::newRow(qPrintable(leaf + utf8(" Logout"))) << i << utf8("Logout") << 0;
        QTest::newRow(qPrintable(leaf + utf8(" empty"))) << i << QString() << 0;
    }
}

void tst_TVNC_BrowserUserSetting::timingsAreReadFromTheirWords()
{
    QFETCH(int, si_timing);
    QFETCH(QString, text);
    QFETCH(int, si_code);
    const Timing& timing = TIMINGS[si_timing];
    setTextOf(timing.pc_group, timing.pc_leaf, text);
    QCOMPARE(int((user_->*timing.get)()), si_code);
    user_->createXMLRootNode();
    QCOMPARE(int((user_->*timing.get)()), 0);
}

void tst_TVNC_BrowserUserSetting::timingsAreIndependent()
{
    user_->setCertificationDeleteTiming(2);
    QCOMPARE(int(user_->getCertificationDeleteTiming()), 2);
    QCOMPARE(int(user_->getCookieDeleteTiming()), 0);
}

// --- Texts ------------------------------------------------------------------------------------------------

void tst_TVNC_BrowserUserSetting::textsAreLimitedTo256Bytes_data()
{
    QTest::addColumn<int>("si_text");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("accepted");
    for (int i = 0; i < TEXT_COUNT; ++i) {
        const QString leaf = utf8(TEXTS[i].pc_leaf);
        QTest::newRow(qPrintable(leaf + utf8(" short"))) << i << utf8("x") << true;
        QTest::newRow(qPrintable(leaf + utf8(" 256"))) << i << utf8("x").repeated(256) << true;
        QTest::newRow(qPrintable(leaf + utf8(" 257"))) << i << utf8("x").repeated(257) << false;
        QTest::newRow(qPrintable(leaf + utf8(" 256 in threes")))
            << i << utf8("x") + utf8("あ").repeated(85) << true;
        QTest::newRow(qPrintable(leaf + utf8(" 258 in threes"))) << i << utf8("あ").repeated(86) << false;
    }
}

void tst_TVNC_BrowserUserSetting::textsAreLimitedTo256Bytes()
{
    QFETCH(int, si_text);
    QFETCH(QString, text);
    QFETCH(bool, accepted);
    const Text& row = TEXTS[si_text];
    const QString before = describe(root());
    QCOMPARE((user_->*row.set)(text), accepted);
    if (!accepted)
        QCOMPARE(describe(root()), before);
    QString out = utf8("before");
    (user_->*row.get)(&out);
    QCOMPARE(out, accepted ? text : utf8(row.pc_otherwise));
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_BrowserUserSetting::textsInTheDocument_data()
{
    QTest::addColumn<int>("si_text");
    for (int i = 0; i < TEXT_COUNT; ++i)
        QTest::newRow(TEXTS[i].pc_leaf) << i;
}

void tst_TVNC_BrowserUserSetting::textsInTheDocument()
{
    QFETCH(int, si_text);
    const Text& row = TEXTS[si_text];
    QString out = utf8("before");
    QVERIFY((user_->*row.set)(QString())); // an empty one is stored
    QCOMPARE(textOf(row.pc_group, row.pc_leaf), QString());
    (user_->*row.get)(&out);
    QCOMPARE(out, utf8(row.pc_empty));

    setTextOf(row.pc_group, row.pc_leaf, utf8("x").repeated(257));
    out = utf8("before");
    (user_->*row.get)(&out);
    QCOMPARE(out, utf8(row.pc_otherwise));
    QCOMPARE(textOf(row.pc_group, row.pc_leaf), utf8("x").repeated(257));

    user_->createXMLRootNode();
    out = utf8("before");
    (user_->*row.get)(&out);
    QCOMPARE(out, utf8(row.pc_otherwise));
}

void tst_TVNC_BrowserUserSetting::nullIsLogged()
{
    for (int i = 0; i < TEXT_COUNT; ++i) {
        (user_->*TEXTS[i].get)(nullptr);
        QCOMPARE(LogRecorder::take(), utf8(TEXTS[i].pc_nullLine) + QLatin1Char('\n'));
    }
}

// --- Zoom -------------------------------------------------------------------------------------------------

void tst_TVNC_BrowserUserSetting::zoomCodesAreWrittenAsFactors_data()
{
    QTest::addColumn<int>("si_code");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("accepted");
    const char* const pc_texts[] = {"0.5", "0.6", "0.7", "0.8", "0.9", "1.0",
                                    "1.1", "1.2", "1.3", "1.4", "1.5"};
    for (int i = 1; i <= 11; ++i)
        QTest::newRow(pc_texts[i - 1]) << i << utf8(pc_texts[i - 1]) << true;
    static const int REFUSED[] = {0, 12, -1, 32767, -32768, 256 + 6};
    for (int i = 0; i < 6; ++i)
        QTest::newRow(QByteArray::number(REFUSED[i]).constData()) << REFUSED[i] << utf8("before") << false;
}

void tst_TVNC_BrowserUserSetting::zoomCodesAreWrittenAsFactors()
{
    QFETCH(int, si_code);
    QFETCH(QString, text);
    QFETCH(bool, accepted);
    setTextOf("pageInfo", "Zoom", utf8("before"));
    QCOMPARE(user_->setZoomInfo(static_cast<short>(si_code)), accepted);
    QCOMPARE(textOf("pageInfo", "Zoom"), text);
    QCOMPARE(int(user_->getZoomInfo()), accepted ? si_code : 6);
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_BrowserUserSetting::refusedZoomCreatesTheGroupOrEmptiesItsText_data()
{
    QTest::addColumn<int>("si_code");
    QTest::newRow("0") << 0;
    QTest::newRow("12") << 12;
    QTest::newRow("-1") << -1;
}

void tst_TVNC_BrowserUserSetting::refusedZoomCreatesTheGroupOrEmptiesItsText()
{
    QFETCH(int, si_code);
    user_->createXMLRootNode();
    QVERIFY(!user_->setZoomInfo(static_cast<short>(si_code)));
    QCOMPARE(describe(root()), utf8("(pageInfo)"));
    QString text = utf8("text");
    root()->getXMLNodeChildren().at(0)->setText(text);
    QVERIFY(!user_->setZoomInfo(static_cast<short>(si_code)));
    QCOMPARE(describe(root()), utf8("(pageInfo)"));
    QCOMPARE(int(user_->getZoomInfo()), 6);
}

void tst_TVNC_BrowserUserSetting::zoomIsReadFromItsText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("si_code");
    QTest::newRow("0.5") << utf8("0.5") << 1;
    QTest::newRow("1.5") << utf8("1.5") << 11;
    QTest::newRow("0.50") << utf8("0.50") << 6;
    QTest::newRow("1") << utf8("1") << 6;
    QTest::newRow("1.00") << utf8("1.00") << 6;
    QTest::newRow("2.0") << utf8("2.0") << 6;
    QTest::newRow("blank") << utf8(" 0.5") << 6;
    QTest::newRow("empty") << QString() << 6;
}

void tst_TVNC_BrowserUserSetting::zoomIsReadFromItsText()
{
    QFETCH(QString, text);
    QFETCH(int, si_code);
    setTextOf("pageInfo", "Zoom", text);
    QCOMPARE(int(user_->getZoomInfo()), si_code);
}

TLVLIB_TEST_MAIN(tst_TVNC_BrowserUserSetting)
#include "tst_TVNC_BrowserUserSetting.moc"
