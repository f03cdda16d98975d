#include "tests/support/FailingNew.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/Random.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/files/TVNG_SafeSave.h>
#include <tlvlib/thumbs/TVNC_ThumbnailConverter.h>

#include <QtGui/QImage>

static const char DECLARATION[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

class tst_TVNC_ThumbnailConverter : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void thereIsOneInstance();
    void fileIsEncoded_data();
    void fileIsEncoded();
    void unreadableFileLeavesTheOutput();
    void textIsDecodedIntoAFile();
    void decodingReplacesTheFile();
    void emptyTextIsRefused();
    void unwritableFileIsRefused();
    void anythingThatIsNoLetterIsSkipped();
    void imageIsAppended();
    void imageNeedsARoot();
    void filesAreListedAsQDirDoes();

    void filesArePackedExactly();
    void lastNameIsFirst();
    void onlyPngFilesArePacked();
    void emptyDirectoryGivesAnEmptyPack();
    void missingDirectoryGivesAnEmptyPack();
    void emptyFileIsPackedEmpty();
    void controlCharactersInNamesAreLost();
    void packingReplacesTheFile();
    void packLogsItsSteps();
    void packNeedsItsArguments();
    void packWithoutMemoryKeepsTheDocument();
    void packWithAnUnwritableFileLeavesNothing();
    void packReleasesItsTrees();
    void memoryThatRunsOutWhilePackingKeepsTheFile();
    void safeSavesTellOfAConversionWithoutMemory();

    void unpackingGivesTheSameFiles();
    void unpackLogsItsSteps();
    void emptyImagesAreNotUnpacked();
    void imagesInCharacterDataAreNotUnpacked();
    void otherElementsAreSkipped();
    void oneFailureDoesNotStopTheOthers();
    void firstFailureTellsOfAWholeUnpacking();
    void sourceMayHoldDirectories();
    void anyRootIsUnpacked();
    void damagedPackIsUnpackedUpToTheDamage();
    void missingPackUnpacksNothing();
    void unpackNeedsItsArguments();
    void nullImageEndsTheUnpacking();
    void memoryThatRunsOutWhileUnpackingIsLogged();
    void emptyPathsAreNotNull();

private:
    void pack();
    void unpack();
    void unpack(const QByteArray& document);
    QStringList unpacked() const;
    QString pngDir() const { return dir_->path() + utf8("in/"); }
    QString outDir() const { return dir_->path() + utf8("out/"); }
    QString file() const { return dir_->path() + utf8("pack.xml"); }
    TVNC_XMLNode* root() { return converter_->getXMLRootNode(); }

    TVNC_ThumbnailConverter* converter_;
    QScopedPointer<TempDir> dir_;
};

static QByteArray someBytes(int si_seed, int si_size)
{
    QByteArray bytes;
    bytes.reserve(si_size);
    Random random(static_cast<quint32>(si_seed));
    for (int i = 0; i < si_size; ++i)
        bytes.append(static_cast<char>(random.next(256)));
    return bytes;
}

void tst_TVNC_ThumbnailConverter::initTestCase()
{
    // Before the first conversion: there is no root.
    converter_ = TVNC_ThumbnailConverter::getInstance();
    QVERIFY(!root());
    TempDir dir;
    QByteArray out = dir.path().toLatin1();
    char c_empty[] = "";
    // Without a path nothing is loaded, so there still is none, and nothing to do.
    converter_->convertThumbnailXMLToPng(c_empty, out.data());
    QCOMPARE(LogRecorder::take(), utf8("2 [TVNC_XMLSetting::load] Path is NULL or empty.\n"));
    QVERIFY(!root());
}

void tst_TVNC_ThumbnailConverter::init()
{
    dir_.reset(new TempDir);
    QVERIFY(QDir().mkdir(pngDir()));
    QVERIFY(QDir().mkdir(outDir()));
    releaseDeferred();
    LogRecorder::clear();
}

void tst_TVNC_ThumbnailConverter::pack()
{
    QByteArray source = pngDir().toLatin1();
    QByteArray destination = file().toLatin1();
    converter_->convertThumbnailPngToXML(source.data(), destination.data());
}

