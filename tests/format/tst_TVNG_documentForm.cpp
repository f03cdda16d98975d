#include "tests/support/TestSupport.h"

#include "tlvlib/format/TVNG_documentForm.h"

/// Which characters the fast ways take for blanks and for parts of a name. All others go the general way.
class tst_TVNG_documentForm : public QObject
{
    Q_OBJECT

private slots:
    void charactersAreOfTheirKinds();
};

void tst_TVNG_documentForm::charactersAreOfTheirKinds()
{
    const QByteArray letters("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ");
    const QByteArray starts = letters + '_';
    const QByteArray parts = starts + "0123456789-.";
    const QByteArray blanks(" \t\n\r");
    for (unsigned int i = 0; i < 0x300; ++i) {
        const char c_character = static_cast<char>(i);
        const bool b_ascii = i < 0x80;
        QVERIFY2(TVNG_isBlank(i) == (b_ascii && blanks.contains(c_character)),
                 QByteArray::number(i).constData());
        QVERIFY2(TVNG_isNameStart(i) == (b_ascii && starts.contains(c_character)),
                 QByteArray::number(i).constData());
        QVERIFY2(TVNG_isNameCharacter(i) == (b_ascii && parts.contains(c_character)),
                 QByteArray::number(i).constData());
    }
}

TLVLIB_TEST_MAIN(tst_TVNG_documentForm)
#include "tst_TVNG_documentForm.moc"
