#include "tests/browser/Network.h"
#include "tests/support/PrivateRoot.h"
#include "tests/support/TestSite.h"
#include "tests/support/TestSupport.h"

#include <tlvlib/browser/Profile.h>
#include <tlvlib/stores/TVNC_FontListSetting.h>

#include <QtCore/QLockFile>
#include <QtCore/QProcess>
#include <QtGui/QGuiApplication>
#include <QtNetwork/QNetworkAccessManager>

#include <cstdio>
#include <sys/stat.h>

using Tlv::Profile;

static const QString CACHE_DIR = "/ata07/Talvenor/cache/";
static bool hasPrivateRoot = false;

class tst_Profile : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void directoriesAreMadeForTheirOwner();
    void directoriesThatAreThereKeepTheirMode();
    void twoDirectoriesMayLieApart();
    void pathRules_data();
    void pathRules();
    void unwritableDirectoryIsRefused();
    void heldProfileIsRefused_data();
    void heldProfileIsRefused();
    void lockOfADeadProcessStopsNobody();
    void oneProfileIsOpenInAProcess();

    void everythingComesBack();
    void openingWritesNothing();
    void changesAreSavedAMomentLater();
    void anotherUserCanBeOpened();
    void whatIsLeftIsSavedAtTheEnd();
    void preferencesAndPagesAreSaved();
    void fontsOfTheMachineAreOffered();

    void damageIsToldAndCopied_data();
    void damageIsToldAndCopied();
    void missingCookiesAreDamage();
    void soundFilesAreNoDamage();
    void copyOfDamageIsForItsOwnerAlone();
    void damageWithoutACopyIsNotSaved();
    void cookiesThatCannotBeConvertedAreKept();
    void copiesDoNotPileUp();

    void failedSaveIsToldOnceAndTriedAgain_data();
    void failedSaveIsToldOnceAndTriedAgain();
    void pictureThatIsNotSavedIsTold();

    void endOfUse_data();
    void endOfUse();
    void endOfUseEmptiesTheCache_data();
    void endOfUseEmptiesTheCache();
    void attachedManagerUsesTheProfile();
    void managerMayBeAttachedAgain();
    void nextUserHasNoLoginOfTheLast();

private:
    QString dir() const { return dir_->path() + "profile"; }
    QString user() const { return dir() + "/user/"; }
    QString common() const { return dir() + "/common/"; }
    static int modeOf(const QString& path)
    {
        struct stat status = {};
        ::stat(QFile::encodeName(path).constData(), &status);
        return static_cast<int>(status.st_mode & 07777);
    }
    static void fill(Profile& profile);
    /// Every file of the profile with what it holds.
    QMap<QString, QByteArray> files() const;

    std::unique_ptr<TempDir> dir_;
};

void tst_Profile::init()
{
    dir_ = std::make_unique<TempDir>();
}

void tst_Profile::fill(Profile& profile)
{
    QImage picture(Tlv::BookmarkModel::PictureSize, QImage::Format_RGB32);
    picture.fill(Qt::red);
    for (int i = 0; i < 3; ++i) {
        const QString url = QString("http://example.org/%1").arg(i);
        QVERIFY(profile.bookmarks()->add(QString("Page %1").arg(i), url, picture));
        profile.history()->visit(url, "Visit", QDateTime(QDate(2011, 4, 12), QTime(10, i)));
        QVERIFY(profile.logins()->keep(QString("host%1").arg(i), 80, Tlv::LoginModel::Basic, "u", "p"));
        QNetworkCookie cookie("c" + QByteArray::number(i), "value");
        cookie.setDomain("example.org");
        cookie.setPath("/");
        cookie.setExpirationDate(QDateTime(QDate(2037, 5, 6), QTime(7, 8), Qt::UTC));
        QVERIFY(profile.cookieJar()->insertCookie(cookie));
    }
    QVERIFY(Profile::userPreferences().setHomePage("http://example.org/home"));
    TVNC_FontListSetting::getInstance()->addFont("A font");
    QString fontDir = profile.deviceDirectory();
    TVNC_FontListSetting::getInstance()->saveFontList(fontDir);
    profile.savePreferences();
    QVERIFY(profile.save());
}

