#include "tests/support/LogRecorder.h"
#include "tests/support/PrivateRoot.h"
#include "tests/support/Setting.h"
#include "tests/support/SystemCalls.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/tlvlib.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtNetwork/QNetworkCookie>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

static bool b_privateRoot = false;

/// Safe saves on disks that are full or fail, and into places where no file can be replaced.
class tst_TVNG_SafeSave_faults : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void diskThatFillsUpAtEveryByte_data() { saverRows(); }
    void diskThatFillsUpAtEveryByte();
    void smallDisk();
    void callThatFails_data();
    void callThatFails();
    void directoryThatCannotBeOpenedNow();
    void fileSystemsWithoutLocks();
    void interruptedWriteGoesOn();
    void modeThatCannotBeGivenIsKeptInPlace();
    void directorySyncThatFails();
    void fileSystemsWithoutSync();
    void memoryKeepsTheChange();

    void unwritableFileIsRefused();
    void missingDirectoryIsRefused();
    void directoryThatTakesNoFile();
    void errorThatMeansNoPlaceForFiles();
    void devicesArePlain();
    void fullDeviceIsTold();
    void namedPipeIsWrittenThrough();
    void leftoverThatCannotGo();
    void directoryThatIsKeptLocked();
    void directoryThatCannotBeReadIsWrittenInPlace();

    void logMaySaveInTheSameDirectory_data() { saverRows(); }
    void logMaySaveInTheSameDirectory();
    void logOfARefusedSaveMaySaveInTheSameDirectory();

    void killedProcessesLoseNothing();

private:
    static void saverRows();
    QString file(const char* pc_name) const { return path_ + utf8(pc_name); }
    QByteArray localFile(const char* pc_name) const { return QFile::encodeName(file(pc_name)); }
    QByteArray localPath() const { return QFile::encodeName(path_); }
    QStringList files() const { return QDir(path_).entryList(QDir::Files | QDir::Hidden); }

    QScopedPointer<TempDir> dir_;
    QString path_;
};

// --- What saves --------------------------------------------------------------------------------------------

/// One way to save a file of two versions. It tells no result where the library tells none.
struct Saver
{
    const char* pc_name;
    const char* pc_file;
    const char* pc_log; ///< what it logs when the file cannot be replaced
    bool (*pc_save)(const QString& dir, int si_version);
};

static bool saveWithWriter(const QString& dir, int si_version)
{
    QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "root", si_version == 0 ? "before" : "and after it"));
    TVNC_XMLWriter writer;
    QString path = dir + utf8("a.xml");
    return writer.write(path, root.data());
}

static bool saveBookmarks(const QString& dir, int si_version)
{
    QString path = dir;
    int si_last = 0;
    QString none = dir + utf8("none/");
    TVNC_BookmarksSetting* pc_store = TVNC_BookmarksSetting::getInstance();
    pc_store->loadBookmark(&none, 100, si_last);
    TVNS_Bookmark bookmark = {utf8(si_version == 0 ? "old" : "newer"), utf8("http://example.org/"),
                              utf8("t")};
    for (int i = 0; i <= si_version; ++i)
        pc_store->setBookmark(&bookmark);
    LogRecorder::clear();
    pc_store->saveBookmark(&path, 100);
    return TVNG_GetSaveError().isEmpty();
}

static bool saveCookies(const QString& dir, int si_version)
{
    QString path = dir;
    QList<QNetworkCookie> cookies;
    cookies << QNetworkCookie("name", si_version == 0 ? "old" : "new value");
    TVNC_CookieSetting::getInstance()->saveCookieInfo(cookies, &path, 20);
    return TVNG_GetSaveError().isEmpty();
}

static bool savePicture(const QString& dir, int si_version)
{
    QImage image(4 + si_version, 4, QImage::Format_RGB32);
    image.fill(0xFF00FF00u + static_cast<unsigned int>(si_version));
    QString path = dir;
    int si_number = 7;
    return TVNC_BookmarksSetting::getInstance()->setThumbnail(&image, &path, si_number);
}

