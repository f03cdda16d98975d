#include "tests/support/LogRecorder.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/stores/TVNC_FontListSetting.h>

#include <QtCore/QDir>

class tst_TVNC_FontListSetting : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void listIsLoadedAndNumbered();

    void listIsSavedExactly();
    void savedListIsLoadedBack();

    void fontsAreAppendedAndNumbered();
    void sameNameIsStoredTwice();
    void emptyNameIsRefused();
    void fontsFromThe1000thOnHaveNoNumber();

    void fontIsFoundByNumber();
    void nameIsHandedOutUpTo256Bytes_data();
    void nameIsHandedOutUpTo256Bytes();
    void elementNameIsOnlyTestedForTheCount();
    void awkwardNamesComeBack();
    void namesThatAFileCannotHoldComeBackChanged();

private:
    void loadFrom(const QByteArray& document);
    QString dirWith(const QByteArray& document);

    TVNC_FontListSetting* fonts_;
    QScopedPointer<TempDir> dir_;
};

void tst_TVNC_FontListSetting::initTestCase()
{
    // Before the first load, which later tests cannot undo: one instance serves the whole process.
    fonts_ = TVNC_FontListSetting::getInstance();
    QVERIFY(!fonts_->getXMLRootNode());
    QCOMPARE(fonts_->getCount(), 0);
    QCOMPARE(LogRecorder::take(), QString());
    QCOMPARE(fonts_->getFont(0), QString());
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_FontListSetting::getFont]\n"));
    fonts_->addFont(utf8("Lost"));
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_FontListSetting::addFont]\n"));
    QVERIFY(!fonts_->getXMLRootNode());
    QCOMPARE(fonts_->getCount(), 0);
}

void tst_TVNC_FontListSetting::init()
{
    dir_.reset(new TempDir);
    fonts_->loadFontList(dir_->path());
    releaseDeferred();
    LogRecorder::clear();
}

QString tst_TVNC_FontListSetting::dirWith(const QByteArray& document)
{
    writeFile(dir_->path() + utf8("fontlist.xml"), document);
    return dir_->path();
}

void tst_TVNC_FontListSetting::loadFrom(const QByteArray& document)
{
    fonts_->loadFontList(dirWith(document));
    LogRecorder::clear();
}

void tst_TVNC_FontListSetting::listIsLoadedAndNumbered()
{
    loadFrom("<fontlist docInfo='1.0'><font id='7' x='y'>Sans</font><font>Serif</font></fontlist>");
    QCOMPARE(describe(fonts_->getXMLRootNode()),
             utf8("fontlist{docInfo=1.0}(font{id=000}'Sans',font{id=001}'Serif')"));
    QCOMPARE(fonts_->getCount(), 2);
    QCOMPARE(fonts_->getFont(0), utf8("Sans"));
    QCOMPARE(fonts_->getFont(1), utf8("Serif"));
}

void tst_TVNC_FontListSetting::listIsSavedExactly()
{
    fonts_->addFont(utf8("Sans"));
    fonts_->addFont(utf8("Serif"));
    fonts_->saveFontList(dir_->path());
    QCOMPARE(readFile(dir_->path() + utf8("fontlist.xml")),
             QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                        "<fontlist docInfo=\"1.0\">\n"
                        "    <font id=\"000\">Sans</font>\n"
                        "    <font id=\"001\">Serif</font>\n"
                        "</fontlist>\n"));
}

void tst_TVNC_FontListSetting::savedListIsLoadedBack()
{
    for (int i = 0; i < 1005; ++i)
        fonts_->addFont(QString::fromLatin1("Font %1").arg(i));
    fonts_->saveFontList(dir_->path());
    fonts_->loadFontList(dir_->path());
    QCOMPARE(fonts_->getXMLNodeCnt(), 1005);
    QCOMPARE(fonts_->getCount(), 999);
    for (int i = 0; i < 999; ++i)
        QCOMPARE(fonts_->getFont(i), QString::fromLatin1("Font %1").arg(i));
}

void tst_TVNC_FontListSetting::fontsAreAppendedAndNumbered()
{
    fonts_->addFont(utf8("A"));
    fonts_->addFont(utf8("B"));
    QCOMPARE(describe(fonts_->getXMLRootNode()), utf8("(font{id=000}'A',font{id=001}'B')"));
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_FontListSetting::addFont]\n"
                                       "3 [TVNC_FontListSetting::addFont]\n"));
    QCOMPARE(int(fonts_->getXMLRootNode()->getXMLNodeChildren().at(0)->getTextType()), 0);
}

void tst_TVNC_FontListSetting::sameNameIsStoredTwice()
{
    fonts_->addFont(utf8("Sans"));
    fonts_->addFont(utf8("Sans"));
    QCOMPARE(fonts_->getCount(), 2);
    QCOMPARE(fonts_->getFont(1), utf8("Sans"));
}

