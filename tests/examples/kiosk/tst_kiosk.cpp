#include "tests/support/PrivateRoot.h"
#include "tests/support/Random.h"
#include "tests/support/TestSite.h"
#include "tests/support/TestSupport.h"

#include <tlvlib/tlvlib.h>

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QEventLoop>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QLockFile>
#include <QtCore/QProcess>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtCore/QXmlStreamReader>

#include <memory>

static const QString CACHE_DIR = "/ata07/Talvenor/cache/";
static bool hasPrivateRoot = false;

static bool isWholeDocument(const QByteArray& bytes)
{
    QXmlStreamReader reader(bytes);
    while (!reader.atEnd())
        reader.readNext();
    return !reader.hasError();
}

/**
 * The example browser, as a whole: each test lets it do a tour of the test site and asks what is left behind,
 * through the library, through tlvctl and at the server.
 */
class tst_kiosk : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { dir_.reset(); }

    void secondRunHasEverythingOfTheFirst();
    void logOutLeavesWhatTheTimingsSay();
    void timeoutHasATimingOfItsOwn();
    void cacheIsUsedAndEmptied();
    void damagedProfileStarts();
    void killedBrowserStartsAgainWithCompleteFiles();

    void profileIsForItsOwnerAlone();
    void heldProfileIsRefused();
    void lockOfADeadProgramStopsNobody();
    void failedSaveIsToldAndTriedAgain();

    void revisitedPageMovesToTheFront();
    void historyIsBounded();
    void lateTitleIsWritten();
    void awkwardTitlesAreKept();
    void longAddressIsNoBookmark();
    void bookmarkAgainReplacesTheFirst();

    void cookiesAreKeptWithAllTheyHave();
    void cookiesAreRefusedOnDemand();
    void cookieDocumentAloneIsTaken();

    void refusedLoginIsReplaced();
    void oldestLoginGoesWhenTheStoreIsFull();

    void preferencesTakeEffect();
    void settingsTellWhatIsRefused();
    void proxyIsUsedButNotForTheDevice();

    void tourWithoutAFileIsRefused();
    void wrongUsage_data();
    void wrongUsage();

private:
    struct Run
    {
        int code;
        QByteArray err;
    };

    Run run(const char* program, const QStringList& arguments);
    /// Starts the browser, and leaves it to the caller to serve the site and to wait for it.
    void start(QProcess& process, const char* program, const QStringList& arguments);
    /// The first file of the profile that is not complete; empty when all are.
    QString incompleteFile() const;
    void writeTour(const QStringList& steps);
    /// Lets the browser do the steps, "SITE" being the site's address. Its messages go to the test's output.
    bool tour(const QStringList& steps, const QStringList& options = {});
    QJsonObject tlvctl(const QStringList& arguments) const;
    QList<TVNS_History> visits();
    QString profile() const { return dir_->path() + "profile"; }
    QString user() const { return profile() + "/user/"; }
    QString common() const { return profile() + "/common/"; }
    QString script() const { return dir_->path() + "tour"; }
    QString host() const { return QString("127.0.0.1"); }

    std::unique_ptr<TempDir> dir_;
    std::unique_ptr<TestSite> site_;
};

void tst_kiosk::init()
{
    dir_ = std::make_unique<TempDir>();
    site_ = std::make_unique<TestSite>();
    QVERIFY(site_->listen());
}

void tst_kiosk::start(QProcess& process, const char* program, const QStringList& arguments)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    environment.insert("LC_ALL", "C.UTF-8");
    environment.insert("XDG_RUNTIME_DIR", dir_->path());
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
}

tst_kiosk::Run tst_kiosk::run(const char* program, const QStringList& arguments)
{
    QProcess process;
    QEventLoop loop; // the site is served meanwhile
    connect(&process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), &loop,
            &QEventLoop::quit);
    connect(&process, &QProcess::errorOccurred, &loop, &QEventLoop::quit);
    QTimer::singleShot(120000, &process, &QProcess::kill);
    start(process, program, arguments);
    loop.exec();
    const QByteArray err = process.readAllStandardError();
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, err};
}

void tst_kiosk::writeTour(const QStringList& steps)
{
    writeFile(script(), QString(steps.join('\n')).replace("SITE", site_->address("")).toUtf8());
}

bool tst_kiosk::tour(const QStringList& steps, const QStringList& options)
{
    writeTour(steps);
    const Run done = run(KIOSK_TOUR, QStringList{script(), "--profile", profile()} + options);
    if (done.code != 0)
        qWarning("exit code %d: %s", done.code, done.err.constData());
    return done.code == 0;
}

