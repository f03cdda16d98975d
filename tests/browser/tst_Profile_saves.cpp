#include "tests/crash/Disk.h"
#include "tests/support/PrivateRoot.h"
#include "tests/support/SystemCalls.h"
#include "tests/support/TestSupport.h"

#include <tlvlib/browser/Profile.h>

#include <QtCore/QSet>

#include <functional>

using Tlv::Profile;

/// Power cuts and full disks while a profile saves.
class tst_Profile_saves : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void powerCutLeavesOldOrNew();
    void fullDiskLeavesOldOrNew_data();
    void fullDiskLeavesOldOrNew();

private:
    QString dir() const { return dir_->path() + "profile/"; }
    QString scratch() const { return dir_->path() + "scratch/"; }
    /// The profile's files by their paths below its directory.
    Files files() const;
    /// Changes everything that a profile keeps.
    static void change(Profile& profile, int round);
    void checkStates(const Disk& disk, const Files& before, const Files& after);
    void check(const Files& state, const Files& before, const Files& after);
    void open(const Files& state);

    std::unique_ptr<TempDir> dir_;
    Random random_{18};
    QSet<QByteArray> known_;
    int opened_ = 0;
};

void tst_Profile_saves::init()
{
    dir_ = std::make_unique<TempDir>();
    QVERIFY(QDir().mkpath(dir()));
}

void tst_Profile_saves::cleanup()
{
    SystemCalls::mend();
}

Files tst_Profile_saves::files() const
{
    Files found;
    QDirIterator it(dir(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        found[QFile::encodeName(path.mid(dir().size()))] = readFile(path);
    }
    return found;
}

void tst_Profile_saves::change(Profile& profile, int round)
{
    QImage picture(32, 24, QImage::Format_RGB32);
    picture.fill(round);
    const QString text = QString::number(round);
    const QString url = "http://example.org/" + text;
    QVERIFY(profile.bookmarks()->add("Page " + text, "http://example.org/", picture)); // in place of the last
    profile.history()->visit(url, "Page");
    QVERIFY(profile.logins()->keep("host", round, Tlv::LoginModel::Basic, "u", text.toUtf8()));
    QNetworkCookie cookie("c" + text.toUtf8(), QByteArray(700, 'v'));
    cookie.setDomain("example.org");
    cookie.setPath("/");
    cookie.setExpirationDate(QDateTime(QDate(2037, 5, 6), QTime(7, 8), Qt::UTC));
    QVERIFY(profile.cookieJar()->insertCookie(cookie));
    QVERIFY(Profile::userPreferences().setHomePage(url));
    QVERIFY(Profile::devicePreferences().setProxyServerStr("proxy" + text));
    profile.savePreferences();
}

/// Lets a profile start with these files: nothing of them is damaged, and every bookmark has its picture.
void tst_Profile_saves::open(const Files& state)
{
    ++opened_;
    QVERIFY(QDir(scratch()).removeRecursively());
    for (const char* name : {"user/thumbnail", "common"})
        QVERIFY(QDir().mkpath(scratch() + name));
    for (auto file = state.begin(); file != state.end(); ++file) {
        if (!file.key().endsWith(".lock"))
            writeFile(scratch() + QFile::decodeName(file.key()), file.value());
    }
    Profile profile;
    QVERIFY2(profile.open(scratch()), qPrintable(profile.errorString()));
    QVERIFY(profile.damages().isEmpty());
    for (int row = 0; row < profile.bookmarks()->count(); ++row)
        QVERIFY(!profile.bookmarks()->picture(row).isNull());
}

void tst_Profile_saves::check(const Files& state, const Files& before, const Files& after)
{
    QByteArray key;
    for (auto file = state.begin(); file != state.end(); ++file)
        key += file.key() + '\n' + QCryptographicHash::hash(file.value(), QCryptographicHash::Sha1);
    if (known_.contains(key))
        return;
    known_.insert(key);
    for (const char* name : {"user/bookmark.xml", "user/visit.xml", "user/authinfo.xml", "user/cookie.ini",
                             "user/cookies.xml", "user/repostry_private.xml", "common/repostry.xml"}) {
        const QByteArray found = state.value(name);
        QVERIFY2(found == before.value(name) || found == after.value(name), name);
    }
    open(state);
}

/// All subsets of what has not reached the disk for certain, or some hundreds of them.
void tst_Profile_saves::checkStates(const Disk& disk, const Files& before, const Files& after)
{
    const int pending = disk.pending();
    const bool isSmall = pending <= 6;
    for (quint32 number = 0; number < (isSmall ? 1u << pending : 40u); ++number) {
        const quint32 bits = isSmall ? number : random_.next(0x1000000);
        QVector<int> reached;
        for (int i = 0; i < pending; ++i) {
            if (bits >> (i % 24) & 1)
                reached.append(i);
        }
        check(disk.after(reached), before, after);
    }
}

void tst_Profile_saves::powerCutLeavesOldOrNew()
{
    Profile profile;
    QVERIFY(profile.open(dir()));
    change(profile, 1);
    QVERIFY(profile.save());
    const Files before = files();
    Disk disk(before);
    SystemCalls::record(QFile::encodeName(dir()));
    change(profile, 2);
    QVERIFY(profile.save());
    const QList<SystemCall> calls = SystemCalls::take();
    const Files after = files();
    QVERIFY(!after.contains("user/thumbnail/000001.PNG")); // the picture of the earlier bookmark
    profile.close();
    for (const SystemCall& call : calls) {
        disk.apply(call);
        checkStates(disk, before, after);
    }
    QCOMPARE(disk.seen(), after); // the record is complete
    // Once save() has returned, everything is on the disk, but for what became of the picture that went.
    Files certain = disk.after(QVector<int>());
    certain.remove("user/thumbnail/000001.PNG");
    QCOMPARE(certain, after);
    QVERIFY2(opened_ > 50, QByteArray::number(opened_).constData());
}

void tst_Profile_saves::fullDiskLeavesOldOrNew_data()
{
    QTest::addColumn<int>("room");
    for (int room : {0, 1, 100, 500, 1000, 1500, 2000, 2500, 3000, 4000, 5000, 6000, 8000})
        QTest::newRow(QByteArray::number(room).constData()) << room;
}

void tst_Profile_saves::fullDiskLeavesOldOrNew()
{
    QFETCH(int, room);
    Profile profile;
    QVERIFY(profile.open(dir()));
    change(profile, 1);
    QVERIFY(profile.save());
    const Files before = files();
    change(profile, 2); // whose picture is written at once
    QSignalSpy failures(&profile, &Profile::saveFailed);
    SystemCalls::fill(QFile::encodeName(dir()), room);
    const bool isSaved = profile.save();
    const Files after = files();
    QCOMPARE(failures.count() > 0, !isSaved);
    QCOMPARE(isSaved, profile.saveError().isEmpty());
    QVERIFY(isSaved || room < 8000);
    QVERIFY(!isSaved || room > 1000); // what was changed takes more
    SystemCalls::mend();
    QVERIFY(profile.save()); // what could not be saved is tried again
    QCOMPARE(profile.saveError(), QString());
    const Files complete = files();
    QVERIFY(complete.value("user/bookmark.xml") != before.value("user/bookmark.xml"));
    profile.close();
    check(after, before, complete);
}

int main(int argc, char** argv)
{
    const bool hasPrivateRoot = enterPrivateRoot();
    QCoreApplication application(argc, argv);
    if (hasPrivateRoot)
        qputenv("TMPDIR", "/ata07"); // in memory
    tst_Profile_saves test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_Profile_saves.moc"
