#include "tests/support/Setting.h"
#include "tests/support/TestSupport.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

/**
 * How much memory a load takes at its peak, in a process of its own. What a hostile file can reach is bounded
 * by its size: eight times for texts, 20 times for names, 200 times for elements of three bytes.
 */
class tst_TVNC_XMLReader_memory : public QObject
{
    Q_OBJECT

private slots:
    void init() { dir_.reset(new TempDir); }
    void cleanup() { dir_.reset(); }
    void peakIsInProportionToTheFile_data();
    void peakIsInProportionToTheFile();

private:
    long peakOfLoad();

    QString path() const { return dir_->path() + utf8("document.xml"); }

    QScopedPointer<TempDir> dir_;
};

/// In kilobytes; -1 when the process ended in another way than with its own exit.
long tst_TVNC_XMLReader_memory::peakOfLoad()
{
    const pid_t child = fork();
    if (child == 0) {
        Setting setting;
        QString file = path();
        setting.load(file);
        _exit(0);
    }
    int si_end = -1;
    rusage usage;
    if (child < 0 || wait4(child, &si_end, 0, &usage) != child || si_end != 0)
        return -1;
    return usage.ru_maxrss;
}

void tst_TVNC_XMLReader_memory::peakIsInProportionToTheFile_data()
{
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<QByteArray>("unit"); // repeated
    QTest::addColumn<QByteArray>("end");
    QTest::addColumn<int>("megabytes");
    QTest::addColumn<int>("factor");
    const auto row = [](const char* pc_name, const char* pc_start, const QByteArray& unit, const char* pc_end,
                        int si_megabytes, int si_factor) {
        QTest::newRow(pc_name) << QByteArray(pc_start) << unit << QByteArray(pc_end) << si_megabytes
                               << si_factor;
    };
    row("attribute", "<r a='", "x", "'/>", 100, 8);
    row("text", "<r>", "x", "</r>", 20, 8);
    row("CDATA section", "<r><![CDATA[", "x", "]]></r>", 20, 8);
    row("section that is not closed", "<r><![CDATA[", "x", "", 20, 8);
    row("character references", "<r>", "&#65;", "</r>", 20, 8);
    row("entities in an attribute", "<r a='", "&amp;", "'/>", 20, 8);
    row("Japanese", "<r>", "\xE6\x97\xA5", "</r>", 20, 8);
    row("comment", "<r><!--", "x", "--></r>", 20, 8);
    row("processing instruction", "<r><?a ", "x", "?></r>", 20, 8);
    row("zero bytes", "<r>", QByteArray(1, '\0'), "</r>", 20, 8);
    // Later versions of Qt refuse long names. The device's holds one in two buffers that double when they
    // grow, twice while they do, beside the node's own: two bytes a character in each.
    row("name", "<", "x", "/>", 20, 20);
    row("entity", "<!DOCTYPE r [<!ENTITY a '", "x", "'>]><r>&a;</r>", 20, 8);
    row("other encoding", "<?xml version='1.0' encoding='ISO-8859-1'?><r>", "\xE9", "</r>", 20, 8);
    row("elements", "<r>", "<e/>", "</r>", 4, 200);
    row("levels", "<r>", "<e>", "", 4, 200);
    row("records with attributes", "<r>", "<e a='' b=''/>", "</r>", 4, 200);
}

void tst_TVNC_XMLReader_memory::peakIsInProportionToTheFile()
{
    QFETCH(QByteArray, start);
    QFETCH(QByteArray, unit);
    QFETCH(QByteArray, end);
    QFETCH(int, megabytes);
    QFETCH(int, factor);
    writeFile(path(), "<r/>");
    const long si_without = peakOfLoad();
    QVERIFY(si_without > 0);
    writeFile(path(), start + unit.repeated(megabytes * 1000000 / static_cast<int>(unit.size())) + end);
    const long si_with = peakOfLoad();
    QVERIFY(si_with > 0);
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) // which need memory of their own
    factor = 1000;
#endif
    const long si_factor = (si_with - si_without) / (megabytes * 977L);
    QVERIFY2(si_factor < factor, qPrintable(QString::number(si_factor)));
}

TLVLIB_TEST_MAIN(tst_TVNC_XMLReader_memory)
#include "tst_TVNC_XMLReader_memory.moc"