QJsonObject tst_kiosk::tlvctl(const QStringList& arguments) const
{
    QProcess process;
    process.start(TLVCTL, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        qWarning("tlvctl: %s", process.readAllStandardError().constData());
    return QJsonDocument::fromJson(process.readAllStandardOutput()).object();
}

QList<TVNS_History> tst_kiosk::visits()
{
    QString dir = user();
    auto* history = TVNC_HistorySetting::getInstance();
    history->loadHistory(&dir, 999);
    QList<TVNS_History> visits;
    for (int i = 0; i < history->getHistoryCnt(); ++i) {
        TVNS_History visit;
        history->getHistory(i, &visit);
        visits.append(visit);
    }
    return visits;
}

// --- Runs one after the other ------------------------------------------------------------------------------

void tst_kiosk::secondRunHasEverythingOfTheFirst()
{
    QVERIFY(tour({"open SITE/",
                  "expect Open daily",
                  "press Ctrl+D",
                  "message Bookmarked.",
                  "click #news",
                  "expect lighthouse",
                  "press Ctrl+D",
                  "open SITE/cookies",
                  "open SITE/basic",
                  "login bob builder",
                  "expect Welcome in.",
                  "open SITE/digest",
                  "login alice wonderland",
                  "expect Welcome in.",
                  "press Ctrl+,",
                  "set page.startup the last page",
                  "set page.zoom 120 %",
                  "set page.font DejaVu Serif",
                  "set page.home SITE/news",
                  "save",
                  "open SITE/maps"}));

    // Through the library.
    QString dir = user();
    int lastNumber = 0;
    auto* bookmarks = TVNC_BookmarksSetting::getInstance();
    bookmarks->loadBookmark(&dir, 100, lastNumber);
    QCOMPARE(bookmarks->getBookmarkCnt(), 2);
    QCOMPARE(lastNumber, 2);
    TVNS_Bookmark bookmark;
    QVERIFY(bookmarks->getBookmark(0, &bookmark));
    QCOMPARE(bookmark.title, QString("News of the harbour"));
    QCOMPARE(bookmark.href, site_->address("/news"));
    QImage picture;
    QVERIFY(bookmarks->getThumbnail(&picture, &bookmark.thumbnail));
    QCOMPARE(picture.size(), QSize(160, 120));
    QVERIFY(bookmarks->getBookmark(1, &bookmark));
    QImage other;
    QVERIFY(bookmarks->getThumbnail(&other, &bookmark.thumbnail));
    QVERIFY(picture != other); // each is a picture of its own page
    auto* preferences = TVNC_BrowserUserSetting::getInstance();
    preferences->loadSetting(&dir);
    QCOMPARE(preferences->getZoomInfo(), short(8));
    QCOMPARE(preferences->getStartUp(), char(1));
    QString text;
    preferences->getLastPage(&text);
    QCOMPARE(text, site_->address("/maps"));
    preferences->getFontName(&text);
    QCOMPARE(text, QString("DejaVu Serif"));

    // Through tlvctl.
    QCOMPARE(tlvctl({"bookmarks", "list", "--json", user()})["bookmarks"].toArray().size(), 2);
    const QJsonArray logins = tlvctl({"auth", "list", "--json", user()})["entries"].toArray();
    QCOMPARE(logins.size(), 2);
    QCOMPARE(logins.at(0).toObject()["user"].toString(), QString("alice"));
    QCOMPARE(logins.at(0).toObject()["type"].toString(), QString("digest"));
    QCOMPARE(logins.at(1).toObject()["host"].toString(), host());
    QCOMPARE(logins.at(1).toObject()["port"].toString(), QString::number(site_->port()));
    QCOMPARE(tlvctl({"history", "list", "--json", user()})["count"].toInt(), 6);
    QVERIFY(!tlvctl({"fonts", "list", "--json", common()})["fonts"].toArray().isEmpty());

    // The second process comes up with the last page, and nobody is asked for a login again.
    site_->requests.clear();
    QVERIFY(tour({"expect Coast, 1703.", "open SITE/whoami",       "expect reader=4711",
                  "open SITE/basic",     "expect Welcome in.",     "open SITE/digest",
                  "expect Welcome in.",  "press Alt+Home",         "expect lighthouse",
                  "press Ctrl+B",        "expect Harbour Library", "choose Harbour Library",
                  "expect Open daily",   "press Ctrl+H",           "set search rememb",
                  "expect Remembered",   "choose Remembered",      "expect You will be remembered",
                  "press Ctrl+K",        "expect alice",           "press Ctrl+J",
                  "expect HttpOnly"}));
    QCOMPARE(site_->requests.first().target, QByteArray("/maps"));
    QCOMPARE(site_->answers("/basic"), (QList<int>{401, 200}));
    QCOMPARE(site_->answers("/digest").last(), 200); // Qt tries the other login first
}

void tst_kiosk::logOutLeavesWhatTheTimingsSay()
{
    const QStringList visit{"open SITE/cookies", "open SITE/basic", "login bob builder",
                            "expect Welcome in."};
    QVERIFY(tour(visit + QStringList{"press Ctrl+,", "set cookies.clear at log-out", "set auth.clear never",
                                     "save", "press Ctrl+Shift+Q", "message Logged out."}));
    QString dir = user();
    QVERIFY(TVNC_CookieSetting::getInstance()->loadCookieInfo(&dir, 20).isEmpty());
    QCOMPARE(tlvctl({"cookies", "list", "--json", user() + "cookies.xml"})["cookies"].toArray().size(), 0);
    QCOMPARE(tlvctl({"auth", "list", "--json", user()})["count"].toInt(), 1);
    QString lastPage;
    TVNC_BrowserUserSetting::getInstance()->loadSetting(&dir);
    TVNC_BrowserUserSetting::getInstance()->getLastPage(&lastPage);
    QCOMPARE(lastPage, site_->address("/basic"));

    // The other way round. What the process itself remembers of a login goes as well.
    QVERIFY(tour({"open SITE/cookies", "open SITE/basic", "expect Welcome in.", "press Ctrl+,",
                  "set cookies.clear never", "set auth.clear at log-out", "save", "press Ctrl+Shift+Q",
                  "open SITE/whoami", "expect reader=4711", "open SITE/basic", "cancel",
                  "expect Not without a login."}));
    QCOMPARE(TVNC_CookieSetting::getInstance()->loadCookieInfo(&dir, 20).size(), 3);
    QCOMPARE(tlvctl({"auth", "list", "--json", user()})["count"].toInt(), 0);
}

void tst_kiosk::timeoutHasATimingOfItsOwn()
{
    QVERIFY(tour({"open SITE/cookies", "press Ctrl+,", "set cookies.clear when nobody uses the browser",
                  "save", "press Ctrl+Shift+Q"}));
    QString dir = user();
    QCOMPARE(TVNC_CookieSetting::getInstance()->loadCookieInfo(&dir, 20).size(), 3);
    QVERIFY(
        tour({"open SITE/whoami", "expect reader=4711", "wait 1500", "message Nobody was here for a while."},
             {"--idle-timeout", "1"}));
    QVERIFY(TVNC_CookieSetting::getInstance()->loadCookieInfo(&dir, 20).isEmpty());
}

void tst_kiosk::cacheIsUsedAndEmptied()
{
    if (!hasPrivateRoot)
        QSKIP("the device's path of the cache is only used in a private file system");
    const auto cachedFiles = [] {
        int count = 0;
        QDirIterator it(CACHE_DIR, QDir::Files, QDirIterator::Subdirectories);
        for (; it.hasNext(); it.next())
            ++count;
        return count;
    };
    QVERIFY(QDir().mkpath(CACHE_DIR));
    QVERIFY(tour({"open SITE/maps"}));
    QCOMPARE(cachedFiles(), 1); // the picture alone may be cached
    site_->requests.clear();
    QVERIFY(tour({"open SITE/maps"}));
    QCOMPARE(site_->answers("/picture/map.png"), QList<int>());
    QVERIFY(tour({"press Ctrl+,", "set cache.clear at log-out", "save", "press Ctrl+Shift+Q"}));
    QCOMPARE(cachedFiles(), 0);
    QVERIFY(tour({"press Ctrl+,", "set cache.enabled no", "save", "open SITE/maps"}));
    QCOMPARE(cachedFiles(), 0);
    QVERIFY(QDir("/ata07/Talvenor").removeRecursively());
}

void tst_kiosk::damagedProfileStarts()
{
    QVERIFY(tour({"open SITE/", "press Ctrl+D", "open SITE/news", "press Ctrl+D", "open SITE/cookies",
                  "open SITE/basic", "login bob builder"}));
    for (const QString& name : {user() + "bookmark.xml", user() + "visit.xml", user() + "authinfo.xml",
                                user() + "repostry_private.xml", common() + "repostry.xml",
                                common() + "fontlist.xml", user() + "cookie.ini", user() + "cookies.xml"}) {
        const QByteArray file = readFile(name);
        QVERIFY2(!file.isEmpty(), qPrintable(name));
        writeFile(name, file.left(file.size() * 2 / 3) + "\xFF<");
    }
    writeFile(user() + "thumbnail/000002.PNG", "no picture");
    QVERIFY(tour({"press Ctrl+B", "expect News of the harbour", "press Ctrl+H", "press Ctrl+K",
                  "press Ctrl+,", "cancel", "open SITE/maps", "press Ctrl+D", "message Bookmarked.",
                  "press Ctrl+B", "expect Maps"}));
    // What stood before the damage is kept, and what came since.
    const QJsonArray bookmarks = tlvctl({"bookmarks", "list", "--json", user()})["bookmarks"].toArray();
    QCOMPARE(bookmarks.at(0).toObject()["title"].toString(), QString("Maps"));
    QCOMPARE(bookmarks.at(1).toObject()["title"].toString(), QString("News of the harbour"));
}

QString tst_kiosk::incompleteFile() const
{
    QDirIterator it(profile(), {"*.xml", "*.PNG", "*.ini"}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QByteArray bytes = readFile(path);
        if (path.endsWith(".PNG")   ? QImage(path).size() == QSize(160, 120)
            : path.endsWith(".ini") ? bytes.endsWith(")\"\n") || bytes.endsWith(")\n")
                                    : isWholeDocument(bytes))
            continue;
        return path;
    }
    return QString();
}

// With a power cut the files would look the same: tests/crash tells what a disk may be left with.
void tst_kiosk::killedBrowserStartsAgainWithCompleteFiles()
{
    const QStringList steps{"open SITE/",       "press Ctrl+D",    "press Ctrl++",       "open SITE/cookies",
                            "press Ctrl+-",     "open SITE/basic", "expect Welcome in.", "open SITE/news",
                            "press Ctrl+D",     "press Ctrl++",    "open SITE/maps",     "press Ctrl+D",
                            "open SITE/script", "press Ctrl+-",    "open SITE/cookies",  "open SITE/news",
                            "press Ctrl+D",     "press Ctrl++",    "open SITE/whoami",   "press Ctrl+-"};
    QVERIFY(tour(QStringList{"open SITE/basic", "login bob builder"} + steps));
    writeTour(steps);
    const QStringList files{user() + "bookmark.xml",   user() + "visit.xml",
                            user() + "authinfo.xml",   user() + "cookies.xml",
                            user() + "cookie.ini",     common() + "repostry.xml",
                            common() + "fontlist.xml", user() + "repostry_private.xml"};
    Random random(20110412);
    int killed = 0;
    for (int i = 0; killed < 50; ++i) {
        QVERIFY2(i < 100, "the tour is shorter than it has to be");
        QProcess process;
        QEventLoop loop; // the site is served meanwhile
        connect(&process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), &loop,
                &QEventLoop::quit);
        QTimer::singleShot(200 + static_cast<int>(random.next(2800)), &process, &QProcess::kill);
        start(process, KIOSK_TOUR, {script(), "--profile", profile()});
        loop.exec();
        const bool wasKilled = process.exitStatus() == QProcess::CrashExit;
        QVERIFY2(wasKilled || process.exitCode() == 0, process.readAllStandardError().constData());
        killed += wasKilled;
        for (const QString& file : files)
            QVERIFY2(QFile::exists(file), qPrintable(file));
        QCOMPARE(incompleteFile(), QString());
        QString dir = user();
        int lastNumber = 0;
        auto* bookmarks = TVNC_BookmarksSetting::getInstance();
        bookmarks->loadBookmark(&dir, 100, lastNumber);
        QCOMPARE(bookmarks->getBookmarkCnt(), 3);
        QCOMPARE(TVNC_CookieSetting::getInstance()->loadCookieInfo(&dir, 20).size(), 3);
    }
    QVERIFY(tour({"open SITE/whoami", "expect reader=4711", "open SITE/basic", "expect Welcome in.",
                  "press Ctrl+B", "expect Maps"}));
}