QMap<QString, QByteArray> tst_Profile::files() const
{
    QMap<QString, QByteArray> found;
    QDirIterator it(dir(), QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        if (!path.endsWith(".lock"))
            found[path] = readFile(path);
    }
    return found;
}

// --- Opening -----------------------------------------------------------------------------------------------

void tst_Profile::directoriesAreMadeForTheirOwner()
{
    Profile profile;
    QVERIFY(!profile.isOpen());
    QVERIFY2(profile.open(dir()), qPrintable(profile.errorString()));
    QVERIFY(profile.isOpen());
    QCOMPARE(profile.error(), Profile::NoError);
    QCOMPARE(profile.userDirectory(), user());
    QCOMPARE(profile.deviceDirectory(), common());
    for (const QString& made : {dir(), user(), common(), user() + "thumbnail"})
        QCOMPARE(modeOf(made), 0700);
    fill(profile);
    for (const char* name : {"authinfo.xml", "cookie.ini", "cookies.xml"})
        QCOMPARE(modeOf(user() + name), 0600);
}

void tst_Profile::directoriesThatAreThereKeepTheirMode()
{
    QVERIFY(QDir().mkpath(user()));
    QCOMPARE(::chmod(QFile::encodeName(user()).constData(), 0755), 0);
    Profile profile;
    QVERIFY(profile.open(dir()));
    QCOMPARE(modeOf(user()), 0755);
    QCOMPARE(modeOf(common()), 0700);
}

void tst_Profile::twoDirectoriesMayLieApart()
{
    Profile profile;
    QVERIFY(profile.open(dir_->path() + "a/b", dir_->path() + "device/"));
    QCOMPARE(profile.userDirectory(), dir_->path() + "a/b/");
    QCOMPARE(profile.deviceDirectory(), dir_->path() + "device/");
    profile.savePreferences();
    profile.close();
    QVERIFY(QFile::exists(dir_->path() + "a/b/repostry_private.xml"));
    QVERIFY(QFile::exists(dir_->path() + "device/repostry.xml"));
    // Or be the same.
    QVERIFY(profile.open(dir_->path() + "same", dir_->path() + "same"));
}

void tst_Profile::pathRules_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<bool>("isOneDirectory");
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<bool>("isFine");
    QTest::newRow("longest") << 225 << true << "" << true;
    QTest::newRow("too long") << 226 << true << "" << false;
    QTest::newRow("not ASCII") << 100 << true << utf8("\xC3\xBC") << false;
    QTest::newRow("longest user's") << 235 << false << "" << true;
    QTest::newRow("too long a user's") << 236 << false << "" << false;
    QTest::newRow("user's not ASCII") << 100 << false << utf8("\xC3\xBC") << false;
}

