#include "tests/support/TestSupport.h"

#include <tlvlib/util/QEXC_TextCodec.h>

#include <QtCore/QThread>

class tst_QEXC_TextCodec : public QObject
{
    Q_OBJECT

private slots:
    void asciiIsTheSame();
    void shiftJISIsDecoded();
    void textEndsAtTheFirstZero();
    void nullIsEmpty();
    void threadsMayDecodeAtOnce();
};

void tst_QEXC_TextCodec::asciiIsTheSame()
{
    // Backslash and tilde are other signs in some Shift-JIS tables; file and element names need them as they
    // are.
    QByteArray ascii;
    for (char c = 0x20; c < 0x7F; ++c)
        ascii.append(c);
    QCOMPARE(QEXC_TextCodec::fromSJIS(ascii.constData()), QString::fromLatin1(ascii));
}

void tst_QEXC_TextCodec::shiftJISIsDecoded()
{
    // Measured on the device's Qt: two-byte and half-width katakana, and the full-width backslash.
    const ushort expected[] = {0x30C6, 0x30B9, 0x30C8, ' ', '\\', '~', ' ', 0xFF71, 0xFF72, ' ', 0xFF3C};
    QCOMPARE(QEXC_TextCodec::fromSJIS("\x83\x65\x83\x58\x83\x67\x20\x5C\x7E\x20\xB1\xB2\x20\x81\x5F"),
             QString(reinterpret_cast<const QChar*>(expected), sizeof expected / sizeof *expected));
}

void tst_QEXC_TextCodec::textEndsAtTheFirstZero()
{
    QCOMPARE(QEXC_TextCodec::fromSJIS("ab\0cd"), QString::fromLatin1("ab"));
    QVERIFY(QEXC_TextCodec::fromSJIS("").isEmpty());
}

void tst_QEXC_TextCodec::nullIsEmpty()
{
    QVERIFY(QEXC_TextCodec::fromSJIS(nullptr).isEmpty());
}

class Decoder : public QThread
{
public:
    Decoder() : wrong(0) {}
    void run() override
    {
        for (int i = 0; i < 2000; ++i) {
            if (QEXC_TextCodec::fromSJIS("\x83\x65"
                                         "bookmark") != QString(QChar(0x30C6)) + QLatin1String("bookmark"))
                ++wrong;
        }
    }
    int wrong;
};

void tst_QEXC_TextCodec::threadsMayDecodeAtOnce()
{
    Decoder decoders[4];
    for (int i = 0; i < 4; ++i)
        decoders[i].start();
    for (int i = 0; i < 4; ++i) {
        decoders[i].wait();
        QCOMPARE(decoders[i].wrong, 0);
    }
}

TLVLIB_TEST_MAIN(tst_QEXC_TextCodec)
#include "tst_QEXC_TextCodec.moc"
