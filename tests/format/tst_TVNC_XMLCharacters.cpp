#include "tests/support/TestSupport.h"

#include "tlvlib/format/TVNC_XMLCharacters.h"

/// What XML can hold, in UTF-16 and in UTF-8.
class tst_TVNC_XMLCharacters : public QObject
{
    Q_OBJECT

private slots:
    void everyCharacterIsWritableOrNot();
    void textsAreSharedUnlessTheyChange();
    void sequencesHaveTheirLength_data();
    void sequencesHaveTheirLength();
    void everyCharacterIsASequence();
    void piecesAreCheckedUpToTheFirstError_data();
    void piecesAreCheckedUpToTheFirstError();
    void noncharactersAreReplaced();
    void printableMeansAscii();
};

/// A character as text; a surrogate stands alone.
static QString character(uint ul_code)
{
    if (ul_code < 0x10000)
        return QString(QChar(ul_code));
    return QString(QChar(QChar::highSurrogate(ul_code))) + QChar(QChar::lowSurrogate(ul_code));
}

/// The production Char of XML 1.0.
static bool isXML(uint ul_code)
{
    return ul_code == 0x9 || ul_code == 0xA || ul_code == 0xD || (ul_code >= 0x20 && ul_code <= 0xD7FF) ||
           (ul_code >= 0xE000 && ul_code <= 0xFFFD) || (ul_code >= 0x10000 && ul_code <= 0x10FFFF);
}

static bool isNoncharacter(uint ul_code)
{
    return (ul_code >= 0xFDD0 && ul_code <= 0xFDEF) || (ul_code & 0xFFFE) == 0xFFFE;
}

/// The encoding as Unicode defines it, without Qt's rules for noncharacters.
static QByteArray encoded(uint ul_code)
{
    QByteArray result;
    if (ul_code < 0x80)
        return QByteArray(1, static_cast<char>(ul_code));
    if (ul_code < 0x800) {
        result += static_cast<char>(0xC0 | ul_code >> 6);
    } else {
        if (ul_code < 0x10000) {
            result += static_cast<char>(0xE0 | ul_code >> 12);
        } else {
            result += static_cast<char>(0xF0 | ul_code >> 18);
            result += static_cast<char>(0x80 | (ul_code >> 12 & 0x3F));
        }
        result += static_cast<char>(0x80 | (ul_code >> 6 & 0x3F));
    }
    result += static_cast<char>(0x80 | (ul_code & 0x3F));
    return result;
}

void tst_TVNC_XMLCharacters::everyCharacterIsWritableOrNot()
{
    for (uint ul_code = 0; ul_code < 0x110000; ++ul_code) {
        const QString one = character(ul_code);
        const QString kept = isXML(ul_code) ? one : QString();
        if (TVNC_XMLCharacters::writable(one) == kept &&
            TVNC_XMLCharacters::writable(utf8("abcdefg") + one + utf8("z")) ==
                utf8("abcdefg") + kept + utf8("z"))
            continue;
        QFAIL(qPrintable(QString::number(ul_code, 16)));
    }
}

void tst_TVNC_XMLCharacters::textsAreSharedUnlessTheyChange()
{
    const QString text = utf8("some text \xE6\x97\xA5");
    QVERIFY(TVNC_XMLCharacters::writable(text).constData() == text.constData());
    QCOMPARE(TVNC_XMLCharacters::writable(text + QChar(1)), text);
}

void tst_TVNC_XMLCharacters::sequencesHaveTheirLength_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("length");
    const int si_none = TVNC_XMLCharacters::NO_SEQUENCE;
    const int si_cutOff = TVNC_XMLCharacters::CUT_OFF;
    QTest::newRow("one byte") << QByteArray("ab") << 1;
    QTest::newRow("two bytes") << QByteArray("\xC3\xA9x") << 2;
    QTest::newRow("three bytes") << QByteArray("\xE6\x97\xA5x") << 3;
    QTest::newRow("four bytes") << QByteArray("\xF0\x9F\x98\x80x") << 4;
    QTest::newRow("one of two") << QByteArray("\xC3") << si_cutOff;
    QTest::newRow("one of three") << QByteArray("\xE6") << si_cutOff;
    QTest::newRow("two of three") << QByteArray("\xE6\x97") << si_cutOff;
    QTest::newRow("three of four") << QByteArray("\xF0\x9F\x98") << si_cutOff;
    QTest::newRow("rest alone") << QByteArray("\x80") << si_none;
    QTest::newRow("broken off") << QByteArray("\xE6\x97x") << si_none;
    QTest::newRow("overlong, two bytes") << QByteArray("\xC1\xBF") << si_none;
    QTest::newRow("overlong, three bytes") << QByteArray("\xE0\x9F\xBF") << si_none;
    QTest::newRow("overlong, three bytes, cut off") << QByteArray("\xE0\x9F") << si_none;
    QTest::newRow("overlong, four bytes") << QByteArray("\xF0\x8F\xBF\xBF") << si_none;
    QTest::newRow("first surrogate") << QByteArray("\xED\xA0\x80") << si_none;
    QTest::newRow("before the first surrogate") << QByteArray("\xED\x9F\xBF") << 3;
    QTest::newRow("last character") << QByteArray("\xF4\x8F\xBF\xBF") << 4;
    QTest::newRow("above the last") << QByteArray("\xF4\x90\x80\x80") << si_none;
    QTest::newRow("F5") << QByteArray("\xF5\x80\x80\x80") << si_none;
    QTest::newRow("FF") << QByteArray("\xFF") << si_none;
}