void tst_kiosk::profileIsForItsOwnerAlone()
{
    QVERIFY(tour({"open SITE/cookies", "open SITE/basic", "login bob builder"}));
    const QFile::Permissions owner =
        QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;
    QCOMPARE(QFile::permissions(profile()), owner | QFile::ExeOwner | QFile::ExeUser);
    for (const char* name : {"authinfo.xml", "cookie.ini", "cookies.xml"})
        QCOMPARE(QFile::permissions(user() + name), owner);

    // One that was there before keeps what it had.
    QVERIFY(QFile::setPermissions(profile(), owner | QFile::ExeOwner | QFile::ExeOther));
    const QFile::Permissions before = QFile::permissions(profile());
    QVERIFY(tour({"open SITE/"}));
    QCOMPARE(QFile::permissions(profile()), before);
}

void tst_kiosk::heldProfileIsRefused()
{
    QVERIFY(tour({"open SITE/"}));
    for (const QString& held : {user(), common()}) {
        const QByteArray before = readFile(user() + "visit.xml");
        QLockFile lock(held + "tlvlib.lock");
        QVERIFY(lock.tryLock(0));
        QThread::msleep(50); // older than what counts as stale: a living program keeps it all the same
        const Run done = run(KIOSK, {"--profile", profile()});
        QCOMPARE(done.code, 1);
        QCOMPARE(done.err,
                 QString("kiosk: %1 is in use by tst_kiosk (process %2 on %3); end it first, or name "
                         "another directory with --profile\n")
                     .arg(held)
                     .arg(QCoreApplication::applicationPid())
                     .arg(QSysInfo::machineHostName())
                     .toUtf8());
        QCOMPARE(readFile(user() + "visit.xml"), before);
    }
    QVERIFY(tour({"open SITE/"}));
    QVERIFY(!QFile::exists(user() + "tlvlib.lock") && !QFile::exists(common() + "tlvlib.lock"));
}