void tst_TVNC_ThumbnailConverter::unpack()
{
    QByteArray source = file().toLatin1();
    QByteArray destination = outDir().toLatin1();
    converter_->convertThumbnailXMLToPng(source.data(), destination.data());
}

void tst_TVNC_ThumbnailConverter::unpack(const QByteArray& document)
{
    writeFile(file(), document);
    unpack();
}

/// The names of the unpacked files, sorted.
QStringList tst_TVNC_ThumbnailConverter::unpacked() const
{
    return QDir(outDir()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

void tst_TVNC_ThumbnailConverter::thereIsOneInstance()
{
    QCOMPARE(TVNC_ThumbnailConverter::getInstance(), converter_);
}

// --- The steps --------------------------------------------------------------------------------------------

void tst_TVNC_ThumbnailConverter::fileIsEncoded_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("base64");
    QTest::newRow("empty") << QByteArray() << QByteArray();
    QTest::newRow("one byte") << QByteArray("a") << QByteArray("YQ==");
    QTest::newRow("two bytes") << QByteArray("ab") << QByteArray("YWI=");
    QTest::newRow("three bytes") << QByteArray("abc") << QByteArray("YWJj");
    QTest::newRow("zero and high bytes") << QByteArray("\0\xFB\xFF\xFE", 4) << QByteArray("APv//g==");
    QTest::newRow("no line breaks") << QByteArray(90, 'a') << QByteArray("YWFh").repeated(30);
}

void tst_TVNC_ThumbnailConverter::fileIsEncoded()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, base64);
    QString path = pngDir() + utf8("any name");
    writeFile(path, bytes);
    QByteArray out = "before";
    converter_->encode_base64(path, out);
    QCOMPARE(out, base64);
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_ThumbnailConverter::unreadableFileLeavesTheOutput()
{
    QString missing = pngDir() + utf8("missing");
    QString directory = pngDir();
    QByteArray out = "before";
    converter_->encode_base64(missing, out);
    converter_->encode_base64(directory, out);
    QCOMPARE(out, QByteArray("before"));
    QCOMPARE(LogRecorder::take(), utf8("1 [TVNC_ThumbnailConverter] Couldn't open thumbnail for reading.\n"
                                       "1 [TVNC_ThumbnailConverter] Couldn't open thumbnail for reading.\n"));
}