void tst_TVNC_XMLCharacters::sequencesHaveTheirLength()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, length);
    QCOMPARE(TVNC_XMLCharacters::sequenceLength(bytes.constData(), static_cast<int>(bytes.size())), length);
}

void tst_TVNC_XMLCharacters::everyCharacterIsASequence()
{
    for (uint ul_code = 0; ul_code < 0x110000; ++ul_code) {
        if (ul_code >= 0xD800 && ul_code <= 0xDFFF)
            continue;
        const QByteArray bytes = encoded(ul_code);
        const int si_size = static_cast<int>(bytes.size());
        if (TVNC_XMLCharacters::sequenceLength(bytes.constData(), si_size) != si_size ||
            TVNC_XMLCharacters::isNoncharacter(bytes.constData(), si_size) != isNoncharacter(ul_code))
            QFAIL(qPrintable(QString::number(ul_code, 16)));
        QByteArray piece = "abcdefgh" + bytes + "z";
        const TVNC_XMLCharacters::Check check = TVNC_XMLCharacters::check(piece);
        if (check.b_ended == isXML(ul_code) || check.si_admitted != (isXML(ul_code) ? 9 + si_size : 9) ||
            check.b_noncharacters != (isXML(ul_code) && isNoncharacter(ul_code)))
            QFAIL(qPrintable(QString::number(ul_code, 16)));
    }
}

void tst_TVNC_XMLCharacters::piecesAreCheckedUpToTheFirstError_data()
{
    QTest::addColumn<QByteArray>("piece");
    QTest::addColumn<QByteArray>("admitted");
    QTest::addColumn<int>("cutOff");
    QTest::addColumn<bool>("ended");
    QTest::newRow("nothing") << QByteArray() << QByteArray() << 0 << false;
    QTest::newRow("ASCII") << QByteArray("0123456789\t\n\r") << QByteArray("0123456789\t\n\r") << 0 << false;
    QTest::newRow("cut off") << QByteArray("01234567\xE6\x97") << QByteArray("01234567") << 2 << false;
    QTest::newRow("no UTF-8") << QByteArray("01234567\xFFx") << QByteArray("01234567") << 0 << true;
    QTest::newRow("control") << QByteArray("01234567\x1Fx") << QByteArray("01234567\x01") << 0 << true;
    QTest::newRow("zero") << QByteArray("0123\0x", 6) << QByteArray("0123\x01") << 0 << true;
    QTest::newRow("U+FFFE") << QByteArray("0\xEF\xBF\xBEx") << QByteArray("0\x01") << 0 << true;
}

void tst_TVNC_XMLCharacters::piecesAreCheckedUpToTheFirstError()
{
    QFETCH(QByteArray, piece);
    QFETCH(QByteArray, admitted);
    QFETCH(int, cutOff);
    QFETCH(bool, ended);
    const TVNC_XMLCharacters::Check check = TVNC_XMLCharacters::check(piece);
    QCOMPARE(piece.left(check.si_admitted), admitted);
    QCOMPARE(check.si_cutOff, cutOff);
    QCOMPARE(check.b_ended, ended);
}

void tst_TVNC_XMLCharacters::noncharactersAreReplaced()
{
    QCOMPARE(TVNC_XMLCharacters::withoutNoncharacters(
                 "a\xEF\xB7\x90\xF0\x9F\xBF\xBE\xC3\xA9\xF4\x8F\xBF\xBF\xEF\xB7\xAFz"),
             QByteArray("a\xEF\xBF\xBD\xEF\xBF\xBD\xC3\xA9\xEF\xBF\xBD\xEF\xBF\xBDz"));
}

void tst_TVNC_XMLCharacters::printableMeansAscii()
{
    for (int i = 0; i < 256; ++i) {
        for (int si_place = 0; si_place < 19; ++si_place) {
            QByteArray bytes(19, 'x');
            bytes[si_place] = static_cast<char>(i);
            QCOMPARE(TVNC_XMLCharacters::arePrintable(bytes.constData(), 19), i >= 0x20 && i < 0x80);
        }
    }
    QVERIFY(TVNC_XMLCharacters::arePrintable("", 0));
}

TLVLIB_TEST_MAIN(tst_TVNC_XMLCharacters)
#include "tst_TVNC_XMLCharacters.moc"
