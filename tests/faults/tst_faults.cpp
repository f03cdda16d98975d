#include "tests/support/LogRecorder.h"
#include "tests/support/PrivateRoot.h"
#include "tests/support/TestSupport.h"

#include <tlvlib/tlvlib.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

static bool b_privateRoot = false;

/// What the caller sees, and what is on the disk afterwards, when files and disks fail.
class tst_faults : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void interruptedSaveIsReadUpToItsEnd();
    void fullDiskLeavesAReadableFile();
    void fullDeviceIsNoCrash();
    void whatOnlyOthersMayUse();
    void directoryInTheFilesPlace();
    void loopOfSymbolicLinks();
    void longPaths();
    void pathsOfAllCharacters();
    void fileThatChangesMeanwhile_data();
    void fileThatChangesMeanwhile();
    void killedSaveIsReadUpToItsEnd();
    void manyThumbnailFiles();

private:
    QString file(const char* pc_name) const { return path_ + utf8(pc_name); }
    void fill(int si_count);
    int load();
    static TVNC_BookmarksSetting& store() { return *TVNC_BookmarksSetting::getInstance(); }

    QScopedPointer<TempDir> dir_;
    QString path_;
};

static const int MAX = 999;

/// What a save logs, with the line of a problem.
static QString saveLines(const char* pc_problem)
{
    return utf8("3 [TVNC_BookmarksSetting::saveBookmark] start\n"
                "3 [TVNC_XMLSetting::save] start\n") +
           utf8(pc_problem) +
           utf8("3 [TVNC_XMLSetting::saveBookmark] end\n"
                "3 [TVNC_BookmarksSetting::saveBookmark] end\n");
}

/// What a load logs that finds no bookmark, with the line of the problem.
static QString loadLines(const char* pc_problem)
{
    return utf8("3 [TVNC_BookmarksSetting::loadBookmark] start\n"
                "3 [TVNC_XMLSetting::deleteRootChildren] 0x*\n"
                "3 [TVNC_XMLSetting::loadBookmark] start\n") +
           utf8(pc_problem) +
           utf8("3 [TVNC_XMLSetting::loadBookmark] end\n"
                "3 [TVNC_BookmarksSetting::getLastNumber] last number:0\n"
                "3 [TVNC_BookmarksSetting::loadBookmark] end\n");
}

void tst_faults::init()
{
    dir_.reset(new TempDir);
    path_ = dir_->path();
    load();
    LogRecorder::clear();
}

void tst_faults::cleanup()
{
    releaseDeferred();
    dir_.reset();
}

int tst_faults::load()
{
    int si_last = 0;
    store().loadBookmark(&path_, MAX, si_last);
    return store().getBookmarkCnt();
}

void tst_faults::fill(int si_count)
{
    for (int i = 0; i < si_count; ++i) {
        TVNS_Bookmark bookmark = {utf8("\xE6\x97\xA5 & <title>"), utf8("http://example.org/?a&b"),
                                  utf8("/thumbnail/000001.PNG")};
        QVERIFY(store().setBookmark(&bookmark));
    }
}

// Saving replaces the file in place, so a process that is killed leaves some beginning of it.
void tst_faults::interruptedSaveIsReadUpToItsEnd()
{
    fill(4);
    store().saveBookmark(&path_, MAX);
    const QByteArray whole = readFile(file("bookmark.xml"));
    QVERIFY(whole.size() > 400);
    for (int si_size = 0; si_size <= whole.size(); ++si_size) {
        const QByteArray left = whole.left(si_size);
        writeFile(file("bookmark.xml"), left);
        const int si_begun = static_cast<int>(left.count("<bookmark id=\"00"));
        const int si_complete = static_cast<int>(left.count("</bookmark>"));
        const int si_count = load();
        QVERIFY(si_count >= si_complete && si_count <= si_begun);
        for (int i = 0; i < si_complete; ++i) {
            TVNS_Bookmark bookmark;
            QVERIFY(store().getBookmark(i, &bookmark));
            QCOMPARE(bookmark.title, utf8("\xE6\x97\xA5 & <title>"));
            QCOMPARE(bookmark.href, utf8("http://example.org/?a&b"));
        }
        if (si_size % 50 == 0)
            releaseDeferred();
    }
}

void tst_faults::fullDiskLeavesAReadableFile()
{
    if (!b_privateRoot)
        QSKIP("a disk of the test's own needs a private file system", SkipSingle);
    fill(900);
    QString disk = utf8("/ata07/disk/");
    QVERIFY(QDir().mkpath(disk));
    QCOMPARE(mount("none", "/ata07/disk", "tmpfs", 0, "size=64k"), 0);
    LogRecorder::clear();
    store().saveBookmark(&disk, MAX); // needs more than 100 KB
    QCOMPARE(LogRecorder::take(), saveLines(""));
    const QByteArray written = readFile(disk + utf8("bookmark.xml"));
    QVERIFY(written.size() > 0 && written.size() <= 65536);
    path_ = disk;
    const int si_count = load();
    QVERIFY(si_count >= written.count("</bookmark>") && si_count < 900);
    releaseDeferred();
    QCOMPARE(umount("/ata07/disk"), 0);
    QVERIFY(QDir().rmdir(disk));
}