void tst_Profile::pathRules()
{
    QFETCH(int, length);
    QFETCH(bool, isOneDirectory);
    QFETCH(QString, suffix);
    QFETCH(bool, isFine);
    const int left = length - static_cast<int>(dir_->path().size() + suffix.size());
    const QString path = dir_->path() + QString(left, 'd') + suffix;
    Profile profile;
    const bool isOpen = isOneDirectory ? profile.open(path) : profile.open(path, common());
    QCOMPARE(isOpen, isFine);
    QCOMPARE(QFile::exists(path), isFine);
    if (!isFine) {
        QCOMPARE(profile.error(), Profile::PathError);
        QCOMPARE(profile.errorString(),
                 isOneDirectory
                     ? path + ": a profile's path has at most 225 characters, all of them ASCII"
                     : path + "/: a user's directory has at most 236 characters, all of them ASCII");
        return;
    }
    // The longest path of a picture holds.
    QImage picture(16, 16, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QVERIFY(profile.bookmarks()->add("T", "a", picture));
    QVERIFY(profile.save());
    QVERIFY(profile.open(isOneDirectory ? path + "/user" : path, common()));
    QCOMPARE(profile.bookmarks()->picture(0).size(), picture.size());
}

void tst_Profile::unwritableDirectoryIsRefused()
{
    Profile profile;
    QVERIFY(!profile.open("/proc/profile"));
    QCOMPARE(profile.error(), Profile::PermissionError);
    QCOMPARE(profile.errorString(), QString("/proc/profile: cannot be written; check its permissions"));
    QVERIFY(!profile.isOpen());
    writeFile(dir_->path() + "file", "");
    QVERIFY(!profile.open(dir_->path() + "file"));
    QVERIFY(profile.open(dir())); // the next one may be fine
    QCOMPARE(profile.error(), Profile::NoError);
}

void tst_Profile::heldProfileIsRefused_data()
{
    QTest::addColumn<QString>("held");
    QTest::newRow("user's") << "user/";
    QTest::newRow("device's") << "common/";
}

void tst_Profile::heldProfileIsRefused()
{
    QFETCH(QString, held);
    QVERIFY(QDir().mkpath(dir() + '/' + held));
    QLockFile lock(dir() + '/' + held + "tlvlib.lock");
    QVERIFY(lock.tryLock(0));
    QTest::qWait(20); // older than what counts as stale: a living process keeps it all the same
    Profile profile;
    QVERIFY(!profile.open(dir()));
    QCOMPARE(profile.error(), Profile::InUseError);
    QCOMPARE(profile.errorString(), QString("%1/%2 is in use by tst_Profile (process %3 on %4); end it first")
                                        .arg(dir(), held)
                                        .arg(QCoreApplication::applicationPid())
                                        .arg(QSysInfo::machineHostName()));
    lock.unlock();
    QVERIFY(profile.open(dir())); // and nothing else was held
}

void tst_Profile::lockOfADeadProcessStopsNobody()
{
    QProcess other;
    other.start(QCoreApplication::applicationFilePath(), {"--hold", dir()});
    QVERIFY(other.waitForReadyRead());
    Profile profile;
    QVERIFY(!profile.open(dir()));
    QCOMPARE(profile.error(), Profile::InUseError);
    other.kill();
    QVERIFY(other.waitForFinished());
    QVERIFY(QFile::exists(user() + "tlvlib.lock"));
    QVERIFY2(profile.open(dir()), qPrintable(profile.errorString()));
    profile.close();
    QVERIFY(!QFile::exists(user() + "tlvlib.lock"));
    writeFile(user() + "tlvlib.lock", ""); // as a power cut leaves it
    QTest::qWait(20);
    QVERIFY(profile.open(dir()));
}

void tst_Profile::oneProfileIsOpenInAProcess()
{
    Profile profile;
    QVERIFY(profile.open(dir()));
    Profile second;
    QVERIFY(!second.open(dir_->path() + "other"));
    QCOMPARE(second.error(), Profile::InUseError);
    QCOMPARE(second.errorString(), dir_->path() + "other: another profile is open in this process");
    profile.close();
    QVERIFY(second.open(dir_->path() + "other"));
}

// --- Loading and saving ------------------------------------------------------------------------------------

void tst_Profile::everythingComesBack()
{
    Profile profile;
    QVERIFY(profile.open(dir()));
    fill(profile);
    QVERIFY(profile.open(dir()));
    QVERIFY(profile.damages().isEmpty());
    QCOMPARE(profile.bookmarks()->count(), 3);
    QCOMPARE(profile.bookmarks()->index(0, 0).data().toString(), QString("Page 2"));
    QCOMPARE(profile.history()->count(), 3);
    QCOMPARE(profile.logins()->count(), 3);
    QCOMPARE(profile.cookies()->count(), 3);
    QCOMPARE(profile.startPage(), QString("http://example.org/home"));
    QVERIFY(profile.fonts().contains("A font"));
}

void tst_Profile::openingWritesNothing()
{
    {
        Profile profile;
        QVERIFY(profile.open(dir()));
        fill(profile);
    }
    const QMap<QString, QByteArray> before = files();
    QCOMPARE(before.size(), 11); // with three pictures
    {
        Profile profile;
        QVERIFY(profile.open(dir()));
    }
    QCOMPARE(files(), before);
}

void tst_Profile::changesAreSavedAMomentLater()
{
    Profile profile;
    QVERIFY(profile.open(dir()));
    profile.history()->visit("http://example.org/", "Page");
    QVERIFY(!QFile::exists(user() + "visit.xml")); // not at once
    QTRY_VERIFY(QFile::exists(user() + "visit.xml"));
    QVERIFY(!QFile::exists(user() + "bookmark.xml")); // what has not changed is not written
    QVERIFY(profile.bookmarks()->add("T", "a"));
    QTRY_VERIFY(QFile::exists(user() + "bookmark.xml"));
    // Changes without a pause do not put it off for ever.
    QTimer busy;
    int visits = 0;
    connect(&busy, &QTimer::timeout, this,
            [&] { profile.history()->visit(QString("http://example.org/%1").arg(visits++), "Page"); });
    busy.start(50);
    QTRY_VERIFY_WITH_TIMEOUT(readFile(user() + "visit.xml").contains("example.org/1<"), 20000);
}

void tst_Profile::anotherUserCanBeOpened()
{
    Profile profile;
    QVERIFY(profile.open(dir_->path() + "anna", common()));
    QVERIFY(profile.bookmarks()->add("Anna's", "a"));
    QVERIFY(profile.open(dir_->path() + "bert", common()));
    QCOMPARE(profile.bookmarks()->count(), 0);
    QVERIFY(readFile(dir_->path() + "anna/bookmark.xml").contains("Anna's"));
    profile.savePreferences();
    profile.close();
    QVERIFY(!QFile::exists(dir_->path() + "bert/bookmark.xml"));
}

void tst_Profile::whatIsLeftIsSavedAtTheEnd()
{
    {
        Profile profile;
        QVERIFY(profile.open(dir()));
        profile.history()->visit("a", "Page");
    }
    QVERIFY(readFile(user() + "visit.xml").contains("<url>a</url>"));
    // Also when a process ends without destroying anything.
    QCOMPARE(QProcess::execute(QCoreApplication::applicationFilePath(), {"--visit", dir()}), 0);
    QVERIFY(readFile(user() + "visit.xml").contains("<url>b</url>"));
}

void tst_Profile::preferencesAndPagesAreSaved()
{
    Profile profile;
    QVERIFY(profile.open(dir()));
    QCOMPARE(profile.startPage(), QString("about:blank"));
    profile.setLastPage("http://example.org/last");
    profile.setLastPage("http://" + QString(250, 'x')); // 257 bytes are not remembered
    Profile::userPreferences().setStartUp(1);
    Profile::devicePreferences().setRcvCookieInfo(0);
    QSignalSpy changes(&profile, &Profile::preferencesChanged);
    profile.savePreferences();
    QCOMPARE(changes.count(), 1);
    QVERIFY(profile.open(dir()));
    QCOMPARE(profile.startPage(), QString("http://example.org/last"));
    QCOMPARE(Profile::devicePreferences().getRcvCookieInfo(), char(0));
}

void tst_Profile::fontsOfTheMachineAreOffered()
{
    Profile profile;
    QVERIFY(profile.open(dir()));
    QVERIFY(!profile.fonts().isEmpty());
    const QStringList fonts = profile.fonts();
    QVERIFY(profile.open(dir()));
    QCOMPARE(profile.fonts(), fonts); // from the file
    QVERIFY(QFile::exists(common() + "fontlist.xml"));
}

// --- Damage ------------------------------------------------------------------------------------------------

void tst_Profile::damageIsToldAndCopied_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("percent"); ///< that a cut has left
    QTest::addColumn<QString>("kept");
    for (const char* file :
         {"common/repostry.xml", "common/fontlist.xml", "user/repostry_private.xml", "user/bookmark.xml",
          "user/visit.xml", "user/authinfo.xml", "user/cookies.xml"}) {
        QTest::newRow(QByteArray(file) + ", half") << QString(file) << 50 << QString();
        QTest::newRow(QByteArray(file) + ", empty") << QString(file) << 0 << QString("The 0 entries");
    }
    QTest::newRow("user/cookie.ini, half") << "user/cookie.ini" << 50 << QString();
    QTest::newRow("user/cookie.ini, empty") << "user/cookie.ini" << 0 << "the 0 cookies";
    QTest::newRow("user/visit.xml, nearly all") << "user/visit.xml" << 95 << "The 3 entries";
}

