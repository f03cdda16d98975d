#include "tests/support/TestSupport.h"

#include "tlvlib/format/TVNC_MarkupGuard.h"

/// How much of a document may be parsed. Each is given at once, and byte by byte.
class tst_TVNC_MarkupGuard : public QObject
{
    Q_OBJECT

private slots:
    void documentsEndWhereTheyMust_data();
    void documentsEndWhereTheyMust();
    void attributesAreCountedForEachElement();
    void namespacesAreCountedWhileTheyAreInForce();
};

static int admitted(const QByteArray& document)
{
    TVNC_MarkupGuard guard;
    return guard.admit(document.constData(), static_cast<int>(document.size()));
}

static int admittedByteByByte(const QByteArray& document)
{
    TVNC_MarkupGuard guard;
    for (int i = 0; i < document.size(); ++i) {
        if (guard.admit(document.constData() + i, 1) == 0)
            return i;
    }
    return static_cast<int>(document.size());
}

void tst_TVNC_MarkupGuard::documentsEndWhereTheyMust_data()
{
    QTest::addColumn<QByteArray>("admitted");
    QTest::addColumn<QByteArray>("refused"); // begins with the byte that may not pass
    const auto row = [](const char* pc_name, const char* pc_admitted, const char* pc_refused) {
        QTest::newRow(pc_name) << QByteArray(pc_admitted) << QByteArray(pc_refused);
    };
    row("nothing", "", "");
    row("element", "<a b='c'>x</a>", "");
    row("document type", "<!DOCTYPE a><a/>", "");
    row("document type with identifiers", "<!DOCTYPE a PUBLIC '[' \"[>\"><a/>", "");
    row("internal subset", "<!DOCTYPE a ", "[<!ENTITY x 'y'>]><a/>");
    row("internal subset behind an identifier", "<!DOCTYPE a SYSTEM '>' ", "[]><a/>");
    row("second document type", "<!DOCTYPE a><!DOCTYP", "E a><a/>");
    row("document type behind an element", "<a/><!DOCTYP", "E a>");
    row("document type in an element", "<a><!DOCTYP", "E a [");
    row("document type in a tag", "<a <!DOCTYP", "E a [");
    row("document type in a value", "<a b='<!DOCTYP", "E a [");
    row("document type in a comment", "<!-- <!DOCTYPE a [ --><a/>", "");
    row("document type in an instruction", "<?x <!DOCTYPE a [ ?><a/>", "");
    row("document type in a section", "<a><![CDATA[<!DOCTYPE a []]></a>", "");
    row("behind a comment", "<!-- -- - -> --><!DOCTYPE a ", "[");
    row("behind an instruction", "<?x > ?><!DOCTYPE a ", "[");
    row("behind a section", "<a><![CDATA[]>]]]]><!DOCTYP", "E");
    row("other markup", "<!ELEMENT a ANY><!DOCTYPE a ", "[");
    row("small letters", "<!doctype a []><a/>", "");
}

void tst_TVNC_MarkupGuard::documentsEndWhereTheyMust()
{
    QFETCH(QByteArray, admitted);
    QFETCH(QByteArray, refused);
    QCOMPARE(::admitted(admitted + refused), static_cast<int>(admitted.size()));
    QCOMPARE(admittedByteByByte(admitted + refused), static_cast<int>(admitted.size()));
}

void tst_TVNC_MarkupGuard::attributesAreCountedForEachElement()
{
    QCOMPARE(static_cast<int>(TVNC_MarkupGuard::ATTRIBUTES_MAX), 8000); // docs/files.md tells it
    const QByteArray full = "<a" + QByteArray(" b='=\"'").repeated(TVNC_MarkupGuard::ATTRIBUTES_MAX) + "/>";
    QCOMPARE(admitted(full + full), static_cast<int>(2 * full.size()));
    const QByteArray tooFull = "<a" + QByteArray(" b=''").repeated(TVNC_MarkupGuard::ATTRIBUTES_MAX) + " b=";
    QCOMPARE(admitted(tooFull + "''/>"), static_cast<int>(tooFull.size()));
}

void tst_TVNC_MarkupGuard::namespacesAreCountedWhileTheyAreInForce()
{
    const int si_max = TVNC_MarkupGuard::NAMESPACES_MAX;
    QCOMPARE(si_max, 4000);
    const QByteArray all = QByteArray("<a xmlns:b='u'>").repeated(si_max);
    QCOMPARE(admitted(all + "<a b:xmlns='u'>"), static_cast<int>(all.size()) + 15);
    QCOMPARE(admitted(all + "<a xmlns='u'>"), static_cast<int>(all.size()) + 8);
    // An end tag and an empty element give a place back; other markup does not.
    const QByteArray again = all + "</a><a xmlns='u'><!-- </a> --><![CDATA[</a>]]><?a </a>?><b c='/'></b>";
    QCOMPARE(admitted(again), static_cast<int>(again.size()));
    QCOMPARE(admitted(again + "<a xmlns='u'>"), static_cast<int>(again.size()) + 8);
    const QByteArray empty = all.left(all.size() - 15) + QByteArray("<a xmlns='u'/>").repeated(100);
    QCOMPARE(admitted(empty), static_cast<int>(empty.size()));
    // Those of one element go with it.
    const QByteArray many = "<r><a" + QByteArray(" xmlns:b='u'").repeated(si_max) + "></a>" + all;
    QCOMPARE(admitted(many), static_cast<int>(many.size()));
    // So do those of an element that others were in.
    const QByteArray nested = "<r>" + QByteArray("<a xmlns='u'><b></b><b/></a>").repeated(si_max + 1);
    QCOMPARE(admitted(nested), static_cast<int>(nested.size()));
}

TLVLIB_TEST_MAIN(tst_TVNC_MarkupGuard)
#include "tst_TVNC_MarkupGuard.moc"