void tst_kiosk::lockOfADeadProgramStopsNobody()
{
    QVERIFY(tour({"open SITE/"}));
    // A power cut may leave a lock file without anything in it.
    writeFile(user() + "tlvlib.lock", "");
    QThread::msleep(50);
    QVERIFY(tour({"open SITE/"}));
    // A killed program's own lock.
    QProcess process;
    start(process, KIOSK, {"--profile", profile()});
    while (!QFile::exists(user() + "tlvlib.lock"))
        QVERIFY(!process.waitForFinished(50));
    process.kill();
    QVERIFY(process.waitForFinished());
    QVERIFY(QFile::exists(user() + "tlvlib.lock"));
    QVERIFY(tour({"open SITE/"}));
    // The number of its process may be another one's by now, even one of the same name.
    writeFile(user() + "tlvlib.lock", QString("%1\ntst_kiosk\n%2\n")
                                          .arg(QCoreApplication::applicationPid())
                                          .arg(QSysInfo::machineHostName())
                                          .toUtf8());
    QThread::msleep(50);
    QVERIFY(tour({"open SITE/"}));
}

void tst_kiosk::failedSaveIsToldAndTriedAgain()
{
    QVERIFY(tour({"open SITE/"}));
    // No file can be made under this name, and so no new version of the bookmarks.
    const QString obstacle = user() + "bookmark.xml.tlvsave";
    QVERIFY(QDir().mkpath(obstacle));
    const QByteArray before = readFile(user() + "bookmark.xml");
    writeTour({"open SITE/news", "press Ctrl+D", "wait 600", "message bookmark.xml could not be saved"});
    const Run done = run(KIOSK_TOUR, {script(), "--profile", profile()});
    QCOMPARE(done.code, 1);
    const QByteArray told =
        "kiosk: " + user().toUtf8() +
        "bookmark.xml could not be saved: a new file could not be made in its directory (";
    QVERIFY2(done.err.contains(told), done.err.constData());
    QCOMPARE(readFile(user() + "bookmark.xml"), before);

    // What was not saved is saved later.
    QProcess process;
    QEventLoop loop;
    connect(&process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), &loop,
            &QEventLoop::quit);
    writeTour({"open SITE/news", "press Ctrl+D", "wait 2000"});
    QTimer::singleShot(120000, &process, &QProcess::kill);
    QTimer obstacleGoes;
    connect(&obstacleGoes, &QTimer::timeout, this, [&] {
        if (process.state() == QProcess::Running && QFile::exists(user() + "thumbnail/000001.PNG"))
            QTimer::singleShot(800, &loop, [&] { QDir().rmdir(obstacle); });
    });
    obstacleGoes.start(50);
    start(process, KIOSK_TOUR, {script(), "--profile", profile()});
    loop.exec();
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(tlvctl({"bookmarks", "list", "--json", user()})["count"].toInt(), 1);
}

