#include "tests/crash/Disk.h"
#include "tests/crash/Workload.h"
#include "tests/support/PrivateRoot.h"
#include "tests/support/SystemCalls.h"
#include "tests/support/TestSupport.h"

#include <tlvlib/diag/TVNG_DebugPrint.h>
#include <tlvlib/files/TVNG_SafeSave.h>

#include <QtCore/QCryptographicHash>
#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QSet>

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

/**
 * Power cuts. What the library asks of the kernel while it saves everything that it can save is recorded, and
 * after each call every state that the disk may then be in is made and loaded; where these are too many, some
 * thousands by chance, the same ones in every run.
 */
class tst_crash : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void diskOfTheTest();
    void safeSavesLoseNothing();
    void plainSavesLoseSomething();
    void copyByTheRecipeLosesNothing();
    void costOfASafeSave();

private:
    struct Result
    {
        int si_states;             ///< made
        int si_distinct;           ///< of them, which were then loaded
        QMap<QByteArray, int> bad; ///< those in which a file was not as it has to be, by the file's name
        QByteArray example;
    };

    Result cutAll(int si_samples);
    void cutOne(Disk& disk, const Save& save, int si_round, int si_samples, Result& result);
    void checkCuts(const Disk& disk, const Files& before, const Files& after, bool b_returned, int si_samples,
                   Result& result);
    void check(const Files& files, const Files& before, const Files& after, bool b_returned, Result& result);
    void put(const Files& files);
    const QByteArray& expected(const QByteArray& name, const QByteArray& bytes);
    QString work() const { return dir_->path() + utf8("work/"); }
    QString scratch() const { return dir_->path() + utf8("scratch/"); }

    QScopedPointer<TempDir> dir_;
    Files put_;                            ///< what is in the scratch directory
    void (*pc_start_)(const QString& dir); ///< what is done in a directory before it is loaded; may be null
    QSet<QByteArray> known_;               ///< states of the current save, as hashes
    QHash<QPair<QByteArray, QByteArray>, QByteArray> wanted_; ///< what complete files load as
    Random random_{15};
};

static Files filesBelow(const QString& dir)
{
    Files files;
    QDirIterator it(dir, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        files[QFile::encodeName(path.mid(dir.size()))] = readFile(path);
    }
    return files;
}

/// A short text for how files differ from others; another one for every other difference.
static QByteArray difference(const Files& from, const Files& files)
{
    QCryptographicHash hash(QCryptographicHash::Sha1);
    for (Files::const_iterator it = from.begin(); it != from.end(); ++it) {
        if (!files.contains(it.key()))
            hash.addData('-' + it.key() + '\n');
    }
    for (Files::const_iterator it = files.begin(); it != files.end(); ++it) {
        if (from.contains(it.key()) && from.value(it.key()) == it.value())
            continue;
        hash.addData('+' + it.key() + '\n' + QByteArray::number(static_cast<int>(it.value().size())) + '\n');
        hash.addData(it.value());
    }
    return hash.result();
}

void tst_crash::init()
{
    dir_.reset(new TempDir);
    pc_start_ = nullptr;
    wanted_.clear();
    random_ = Random(15);
    QDir().mkpath(work());
    QDir().mkpath(scratch());
    prepareDirectory(work());
    prepareDirectory(scratch());
    put_ = filesBelow(scratch());
}

void tst_crash::cleanup()
{
    TVNG_SetSafeSave(0);
    releaseDeferred();
    dir_.reset();
}

/// Makes the scratch directory hold these files.
void tst_crash::put(const Files& files)
{
    for (Files::const_iterator it = put_.begin(); it != put_.end(); ++it) {
        if (!files.contains(it.key()))
            QVERIFY(QFile::remove(scratch() + QFile::decodeName(it.key())));
    }
    for (Files::const_iterator it = files.begin(); it != files.end(); ++it) {
        const Files::const_iterator there = put_.constFind(it.key());
        if (there == put_.constEnd() || there.value() != it.value())
            writeFile(scratch() + QFile::decodeName(it.key()), it.value());
    }
    put_ = files;
}

/// What the library makes of the complete file.
const QByteArray& tst_crash::expected(const QByteArray& name, const QByteArray& bytes)
{
    QByteArray& text = wanted_[qMakePair(name, bytes)];
    if (text.isEmpty()) {
        Files files = put_;
        files[name] = bytes;
        put(files);
        text = loaded(scratch(), name);
    }
    return text;
}