void tst_TVNC_FontListSetting::emptyNameIsRefused()
{
    fonts_->addFont(QString());
    fonts_->addFont(utf8(""));
    QCOMPARE(fonts_->getXMLNodeCnt(), 0);
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_FontListSetting::addFont]\n"
                                       "2 [TVNC_FontListSetting::addFont] FontName is empty.\n"
                                       "3 [TVNC_FontListSetting::addFont]\n"
                                       "2 [TVNC_FontListSetting::addFont] FontName is empty.\n"));
}

void tst_TVNC_FontListSetting::fontsFromThe1000thOnHaveNoNumber()
{
    for (int i = 0; i < 998; ++i)
        fonts_->addFont(utf8("x"));
    QCOMPARE(fonts_->getCount(), 998);
    fonts_->addFont(utf8("the 999th"));
    QCOMPARE(fonts_->getCount(), 999);
    QCOMPARE(fonts_->getFont(998), utf8("the 999th"));
    fonts_->addFont(utf8("the 1000th"));
    QCOMPARE(fonts_->getXMLNodeCnt(), 1000);
    QCOMPARE(fonts_->getCount(), 999);
    QCOMPARE(fonts_->getFont(999), QString());
    fonts_->saveFontList(dir_->path());
    QVERIFY(readFile(dir_->path() + utf8("fontlist.xml")).contains("\n    <font>the 1000th</font>\n"));
}

void tst_TVNC_FontListSetting::fontIsFoundByNumber()
{
    loadFrom("<fontlist><font>A</font><font>B</font></fontlist>");
    QCOMPARE(fonts_->getFont(1), utf8("B"));
    QCOMPARE(fonts_->getFont(-1), QString());
    QCOMPARE(fonts_->getFont(fonts_->getCount()), QString());
    QCOMPARE(fonts_->getFont(2147483647), QString());
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_FontListSetting::getFont]\n"
                                       "3 [TVNC_FontListSetting::getFont]\n"
                                       "3 [TVNC_FontListSetting::getFont]\n"
                                       "3 [TVNC_FontListSetting::getFont]\n"));
}

void tst_TVNC_FontListSetting::nameIsHandedOutUpTo256Bytes_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("handedOut");
    QTest::newRow("255 bytes") << QString(255, QLatin1Char('x')) << true;
    QTest::newRow("256 bytes") << QString(256, QLatin1Char('x')) << true;
    QTest::newRow("257 bytes") << QString(257, QLatin1Char('x')) << false;
    QTest::newRow("85 of three bytes: 255") << QString(85, QChar(0x3042)) << true;
    QTest::newRow("85 of three bytes and one: 256") << QString(85, QChar(0x3042)) + QLatin1Char('x') << true;
    QTest::newRow("86 of three bytes: 258") << QString(86, QChar(0x3042)) << false;
    QTest::newRow("128 of two bytes: 256") << QString(128, QChar(0xE9)) << true;
    QTest::newRow("129 of two bytes: 258") << QString(129, QChar(0xE9)) << false;
}

void tst_TVNC_FontListSetting::nameIsHandedOutUpTo256Bytes()
{
    QFETCH(QString, name);
    QFETCH(bool, handedOut);
    fonts_->addFont(name);
    QCOMPARE(fonts_->getFont(0), handedOut ? name : QString());
    // It is stored, counted and saved all the same.
    QCOMPARE(fonts_->getCount(), 1);
    fonts_->saveFontList(dir_->path());
    QVERIFY(readFile(dir_->path() + utf8("fontlist.xml")).contains('>' + name.toUtf8() + '<'));
}

void tst_TVNC_FontListSetting::elementNameIsOnlyTestedForTheCount()
{
    loadFrom("<fontlist><other>First</other><font>Second</font></fontlist>");
    QCOMPARE(fonts_->getFont(0), utf8("First"));
    QCOMPARE(fonts_->getFont(1), utf8("Second"));
    QCOMPARE(fonts_->getCount(), 1);
}

void tst_TVNC_FontListSetting::awkwardNamesComeBack()
{
    const QString name = utf8("<Café> & \"日本\" 😀 ]]> '\t");
    fonts_->addFont(name);
    fonts_->addFont(utf8("bad\x01") + QChar(0xD800) + utf8("name"));
    fonts_->addFont(utf8("last"));
    fonts_->saveFontList(dir_->path());
    fonts_->loadFontList(dir_->path());
    QCOMPARE(fonts_->getCount(), 3);
    QCOMPARE(fonts_->getFont(0), name);
    QCOMPARE(fonts_->getFont(1), utf8("badname"));
    QCOMPARE(fonts_->getFont(2), utf8("last"));
}

void tst_TVNC_FontListSetting::namesThatAFileCannotHoldComeBackChanged()
{
    fonts_->addFont(utf8("   "));
    fonts_->addFont(utf8("two\rlines"));
    QCOMPARE(fonts_->getFont(0), utf8("   "));
    fonts_->saveFontList(dir_->path());
    fonts_->loadFontList(dir_->path());
    QCOMPARE(fonts_->getCount(), 2);
    QCOMPARE(fonts_->getFont(0), QString());
    QCOMPARE(fonts_->getFont(1), utf8("two\nlines"));
}

TLVLIB_TEST_MAIN(tst_TVNC_FontListSetting)
#include "tst_TVNC_FontListSetting.moc"