void tst_faults::fullDeviceIsNoCrash()
{
    if (!QFile::exists(utf8("/dev/full")))
        QSKIP("there is no /dev/full", SkipSingle);
    fill(900);
    QVERIFY(QFile::link(utf8("/dev/full"), file("bookmark.xml")));
    LogRecorder::clear();
    store().saveBookmark(&path_, MAX);
    QCOMPARE(LogRecorder::take(), saveLines("")); // write errors go unnoticed
    // All is still in memory, and can be saved elsewhere.
    QVERIFY(QFile::remove(file("bookmark.xml")));
    store().saveBookmark(&path_, MAX);
    QCOMPARE(load(), 900);
}

// As another user than root, who may do everything.
void tst_faults::whatOnlyOthersMayUse()
{
    const QByteArray directory = QFile::encodeName(path_);
    const QByteArray name = QFile::encodeName(file("bookmark.xml"));
    fill(1);
    store().saveBookmark(&path_, MAX);
    const QByteArray written = readFile(file("bookmark.xml"));
    QCOMPARE(chmod(directory.constData(), 0755), 0);
    QCOMPARE(chmod(name.constData(), 0), 0);
    const bool b_root = geteuid() == 0;
    if (b_root && seteuid(65534) != 0)
        QSKIP("there is no other user than root here", SkipSingle);
    fill(1);
    LogRecorder::clear();
    store().saveBookmark(&path_, MAX);
    const QString saveLog = LogRecorder::take();
    const int si_kept = store().getBookmarkCnt();
    const int si_loaded = load();
    const QString loadLog = LogRecorder::take();
    if (b_root)
        QCOMPARE(seteuid(0), 0);
    QCOMPARE(saveLog, saveLines("2 TVNC_XMLWriter::write file open error!\n"));
    QCOMPARE(si_kept, 2);
    QCOMPARE(si_loaded, 0);
    QCOMPARE(loadLog, loadLines("2 TVNC_XMLReader::read file open error!\n"));
    QCOMPARE(chmod(name.constData(), 0644), 0);
    QCOMPARE(readFile(file("bookmark.xml")), written);

    // A directory that takes no new file.
    QVERIFY(QFile::remove(file("bookmark.xml")));
    QCOMPARE(chmod(directory.constData(), 0555), 0);
    fill(1);
    if (b_root)
        QCOMPARE(seteuid(65534), 0);
    LogRecorder::clear();
    store().saveBookmark(&path_, MAX);
    if (b_root)
        QCOMPARE(seteuid(0), 0);
    QCOMPARE(chmod(directory.constData(), 0755), 0);
    QCOMPARE(LogRecorder::take(), saveLines("2 TVNC_XMLWriter::write file open error!\n"));
    QVERIFY(!QFile::exists(file("bookmark.xml")));
    QCOMPARE(store().getBookmarkCnt(), 1);
}

void tst_faults::directoryInTheFilesPlace()
{
    fill(1);
    QVERIFY(QDir().mkpath(file("bookmark.xml")));
    LogRecorder::clear();
    store().saveBookmark(&path_, MAX);
    QCOMPARE(LogRecorder::take(), saveLines("2 TVNC_XMLWriter::write file open error!\n"));
    QCOMPARE(load(), 0);
    QVERIFY(QDir(file("bookmark.xml")).exists());
}

void tst_faults::loopOfSymbolicLinks()
{
    fill(1);
    QVERIFY(QFile::link(file("bookmark.xml"), file("other")));
    QVERIFY(QFile::link(file("other"), file("bookmark.xml")));
    LogRecorder::clear();
    store().saveBookmark(&path_, MAX);
    QCOMPARE(LogRecorder::take(), saveLines("2 TVNC_XMLWriter::write file open error!\n"));
    QCOMPARE(load(), 0);
    QCOMPARE(LogRecorder::take(), loadLines("2 TVNC_XMLReader::read file not exist!\n"));
}

void tst_faults::longPaths()
{
    const QString short_ = path_;
    for (int i = 0; i < 20; ++i)
        path_ += QString(199, QLatin1Char('d')) + QLatin1Char('/'); // 4,000 characters, and no such directory
    fill(1);
    LogRecorder::clear();
    store().saveBookmark(&path_, MAX);
    QCOMPARE(LogRecorder::take(), saveLines("2 TVNC_XMLWriter::write file open error!\n"));
    QCOMPARE(load(), 0);

    path_ = short_;
    for (int i = 0; i < 15; ++i)
        path_ += QString(199, QLatin1Char('d')) + QLatin1Char('/');
    QVERIFY(QDir().mkpath(path_));
    fill(1);
    store().saveBookmark(&path_, MAX);
    QCOMPARE(load(), 1);
}