/// Loads what changes between the two, and tells whether it is as before or after, and as after from the end
/// on.
void tst_crash::check(const Files& files, const Files& before, const Files& after, bool b_returned,
                      Result& result)
{
    ++result.si_states;
    const QByteArray key = difference(before, files) + (b_returned ? '1' : '0');
    if (known_.contains(key))
        return;
    known_.insert(key);
    ++result.si_distinct;
    QList<QPair<QByteArray, QByteArray>> wanted; // as text: the first one after, the second one before
    for (Files::const_iterator it = after.begin(); it != after.end(); ++it) {
        if (before.value(it.key()) == it.value() && before.contains(it.key()))
            continue;
        const QByteArray text = expected(it.key(), it.value());
        const QByteArray earlier =
            before.contains(it.key()) ? expected(it.key(), before.value(it.key())) : QByteArray();
        wanted.append(qMakePair(it.key(), text));
        wanted.append(qMakePair(it.key(), b_returned ? text : earlier));
    }
    put(files);
    if (pc_start_) {
        pc_start_(scratch());
        put_ = filesBelow(scratch());
    }
    for (int i = 0; i < wanted.size(); i += 2) {
        const QByteArray found = loaded(scratch(), wanted.at(i).first);
        if (found == wanted.at(i).second || found == wanted.at(i + 1).second)
            continue;
        ++result.bad[wanted.at(i).first];
        if (result.example.isEmpty())
            result.example = wanted.at(i).first + " loads as: " + found.left(200);
    }
}

void tst_crash::checkCuts(const Disk& disk, const Files& before, const Files& after, bool b_returned,
                          int si_samples, Result& result)
{
    const int si_pending = disk.pending();
    QVector<int> reached;
    if (si_pending <= 6) { // all subsets, in their order and in the opposite one
        for (int si_bits = 0; si_bits < 1 << si_pending; ++si_bits) {
            reached.clear();
            for (int i = 0; i < si_pending; ++i) {
                if (si_bits & (1 << i))
                    reached.append(i);
            }
            check(disk.after(reached), before, after, b_returned, result);
            for (int i = 0; i < reached.size() / 2; ++i)
                qSwap(reached[i], reached[reached.size() - 1 - i]);
            check(disk.after(reached), before, after, b_returned, result);
        }
        return;
    }
    for (int i = 0; i <= si_pending; ++i) { // all prefixes
        check(disk.after(reached), before, after, b_returned, result);
        reached.append(i);
    }
    for (int i = 0; i < si_samples; ++i) {
        reached.clear();
        const quint32 ul_share = 1 + random_.next(99); // in percent, so that most or few are lost, too
        for (int j = 0; j < si_pending; ++j) {
            if (random_.next(100) < (disk.isData(j) ? ul_share : 90))
                reached.append(j);
        }
        for (int j = static_cast<int>(reached.size()) - 1; i % 2 == 1 && j > 0; --j)
            qSwap(reached[j], reached[static_cast<int>(random_.next(static_cast<quint32>(j + 1)))]);
        check(disk.after(reached), before, after, b_returned, result);
    }
}

/// Lets the library save, and cuts the power after every call.
void tst_crash::cutOne(Disk& disk, const Save& save, int si_round, int si_samples, Result& result)
{
    const Files before = disk.seen();
    SystemCalls::record(QFile::encodeName(work()));
    save.pc_run(work(), si_round);
    const QList<SystemCall> calls = SystemCalls::take();
    const Files after = filesBelow(work());
    known_.clear();
    checkCuts(disk, before, after, false, si_samples, result);
    for (int i = 0; i < calls.size(); ++i) {
        disk.apply(calls.at(i));
        checkCuts(disk, before, after, i + 1 == calls.size(), si_samples, result);
    }
    // Nothing reached the kernel past the recorder.
    if (disk.seen() != after || before == after)
        ++result.bad["the record of " + QByteArray(save.pc_name)];
    releaseDeferred();
}