// --- History and bookmarks ---------------------------------------------------------------------------------

void tst_kiosk::revisitedPageMovesToTheFront()
{
    QVERIFY(tour({"open SITE/", "open SITE/news", "open SITE/maps", "open SITE/"}));
    const QList<TVNS_History> all = visits();
    QSet<QString> urls;
    for (const TVNS_History& visit : all)
        urls.insert(visit.url);
    // Within one minute the order is that of the store's sort; a set tells what has to be there.
    QCOMPARE(all.size(), 3);
    QCOMPARE(urls, (QSet<QString>{site_->address("/"), site_->address("/news"), site_->address("/maps")}));
    QVERIFY(readFile(user() + "visit.xml").indexOf(site_->address("/</url>").toUtf8()) <
            readFile(user() + "visit.xml").indexOf("/maps</url>"));
}

void tst_kiosk::historyIsBounded()
{
    QVERIFY(QDir().mkpath(user()));
    QString dir = user();
    auto* history = TVNC_HistorySetting::getInstance();
    history->loadHistory(&dir, 200);
    for (int i = 0; i < 200; ++i) {
        TVNS_History visit;
        visit.url = QString("http://example.org/%1").arg(i);
        visit.dateTime = QDateTime(QDate(2011, 4, 12), QTime(10, 0)).addSecs(60 * i);
        history->updateHistory(&visit);
    }
    history->saveHistory(&dir, 200);
    QVERIFY(tour({"open SITE/news"}));
    const QList<TVNS_History> all = visits();
    QCOMPARE(all.size(), 200);
    QCOMPARE(all.first().url, site_->address("/news"));
    QCOMPARE(all.last().url, QString("http://example.org/1")); // 0 was the oldest
}