void tst_Profile::damageIsToldAndCopied()
{
    QFETCH(QString, file);
    QFETCH(int, percent);
    QFETCH(QString, kept);
    const QString path = dir() + '/' + file;
    Profile profile;
    QVERIFY(profile.open(dir()));
    fill(profile);
    profile.close();
    const QByteArray whole = readFile(path);
    const QByteArray torn = whole.left(whole.size() * percent / 100);
    writeFile(path, torn);

    QVERIFY(profile.open(dir()));
    QCOMPARE(profile.damages().size(), 1);
    const Tlv::Damage damage = profile.damages().first();
    QCOMPARE(damage.file, path);
    QVERIFY2(damage.text.startsWith(path + " is damaged"), qPrintable(damage.text));
    QVERIFY2(damage.text.contains(kept), qPrintable(damage.text));
    QCOMPARE(damage.copy, path + ".damaged");
    QCOMPARE(readFile(damage.copy), torn);
    QCOMPARE(readFile(path), torn); // untouched so far
    fill(profile);
    profile.close();
    QVERIFY(readFile(path) != torn);
    QCOMPARE(readFile(damage.copy), torn);
    QVERIFY(profile.open(dir()));
    QVERIFY(profile.damages().isEmpty());
}

void tst_Profile::missingCookiesAreDamage()
{
    // The file says that it has three.
    QVERIFY(QDir().mkpath(user()));
    writeFile(user() + "cookie.ini", "[Cookie]\ncookies=\"@ByteArray(\\0\\0\\0\\x3\\0\\0\\0\\x3"
                                     "s=1)\"\n");
    Profile profile;
    QVERIFY(profile.open(dir()));
    QCOMPARE(profile.damages().size(), 1);
    QCOMPARE(profile.damages().first().text,
             user() + "cookie.ini is damaged: the 1 cookies that can be read are kept, the others are lost.");
    QCOMPARE(profile.cookies()->count(), 1);
}