static bool unpackPicture(const QString& dir, int si_version)
{
    QByteArray base64 = QByteArray(si_version == 0 ? "first" : "the second").toBase64();
    QString path = dir + utf8("p.png");
    return TVNC_ThumbnailConverter::getInstance()->decode_base64(base64, path);
}

static const Saver SAVERS[] = {
    {"writer", "a.xml", "2 TVNC_XMLWriter::write file replace error!", saveWithWriter},
    {"store", "bookmark.xml", "2 TVNC_XMLWriter::write file replace error!", saveBookmarks},
    {"cookie.ini", "cookie.ini", "2 [TVNC_CookieSetting::saveCookieInfo] Couldn't replace cookie.ini.",
     saveCookies},
    {"picture", "000008.PNG", "2 [TVNC_BookmarksSetting::setThumbnail] Couldn't replace thumbnail.",
     savePicture},
    {"unpacked", "p.png", "2 [TVNC_ThumbnailConverter] Couldn't replace thumbnail.", unpackPicture}};
static const int SAVER_COUNT = sizeof SAVERS / sizeof *SAVERS;

void tst_TVNG_SafeSave_faults::saverRows()
{
    QTest::addColumn<int>("saver");
    for (int i = 0; i < SAVER_COUNT; ++i)
        QTest::newRow(SAVERS[i].pc_name) << i;
}

/// The log lines of errors alone.
static QStringList errors()
{
    QStringList found;
    foreach (const QString& line, LogRecorder::takeLines()) {
        if (!line.startsWith(utf8("3 ")))
            found << line;
    }
    return found;
}

static QString errorText(int si_error)
{
    return QString::fromLocal8Bit(strerror(si_error));
}

void tst_TVNG_SafeSave_faults::init()
{
    dir_.reset(new TempDir);
    path_ = dir_->path();
    TVNG_SetSafeSave(1);
    LogRecorder::clear();
}

void tst_TVNG_SafeSave_faults::cleanup()
{
    SystemCalls::mend();
    TVNG_SetSafeSave(0);
    releaseDeferred();
    dir_.reset();
}

// --- Disks -------------------------------------------------------------------------------------------------

void tst_TVNG_SafeSave_faults::diskThatFillsUpAtEveryByte()
{
    QFETCH(int, saver);
    const Saver& used = SAVERS[saver];
    QVERIFY(used.pc_save(path_, 1));
    const QByteArray after = readFile(file(used.pc_file));
    QVERIFY(used.pc_save(path_, 0));
    const QByteArray before = readFile(file(used.pc_file));
    QVERIFY(before != after && after.size() > 5);
    for (int b_exists = 1; b_exists >= 0; --b_exists) {
        for (int si_room = 0; si_room < after.size(); ++si_room) {
            LogRecorder::clear();
            SystemCalls::fill(localPath(), si_room);
            QVERIFY(!used.pc_save(path_, 1));
            SystemCalls::mend();
            QCOMPARE(errors(), QStringList() << utf8(used.pc_log));
            QCOMPARE(TVNG_GetSaveError(),
                     file(used.pc_file) + utf8(" could not be saved: the new file could not be written (") +
                         errorText(ENOSPC) + utf8(")"));
            QCOMPARE(readFile(file(used.pc_file)), b_exists ? before : QByteArray());
            QCOMPARE(files(), b_exists ? QStringList() << utf8(used.pc_file) : QStringList());
        }
        LogRecorder::clear();
        SystemCalls::fill(localPath(), after.size());
        QVERIFY(used.pc_save(path_, 1));
        SystemCalls::mend();
        QCOMPARE(errors(), QStringList());
        QCOMPARE(TVNG_GetSaveError(), QString());
        QCOMPARE(readFile(file(used.pc_file)), after);
        QVERIFY(QFile::remove(file(used.pc_file)));
    }
}

