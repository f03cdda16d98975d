#include "tests/support/FailingAllocations.h"
#include "tests/support/Setting.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/files/TVNG_SafeSave.h>
#include <tlvlib/xml/TVNC_XMLReader.h>
#include <tlvlib/xml/TVNC_XMLWriter.h>

#include <QtCore/QBuffer>
#include <QtCore/QDir>

#include <csignal>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

/// Each allocation on the way fails once: nothing is thrown, and what is left can be used.
class tst_TVNC_XMLReader_outOfMemory : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { dir_.reset(new TempDir); }
    void cleanup();

    void readerGoesWhileMemoryIsShort();
    void readingFile_data();
    void readingFile();
    void readingElementUnderAParent();
    void loading_data();
    void loading();
    void saving_data();
    void savingWhole_data() { saving_data(); }
    void savingWhole();
    void saving();

private:
    QString path() const { return dir_->path() + utf8("document.xml"); }

    QScopedPointer<TempDir> dir_;
};

/// A document in the library's own form, and one that only the general reader takes.
static const char OWN[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<a docInfo=\"1.0\"><b id=\"000\">x &amp; y</b><c><![CDATA[\xE6\x97\xA5]]></c></a>\n";
static const char OTHER[] =
    "<a xmlns:x='urn:u' x:b='1' b='2'><b id='000'>x</b><!-- --><c><![CDATA[y]]></c></a>";

static void addDocuments()
{
    QTest::addColumn<QByteArray>("document");
    QTest::newRow("the library's own form") << QByteArray(OWN);
    QTest::newRow("another form") << QByteArray(OTHER);
}

void tst_TVNC_XMLReader_outOfMemory::initTestCase()
{
    if (qVersion()[0] == '6')
        QSKIP("the codecs of Qt 6 themselves do not survive it", SkipAll);
    if (!CAN_FAIL_ALLOCATIONS)
        QSKIP("allocations cannot fail here", SkipAll);
}

void tst_TVNC_XMLReader_outOfMemory::cleanup()
{
    releaseDeferred();
    dir_.reset();
}

/// In a process of its own, reads a file with the reader and loads it, while an allocation fails. The reader
/// goes before there is memory again. Returns whether there was enough, and false when the process was
/// killed.
static bool readAndLoad(QString path, int si_failing, bool& b_killed)
{
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGABRT, SIG_DFL); // not QtTest's
        std::unique_ptr<TVNC_XMLReader> reader(new TVNC_XMLReader);
        Setting setting;
        failingAllocation = si_failing;
        [&]() noexcept {
            setting.load(path);
            delete reader->read(path);
            reader.reset();
        }();
        _exit(failingAllocation > 1 ? 0 : 1);
    }
    int si_exit = -1;
    waitpid(child, &si_exit, 0);
    b_killed = !WIFEXITED(si_exit);
    return si_exit == 0;
}

// The first of all functions, so that nothing has been read in this process yet: what the library makes once
// is made while memory is short, too.
void tst_TVNC_XMLReader_outOfMemory::readerGoesWhileMemoryIsShort()
{
    writeFile(path(), OTHER);
    for (int j = 0; j < 2; ++j) {
        b_forGood = j == 1;
        bool b_all = false;
        int i = 0;
        while (!b_all) {
            bool b_killed = false;
            b_all = readAndLoad(path(), ++i, b_killed);
            QVERIFY2(!b_killed, QByteArray::number(i).constData());
        }
        QVERIFY(i > 10);
    }
    b_forGood = false;
}

void tst_TVNC_XMLReader_outOfMemory::readingFile_data()
{
    addDocuments();
}

void tst_TVNC_XMLReader_outOfMemory::readingFile()
{
    QFETCH(QByteArray, document);
    writeFile(path(), document);
    QString file = path();
    bool b_all = false; // once more allocations may pass than there are
    for (int i = 1; !b_all; ++i) {
        for (int j = 0; j < 2; ++j) {
            TVNC_XMLReader reader;
            b_forGood = j == 1;
            failingAllocation = i;
            TVNC_XMLNode* const pc_root = reader.read(file);
            b_all = b_forGood && failingAllocation > 1;
            failingAllocation = 0;
            if (pc_root)
                describe(pc_root);
            delete pc_root;
        }
    }
}