void tst_kiosk::lateTitleIsWritten()
{
    QVERIFY(tour({"open SITE/script", "wait 200", "expect With script.", "click #more", "expect Clicked."}));
    QCOMPARE(visits().first().title, QString("A late title"));
}

void tst_kiosk::awkwardTitlesAreKept()
{
    const QString longTitle = QString(QChar(0x66F8)).repeated(50);
    const QString longUrl = site_->address("/news?" + QString(300 - site_->address("/news?").size(), 'x'));
    QVERIFY(tour({"open SITE/control", "press Ctrl+D", "open SITE/long", "press Ctrl+D", "open " + longUrl}));
    QSet<QString> titles;
    for (const TVNS_History& visit : visits())
        titles.insert(visit.title);
    QVERIFY(titles.contains(longTitle)); // the history has no limit
    QVERIFY(!readFile(user() + "visit.xml").contains('\x1B'));
    QCOMPARE(longUrl.size(), 300);
    QVERIFY(readFile(user() + "visit.xml").contains(longUrl.toUtf8()));
    const QJsonArray bookmarks = tlvctl({"bookmarks", "list", "--json", user()})["bookmarks"].toArray();
    QCOMPARE(bookmarks.at(0).toObject()["title"].toString(), longTitle.left(33)); // 99 of 100 bytes
    QVERIFY(bookmarks.at(1).toObject()["title"].toString().contains("red"));
}

void tst_kiosk::longAddressIsNoBookmark()
{
    const QString start = site_->address("/news?");
    const QString longest = start + QString(256 - start.size(), 'x');
    QVERIFY(tour({"open " + longest, "press Ctrl+D", "message Bookmarked.", "open " + longest + 'y',
                  "press Ctrl+D", "message too long for a bookmark: it has 257 bytes"}));
    QCOMPARE(tlvctl({"bookmarks", "list", "--json", user()})["count"].toInt(), 1);
    QCOMPARE(QDir(user() + "thumbnail").entryList(QDir::Files), QStringList{"000001.PNG"});
    QString lastPage;
    QString dir = user();
    TVNC_BrowserUserSetting::getInstance()->loadSetting(&dir);
    TVNC_BrowserUserSetting::getInstance()->getLastPage(&lastPage);
    QCOMPARE(lastPage, longest);
}

void tst_kiosk::bookmarkAgainReplacesTheFirst()
{
    QVERIFY(
        tour({"open SITE/", "press Ctrl+D", "open SITE/news", "press Ctrl+D", "open SITE/", "press Ctrl+D"}));
    const QJsonArray bookmarks = tlvctl({"bookmarks", "list", "--json", user()})["bookmarks"].toArray();
    QCOMPARE(bookmarks.size(), 2);
    QCOMPARE(bookmarks.at(0).toObject()["url"].toString(), site_->address("/"));
    QCOMPARE(QDir(user() + "thumbnail").entryList(QDir::Files, QDir::Name),
             (QStringList{"000002.PNG", "000003.PNG"}));
}

