#include "tests/support/TestSupport.h"

#include "tlvlib/format/TVNC_XMLDecoder.h"

/// The bytes of a code unit.
static QByteArray unit(uint ul_unit, int si_bytes, bool b_bigEndian)
{
    QByteArray result;
    for (int i = 0; i < si_bytes; ++i)
        result += static_cast<char>(ul_unit >> 8 * (b_bigEndian ? si_bytes - 1 - i : i) & 0xFF);
    return result;
}

/// Which encoding a document is taken for, and what becomes of its bytes.
class tst_TVNC_XMLDecoder : public QObject
{
    Q_OBJECT

private slots:
    void headsAreDecoded_data();
    void headsAreDecoded();
    void otherEncodingsBecomeUtf8_data();
    void otherEncodingsBecomeUtf8();
    void brokenEncodingEndsTheDocument();
};

void tst_TVNC_XMLDecoder::headsAreDecoded_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<QByteArray>("decoded"); // null: the document ends at its beginning
    const auto same = [](const char* pc_name, const QByteArray& head) {
        QTest::newRow(pc_name) << head << head;
    };
    same("nothing", QByteArray(""));
    same("three bytes", "<a>");
    same("UTF-8 by default", "<a>\xC3\xA9</a>");
    same("UTF-8 by name", "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a/>");
    same("UTF-8 in small letters", "<?xml version='1.0' encoding = 'utf-8' ?><a/>");
    same("byte order mark", "\xEF\xBB\xBF<a/>");
    same("no UTF-8 at all", "<a>\xFF\xFE</a>"); // others look at the bytes
    same("no name", "<?xml version='1.0'?><a encoding='ISO-8859-1'/>");
    same("unknown name", "<?xml version='1.0' encoding='nothing-1'?><a>\xE9</a>");
    same("an instruction", "<?xmlx encoding='ISO-8859-1'?><a/>");
    same("not at the beginning", " <?xml encoding='ISO-8859-1'?><a/>");
    // First bytes that begin as those of another encoding do.
    same("almost a mark of UTF-32BE", QByteArray("\0\0\xFE.", 4));
    same("almost UTF-32BE", QByteArray("\0\0\0.", 4));
    same("a character of one byte in front", QByteArray("\0x\0<", 4));
    same("two zero bytes", QByteArray("\0\0..", 4));
    same("half a mark of UTF-16BE", "\xFE...");
    same("half a mark of UTF-16LE", "\xFF...");
    QTest::newRow("almost a mark of UTF-32LE")
        << QByteArray("\xFF\xFE\0\x30", 4) << QByteArray("\xE3\x80\x80");
    QTest::newRow("almost UTF-32LE") << QByteArray("<\0\0\x30", 4) << QByteArray("<\xE3\x80\x80");
    QTest::newRow("Latin-1") << QByteArray("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>")
                             << QByteArray("<?xml version='1.0'                      ?><a>\xC3\xA9</a>");
    QTest::newRow("Latin-1, double quotes")
        << QByteArray("<?xml encoding = \"ISO-8859-1\" standalone='yes'?><a/>")
        << QByteArray("<?xml                         standalone='yes'?><a/>");
    const auto ends = [](const char* pc_name, const char* pc_head) {
        QTest::newRow(pc_name) << QByteArray(pc_head) << QByteArray();
    };
    ends("declaration without end", "<?xml version='1.0' encoding='ISO-8859-1'");
    ends("twice", "<?xml encoding='UTF-8' encoding='ISO-8859-1'?><a/>");
    ends("in a value", "<?xml version='encoding' encoding='ISO-8859-1'?><a/>");
    ends("no quotes", "<?xml encoding=UTF-8?><a/>");
    ends("no equals sign", "<?xml encoding 'UTF-8'?><a/>");
    ends("nothing behind the word", "<?xml encoding?><a/>");
    ends("nothing behind the equals sign", "<?xml encoding=?><a/>");
    QTest::newRow("malformed in UTF-16") << unit('<', 2, true) + unit('?', 2, true) + unit('x', 2, true) +
                                                unit('m', 2, true) + unit('l', 2, true) + unit(' ', 2, true)
                                         << QByteArray();
    ends("no end of the name", "<?xml encoding='UTF-8?><a/>");
    ends("an entity in the name", "<?xml encoding='&#85;TF-8'?><a/>");
}

void tst_TVNC_XMLDecoder::headsAreDecoded()
{
    QFETCH(QByteArray, head);
    QFETCH(QByteArray, decoded);
    TVNC_XMLDecoder decoder;
    QCOMPARE(decoder.decode(head), decoded);
    QCOMPARE(decoder.hasEnded(), decoded.isNull());
}

void tst_TVNC_XMLDecoder::otherEncodingsBecomeUtf8_data()
{
    QTest::addColumn<bool>("mark");
    QTest::addColumn<int>("bytes"); // of a code unit
    QTest::addColumn<bool>("bigEndian");
    QTest::newRow("UTF-16BE, mark") << true << 2 << true;
    QTest::newRow("UTF-16LE, mark") << true << 2 << false;
    QTest::newRow("UTF-16BE") << false << 2 << true;
    QTest::newRow("UTF-16LE") << false << 2 << false;
    QTest::newRow("UTF-32BE, mark") << true << 4 << true;
    QTest::newRow("UTF-32LE, mark") << true << 4 << false;
    QTest::newRow("UTF-32BE") << false << 4 << true;
    QTest::newRow("UTF-32LE") << false << 4 << false;
}

void tst_TVNC_XMLDecoder::otherEncodingsBecomeUtf8()
{
    QFETCH(bool, mark);
    QFETCH(int, bytes);
    QFETCH(bool, bigEndian);
    const uint ul_units[] = {'<', 'a', '>', 0xE9, 0x65E5, 'z', '<', '/', 'a', '>'};
    QByteArray document;
    if (mark)
        document += unit(0xFEFF, bytes, bigEndian);
    for (size_t i = 0; i < sizeof ul_units / sizeof ul_units[0]; ++i)
        document += unit(ul_units[i], bytes, bigEndian);
    // U+1F600 behind them: a pair in UTF-16.
    if (bytes == 2)
        document += unit(0xD83D, bytes, bigEndian) + unit(0xDE00, bytes, bigEndian);
    else
        document += unit(0x1F600, bytes, bigEndian);
    // Cut everywhere behind the head.
    for (int si_cut = 8; si_cut <= document.size(); ++si_cut) {
        TVNC_XMLDecoder decoder;
        QByteArray decoded = decoder.decode(document.left(si_cut));
        decoded += decoder.decode(document.mid(si_cut));
        QCOMPARE(decoded, QByteArray("<a>\xC3\xA9\xE6\x97\xA5z</a>\xF0\x9F\x98\x80"));
        QVERIFY(!decoder.hasEnded());
    }
}

// Qt's own codecs tell where a text is broken. Those of ICU, which most desks have, put U+FFFD there.
void tst_TVNC_XMLDecoder::brokenEncodingEndsTheDocument()
{
    TVNC_XMLDecoder decoder;
    const QByteArray decoded = decoder.decode("<?xml encoding='EUC-JP'?><a>\xC6\xFC\xFF\xFFz");
    const QByteArray good("<?xml                  ?><a>\xE6\x97\xA5");
    QVERIFY(decoded.startsWith(good));
    if (decoder.hasEnded())
        QCOMPARE(decoded, good);
    else
        QVERIFY(decoded.startsWith(good + "\xEF\xBF\xBD"));
}

TLVLIB_TEST_MAIN(tst_TVNC_XMLDecoder)
#include "tst_TVNC_XMLDecoder.moc"