void tst_Profile::soundFilesAreNoDamage()
{
    Profile profile;
    QVERIFY(profile.open(dir()));
    QVERIFY(profile.damages().isEmpty()); // missing ones
    profile.cookieJar()->clear();
    QNetworkCookie session("a", "1");
    session.setDomain("example.org");
    QVERIFY(profile.cookieJar()->insertCookie(session));
    QVERIFY(profile.save()); // an empty cookie.ini
    QVERIFY(QFile::exists(user() + "cookie.ini"));
    QVERIFY(profile.open(dir()));
    QVERIFY(profile.damages().isEmpty());
}

void tst_Profile::copyOfDamageIsForItsOwnerAlone()
{
    QVERIFY(QDir().mkpath(user()));
    QVERIFY(QFile::setPermissions(dir(), QFile::Permissions(0x7755))); // others may look into it
    writeFile(user() + "authinfo.xml", "<authinfolist><authinfo>");
    QVERIFY(QFile::setPermissions(user() + "authinfo.xml", QFile::ReadOwner | QFile::WriteOwner));
    Profile profile;
    QVERIFY(profile.open(dir()));
    QCOMPARE(profile.damages().size(), 1);
    QCOMPARE(modeOf(profile.damages().first().copy), 0600);
}

// There is only the document, from a backup, and no room for the file that Qt reads.
void tst_Profile::cookiesThatCannotBeConvertedAreKept()
{
    Profile profile;
    QVERIFY(profile.open(dir()));
    fill(profile);
    profile.close();
    const QByteArray document = readFile(user() + "cookies.xml");
    QVERIFY(QFile::remove(user() + "cookie.ini"));
    const QString obstacle = user() + "cookie.ini.tlvsave";
    QVERIFY(QDir().mkpath(obstacle));

    QVERIFY(profile.open(dir()));
    QCOMPARE(profile.cookies()->count(), 0);
    QCOMPARE(profile.damages().size(), 1);
    QCOMPARE(profile.damages().first().file, user() + "cookies.xml");
    QVERIFY2(profile.damages().first().text.startsWith(user() + "cookie.ini could not be saved"),
             qPrintable(profile.damages().first().text));
    QCOMPARE(profile.damages().first().copy, user() + "cookies.xml.damaged");
    QVERIFY(QDir().rmdir(obstacle));
    fill(profile);
    profile.close();
    QCOMPARE(readFile(user() + "cookies.xml.damaged"), document);
}

