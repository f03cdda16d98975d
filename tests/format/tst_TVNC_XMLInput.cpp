#include "tests/support/TestSupport.h"

#include "tlvlib/format/TVNC_XMLInput.h"

#include <QtCore/QBuffer>

/// What of a document reaches the stream reader, in pieces of any size.
class tst_TVNC_XMLInput : public QObject
{
    Q_OBJECT

private slots:
    void sameBytesInPiecesOfAnySize_data();
    void sameBytesInPiecesOfAnySize();
    void nothingCanBeWritten();
};

void tst_TVNC_XMLInput::sameBytesInPiecesOfAnySize_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QByteArray>("admitted");
    const QByteArray whole("<a b=\"c\">\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80</a>");
    QTest::newRow("whole") << whole << whole;
    QTest::newRow("long") << whole.repeated(2000) << whole.repeated(2000);
    QTest::newRow("empty") << QByteArray() << QByteArray();
    // The character itself goes out, for the stream reader to refuse.
    QTest::newRow("control character") << whole + '\1' + whole << whole + '\1';
    QTest::newRow("control character, much behind it") << whole + '\1' + whole.repeated(2000) << whole + '\1';
    QTest::newRow("document type, much behind it")
        << "<!DOCTYPE a [<!ENTITY b 'c'>]>" + whole.repeated(2000) << QByteArray("<!DOCTYPE a ");
    QTest::newRow("no UTF-8") << whole + "\xFFx" << whole;
    QTest::newRow("document type") << "<!DOCTYPE a [<!ENTITY b 'c'>]>" + whole << QByteArray("<!DOCTYPE a ");
}

void tst_TVNC_XMLInput::sameBytesInPiecesOfAnySize()
{
    QFETCH(QByteArray, document);
    QFETCH(QByteArray, admitted);
    const int pi_sizes[] = {1, 3, 8191, 8192, 8193, 100000};
    for (size_t i = 0; i < sizeof pi_sizes / sizeof *pi_sizes; ++i) {
        QBuffer source(&document);
        QVERIFY(source.open(QIODevice::ReadOnly));
        TVNC_XMLInput input(source);
        QByteArray read;
        for (QByteArray piece = input.read(pi_sizes[i]); !piece.isEmpty(); piece = input.read(pi_sizes[i]))
            read += piece;
        QCOMPARE(read, admitted);
        QVERIFY(input.read(1).isEmpty()); // it stays at its end
    }
}

void tst_TVNC_XMLInput::nothingCanBeWritten()
{
    QBuffer source;
    QVERIFY(source.open(QIODevice::ReadWrite));
    TVNC_XMLInput input(source);
    QCOMPARE(input.write("x", 1), qint64(-1));
    QCOMPARE(source.data(), QByteArray());
}

TLVLIB_TEST_MAIN(tst_TVNC_XMLInput)
#include "tst_TVNC_XMLInput.moc"