// The kernel's own word, in steps of its pages.
void tst_TVNG_SafeSave_faults::smallDisk()
{
    if (!b_privateRoot)
        QSKIP("a disk of the test's own needs a private file system", SkipSingle);
    QString disk = utf8("/ata07/disk/");
    QVERIFY(QDir().mkpath(disk));
    QCOMPARE(mount("none", "/ata07/disk", "tmpfs", 0, "size=64k"), 0);
    const QString path = disk + utf8("a.xml");
    const QByteArray small(15000, 's');
    const QByteArray large(30000, 'l');
    int si_full = 0;
    for (int si_kilobytes = 0; si_kilobytes <= 60; si_kilobytes += 4) {
        QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "root", small.constData()));
        TVNC_XMLWriter writer;
        QString name = path;
        QVERIFY(writer.write(name, root.data()));
        const QByteArray before = readFile(path);
        const QString ballast = disk + utf8("ballast");
        QFile filler(ballast);
        QVERIFY(filler.open(QIODevice::WriteOnly));
        filler.write(QByteArray(si_kilobytes * 1024, 'b'));
        filler.close(); // perhaps cut off
        root.reset(makeNode(nullptr, "root", large.constData()));
        const bool b_written = writer.write(name, root.data());
        QCOMPARE(TVNG_GetSaveError().isEmpty(), b_written);
        QCOMPARE(readFile(path) == before, !b_written);
        QVERIFY(b_written || TVNG_GetSaveError().contains(errorText(ENOSPC)));
        si_full += b_written ? 0 : 1;
        QCOMPARE(QDir(disk).entryList(QDir::Files), QStringList() << utf8("a.xml") << utf8("ballast"));
        QVERIFY(QFile::remove(ballast));
    }
    QVERIFY(si_full > 3 && si_full < 16);
    QCOMPARE(umount("/ata07/disk"), 0);
    QVERIFY(QDir().rmdir(disk));
}

void tst_TVNG_SafeSave_faults::callThatFails_data()
{
    QTest::addColumn<int>("saver");
    QTest::addColumn<QByteArray>("call");
    QTest::addColumn<int>("error");
    QTest::addColumn<QByteArray>("told");
    for (int i = 0; i < SAVER_COUNT; ++i) {
        const struct
        {
            const char* pc_call;
            int si_error;
            const char* pc_told;
        } pc_calls[] = {{"write", EIO, "the new file could not be written"},
                        {"fsync", EIO, "the new file could not be synced to the disk"},
                        {"fsync", ENOSPC, "the new file could not be synced to the disk"},
                        {"close", EDQUOT, "the new file could not be written"},
                        {"rename", EIO, "the new file could not take its place"},
                        {"rename", ENOSPC, "the new file could not take its place"},
                        {"rename", EBUSY, "the new file could not take its place"}};
        for (size_t j = 0; j < sizeof pc_calls / sizeof *pc_calls; ++j)
            QTest::newRow(QByteArray(SAVERS[i].pc_name) + ": " + pc_calls[j].pc_call + ' ' +
                          QByteArray::number(pc_calls[j].si_error))
                << i << QByteArray(pc_calls[j].pc_call) << pc_calls[j].si_error
                << QByteArray(pc_calls[j].pc_told);
        // The second file that is opened is the new one: the first one is the old, to see whether it may be
        // written, and then the directory.
        QTest::newRow(QByteArray(SAVERS[i].pc_name) + ": no room for a name")
            << i << QByteArray("open") << ENOSPC
            << QByteArray("a new file could not be made in its directory");
        QTest::newRow(QByteArray(SAVERS[i].pc_name) + ": too many files")
            << i << QByteArray("open") << EMFILE
            << QByteArray("a new file could not be made in its directory");
    }
}