void tst_TVNC_ThumbnailConverter::textIsDecodedIntoAFile()
{
    QByteArray base64 = "APv//g==";
    QString path = outDir() + utf8("x");
    QVERIFY(converter_->decode_base64(base64, path));
    QCOMPARE(readFile(path), QByteArray("\0\xFB\xFF\xFE", 4));
    QCOMPARE(base64, QByteArray("APv//g=="));
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_ThumbnailConverter::decodingReplacesTheFile()
{
    QByteArray base64 = "YQ==";
    QString path = outDir() + utf8("x");
    writeFile(path, "something longer");
    QVERIFY(converter_->decode_base64(base64, path));
    QCOMPARE(readFile(path), QByteArray("a"));
}

void tst_TVNC_ThumbnailConverter::emptyTextIsRefused()
{
    QByteArray null;
    QByteArray empty("");
    QString path = outDir() + utf8("x");
    QVERIFY(!converter_->decode_base64(null, path));
    QVERIFY(!converter_->decode_base64(empty, path));
    QCOMPARE(LogRecorder::take(), utf8("1 [TVNC_ThumbnailConverter] thumbnail is empty.\n"
                                       "1 [TVNC_ThumbnailConverter] thumbnail is empty.\n"));
    QVERIFY(!QFile::exists(path));
}

void tst_TVNC_ThumbnailConverter::unwritableFileIsRefused()
{
    QByteArray base64 = "YQ==";
    QString path = dir_->path() + utf8("missing/x");
    QString directory = outDir();
    QVERIFY(!converter_->decode_base64(base64, path));
    QVERIFY(!converter_->decode_base64(base64, directory));
    QCOMPARE(LogRecorder::take(), utf8("1 [TVNC_ThumbnailConverter] Couldn't open thumbnail for writing.\n"
                                       "1 [TVNC_ThumbnailConverter] Couldn't open thumbnail for writing.\n"));
}

void tst_TVNC_ThumbnailConverter::anythingThatIsNoLetterIsSkipped()
{
    QByteArray base64 = " Y\nW!I=";
    QByteArray nothing = "=";
    QString path = outDir() + utf8("x");
    QVERIFY(converter_->decode_base64(base64, path));
    QCOMPARE(readFile(path), QByteArray("ab"));
    QVERIFY(converter_->decode_base64(nothing, path));
    QVERIFY(QFile::exists(path));
    QCOMPARE(readFile(path), QByteArray());
    QCOMPARE(LogRecorder::take(), QString());
}

void tst_TVNC_ThumbnailConverter::imageIsAppended()
{
    TVNC_XMLNode node(nullptr, 0);
    QString text = utf8("YQ==");
    QString first = utf8("1.PNG");
    QString second = utf8("2.PNG");
    converter_->setThumbnail(text, first, &node);
    converter_->setThumbnail(text, second, &node);
    QCOMPARE(describe(&node), utf8("(image{src=1.PNG} cdata'YQ==',image{src=2.PNG} cdata'YQ==')"));
}

void tst_TVNC_ThumbnailConverter::imageNeedsARoot()
{
    QString text = utf8("YQ==");
    QString src = utf8("1.PNG");
    converter_->setThumbnail(text, src, nullptr);
    QCOMPARE(LogRecorder::take(),
             utf8("1 [TVNC_ThumbnailConverter::setThumbnail] pc_XMLRootNode is Null.\n"));
}

void tst_TVNC_ThumbnailConverter::filesAreListedAsQDirDoes()
{
    writeFile(pngDir() + utf8("b.PNG"), "x");
    writeFile(pngDir() + utf8("a.png"), "x");
    writeFile(pngDir() + utf8("c.txt"), "x");
    QVERIFY(QDir().mkdir(pngDir() + utf8("d.png")));
    QString dir = pngDir();
    QStringList png(utf8("*.png"));
    QStringList all;
    QCOMPARE(converter_->getFileList(dir, png, QDir::Files, QDir::Name | QDir::Reversed),
             QStringList() << utf8("b.PNG") << utf8("a.png"));
    QCOMPARE(converter_->getFileList(dir, png, QDir::Files | QDir::CaseSensitive, QDir::Name),
             QStringList() << utf8("a.png"));
    QCOMPARE(converter_->getFileList(dir, all, QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name),
             QStringList() << utf8("d.png"));
    QString missing = pngDir() + utf8("missing");
    QCOMPARE(converter_->getFileList(missing, all, QDir::Files, QDir::Name), QStringList());
}

// --- Packing ----------------------------------------------------------------------------------------------

void tst_TVNC_ThumbnailConverter::filesArePackedExactly()
{
    writeFile(pngDir() + utf8("000002.PNG"), QByteArray("\x89PNG\r\n\x1a\n\0\xFF", 10));
    writeFile(pngDir() + utf8("000010.PNG"), "abc");
    pack();
    QCOMPARE(readFile(file()), QByteArray(DECLARATION) +
                                   "<thumbnail docInfo=\"1.0\">\n"
                                   "    <image src=\"000010.PNG\"><![CDATA[YWJj]]></image>\n"
                                   "    <image src=\"000002.PNG\"><![CDATA[iVBORw0KGgoA/w==]]></image>\n"
                                   "</thumbnail>\n");
    QCOMPARE(describe(root()), QString());
}

void tst_TVNC_ThumbnailConverter::lastNameIsFirst()
{
    const char* const pc_names[] = {"1.png", "10.png", "2.png", "A.png", "a.PNG", "b.png"};
    for (int i = 0; i < 6; ++i)
        writeFile(pngDir() + utf8(pc_names[i]), "x");
    pack();
    QString path = file();
    converter_->load(path);
    QStringList sources;
    foreach (TVNC_XMLNode* pc_image, root()->getXMLNodeChildren())
        sources << pc_image->getAttribute().value(utf8("src")).toString();
    QCOMPARE(sources, QStringList() << utf8("b.png") << utf8("a.PNG") << utf8("A.png") << utf8("2.png")
                                    << utf8("10.png") << utf8("1.png"));
}

void tst_TVNC_ThumbnailConverter::onlyPngFilesArePacked()
{
    writeFile(pngDir() + utf8("a.Png"), "x");
    writeFile(pngDir() + utf8("b.txt"), "x");
    writeFile(pngDir() + utf8("png"), "x");
    writeFile(pngDir() + utf8("c.png.bak"), "x");
    writeFile(pngDir() + utf8(".hidden.png"), "x");
    QVERIFY(QDir().mkdir(pngDir() + utf8("d.png")));
    QVERIFY(QFile::link(pngDir() + utf8("a.Png"), pngDir() + utf8("e.png")));
    pack();
    QCOMPARE(readFile(file()), QByteArray(DECLARATION) + "<thumbnail docInfo=\"1.0\">\n"
                                                         "    <image src=\"a.Png\"><![CDATA[eA==]]></image>\n"
                                                         "</thumbnail>\n");
}

void tst_TVNC_ThumbnailConverter::emptyDirectoryGivesAnEmptyPack()
{
    pack();
    QCOMPARE(readFile(file()), QByteArray(DECLARATION) + "<thumbnail docInfo=\"1.0\"/>\n");
}

void tst_TVNC_ThumbnailConverter::missingDirectoryGivesAnEmptyPack()
{
    QVERIFY(QDir().rmdir(pngDir()));
    pack();
    QCOMPARE(readFile(file()), QByteArray(DECLARATION) + "<thumbnail docInfo=\"1.0\"/>\n");
}

void tst_TVNC_ThumbnailConverter::emptyFileIsPackedEmpty()
{
    writeFile(pngDir() + utf8("a.png"), "x");
    writeFile(pngDir() + utf8("b.png"), QByteArray());
    pack();
    QVERIFY(readFile(file()).contains("    <image src=\"b.png\"/>\n"
                                      "    <image src=\"a.png\"><![CDATA[eA==]]></image>\n"));
}

void tst_TVNC_ThumbnailConverter::controlCharactersInNamesAreLost()
{
    writeFile(pngDir() + utf8("a\x01"
                              "b.png"),
              "x");
    pack();
    QVERIFY(readFile(file()).contains("    <image src=\"ab.png\"><![CDATA[eA==]]></image>\n"));
}

void tst_TVNC_ThumbnailConverter::packingReplacesTheFile()
{
    writeFile(file(), QByteArray(10000, 'x'));
    pack();
    QCOMPARE(readFile(file()), QByteArray(DECLARATION) + "<thumbnail docInfo=\"1.0\"/>\n");
}

void tst_TVNC_ThumbnailConverter::packLogsItsSteps()
{
    writeFile(pngDir() + utf8("a.png"), "x");
    pack();
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_XMLSetting::save] start\n"
                                       "3 [TVNC_XMLSetting::saveBookmark] end\n"
                                       "3 [TVNC_XMLSetting::deleteAllXMLNode] 0x*\n"));
}