/// Everything twice: files that are made, then files that are replaced.
tst_crash::Result tst_crash::cutAll(int si_samples)
{
    Result result = {0, 0, QMap<QByteArray, int>(), QByteArray()};
    Disk disk(filesBelow(work()));
    for (int si_round = 0; si_round < 2; ++si_round) {
        for (int i = 0; i < SAVE_COUNT; ++i)
            cutOne(disk, SAVES[i], si_round, si_samples, result);
    }
    return result;
}

// The model of the disk itself, with calls that are not the library's.
void tst_crash::diskOfTheTest()
{
    Files files;
    files["a"] = "old";
    Disk disk(files);
    const SystemCall create = {SystemCall::CREATE, 0, "new", "", 0, ""};
    const SystemCall write = {SystemCall::WRITE, 0, "", "", 0, QByteArray(512, 'x') + QByteArray(8, 'y')};
    const SystemCall sync = {SystemCall::SYNC, 0, "", "", 0, ""};
    const SystemCall rename = {SystemCall::RENAME, 0, "new", "a", 0, ""};
    const SystemCall syncDirectory = {SystemCall::SYNC_DIRECTORY, -1, "", "", 0, ""};
    disk.apply(create);
    disk.apply(write);
    QCOMPARE(disk.pending(), 4); // name, size, two blocks
    QCOMPARE(disk.after(QVector<int>()), files);
    Files expected = files;
    expected["new"] = QByteArray(520, '\0');
    QCOMPARE(disk.after(QVector<int>() << 1 << 0), expected);
    expected["new"] = QByteArray(512, '\0') + QByteArray(8, 'y');
    QCOMPARE(disk.after(QVector<int>() << 3 << 1 << 0), expected);
    expected["new"] = QByteArray(); // the data without the size
    QCOMPARE(disk.after(QVector<int>() << 0 << 2), expected);
    disk.apply(rename);
    expected = Files();
    expected["a"] = QByteArray(); // the name before the data
    QCOMPARE(disk.after(QVector<int>() << 4), expected);
    disk.apply(sync);
    QCOMPARE(disk.pending(), 2);
    QCOMPARE(disk.after(QVector<int>()), files);
    expected["a"] = write.data;
    QCOMPARE(disk.after(QVector<int>() << 1), expected);
    QCOMPARE(disk.seen(), expected);
    disk.apply(syncDirectory);
    QCOMPARE(disk.pending(), 0);
    QCOMPARE(disk.after(QVector<int>()), expected);

    // In place: the old end may come before the new data.
    const SystemCall truncate = {SystemCall::TRUNCATE, 0, "", "", 0, ""};
    const SystemCall rewrite = {SystemCall::WRITE, 0, "", "", 0, "short"};
    disk.apply(truncate);
    disk.apply(rewrite);
    expected["a"] = "";
    QCOMPARE(disk.after(QVector<int>() << 0), expected);
    expected["a"] = "short" + write.data.mid(5);
    QCOMPARE(disk.after(QVector<int>() << 2), expected);
    expected["a"] = "short";
    QCOMPARE(disk.after(QVector<int>() << 0 << 1 << 2), expected);
    QCOMPARE(disk.seen(), expected);
}

void tst_crash::safeSavesLoseNothing()
{
    TVNG_SetSafeSave(1);
    const Result result = cutAll(4000);
    QCOMPARE(TVNG_GetSaveError(), QString());
    QVERIFY2(result.bad.isEmpty(),
             (result.bad.isEmpty() ? "" : result.bad.keys().first() + ": ") + result.example);
    qDebug("%d states, %d of them distinct and loaded", result.si_states, result.si_distinct);
    QVERIFY2(result.si_states >= 50000, QByteArray::number(result.si_states).constData());
    QVERIFY2(result.si_distinct >= 50000, QByteArray::number(result.si_distinct).constData());
}

// The same, so that it is known that it can fail.
void tst_crash::plainSavesLoseSomething()
{
    const Result result = cutAll(20);
    foreach (const char* pc_name, QList<const char*>() << "fontlist.xml"
                                                       << "thumbnail/000001.PNG"
                                                       << "bookmark.xml"
                                                       << "visit.xml"
                                                       << "authinfo.xml"
                                                       << "repostry.xml"
                                                       << "repostry_private.xml"
                                                       << "written.xml"
                                                       << "setting.xml"
                                                       << "cookie.ini"
                                                       << "cookies.xml"
                                                       << "back/cookie.ini"
                                                       << "pack.xml"
                                                       << "unpacked/000001.PNG") {
        QVERIFY2(result.bad.value(pc_name) > 0, pc_name);
    }
    foreach (const QByteArray& name, result.bad.keys())
        QVERIFY2(!name.startsWith("the record of "), name.constData());
}

