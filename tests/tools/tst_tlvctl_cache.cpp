#include "tests/support/PrivateRoot.h"
#include "tests/tools/TlvctlRun.h"

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtNetwork/QNetworkDiskCache>

#include <memory>

static const QString CACHE_DIR = "/ata07/Talvenor/cache/";

/// tlvctl cache, at the cache's real path.
class tst_tlvctl_cache : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { dropCapabilities(); }
    void init() { QVERIFY(!QFile::exists("/ata07/Talvenor")); }
    void cleanup() { QVERIFY(QDir("/ata07/Talvenor").removeRecursively()); }

    void clearRemovesWhatTheCacheKeeps();
    void clearWritesJson();
    void clearLeavesWhatIsNotTheCaches();
    void clearOfAMissingDirectoryDoesNothing();
    void clearOfWhatIsNoDirectoryFails();
    void clearTellsOfFilesThatCannotBeRemoved();
    void dryRunRemovesNothing();

private:
    /// Puts a page of so many bytes into the cache. Gives the bytes that all files have then.
    static qint64 fill(int pages);
    static qint64 bytesOfAll();
};

qint64 tst_tlvctl_cache::bytesOfAll()
{
    qint64 bytes = 0;
    QDirIterator it(CACHE_DIR, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        bytes += it.fileInfo().size();
    }
    return bytes;
}

qint64 tst_tlvctl_cache::fill(int pages)
{
    QNetworkDiskCache cache;
    cache.setCacheDirectory(CACHE_DIR);
    for (int i = 0; i < pages; ++i) {
        QNetworkCacheMetaData metaData;
        metaData.setUrl(QUrl(QString("http://example.org/%1").arg(i)));
        metaData.setSaveToDisk(true);
        QIODevice* const device = cache.prepare(metaData);
        device->write(QByteArray(1000, 'x'));
        cache.insert(device);
    }
    return bytesOfAll();
}

void tst_tlvctl_cache::clearRemovesWhatTheCacheKeeps()
{
    const qint64 bytes = fill(3);
    QVERIFY(bytes > 0);
    const Run run = tlvctl({"cache", "clear"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.out, QString("files removed from %1: 3, bytes: %2\n").arg(CACHE_DIR).arg(bytes).toUtf8());
    QCOMPARE(bytesOfAll(), qint64(0));
    QCOMPARE(tlvctl({"cache", "clear"}).out,
             QString("files removed from %1: 0, bytes: 0\n").arg(CACHE_DIR).toUtf8());
}

void tst_tlvctl_cache::clearWritesJson()
{
    const double bytes = static_cast<double>(fill(2));
    QVERIFY(QDir().mkpath(CACHE_DIR + "mine"));
    writeFile(CACHE_DIR + "mine/file", "1234");
    const Run run = tlvctl({"cache", "clear", "--json"});
    QCOMPARE(run.code, 0);
    QCOMPARE(jsonOf(run.out), (QJsonObject{{"directory", CACHE_DIR},
                                           {"exists", true},
                                           {"dryRun", false},
                                           {"removedFiles", 2},
                                           {"removedBytes", bytes},
                                           {"leftFiles", 1},
                                           {"leftBytes", 4}}));
}

void tst_tlvctl_cache::clearLeavesWhatIsNotTheCaches()
{
    const qint64 bytes = fill(1);
    writeFile(CACHE_DIR + ".hidden", "1234");
    writeFile(CACHE_DIR + "notes.txt", "56");
    const Run run = tlvctl({"cache", "clear"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, QString("files removed from %1: 1, bytes: %2\nfiles left: 2, bytes: 6\n")
                          .arg(CACHE_DIR)
                          .arg(bytes)
                          .toUtf8());
    QCOMPARE(readFile(CACHE_DIR + ".hidden"), QByteArray("1234"));
    QCOMPARE(readFile(CACHE_DIR + "notes.txt"), QByteArray("56"));
}

void tst_tlvctl_cache::clearOfAMissingDirectoryDoesNothing()
{
    const Run run = tlvctl({"cache", "clear"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.out, "there is no cache: no directory " + CACHE_DIR.toUtf8() + '\n');
    QCOMPARE(jsonOf(tlvctl({"cache", "clear", "--json"}).out)["exists"], QJsonValue(false));
    QVERIFY(!QFile::exists("/ata07/Talvenor"));
}

void tst_tlvctl_cache::clearOfWhatIsNoDirectoryFails()
{
    QVERIFY(QDir().mkpath("/ata07/Talvenor"));
    writeFile("/ata07/Talvenor/cache", "a file");
    const Run run = tlvctl({"cache", "clear"});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, CACHE_DIR, {"not a directory"}));
    QCOMPARE(readFile("/ata07/Talvenor/cache"), QByteArray("a file"));
}

void tst_tlvctl_cache::clearTellsOfFilesThatCannotBeRemoved()
{
    const qint64 bytes = fill(1);
    QDirIterator it(CACHE_DIR, QDir::Files, QDirIterator::Subdirectories);
    const QString dir = QFileInfo(it.next()).path();
    QVERIFY(QFile::setPermissions(dir, QFile::ReadOwner | QFile::ExeOwner));
    const Run run = tlvctl({"cache", "clear"});
    QVERIFY(QFile::setPermissions(dir, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QString("files removed from %1: 0, bytes: 0\nfiles left: 1, bytes: %2\n")
                          .arg(CACHE_DIR)
                          .arg(bytes)
                          .toUtf8());
    QVERIFY(complains(run, dir, {"cannot be removed"}));
}

void tst_tlvctl_cache::dryRunRemovesNothing()
{
    const qint64 bytes = fill(2);
    const Run run = tlvctl({"cache", "clear", "--dry-run"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, QString("dry run: nothing is removed from %1\n"
                              "files: 2, bytes: %2; of these, what is the cache's would be removed\n")
                          .arg(CACHE_DIR)
                          .arg(bytes)
                          .toUtf8());
    QCOMPARE(bytesOfAll(), bytes);
}

TLVLIB_PRIVATE_ROOT_TEST_MAIN(tst_tlvctl_cache)
#include "tst_tlvctl_cache.moc"