void tst_TVNG_SafeSave_faults::callThatFails()
{
    QFETCH(int, saver);
    QFETCH(QByteArray, call);
    QFETCH(int, error);
    QFETCH(QByteArray, told);
    const Saver& used = SAVERS[saver];
    QVERIFY(used.pc_save(path_, 0));
    const QByteArray before = readFile(file(used.pc_file));
    LogRecorder::clear();
    SystemCalls::fail(localPath(), call, error, call == "open" ? 2 : 0);
    QVERIFY(!used.pc_save(path_, 1));
    SystemCalls::mend();
    QCOMPARE(errors(), QStringList() << utf8(used.pc_log));
    QCOMPARE(TVNG_GetSaveError(), file(used.pc_file) + utf8(" could not be saved: ") +
                                      utf8(told.constData()) + utf8(" (") + errorText(error) + utf8(")"));
    QCOMPARE(readFile(file(used.pc_file)), before);
    QCOMPARE(files(), QStringList() << utf8(used.pc_file));

    // It can be tried again.
    QVERIFY(used.pc_save(path_, 1));
    QVERIFY(readFile(file(used.pc_file)) != before);
    QCOMPARE(TVNG_GetSaveError(), QString());
}

void tst_TVNG_SafeSave_faults::directoryThatCannotBeOpenedNow()
{
    QVERIFY(saveWithWriter(path_, 0));
    const QByteArray before = readFile(file("a.xml"));
    SystemCalls::fail(localPath().left(localPath().size() - 1), "open", EMFILE,
                      1); // the first is the old file
    QVERIFY(!saveWithWriter(path_, 1));
    SystemCalls::mend();
    QCOMPARE(TVNG_GetSaveError(), file("a.xml") +
                                      utf8(" could not be saved: its directory could not be opened (") +
                                      errorText(EMFILE) + utf8(")"));
    QCOMPARE(readFile(file("a.xml")), before);
    QCOMPARE(files(), QStringList() << utf8("a.xml"));
}

void tst_TVNG_SafeSave_faults::fileSystemsWithoutLocks()
{
    SystemCalls::fail(localPath().left(localPath().size() - 1), "flock", ENOLCK);
    QVERIFY(saveWithWriter(path_, 1));
    SystemCalls::mend();
    QVERIFY(readFile(file("a.xml")).endsWith("</root>\n"));
    QCOMPARE(TVNG_GetSaveError(), QString());
}

void tst_TVNG_SafeSave_faults::interruptedWriteGoesOn()
{
    SystemCalls::fail(localPath(), "write", EINTR, 0, true);
    QVERIFY(saveWithWriter(path_, 1));
    SystemCalls::mend();
    QCOMPARE(TVNG_GetSaveError(), QString());
    QVERIFY(readFile(file("a.xml")).endsWith("</root>\n"));
}

void tst_TVNG_SafeSave_faults::modeThatCannotBeGivenIsKeptInPlace()
{
    QVERIFY(saveWithWriter(path_, 0));
    QCOMPARE(chmod(localFile("a.xml").constData(), 0640), 0);
    struct stat before;
    QCOMPARE(stat(localFile("a.xml").constData(), &before), 0);
    SystemCalls::fail(localPath(), "chmod", EPERM);
    const bool b_saved = saveWithWriter(path_, 1);
    SystemCalls::mend();
    QVERIFY(b_saved);
    struct stat after;
    QCOMPARE(stat(localFile("a.xml").constData(), &after), 0);
    QCOMPARE(after.st_ino, before.st_ino);
    QCOMPARE(after.st_mode, before.st_mode);
    QVERIFY(readFile(file("a.xml")).contains("and after it"));
    QCOMPARE(files(), QStringList() << utf8("a.xml"));
}

// The new file is there, and whole. Whether it still is after a power cut, nobody knows.
void tst_TVNG_SafeSave_faults::directorySyncThatFails()
{
    QVERIFY(saveWithWriter(path_, 0));
    const QByteArray before = readFile(file("a.xml"));
    LogRecorder::clear();
    SystemCalls::fail(localPath(), "fsync directory", EIO);
    QVERIFY(!saveWithWriter(path_, 1));
    SystemCalls::mend();
    QCOMPARE(errors(), QStringList() << utf8("2 TVNC_XMLWriter::write file replace error!"));
    QCOMPARE(TVNG_GetSaveError(),
             file("a.xml") + utf8(" could not be saved: its directory could not be synced to the disk (") +
                 errorText(EIO) + utf8(")"));
    const QByteArray after = readFile(file("a.xml"));
    QVERIFY(after != before && after.endsWith("</root>\n"));
    QCOMPARE(files(), QStringList() << utf8("a.xml"));
}

