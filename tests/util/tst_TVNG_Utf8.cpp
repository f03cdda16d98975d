#include "tests/support/TestSupport.h"
#include "tlvlib/util/TVNG_Utf8.h"

/// How long a text is depends on the version of Qt where it holds what UTF-8 cannot: what toUtf8() gives
/// counts.
class tst_TVNG_Utf8 : public QObject
{
    Q_OBJECT

private slots:
    void lengthIsThatOfToUtf8_data();
    void lengthIsThatOfToUtf8();
    void longTextsDoNotFit();
};

void tst_TVNG_Utf8::lengthIsThatOfToUtf8_data()
{
    QTest::addColumn<QString>("end");
    QTest::newRow("nothing") << QString();
    QTest::newRow("ASCII") << utf8("a");
    QTest::newRow("two bytes") << utf8("\xC3\xA4");
    QTest::newRow("last of one byte") << QString(QChar(0x7F));
    QTest::newRow("first of two bytes") << QString(QChar(0x80));
    QTest::newRow("last of two bytes") << QString(QChar(0x7FF));
    QTest::newRow("first of three bytes") << QString(QChar(0x800));
    QTest::newRow("last before the surrogates") << QString(QChar(0xD7FF));
    QTest::newRow("pair") << utf8("\xF0\x9F\x98\x80");
    QTest::newRow("half of a pair") << QString(QChar(0xD83D));
    QTest::newRow("other half of a pair") << QString(QChar(0xDE00));
    QTest::newRow("U+FDD0") << QString(QChar(0xFDD0));
    QTest::newRow("U+FFFD") << QString(QChar(0xFFFD));
    QTest::newRow("U+FFFE") << QString(QChar(0xFFFE));
    QTest::newRow("U+FFFF") << QString(QChar(0xFFFF));
    QTest::newRow("U+1FFFE") << QString(QChar(0xD83F)) + QChar(0xDFFE);
    QTest::newRow("two of U+10FFFF") << QString(QChar(0xDBFF)) + QChar(0xDFFF) + QChar(0xDBFF) +
                                            QChar(0xDFFF);
}

void tst_TVNG_Utf8::lengthIsThatOfToUtf8()
{
    QFETCH(QString, end);
    for (int i = 240; i <= 256; ++i) {
        const QString text = QString(i, QLatin1Char('x')) + end;
        const int si_bytes = static_cast<int>(text.toUtf8().size());
        QVERIFY(TVNG_fitsUtf8(text, si_bytes));
        QVERIFY(!TVNG_fitsUtf8(text, si_bytes - 1));
    }
}

void tst_TVNG_Utf8::longTextsDoNotFit()
{
    QVERIFY(!TVNG_fitsUtf8(QString(1000000, QChar(0xFFFE)), 256));
    QVERIFY(!TVNG_fitsUtf8(QString(1000000, QLatin1Char('x')), 999999));
    QVERIFY(TVNG_fitsUtf8(QString(1000000, QLatin1Char('x')), 1000000));
}

TLVLIB_TEST_MAIN(tst_TVNG_Utf8)
#include "tst_TVNG_Utf8.moc"