// --- Cookies -----------------------------------------------------------------------------------------------

void tst_kiosk::cookiesAreKeptWithAllTheyHave()
{
    QVERIFY(tour({"open SITE/cookies", "open SITE/whoami", "expect visit=now"}));
    QString dir = user();
    QHash<QByteArray, QNetworkCookie> kept;
    for (const QNetworkCookie& cookie : TVNC_CookieSetting::getInstance()->loadCookieInfo(&dir, 20))
        kept[cookie.name()] = cookie;
    QCOMPARE(kept.size(), 3); // not that of the session
    QVERIFY(kept.contains("reader") && kept.contains("card") && kept.contains("sid"));
    QVERIFY(kept["sid"].isHttpOnly() && !kept["reader"].isHttpOnly());
    QVERIFY(kept["card"].isSecure() && !kept["reader"].isSecure());
    QCOMPARE(kept["reader"].expirationDate(), QDateTime(QDate(2037, 5, 6), QTime(7, 8, 9), Qt::UTC));
    QCOMPARE(kept["reader"].domain(), host());
    const QJsonArray document =
        tlvctl({"cookies", "list", "--json", user() + "cookies.xml"})["cookies"].toArray();
    QCOMPARE(document.size(), 3);

    // The next process sends what it may.
    QVERIFY(tour({"open SITE/whoami", "expect reader=4711", "expect sid=s1d"}));
    const QByteArray sent = site_->requests.last().headers.value("cookie");
    QVERIFY(!sent.contains("visit") && !sent.contains("card"));
}

void tst_kiosk::cookiesAreRefusedOnDemand()
{
    QVERIFY(tour({"press Ctrl+,", "set cookies.accept no", "save", "open SITE/cookies", "open SITE/whoami"}));
    QVERIFY(!site_->requests.last().headers.contains("cookie"));
    QVERIFY(!QFile::exists(user() + "cookie.ini"));
}

void tst_kiosk::cookieDocumentAloneIsTaken()
{
    QVERIFY(tour({"open SITE/cookies"}));
    QVERIFY(QFile::remove(user() + "cookie.ini"));
    QVERIFY(tour({"open SITE/whoami", "expect reader=4711"}));
    QVERIFY(QFile::exists(user() + "cookie.ini"));
}

// --- Logins ------------------------------------------------------------------------------------------------

void tst_kiosk::refusedLoginIsReplaced()
{
    QVERIFY(tour({"open SITE/basic", "login bob wrong", "expect The last one was refused.",
                  "login bob builder", "expect Welcome in."}));
    site_->basicPassword = "rebuilt";
    site_->requests.clear();
    QVERIFY(tour(
        {"open SITE/basic", "expect The last one was refused.", "login bob rebuilt", "expect Welcome in."}));
    QCOMPARE(site_->answers("/basic"), (QList<int>{401, 401, 200})); // the stored one was tried first
    const QJsonArray logins =
        tlvctl({"auth", "list", "--json", "--show-passwords", user()})["entries"].toArray();
    QCOMPARE(logins.size(), 1);
    QCOMPARE(logins.at(0).toObject()["password"].toString(), QString("rebuilt"));
}

void tst_kiosk::oldestLoginGoesWhenTheStoreIsFull()
{
    QVERIFY(QDir().mkpath(user()));
    QString dir = user();
    auto* auth = TVNC_AuthSetting::getInstance();
    auth->loadAuthInfo(&dir, 50);
    for (int i = 0; i < 50; ++i) {
        TVNS_AuthInfo login{QString("host%1").arg(i), "80", 0, "u", "p"};
        QCOMPARE(auth->setAuthInfo(&login), 1);
    }
    auth->saveAuthInfo(&dir, 50);
    QVERIFY(tour({"open SITE/basic", "login bob builder", "expect Welcome in."}));
    const QJsonArray logins = tlvctl({"auth", "list", "--json", user()})["entries"].toArray();
    QCOMPARE(logins.size(), 50);
    QCOMPARE(logins.first().toObject()["host"].toString(), host());
    QCOMPARE(logins.last().toObject()["host"].toString(), QString("host1")); // host0 was the oldest
}

// --- Preferences -------------------------------------------------------------------------------------------