void tst_TVNC_XMLReader_outOfMemory::readingElementUnderAParent()
{
    bool b_all = false;
    for (int i = 1; !b_all; ++i) {
        TVNC_XMLReader reader;
        reader.addData(QByteArray(OTHER));
        reader.readNextStartElement();
        TVNC_XMLNode parent(nullptr, 0);
        b_forGood = false;
        failingAllocation = i;
        TVNC_XMLNode* const pc_node = reader.readXMLNode(&parent);
        b_all = failingAllocation > 0;
        failingAllocation = 0;
        QCOMPARE(static_cast<int>(parent.getXMLNodeChildren().size()), pc_node ? 1 : 0);
    }
}

void tst_TVNC_XMLReader_outOfMemory::loading_data()
{
    addDocuments();
}

void tst_TVNC_XMLReader_outOfMemory::loading()
{
    QFETCH(QByteArray, document);
    writeFile(path(), document);
    QString file = path();
    Setting whole;
    whole.load(file);
    const QString tree = describe(whole.getXMLRootNode());
    QVERIFY(tree.contains(QLatin1Char('(')));
    bool b_kept = false;
    bool b_all = false;
    for (int i = 1; !b_all; ++i) {
        for (int j = 0; j < 4; ++j) {
            Setting setting;
            if (j & 2) {
                setting.createXMLRootNode();
                makeNode(setting.getXMLRootNode(), "old");
            }
            TVNC_XMLNode* const pc_old = setting.getXMLRootNode();
            b_forGood = j & 1;
            failingAllocation = i;
            setting.load(file);
            b_all = b_forGood && failingAllocation > 1;
            failingAllocation = 0;
            releaseDeferred();
            b_kept = b_kept || setting.getXMLRootNode() == pc_old;
            // What there is can be used and replaced.
            if (setting.getXMLRootNode())
                describe(setting.getXMLRootNode());
            setting.load(file);
            QCOMPARE(describe(setting.getXMLRootNode()), tree);
        }
    }
    QVERIFY(b_kept);
}

void tst_TVNC_XMLReader_outOfMemory::saving_data()
{
    addDocuments();
}

void tst_TVNC_XMLReader_outOfMemory::saving()
{
    QFETCH(QByteArray, document);
    writeFile(path(), document);
    QString file = path();
    Setting setting;
    setting.load(file);
    const QString tree = describe(setting.getXMLRootNode());
    setting.save(file);
    const QByteArray saved = readFile(file);
    bool b_all = false;
    for (int i = 1; !b_all; ++i) {
        for (int j = 0; j < 2; ++j) {
            b_forGood = j == 1;
            failingAllocation = i;
            setting.save(file);
            b_all = b_forGood && failingAllocation > 1;
            failingAllocation = 0;
            QCOMPARE(describe(setting.getXMLRootNode()), tree);
            TVNC_XMLWriter writer;
            failingAllocation = i;
            writer.write(file, setting.getXMLRootNode());
            failingAllocation = 0;
            QBuffer buffer;
            buffer.open(QIODevice::WriteOnly);
            TVNC_XMLWriter nodeWriter;
            nodeWriter.setDevice(&buffer);
            failingAllocation = i;
            nodeWriter.writeXMLNode(setting.getXMLRootNode());
            failingAllocation = 0;
        }
    }
    setting.save(file);
    QCOMPARE(readFile(file), saved);
}

// With safe saves the file is as it was, or whole; nothing is left beside it.
void tst_TVNC_XMLReader_outOfMemory::savingWhole()
{
    QFETCH(QByteArray, document);
    writeFile(path(), document);
    QString file = path();
    Setting setting;
    setting.load(file);
    TVNG_SetSafeSave(1);
    setting.save(file);
    const QByteArray saved = readFile(file);
    int si_told = 0;
    bool b_all = false;
    for (int i = 1; !b_all; ++i) {
        for (int j = 0; j < 2; ++j) {
            writeFile(file, "as it was");
            b_forGood = j == 1;
            failingAllocation = i;
            setting.save(file);
            b_all = b_forGood && failingAllocation > 1;
            failingAllocation = 0;
            const QByteArray after = readFile(file);
            QVERIFY(after == "as it was" || after == saved);
            if (after != saved)
                si_told += TVNG_GetSaveError().isEmpty() ? 0 : 1;
            QCOMPARE(QDir(dir_->path()).entryList(QDir::Files | QDir::Hidden),
                     QStringList(utf8("document.xml")));
        }
    }
    TVNG_SetSafeSave(0);
    QVERIFY(si_told > 0);
    QCOMPARE(readFile(file), saved);
}

TLVLIB_TEST_MAIN(tst_TVNC_XMLReader_outOfMemory)
#include "tst_TVNC_XMLReader_outOfMemory.moc"