void tst_TVNC_ThumbnailConverter::packNeedsItsArguments()
{
    QByteArray path = dir_->path().toLatin1();
    const QString line = utf8("1 [TVNC_ThumbnailConverter::convertThumbnailPngToXML] Invalid Parameter.\n");
    converter_->convertThumbnailPngToXML(nullptr, path.data());
    converter_->convertThumbnailPngToXML(path.data(), nullptr);
    converter_->convertThumbnailPngToXML(nullptr, nullptr);
    QCOMPARE(LogRecorder::take(), line.repeated(3));
}

void tst_TVNC_ThumbnailConverter::packWithoutMemoryKeepsTheDocument()
{
    converter_->createXMLRootNode();
    makeNode(root(), "kept");
    failingNode = 1;
    pack();
    failingNode = 0;
    QCOMPARE(LogRecorder::take(), utf8("1 [TVNC_XMLSetting::addXMLChild] Fail\n"));
    QVERIFY(!QFile::exists(file()));
    QCOMPARE(describe(root()), utf8("(kept)"));
}

void tst_TVNC_ThumbnailConverter::packWithAnUnwritableFileLeavesNothing()
{
    QVERIFY(QDir().mkdir(file()));
    writeFile(pngDir() + utf8("a.png"), "x");
    pack();
    QCOMPARE(describe(root()), QString());
}