void tst_Profile::damageWithoutACopyIsNotSaved()
{
    QVERIFY(QDir().mkpath(user()));
    writeFile(user() + "bookmark.xml", "<bookmarks><bookmark>");
    QVERIFY(QDir().mkpath(user() + "bookmark.xml.damaged")); // nothing can be copied to there
    Profile profile;
    QSignalSpy failures(&profile, &Profile::saveFailed);
    QVERIFY(profile.open(dir()));
    QCOMPARE(profile.damages().size(), 1);
    QCOMPARE(profile.damages().first().copy, QString());
    QVERIFY(profile.bookmarks()->add("T", "a"));
    QVERIFY(!profile.save());
    QCOMPARE(failures.count(), 1);
    QVERIFY(failures.first().first().toString().startsWith(
        user() + "bookmark.xml is not saved, because the damaged file could not be copied: "));
    QCOMPARE(readFile(user() + "bookmark.xml"), QByteArray("<bookmarks><bookmark>"));
    QVERIFY(QDir().rmdir(user() + "bookmark.xml.damaged"));
    QVERIFY(profile.save());
    QCOMPARE(readFile(user() + "bookmark.xml.damaged"), QByteArray("<bookmarks><bookmark>"));
    QVERIFY(readFile(user() + "bookmark.xml").contains("<title>T</title>"));
    QCOMPARE(profile.saveError(), QString());
}

void tst_Profile::copiesDoNotPileUp()
{
    QVERIFY(QDir().mkpath(user()));
    Profile profile;
    const auto copies = [this] { return QDir(user()).entryList({"visit.xml.*"}, QDir::Files).size(); };
    for (int start = 0; start < 3; ++start) {
        writeFile(user() + "visit.xml", "<history>"); // damaged, and nothing is saved
        QVERIFY(profile.open(dir()));
        QCOMPARE(profile.damages().first().copy, user() + "visit.xml.damaged");
        QCOMPARE(copies(), 1);
    }
    for (int number = 2; number <= 12; ++number) {
        const QByteArray other = "<history>" + QByteArray::number(number);
        writeFile(user() + "visit.xml", other);
        QVERIFY(profile.open(dir()));
        QCOMPARE(profile.damages().first().copy,
                 user() + QString("visit.xml.damaged-%1").arg(qMin(number, 9)));
        QCOMPARE(readFile(profile.damages().first().copy), other);
    }
    QCOMPARE(copies(), 9);
    QCOMPARE(readFile(user() + "visit.xml.damaged"), QByteArray("<history>")); // the first stays
}

// --- Failures ----------------------------------------------------------------------------------------------

void tst_Profile::failedSaveIsToldOnceAndTriedAgain_data()
{
    QTest::addColumn<QString>("file");
    for (const char* file : {"common/repostry.xml", "user/repostry_private.xml", "user/bookmark.xml",
                             "user/visit.xml", "user/authinfo.xml", "user/cookie.ini", "user/cookies.xml"})
        QTest::newRow(file) << QString(file);
}

void tst_Profile::failedSaveIsToldOnceAndTriedAgain()
{
    QFETCH(QString, file);
    const QString path = dir() + '/' + file;
    Profile profile;
    QVERIFY(profile.open(dir()));
    fill(profile);
    const QByteArray before = readFile(path);
    // No file can be made under this name, and so no new version of the file.
    QVERIFY(QDir().mkpath(path + ".tlvsave"));
    QSignalSpy failures(&profile, &Profile::saveFailed);
    QSignalSpy changes(&profile, &Profile::saveErrorChanged);
    const auto changeAll = [&profile](const QString& url) {
        QVERIFY(profile.bookmarks()->add("New", url));
        profile.history()->visit(url, "New");
        QVERIFY(profile.logins()->keep(url, 80, Tlv::LoginModel::Basic, "u", "p"));
        profile.cookieJar()->deleteCookie(profile.cookieJar()->cookies().first());
        Profile::userPreferences().setHomePage(url);
        Profile::devicePreferences().setProxyServerStr(url);
        profile.savePreferences();
    };
    changeAll("one");
    QVERIFY(!profile.save());
    QCOMPARE(failures.count(), 1);
    QVERIFY2(failures.first().first().toString().startsWith(path + " could not be saved"),
             qPrintable(failures.first().first().toString()));
    QCOMPARE(profile.saveError(), failures.first().first().toString());
    QCOMPARE(readFile(path), before);
    changeAll("two");
    QVERIFY(!profile.save());
    QCOMPARE(failures.count(), 1); // that is known
    QCOMPARE(changes.count(), 1);

    QVERIFY(QDir().rmdir(path + ".tlvsave"));
    QVERIFY(profile.save()); // without another change
    QCOMPARE(failures.count(), 1);
    QCOMPARE(changes.count(), 2);
    QCOMPARE(profile.saveError(), QString());
    QVERIFY(readFile(path) != before);
}