void tst_TVNG_SafeSave_faults::fileSystemsWithoutSync()
{
    const int pi_errors[] = {EINVAL, ENOTSUP, EROFS};
    for (int i = 0; i < 3; ++i) {
        SystemCalls::fail(localPath(), "fsync directory", pi_errors[i]);
        QVERIFY(saveWithWriter(path_, i % 2));
        QCOMPARE(TVNG_GetSaveError(), QString());
    }
}

void tst_TVNG_SafeSave_faults::memoryKeepsTheChange()
{
    QVERIFY(saveBookmarks(path_, 0));
    SystemCalls::fill(localPath(), 10);
    QVERIFY(!saveBookmarks(path_, 1));
    SystemCalls::mend();
    TVNC_BookmarksSetting* pc_store = TVNC_BookmarksSetting::getInstance();
    QCOMPARE(pc_store->getBookmarkCnt(), 2);
    pc_store->saveBookmark(&path_, 100);
    QCOMPARE(TVNG_GetSaveError(), QString());
    int si_last = 0;
    pc_store->loadBookmark(&path_, 100, si_last);
    QCOMPARE(pc_store->getBookmarkCnt(), 2);
}

// --- Places ------------------------------------------------------------------------------------------------

/// Another user than root, who may do everything. False when there is none.
static bool becomeSomebody()
{
    return geteuid() != 0 || seteuid(65534) == 0;
}

static void becomeRootAgain()
{
    if (getuid() == 0)
        QCOMPARE(seteuid(0), 0);
}

void tst_TVNG_SafeSave_faults::unwritableFileIsRefused()
{
    for (int i = 0; i < SAVER_COUNT; ++i) {
        QVERIFY(SAVERS[i].pc_save(path_, 0));
        QCOMPARE(chmod(localFile(SAVERS[i].pc_file).constData(), 0444), 0);
    }
    QCOMPARE(chmod(localPath().constData(), 0777), 0); // which would allow to replace it
    bool b_saved[SAVER_COUNT];
    QStringList told;
    LogRecorder::clear();
    if (!becomeSomebody())
        QSKIP("there is no other user than root here", SkipSingle);
    for (int i = 0; i < SAVER_COUNT; ++i) {
        b_saved[i] = SAVERS[i].pc_save(path_, 1);
        told << TVNG_GetSaveError();
    }
    becomeRootAgain();
    for (int i = 0; i < SAVER_COUNT; ++i) {
        QVERIFY(!b_saved[i]);
        QCOMPARE(told.at(i), file(SAVERS[i].pc_file) + utf8(" could not be saved: it may not be written (") +
                                 errorText(EACCES) + utf8(")"));
    }
    QCOMPARE(files().size(), SAVER_COUNT);
    QVERIFY(errors().contains(utf8("1 [TVNC_ThumbnailConverter] Couldn't open thumbnail for writing.")));
}

void tst_TVNG_SafeSave_faults::missingDirectoryIsRefused()
{
    QVERIFY(!saveWithWriter(file("none/"), 0));
    QCOMPARE(errors(), QStringList() << utf8("2 TVNC_XMLWriter::write file open error!"));
    QCOMPARE(TVNG_GetSaveError(), file("none/a.xml") + utf8(" could not be saved: it may not be written (") +
                                      errorText(ENOENT) + utf8(")"));
    writeFile(file("file"), "x");
    QVERIFY(!saveWithWriter(file("file/"), 0));
    QVERIFY(TVNG_GetSaveError().contains(errorText(ENOTDIR)));
    QVERIFY(QDir().mkpath(file("a.xml")));
    QVERIFY(!saveWithWriter(path_, 0));
    QVERIFY(TVNG_GetSaveError().contains(errorText(EISDIR)));
    QVERIFY(QFile::link(file("loop"), file("loop")));
    QString path = file("loop");
    QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "root"));
    TVNC_XMLWriter writer;
    QVERIFY(!writer.write(path, root.data()));
    QVERIFY(TVNG_GetSaveError().contains(errorText(ELOOP)));
}