void tst_TVNC_ThumbnailConverter::packReleasesItsTrees()
{
    converter_->createXMLRootNode();
    QPointer<TVNC_XMLNode> previous(root());
    pack();
    QVERIFY(!previous.isNull());
    releaseDeferred();
    QVERIFY(previous.isNull());
    QVERIFY(root());
}

void tst_TVNC_ThumbnailConverter::memoryThatRunsOutWhilePackingKeepsTheFile()
{
    const LeaksAreExpected leaks(root());
    writeFile(pngDir() + utf8("a.png"), "first");
    writeFile(pngDir() + utf8("b.png"), "second");
    pack();
    const QByteArray whole = readFile(file());
    int si_failures = 0;
    bool b_enough = false;
    for (int i = 1; !b_enough; ++i) {
        writeFile(file(), "as it was");
        LogRecorder::clear();
        failingObject = i;
        pack();
        b_enough = failingObject > 1;
        failingObject = 0;
        if (LogRecorder::take().contains(
                utf8("1 [TVNC_ThumbnailConverter::convertThumbnailPngToXML] Fail\n"))) {
            ++si_failures;
            QCOMPARE(readFile(file()), QByteArray("as it was"));
        }
    }
    QVERIFY(si_failures > 0);
    QCOMPARE(readFile(file()), whole);
}

void tst_TVNC_ThumbnailConverter::safeSavesTellOfAConversionWithoutMemory()
{
    writeFile(pngDir() + utf8("a.png"), "first");
    TVNG_SetSafeSave(1);
    pack();
    const QString afterPack = TVNG_GetSaveError();
    failingNode = 1; // the root of the pack
    pack();
    const QString withoutRoot = TVNG_GetSaveError();
    pack();
    unpack();
    const QString afterUnpack = TVNG_GetSaveError();
    writeFile(file(), "<thumbnail/>"); // which is read once
    failingNode = 1;
    unpack();
    const QString withoutDocument = TVNG_GetSaveError();
    TVNG_SetSafeSave(0);
    QCOMPARE(afterPack, QString());
    QVERIFY(!withoutRoot.isEmpty());
    QCOMPARE(afterUnpack, QString());
    QVERIFY(!withoutDocument.isEmpty());
    QVERIFY(!root());
}

// --- Unpacking --------------------------------------------------------------------------------------------

void tst_TVNC_ThumbnailConverter::unpackingGivesTheSameFiles()
{
    QImage image(32, 24, QImage::Format_RGB32);
    image.fill(0xff336699);
    QVERIFY(image.save(pngDir() + utf8("000000.PNG"), "PNG"));
    for (int i = 1; i < 200; ++i)
        writeFile(pngDir() + QString::fromLatin1("%1.PNG").arg(i, 6, 10, QLatin1Char('0')),
                  someBytes(i, i * 37));
    pack();
    unpack();
    QCOMPARE(int(unpacked().size()), 200);
    foreach (const QString& name, unpacked())
        QCOMPARE(readFile(outDir() + name), readFile(pngDir() + name));
    QImage read;
    QVERIFY(read.load(outDir() + utf8("000000.PNG"), "PNG"));
    QCOMPARE(describe(root()), QString());
}

void tst_TVNC_ThumbnailConverter::unpackLogsItsSteps()
{
    unpack("<thumbnail><image src='a'><![CDATA[eA==]]></image></thumbnail>");
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_XMLSetting::loadBookmark] start\n"
                                       "3 [TVNC_XMLSetting::loadBookmark] end\n"
                                       "3 [TVNC_XMLSetting::deleteAllXMLNode] 0x*\n"));
}