// --- The recipe of docs/integration.md for applications that do not switch safe saves on
// --------------------

static const char LIST[] = "bookmark.xml";
static const char COPY[] = "bookmark.xml.old";
static const char UNFINISHED[] = "bookmark.xml.new";

static void renameTo(const QString& from, const QString& to)
{
    // Qt's own rename may copy.
    QCOMPARE(std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()), 0);
}

static void sync(const QString& path)
{
    const int si_file = ::open(QFile::encodeName(path).constData(), O_RDONLY);
    QVERIFY(si_file >= 0 && ::fsync(si_file) == 0 && ::close(si_file) == 0);
}

static void saveByTheRecipe(const QString& dir, int si_round)
{
    const Save* pc_save = SAVES;
    while (qstrcmp(pc_save->pc_name, "bookmarks") != 0)
        ++pc_save;
    writeFile(dir + utf8(UNFINISHED), readFile(dir + utf8(LIST))); // empty when there is no list
    sync(dir + utf8(UNFINISHED));
    renameTo(dir + utf8(UNFINISHED), dir + utf8(COPY));
    sync(dir);
    pc_save->pc_run(dir, si_round);
    sync(dir + utf8(LIST));
    sync(dir);
    QVERIFY(QFile::remove(dir + utf8(COPY)));
    sync(dir);
}

static void startByTheRecipe(const QString& dir)
{
    if (!QFile::exists(dir + utf8(COPY)))
        return;
    renameTo(dir + utf8(COPY), dir + utf8(LIST));
    sync(dir);
}

void tst_crash::copyByTheRecipeLosesNothing()
{
    const Save save = {"bookmarks by the recipe", saveByTheRecipe};
    Result result = {0, 0, QMap<QByteArray, int>(), QByteArray()};
    Disk disk(filesBelow(work()));
    pc_start_ = startByTheRecipe;
    for (int si_round = 0; si_round < 3; ++si_round)
        cutOne(disk, save, si_round, 1000, result);
    QVERIFY2(result.bad.isEmpty(), result.example.constData());
    QVERIFY2(result.si_distinct >= 3000, QByteArray::number(result.si_distinct).constData());
}

// --- What it costs -----------------------------------------------------------------------------------------

/// As docs/robustness.md has it: every byte is written once, and each file costs two syncs.
void tst_crash::costOfASafeSave()
{
    TVNG_SetSafeSave(1);
    for (int i = 0; i < SAVE_COUNT; ++i) {
        const Files before = filesBelow(work());
        SystemCalls::record(QFile::encodeName(work()));
        SAVES[i].pc_run(work(), 0);
        int si_bytes = 0;
        int si_syncs = 0;
        int si_renames = 0;
        foreach (const SystemCall& call, SystemCalls::take()) {
            si_bytes += static_cast<int>(call.data.size());
            si_syncs += call.kind == SystemCall::SYNC || call.kind == SystemCall::SYNC_DIRECTORY;
            si_renames += call.kind == SystemCall::RENAME;
        }
        int si_files = 0;
        int si_size = 0;
        const Files after = filesBelow(work());
        for (Files::const_iterator it = after.begin(); it != after.end(); ++it) {
            if (before.contains(it.key()))
                continue;
            ++si_files;
            si_size += static_cast<int>(it.value().size());
        }
        QVERIFY(si_files > 0);
        QCOMPARE(si_bytes, si_size);
        QCOMPARE(si_syncs, 2 * si_files);
        QCOMPARE(si_renames, si_files);
        qDebug("%s: %d files, %d bytes, %d syncs", SAVES[i].pc_name, si_files, si_bytes, si_syncs);
    }
}

int main(int argc, char** argv)
{
    const bool b_privateRoot = enterPrivateRoot();
    QCoreApplication application(argc, argv);
    g_uc_SystemLogLevel = 0;
    if (b_privateRoot)
        qputenv("TMPDIR", "/ata07"); // in memory
    tst_crash test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_crash.moc"