void tst_TVNG_SafeSave_faults::directoryThatTakesNoFile()
{
    for (int i = 0; i < SAVER_COUNT; ++i) {
        QVERIFY(SAVERS[i].pc_save(path_, 0));
        QCOMPARE(chmod(localFile(SAVERS[i].pc_file).constData(), 0666), 0);
    }
    struct stat status;
    QCOMPARE(stat(localFile("a.xml").constData(), &status), 0);
    QCOMPARE(chmod(localPath().constData(), 0555), 0);
    if (!becomeSomebody())
        QSKIP("there is no other user than root here", SkipSingle);
    LogRecorder::clear();
    QStringList told;
    for (int i = 0; i < SAVER_COUNT; ++i)
        told << (SAVERS[i].pc_save(path_, 1) ? QString() : TVNG_GetSaveError());
    // A new file cannot be made there in either mode.
    const bool b_made = unpackPicture(file("none/"), 0);
    becomeRootAgain();
    QCOMPARE(chmod(localPath().constData(), 0755), 0);
    QVERIFY(!b_made);
    for (int i = 0; i < SAVER_COUNT; ++i)
        QCOMPARE(told.at(i), QString());
    struct stat after;
    QCOMPARE(stat(localFile("a.xml").constData(), &after), 0);
    QCOMPARE(after.st_ino, status.st_ino);
    QVERIFY(readFile(file("a.xml")).contains("and after it"));
    QCOMPARE(readFile(file("p.png")), QByteArray("the second"));
    QVERIFY(readFile(file("cookie.ini")).contains("new value"));
}

// Each of them alone means that the directory takes no new file, ever: the old one is written in place.
void tst_TVNG_SafeSave_faults::errorThatMeansNoPlaceForFiles()
{
    const int pi_errors[] = {EACCES, EPERM, EROFS, ENOENT, ENOTDIR, ELOOP, ENAMETOOLONG};
    for (size_t i = 0; i < sizeof pi_errors / sizeof *pi_errors; ++i) {
        QVERIFY(saveWithWriter(path_, 0));
        struct stat before;
        QCOMPARE(stat(localFile("a.xml").constData(), &before), 0);
        // The second file that is opened is the new one, and the third the old one, in place.
        SystemCalls::fail(localPath(), "open", pi_errors[i], 2, true);
        const bool b_saved = saveWithWriter(path_, 1);
        SystemCalls::mend();
        QVERIFY2(b_saved, qPrintable(errorText(pi_errors[i])));
        QVERIFY(readFile(file("a.xml")).contains("and after it"));
        struct stat after;
        QCOMPARE(stat(localFile("a.xml").constData(), &after), 0);
        QCOMPARE(after.st_ino, before.st_ino);
        QCOMPARE(files(), QStringList() << utf8("a.xml"));
    }
}

void tst_TVNG_SafeSave_faults::devicesArePlain()
{
    QVERIFY(QFile::link(utf8("/dev/null"), file("a.xml")));
    QVERIFY(saveWithWriter(path_, 0));
    QCOMPARE(TVNG_GetSaveError(), QString());
    QVERIFY(QFileInfo(file("a.xml")).isSymLink());
    struct stat status;
    QCOMPARE(stat("/dev/null", &status), 0);
    QVERIFY(S_ISCHR(status.st_mode));
}

void tst_TVNG_SafeSave_faults::fullDeviceIsTold()
{
    if (!QFile::exists(utf8("/dev/full")))
        QSKIP("there is no /dev/full", SkipSingle);
    QVERIFY(QFile::link(utf8("/dev/full"), file("a.xml")));
    QVERIFY(!saveWithWriter(path_, 0));
    QCOMPARE(errors(), QStringList() << utf8("2 TVNC_XMLWriter::write file replace error!"));
    QVERIFY(TVNG_GetSaveError().contains(errorText(ENOSPC)));
}