void tst_TVNC_ThumbnailConverter::emptyImagesAreNotUnpacked()
{
    // Those without text and section are skipped, and an empty section is told. What holds no letter of
    // base64 is an empty picture.
    unpack("<thumbnail><image src='a'/><image src='b'></image><image src='c'><![CDATA[]]></image>"
           "<image src='d'><![CDATA[ \n]]></image><image src='e'><![CDATA[=]]></image></thumbnail>");
    QCOMPARE(unpacked(), QStringList() << utf8("d") << utf8("e"));
    QCOMPARE(readFile(outDir() + utf8("d")), QByteArray());
    QCOMPARE(readFile(outDir() + utf8("e")), QByteArray());
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_XMLSetting::loadBookmark] start\n"
                                       "3 [TVNC_XMLSetting::loadBookmark] end\n"
                                       "1 [TVNC_ThumbnailConverter] thumbnail is empty.\n"
                                       "3 [TVNC_XMLSetting::deleteAllXMLNode] 0x*\n"));
}

void tst_TVNC_ThumbnailConverter::imagesInCharacterDataAreNotUnpacked()
{
    unpack("<thumbnail><image src='a'>eA==</image><image src='b'><![CDATA[eA==]]></image></thumbnail>");
    QCOMPARE(unpacked(), QStringList() << utf8("b"));
}

void tst_TVNC_ThumbnailConverter::otherElementsAreSkipped()
{
    unpack("<thumbnail><Image src='a'><![CDATA[eA==]]></Image><folder><image src='b'><![CDATA[eA==]]></image>"
           "</folder><image src='c'><![CDATA[eA==]]></image></thumbnail>");
    QCOMPARE(unpacked(), QStringList() << utf8("c"));
}

void tst_TVNC_ThumbnailConverter::oneFailureDoesNotStopTheOthers()
{
    unpack("<thumbnail><image><![CDATA[eA==]]></image><image src='no/such'><![CDATA[eA==]]></image>"
           "<image src='c'><![CDATA[eA==]]></image></thumbnail>");
    QCOMPARE(unpacked(), QStringList() << utf8("c"));
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_XMLSetting::loadBookmark] start\n"
                                       "3 [TVNC_XMLSetting::loadBookmark] end\n"
                                       "1 [TVNC_ThumbnailConverter] Couldn't open thumbnail for writing.\n"
                                       "1 [TVNC_ThumbnailConverter] Couldn't open thumbnail for writing.\n"
                                       "3 [TVNC_XMLSetting::deleteAllXMLNode] 0x*\n"));
}

void tst_TVNC_ThumbnailConverter::firstFailureTellsOfAWholeUnpacking()
{
    TVNG_SetSafeSave(1);
    unpack("<thumbnail><image src='no/such'><![CDATA[eA==]]></image><image "
           "src='no/other'><![CDATA[eA==]]></image>"
           "<image src='c'><![CDATA[eA==]]></image><image src='d'><![CDATA[]]></image></thumbnail>");
    const QString error = TVNG_GetSaveError();
    unpack("<thumbnail><image src='c'><![CDATA[eA==]]></image></thumbnail>");
    const QString none = TVNG_GetSaveError();
    TVNG_SetSafeSave(0);
    QVERIFY2(error.startsWith(outDir() + utf8("no/such could not be saved: ")), qPrintable(error));
    QCOMPARE(none, QString());
    QCOMPARE(unpacked(), QStringList() << utf8("c"));
}

void tst_TVNC_ThumbnailConverter::sourceMayHoldDirectories()
{
    QVERIFY(QDir().mkdir(outDir() + utf8("sub")));
    unpack("<thumbnail><image src='sub/a'><![CDATA[eA==]]></image>"
           "<image src='../b'><![CDATA[eA==]]></image></thumbnail>");
    QCOMPARE(readFile(outDir() + utf8("sub/a")), QByteArray("x"));
    QCOMPARE(readFile(dir_->path() + utf8("b")), QByteArray("x"));
}

void tst_TVNC_ThumbnailConverter::anyRootIsUnpacked()
{
    unpack("<other x='y'><image src='a'><![CDATA[eA==]]></image></other>");
    QCOMPARE(unpacked(), QStringList() << utf8("a"));
}

void tst_TVNC_ThumbnailConverter::damagedPackIsUnpackedUpToTheDamage()
{
    unpack("<thumbnail><image src='a'><![CDATA[eA==]]></image><image src='b'><![CDATA[eA==]]></image");
    QCOMPARE(unpacked(), QStringList() << utf8("a") << utf8("b"));
}