void tst_Profile::pictureThatIsNotSavedIsTold()
{
    Profile profile;
    QVERIFY(profile.open(dir()));
    QVERIFY(QDir(user() + "thumbnail").removeRecursively());
    QSignalSpy failures(&profile, &Profile::saveFailed);
    QImage picture(16, 16, QImage::Format_RGB32);
    QVERIFY(profile.bookmarks()->add("T", "a", picture));
    QCOMPARE(failures.count(), 1);
    QVERIFY(failures.first().first().toString().startsWith("Bookmarked without its picture: "));
    QCOMPARE(profile.bookmarks()->errorString(), failures.first().first().toString());
}

// --- Deleting on time --------------------------------------------------------------------------------------

void tst_Profile::endOfUse_data()
{
    QTest::addColumn<int>("cookieTiming");
    QTest::addColumn<int>("loginTiming");
    QTest::addColumn<Profile::Occasion>("occasion");
    QTest::addColumn<int>("cookies");
    QTest::addColumn<int>("logins");
    QTest::newRow("never, log-out") << 0 << 0 << Profile::LogOut << 3 << 3;
    QTest::newRow("never, timeout") << 0 << 0 << Profile::Timeout << 3 << 3;
    QTest::newRow("cookies at log-out, log-out") << 1 << 0 << Profile::LogOut << 0 << 3;
    QTest::newRow("cookies at log-out, timeout") << 1 << 0 << Profile::Timeout << 3 << 3;
    QTest::newRow("cookies at timeout, timeout") << 2 << 0 << Profile::Timeout << 0 << 3;
    QTest::newRow("logins at log-out, log-out") << 0 << 1 << Profile::LogOut << 3 << 0;
    QTest::newRow("logins at timeout, log-out") << 0 << 2 << Profile::LogOut << 3 << 3;
    QTest::newRow("logins at timeout, timeout") << 0 << 2 << Profile::Timeout << 3 << 0;
    QTest::newRow("both at log-out, log-out") << 1 << 1 << Profile::LogOut << 0 << 0;
}

void tst_Profile::endOfUse()
{
    QFETCH(int, cookieTiming);
    QFETCH(int, loginTiming);
    QFETCH(Profile::Occasion, occasion);
    QFETCH(int, cookies);
    QFETCH(int, logins);
    Profile profile;
    QVERIFY(profile.open(dir()));
    fill(profile);
    Profile::userPreferences().setCookieDeleteTiming(static_cast<char>(cookieTiming));
    Profile::userPreferences().setCertificationDeleteTiming(static_cast<char>(loginTiming));
    profile.savePreferences();
    profile.endUse(occasion);
    QCOMPARE(profile.cookies()->count(), cookies);
    QCOMPARE(profile.logins()->count(), logins);
    QCOMPARE(profile.bookmarks()->count(), 3);
    QCOMPARE(profile.history()->count(), 3);
    // It is in the files when the call returns.
    QString directory = user();
    QCOMPARE(static_cast<int>(TVNC_CookieSetting::getInstance()->loadCookieInfo(&directory, 1).size()),
             cookies);
    QCOMPARE(static_cast<int>(readFile(user() + "cookies.xml").count("<webSiteInfo ")), cookies);
    QCOMPARE(static_cast<int>(readFile(user() + "authinfo.xml").count("<authInfo ")), logins);
    QVERIFY(readFile(user() + "repostry_private.xml").contains("cookieDeleteTiming"));
}

void tst_Profile::endOfUseEmptiesTheCache_data()
{
    QTest::addColumn<int>("timing");
    QTest::addColumn<Profile::Occasion>("occasion");
    QTest::addColumn<bool>("isEmptied");
    QTest::newRow("never") << 0 << Profile::LogOut << false;
    QTest::newRow("log-out, log-out") << 1 << Profile::LogOut << true;
    QTest::newRow("log-out, timeout") << 1 << Profile::Timeout << false;
    QTest::newRow("timeout, timeout") << 2 << Profile::Timeout << true;
}