void tst_TVNG_SafeSave_faults::namedPipeIsWrittenThrough()
{
    QCOMPARE(mkfifo(localFile("a.xml").constData(), 0600), 0);
    const int si_reader = open(localFile("a.xml").constData(), O_RDONLY | O_NONBLOCK);
    QVERIFY(si_reader >= 0);
    QVERIFY(saveWithWriter(path_, 0));
    char pc_read[1000];
    const ssize_t si_size = read(si_reader, pc_read, sizeof pc_read);
    close(si_reader);
    QVERIFY(QByteArray(pc_read, static_cast<int>(si_size)).contains("<root>before</root>"));
    struct stat status;
    QCOMPARE(stat(localFile("a.xml").constData(), &status), 0);
    QVERIFY(S_ISFIFO(status.st_mode));
}

void tst_TVNG_SafeSave_faults::leftoverThatCannotGo()
{
    QVERIFY(saveWithWriter(path_, 0));
    const QByteArray before = readFile(file("a.xml"));
    QVERIFY(QDir().mkpath(file("a.xml.tlvsave/x")));
    QVERIFY(!saveWithWriter(path_, 1));
    QVERIFY(TVNG_GetSaveError().contains(utf8("a new file could not be made in its directory")));
    QCOMPARE(readFile(file("a.xml")), before);
}

/// A process that holds the lock under which saves replace files in a directory, until it is ended.
static pid_t lockDirectory(const QByteArray& directory)
{
    int si_pipe[2];
    if (pipe(si_pipe) != 0)
        return -1;
    const pid_t child = fork();
    if (child == 0) {
        const int si_directory = open(directory.constData(), O_RDONLY | O_DIRECTORY);
        char c_locked = flock(si_directory, LOCK_EX) == 0;
        if (write(si_pipe[1], &c_locked, 1) == 1)
            pause();
        _exit(0);
    }
    char c_locked = 0;
    const bool b_told = read(si_pipe[0], &c_locked, 1) == 1;
    close(si_pipe[0]);
    close(si_pipe[1]);
    return b_told && c_locked ? child : -1;
}

void tst_TVNG_SafeSave_faults::directoryThatIsKeptLocked()
{
    QVERIFY(saveWithWriter(path_, 0));
    const QByteArray before = readFile(file("a.xml"));
    const pid_t child = lockDirectory(localPath());
    QVERIFY(child > 0);
    QVERIFY(!saveWithWriter(path_, 1)); // after some seconds
    QVERIFY(TVNG_GetSaveError().contains(utf8("another program keeps saving in its directory")));
    QCOMPARE(readFile(file("a.xml")), before);
    QCOMPARE(kill(child, SIGKILL), 0);
    QCOMPARE(waitpid(child, nullptr, 0), child);
    QVERIFY(saveWithWriter(path_, 1)); // the dead hold nothing
}

// It takes files, but who cannot open it cannot sync it.
void tst_TVNG_SafeSave_faults::directoryThatCannotBeReadIsWrittenInPlace()
{
    QVERIFY(saveWithWriter(path_, 0));
    QCOMPARE(chmod(localFile("a.xml").constData(), 0666), 0);
    QCOMPARE(chmod(localPath().constData(), 0333), 0);
    if (!becomeSomebody())
        QSKIP("there is no other user than root here", SkipSingle);
    const bool b_written = saveWithWriter(path_, 1);
    becomeRootAgain();
    QCOMPARE(chmod(localPath().constData(), 0755), 0);
    QVERIFY(b_written);
    QVERIFY(readFile(file("a.xml")).contains("and after it"));
    QCOMPARE(files(), QStringList() << utf8("a.xml"));
}

// --- Logs --------------------------------------------------------------------------------------------------

static QString logPath;
static int si_logSaved = -1; ///< whether the log's own save succeeded; -1 when there was none

/// A log that keeps such errors in the directory that is being saved into.
static void saveOnError(const QString& message)
{
    if (!message.contains(utf8("replace")) && !message.contains(utf8("open error")))
        return;
    LogRecorder::pc_onMessage = nullptr;
    SystemCalls::mend();
    QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "log"));
    TVNC_XMLWriter writer;
    QString path = logPath + utf8("log.xml");
    si_logSaved = writer.write(path, root.data()) ? 1 : 0;
}