void tst_TVNC_ThumbnailConverter::missingPackUnpacksNothing()
{
    unpack();
    QCOMPARE(unpacked(), QStringList());
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_XMLSetting::loadBookmark] start\n"
                                       "2 TVNC_XMLReader::read file not exist!\n"
                                       "3 [TVNC_XMLSetting::loadBookmark] end\n"
                                       "3 [TVNC_XMLSetting::deleteAllXMLNode] 0x*\n"));
}

void tst_TVNC_ThumbnailConverter::unpackNeedsItsArguments()
{
    QByteArray path = dir_->path().toLatin1();
    const QString line = utf8("1 [TVNC_ThumbnailConverter::convertThumbnailXMLToPng] Invalid Parameter.\n");
    converter_->convertThumbnailXMLToPng(nullptr, path.data());
    converter_->convertThumbnailXMLToPng(path.data(), nullptr);
    converter_->convertThumbnailXMLToPng(nullptr, nullptr);
    QCOMPARE(LogRecorder::take(), line.repeated(3));
}

void tst_TVNC_ThumbnailConverter::nullImageEndsTheUnpacking()
{
    char c_empty[] = ""; // nothing is loaded
    QByteArray out = outDir().toLatin1();
    converter_->createXMLRootNode();
    QString text = utf8("eA==");
    QString first = utf8("first");
    QString last = utf8("last");
    converter_->setThumbnail(text, first, root());
    root()->getXMLNodeChildren().append(nullptr);
    converter_->setThumbnail(text, last, root());
    LogRecorder::clear();
    converter_->convertThumbnailXMLToPng(c_empty, out.data());
    QCOMPARE(unpacked(), QStringList() << utf8("first"));
    QCOMPARE(LogRecorder::take(), utf8("2 [TVNC_XMLSetting::load] Path is NULL or empty.\n"
                                       "1 [TVNC_ThumbnailConverter] XMLNode is Null.\n"
                                       "3 [TVNC_XMLSetting::deleteAllXMLNode] 0x*\n"));
}

void tst_TVNC_ThumbnailConverter::memoryThatRunsOutWhileUnpackingIsLogged()
{
    if (qVersion()[0] == '6')
        QSKIP("the codecs of Qt 6 themselves do not survive it", SkipAll);
    const LeaksAreExpected leaks(root());
    const QByteArray document("<thumbnail><image src='a'><![CDATA[eA==]]></image></thumbnail>");
    int si_failures = 0;
    bool b_enough = false;
    for (int i = 1; !b_enough; ++i) {
        QFile::remove(outDir() + utf8("a"));
        LogRecorder::clear();
        writeFile(file(), document);
        failingObject = i;
        unpack();
        b_enough = failingObject > 1;
        failingObject = 0;
        if (LogRecorder::take().contains(
                utf8("1 [TVNC_ThumbnailConverter::convertThumbnailXMLToPng] Fail\n")))
            ++si_failures;
    }
    QVERIFY(si_failures > 0);
    QCOMPARE(readFile(outDir() + utf8("a")), QByteArray("x"));
}

void tst_TVNC_ThumbnailConverter::emptyPathsAreNotNull()
{
    char c_empty[] = "";
    QByteArray out = outDir().toLatin1();
    // Nothing is loaded, so the document that is held is unpacked.
    converter_->createXMLRootNode();
    QString text = utf8("eA==");
    QString src = utf8("held");
    converter_->setThumbnail(text, src, root());
    converter_->convertThumbnailXMLToPng(c_empty, out.data());
    QCOMPARE(unpacked(), QStringList() << utf8("held"));
    QCOMPARE(LogRecorder::take(), utf8("2 [TVNC_XMLSetting::load] Path is NULL or empty.\n"
                                       "3 [TVNC_XMLSetting::deleteAllXMLNode] 0x*\n"));
}

TLVLIB_TEST_MAIN(tst_TVNC_ThumbnailConverter)
#include "tst_TVNC_ThumbnailConverter.moc"