void tst_faults::pathsOfAllCharacters()
{
    const QString start = path_;
    foreach (const QString& name, QStringList() << utf8("with space") << utf8("\xE6\x97\xA5\xC3\xA9")
                                                << utf8("%1 %s \"'") << utf8("-n") << utf8("a\\b")) {
        path_ = start + name + QLatin1Char('/');
        QVERIFY(QDir().mkpath(path_));
        load();
        fill(2);
        store().saveBookmark(&path_, MAX);
        QCOMPARE(load(), 2);
        QVERIFY(QFile::exists(file("bookmark.xml")));
    }
}

/// What another process does to a file between the look at it and the end of reading.
typedef bool (*Change)(const char* pc_name, long si_size, int si_round);

static bool shrink(const char* pc_name, long si_size, int si_round)
{
    return truncate(pc_name, si_round * 7919L % si_size) == 0;
}

static bool grow(const char* pc_name, long, int)
{
    const int si_file = open(pc_name, O_WRONLY | O_APPEND);
    const char pc_more[] = "<bookmark id=\"000\"/><!-- more -->";
    const bool b_written = write(si_file, pc_more, sizeof pc_more - 1) == sizeof pc_more - 1;
    return close(si_file) == 0 && b_written;
}

static bool vanish(const char* pc_name, long, int)
{
    return unlink(pc_name) == 0 || errno == ENOENT;
}

void tst_faults::fileThatChangesMeanwhile_data()
{
    QTest::addColumn<void*>("change");
    QTest::newRow("shrinks") << reinterpret_cast<void*>(shrink);
    QTest::newRow("grows") << reinterpret_cast<void*>(grow);
    QTest::newRow("vanishes") << reinterpret_cast<void*>(vanish);
}

void tst_faults::fileThatChangesMeanwhile()
{
    QFETCH(void*, change);
    fill(300);
    store().saveBookmark(&path_, MAX);
    const QByteArray whole = readFile(file("bookmark.xml"));
    const QByteArray name = QFile::encodeName(file("bookmark.xml"));
    for (int i = 0; i < 200; ++i) {
        const pid_t child = fork();
        if (child == 0) {
            bool b_done = true;
            for (int j = 0; j < 20; ++j)
                b_done =
                    reinterpret_cast<Change>(change)(name.constData(), whole.size(), i + j * 31) && b_done;
            _exit(b_done ? 0 : 1);
        }
        QVERIFY(child > 0);
        const int si_count = load();
        QVERIFY(si_count >= 0 && si_count <= 300);
        int si_end = -1;
        QCOMPARE(waitpid(child, &si_end, 0), child);
        QCOMPARE(si_end, 0);
        writeFile(file("bookmark.xml"), whole);
        releaseDeferred();
    }
    QCOMPARE(load(), 300);
}

// A process may be killed at any moment of its saves: the file holds the beginning of one.
void tst_faults::killedSaveIsReadUpToItsEnd()
{
    fill(900);
    store().saveBookmark(&path_, MAX);
    const QByteArray whole = readFile(file("bookmark.xml"));
    for (int i = 0; i < 100; ++i) {
        const pid_t child = fork();
        if (child == 0) {
            for (;;)
                store().saveBookmark(&path_, MAX);
        }
        QVERIFY(child > 0);
        usleep(static_cast<useconds_t>(i * 97 % 5000));
        QCOMPARE(kill(child, SIGKILL), 0);
        QCOMPARE(waitpid(child, nullptr, 0), child);
        const QByteArray left = readFile(file("bookmark.xml"));
        QVERIFY(whole.startsWith(left));
        const int si_count = load();
        QVERIFY(si_count >= left.count("</bookmark>") && si_count <= left.count("<bookmark id="));
        releaseDeferred();
        writeFile(file("bookmark.xml"), whole);
        QCOMPARE(load(), 900);
    }
}

void tst_faults::manyThumbnailFiles()
{
    // Not one of the 100,000 is a picture's, and all have to be gone through.
    const int si_files = 100000;
    for (int i = 0; i < si_files; ++i)
        writeFile(path_ + QString::number(i) + utf8(i % 10 == 0 ? ".png" : ".txt"), QByteArray(1, 'x'));
    QByteArray source = path_.toLatin1();
    QByteArray pack = (path_ + utf8("pack.xml")).toLatin1();
    TVNC_ThumbnailConverter::getInstance()->convertThumbnailPngToXML(source.data(), pack.data());
    QCOMPARE(static_cast<int>(readFile(path_ + utf8("pack.xml")).count("<image ")), si_files / 10);
}

int main(int argc, char** argv)
{
    b_privateRoot = enterPrivateRoot();
    QCoreApplication application(argc, argv);
    tst_faults test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_faults.moc"