void tst_TVNG_SafeSave_faults::logMaySaveInTheSameDirectory()
{
    QFETCH(int, saver);
    const Saver& used = SAVERS[saver];
    QVERIFY(used.pc_save(path_, 0));
    const QByteArray before = readFile(file(used.pc_file));
    LogRecorder::clear();
    logPath = path_;
    si_logSaved = -1;
    SystemCalls::fail(localPath(), "fsync", EIO);
    LogRecorder::pc_onMessage = saveOnError;
    used.pc_save(path_, 1);
    LogRecorder::pc_onMessage = nullptr;
    QCOMPARE(errors(), QStringList() << utf8(used.pc_log));
    QCOMPARE(si_logSaved, 1);
    QCOMPARE(readFile(file(used.pc_file)), before);
    QCOMPARE(files().size(), 2); // and log.xml
}

void tst_TVNG_SafeSave_faults::logOfARefusedSaveMaySaveInTheSameDirectory()
{
    logPath = path_;
    si_logSaved = -1;
    // The directory is opened and locked; then neither the new file nor the one in place can be made.
    SystemCalls::fail(localPath(), "open", EACCES, 1);
    LogRecorder::pc_onMessage = saveOnError;
    const bool b_saved = saveWithWriter(path_, 0);
    LogRecorder::pc_onMessage = nullptr;
    QVERIFY(!b_saved);
    QCOMPARE(errors(), QStringList() << utf8("2 TVNC_XMLWriter::write file open error!"));
    QCOMPARE(si_logSaved, 1);
    QCOMPARE(files(), QStringList() << utf8("log.xml"));
}

// --- Processes ---------------------------------------------------------------------------------------------

void tst_TVNG_SafeSave_faults::killedProcessesLoseNothing()
{
    QByteArray versions[SAVER_COUNT][2];
    for (int i = 0; i < SAVER_COUNT; ++i) {
        for (int j = 1; j >= 0; --j) {
            QVERIFY(SAVERS[i].pc_save(path_, j));
            versions[i][j] = readFile(file(SAVERS[i].pc_file));
        }
    }
    int si_leftovers = 0;
    for (int i = 0; i < 600; ++i) {
        const pid_t child = fork();
        if (child == 0) {
            for (int j = 0;; ++j) {
                SAVERS[j % SAVER_COUNT].pc_save(path_, j / SAVER_COUNT % 2);
                LogRecorder::clear();
            }
        }
        QVERIFY(child > 0);
        usleep(static_cast<useconds_t>(i * 97 % 5000));
        QCOMPARE(kill(child, SIGKILL), 0);
        QCOMPARE(waitpid(child, nullptr, 0), child);
        for (int j = 0; j < SAVER_COUNT; ++j) {
            const QByteArray found = readFile(file(SAVERS[j].pc_file));
            QVERIFY2(found == versions[j][0] || found == versions[j][1], SAVERS[j].pc_name);
        }
        const int si_others = static_cast<int>(files().size()) - SAVER_COUNT;
        QVERIFY(si_others == 0 || si_others == 1); // it saved one file at a time
        si_leftovers += si_others;
        if (si_others == 1) {
            for (int j = 0; j < SAVER_COUNT; ++j)
                QVERIFY(SAVERS[j].pc_save(path_, 0));
            QCOMPARE(static_cast<int>(files().size()), SAVER_COUNT);
            LogRecorder::clear();
        }
    }
    QVERIFY2(si_leftovers > 20, "hardly any was killed while it saved");
}

int main(int argc, char** argv)
{
    b_privateRoot = enterPrivateRoot();
    QCoreApplication application(argc, argv);
    if (b_privateRoot)
        qputenv("TMPDIR", "/ata07"); // a disk's syncs would take most of the time
    tst_TVNG_SafeSave_faults test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_TVNG_SafeSave_faults.moc"
