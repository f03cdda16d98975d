#include "tests/support/LogRecorder.h"
#include "tests/support/PrivateRoot.h"
#include "tests/support/TestSupport.h"

#include <tlvlib/thumbs/TVNC_NetworkDiskCache.h>

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtNetwork/QNetworkDiskCache>

static const QString CACHE_DIR = QLatin1String("/ata07/Talvenor/cache/");

/// The cache, at its real path.
class tst_TVNC_NetworkDiskCache : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void thereIsOneInstance();
    void itemsAreRemoved();
    void clearingTwiceIsHarmless();
    void missingDirectoryIsNoFailure();
    void otherFilesStay();
    void filesOfItsEndingGoAtAnyDepth();
    void aFileInTheDirectorysPlaceIsNoFailure();
    void clearingIsLogged();
};

static void fill(int si_count)
{
    QNetworkDiskCache cache;
    cache.setCacheDirectory(CACHE_DIR);
    for (int i = 0; i < si_count; ++i) {
        QNetworkCacheMetaData metaData;
        metaData.setUrl(QUrl(QString::fromLatin1("http://example.com/%1").arg(i)));
        metaData.setSaveToDisk(true);
        QIODevice* pc_device = cache.prepare(metaData);
        QVERIFY(pc_device);
        pc_device->write(QByteArray(1000, 'x'));
        cache.insert(pc_device);
    }
}

static bool hasItem(int i)
{
    QNetworkDiskCache cache;
    cache.setCacheDirectory(CACHE_DIR);
    return cache.metaData(QUrl(QString::fromLatin1("http://example.com/%1").arg(i))).isValid();
}

static int fileCount()
{
    int si_count = 0;
    QDirIterator files(CACHE_DIR, QDir::Files, QDirIterator::Subdirectories);
    for (; files.hasNext(); files.next())
        ++si_count;
    return si_count;
}

static void removeTree(const QString& path)
{
    QDir dir(path);
    foreach (const QFileInfo& entry, dir.entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot)) {
        if (entry.isDir())
            removeTree(entry.filePath());
        else
            QFile::remove(entry.filePath());
    }
    dir.rmdir(path);
}

void tst_TVNC_NetworkDiskCache::init()
{
    QFile::remove(QLatin1String("/ata07/Talvenor/cache"));
    removeTree(CACHE_DIR);
    QVERIFY(!QFile::exists(CACHE_DIR));
    LogRecorder::clear();
}

void tst_TVNC_NetworkDiskCache::thereIsOneInstance()
{
    QVERIFY(TVNC_NetworkDiskCache::getInstance());
    QCOMPARE(TVNC_NetworkDiskCache::getInstance(), TVNC_NetworkDiskCache::getInstance());
}

void tst_TVNC_NetworkDiskCache::itemsAreRemoved()
{
    fill(20);
    QVERIFY(hasItem(7));
    QVERIFY(fileCount() >= 20);
    TVNC_NetworkDiskCache::getInstance()->clear();
    for (int i = 0; i < 20; ++i)
        QVERIFY(!hasItem(i));
    QCOMPARE(fileCount(), 0);
    // And it can be used again.
    fill(1);
    QVERIFY(hasItem(0));
}

void tst_TVNC_NetworkDiskCache::clearingTwiceIsHarmless()
{
    fill(3);
    TVNC_NetworkDiskCache::getInstance()->clear();
    TVNC_NetworkDiskCache::getInstance()->clear();
    QCOMPARE(fileCount(), 0);
}

void tst_TVNC_NetworkDiskCache::missingDirectoryIsNoFailure()
{
    TVNC_NetworkDiskCache::getInstance()->clear();
    QCOMPARE(fileCount(), 0);
}

void tst_TVNC_NetworkDiskCache::otherFilesStay()
{
    fill(3);
    const QString file = CACHE_DIR + utf8("notes.txt");
    writeFile(file, "kept");
    TVNC_NetworkDiskCache::getInstance()->clear();
    QVERIFY(!hasItem(0));
    QCOMPARE(fileCount(), 1);
    QCOMPARE(readFile(file), QByteArray("kept"));
}

void tst_TVNC_NetworkDiskCache::filesOfItsEndingGoAtAnyDepth()
{
    QVERIFY(QDir().mkpath(CACHE_DIR + utf8("a/b")));
    writeFile(CACHE_DIR + utf8("letter.d"), "gone");
    writeFile(CACHE_DIR + utf8("a/b/makefile.d"), "gone");
    writeFile(CACHE_DIR + utf8("a/b/makefile.d.old"), "kept");
    TVNC_NetworkDiskCache::getInstance()->clear();
    QCOMPARE(fileCount(), 1);
    QCOMPARE(readFile(CACHE_DIR + utf8("a/b/makefile.d.old")), QByteArray("kept"));
}

void tst_TVNC_NetworkDiskCache::aFileInTheDirectorysPlaceIsNoFailure()
{
    const QString file = utf8("/ata07/Talvenor/cache");
    QVERIFY(QDir().mkpath(utf8("/ata07/Talvenor")));
    writeFile(file, "kept");
    TVNC_NetworkDiskCache::getInstance()->clear();
    QCOMPARE(readFile(file), QByteArray("kept"));
}

void tst_TVNC_NetworkDiskCache::clearingIsLogged()
{
    TVNC_NetworkDiskCache::getInstance()->clear();
    QCOMPARE(LogRecorder::take(), utf8("3 [TVNC_NetworkDiskCache::clearDiskCache]\n"));
}

TLVLIB_PRIVATE_ROOT_TEST_MAIN(tst_TVNC_NetworkDiskCache)
#include "tst_TVNC_NetworkDiskCache.moc"