void tst_kiosk::preferencesTakeEffect()
{
    QVERIFY(
        tour({"open SITE/script", "expect With script.", "press Ctrl+,", "set javascript.enabled no", "save",
              "open SITE/script", "expect Without script.", "press Ctrl++", "press Ctrl++", "press Ctrl+-"}));
    QString dir = user();
    TVNC_BrowserUserSetting::getInstance()->loadSetting(&dir);
    QCOMPARE(TVNC_BrowserUserSetting::getInstance()->getZoomInfo(), short(7));
    // A form is typed into; blank start pages show the bookmarks.
    QVERIFY(tour({"expect There are no bookmarks yet.", "open SITE/", "type #words old maps", "click #find",
                  "expect Looked for old+maps."}));
}

void tst_kiosk::settingsTellWhatIsRefused()
{
    const QString tooLong(257, 'x');
    QVERIFY(tour({"press Ctrl+,", "set page.home " + tooLong, "set proxy.host " + QString(254, 'h'),
                  "set proxy.http-port 123456", "set proxy.user " + QString(81, 'u'), "set page.zoom 50 %",
                  "save", "expect Too long: 256 bytes are the most.", "set page.home " + tooLong.left(256),
                  "save", "expect Too long: 253 bytes are the most.", "set proxy.host " + QString(253, 'h'),
                  "expect Too long: 5 bytes are the most.", "set proxy.http-port 12345",
                  "expect Too long: 80 bytes are the most.", "set proxy.user " + QString(80, 'u'), "save"}));
    QString dir = user();
    auto* preferences = TVNC_BrowserUserSetting::getInstance();
    preferences->loadSetting(&dir);
    QString home;
    preferences->getHomePage(&home);
    QCOMPARE(home, tooLong.left(256));
    QCOMPARE(preferences->getZoomInfo(), short(1));
}

void tst_kiosk::proxyIsUsedButNotForTheDevice()
{
    site_->isStrictProxy = true;
    QVERIFY(
        tour({"press Ctrl+,", "set proxy.enabled yes", "set proxy.host 127.0.0.1",
              "set proxy.http-port " + QString::number(site_->port()), "set proxy.bypass example.net; .test",
              "set proxy.auth yes", "set proxy.user bob", "set proxy.password builder", "save",
              "open SITE/news", "expect lighthouse", "open http://outside.example/page",
              "expect Seen through the proxy: http://outside.example/page", "open http://inner.test:1/"}));
    QCOMPARE(site_->answers("/news"), QList<int>{200}); // asked directly
    QCOMPARE(site_->answers("http://outside.example/page").last(), 200);
    for (const TestSite::Request& request : site_->requests)
        QVERIFY(!request.target.contains("inner.test"));
}

// --- The command line --------------------------------------------------------------------------------------

void tst_kiosk::wrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("code");
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("size") << QStringList{"--size", "big"} << 2
                          << QByteArray("kiosk: --size is such as 800x480, and at least 320x240\n");
    QTest::newRow("small") << QStringList{"--size", "319x240"} << 2
                           << QByteArray("kiosk: --size is such as 800x480, and at least 320x240\n");
    QTest::newRow("level") << QStringList{"--log-level", "x"} << 2
                           << QByteArray("kiosk: --log-level and --idle-timeout are numbers from 0 on\n");
    QTest::newRow("profile") << QStringList{"--profile", "/proc/x"} << 1
                             << QByteArray(
                                    "kiosk: /proc/x: cannot be written; check its permissions, or name "
                                    "another directory with --profile\n");
    const QString longDir = "/tmp/" + QString(221, 'd');
    QTest::newRow("long profile")
        << QStringList{"--profile", longDir} << 1
        << "kiosk: " + longDir.toLatin1() +
               ": a profile's path has at most 225 characters, all of them ASCII; name "
               "another directory with --profile\n";
}

void tst_kiosk::tourWithoutAFileIsRefused()
{
    const Run done = run(KIOSK_TOUR, {"/none", "--profile", profile()});
    QCOMPARE(done.code, 1);
    QCOMPARE(done.err, QByteArray("kiosk_tour: /none: cannot be read: No such file or directory; name a file "
                                  "with the steps of a tour\n"));
}

void tst_kiosk::wrongUsage()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, code);
    QFETCH(QByteArray, message);
    const Run done = run(KIOSK, arguments);
    QCOMPARE(done.code, code);
    QCOMPARE(done.err, message);
}

int main(int argc, char** argv)
{
    hasPrivateRoot = enterPrivateRoot();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv); // the site paints its pictures
    tst_kiosk test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_kiosk.moc"