void tst_Profile::endOfUseEmptiesTheCache()
{
    if (!hasPrivateRoot)
        QSKIP("the device's path of the cache is only used in a private file system");
    QFETCH(int, timing);
    QFETCH(Profile::Occasion, occasion);
    QFETCH(bool, isEmptied);
    const QString cached = CACHE_DIR + "data8/0/cached.d";
    QVERIFY(QDir().mkpath(QFileInfo(cached).path()));
    writeFile(cached, "cached");
    Profile profile;
    QVERIFY(profile.open(dir()));
    Profile::devicePreferences().setCacheDeleteTiming(static_cast<char>(timing));
    profile.endUse(occasion);
    QCOMPARE(QFile::exists(cached), !isEmptied);
    QVERIFY(QDir("/ata07/Talvenor").removeRecursively());
    profile.endUse(occasion);
    QVERIFY(!QFile::exists(CACHE_DIR)); // none is made for it
}

void tst_Profile::attachedManagerUsesTheProfile()
{
    TestSite site;
    QVERIFY(site.listen());
    Profile profile;
    QVERIFY(profile.open(dir()));
    {
        QNetworkAccessManager manager;
        profile.attach(&manager);
        QCOMPARE(get(manager, site.address("/cookies")), 200);
        get(manager, site.address("/whoami"));
        QVERIFY(site.requests.last().headers.value("cookie").contains("reader=4711"));
        QVERIFY(profile.logins()->keep("127.0.0.1", site.port(), Tlv::LoginModel::Basic, "bob", "builder"));
        QCOMPARE(get(manager, site.address("/basic")), 200);
        Profile::userPreferences().setCertificationDeleteTiming(1);
        profile.endUse(Profile::LogOut);
        QCOMPARE(get(manager, site.address("/basic")), 401); // not remembered by the manager either
        Profile::devicePreferences().setUseProxyInfo(1);
        Profile::devicePreferences().setProxyServerStr("127.0.0.1");
        Profile::devicePreferences().setProxyHttpPortStr(QString::number(site.port()));
        QCOMPARE(get(manager, "http://outside.example/"), 200);
    }
    QCOMPARE(profile.cookieJar()->cookies().size(), 4); // the jar outlives the manager
}

/// The second process: holds a profile until it is killed, or visits a page and ends.
static int runAsSecondProcess(const QString& what, const QString& dir)
{
    auto* profile = new Profile; // never destroyed
    if (!profile->open(dir))
        return 1;
    profile->history()->visit("b", "Page");
    if (what == "--hold") {
        std::printf("holding\n");
        std::fflush(stdout);
    } else {
        QTimer::singleShot(0, QCoreApplication::instance(), &QCoreApplication::quit);
    }
    return QCoreApplication::exec();
}

void tst_Profile::managerMayBeAttachedAgain()
{
    TestSite site;
    QVERIFY(site.listen());
    Profile profile;
    QVERIFY(profile.open(dir()));
    QVERIFY(profile.logins()->keep("127.0.0.1", site.port(), Tlv::LoginModel::Basic, "bob", "builder"));
    QSignalSpy questions(profile.loginHandler(), &Tlv::LoginHandler::loginRequired);
    QNetworkAccessManager manager;
    profile.attach(&manager);
    profile.attach(&manager);
    QCOMPARE(get(manager, site.address("/basic")), 200);
    QCOMPARE(questions.count(), 0);
}

void tst_Profile::nextUserHasNoLoginOfTheLast()
{
    TestSite site;
    QVERIFY(site.listen());
    Profile profile;
    QNetworkAccessManager manager;
    QVERIFY(profile.open(dir_->path() + "anna", common()));
    profile.attach(&manager);
    QVERIFY(profile.logins()->keep("127.0.0.1", site.port(), Tlv::LoginModel::Basic, "bob", "builder"));
    QCOMPARE(get(manager, site.address("/cookies")), 200);
    QCOMPARE(get(manager, site.address("/basic")), 200);
    QVERIFY(profile.open(dir_->path() + "bert", common()));
    QCOMPARE(get(manager, site.address("/basic")), 401);
    QVERIFY(!site.requests.last().headers.contains("cookie"));
}

int main(int argc, char** argv)
{
    hasPrivateRoot = enterPrivateRoot();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv); // for the machine's fonts
    const QString what = QCoreApplication::arguments().value(1);
    if (what == "--hold" || what == "--visit")
        return runAsSecondProcess(what, QCoreApplication::arguments().value(2));
    tst_Profile test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_Profile.moc"
