#include <tlvlib/browser/Profile.h>

#include "DamageCheck.h"
#include "UsedDirectory.h"

#include <tlvlib/files/TVNG_SafeSave.h>
#include <tlvlib/stores/TVNC_FontListSetting.h>
#include <tlvlib/thumbs/TVNC_NetworkDiskCache.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QTimer>
#include <QtGui/QFontDatabase>
#include <QtGui/QGuiApplication>
#include <QtNetwork/QNetworkAccessManager>

#include <algorithm>
#include <functional>
#include <optional>

namespace Tlv {

namespace {

const int MOMENT_MS = 300; // a page with ten cookies costs one write to the flash
const int LATEST_MS = 3000;

/// The only directory that the library empties.
const char CACHE_DIR[] = "/ata07/Talvenor/cache/";

QString withSlash(const QString& dir)
{
    return QDir(dir).absolutePath() + QLatin1Char('/');
}

bool isAscii(const QString& text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

QStringList machineFonts()
{
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return {};
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    return QFontDatabase().families();
#else
    return QFontDatabase::families();
#endif
}

/// A store with its files.
struct Part
{
    QStringList files;
    std::function<QString()> save; ///< @return what failed
    bool isChanged = false;
    QString error;        ///< of the last save
    QStringList uncopied; ///< damaged files that must not be overwritten yet
};

} // namespace

struct Profile::Private
{
    explicit Private(Profile& owner);

    bool refuse(Error kind, const QString& text);
    bool open(const QString& named);
    bool hold(std::optional<UsedDirectory>& held, const QString& dir);
    void makeParts();
    void lookForDamage();
    void addDamage(Part& part, const QString& file, const QString& text);
    void load();
    void loadFonts();
    void change(Part& part);
    bool save(Part& part);
    QString saveChecked(Part& part);

    Profile& owner;
    QString userDir;
    QString deviceDir;
    std::optional<UsedDirectory> heldUser;
    std::optional<UsedDirectory> heldDevice;
    Error error = NoError;
    QString errorString;
    QList<Damage> damages;

    BookmarkModel bookmarks;
    HistoryModel history;
    LoginModel logins;
    CookieJar* cookieJar; ///< of the profile, because managers take and give away jars as objects
    CookieModel cookies;
    LoginHandler loginHandler;

    Part devicePreferencesPart;
    Part userPreferencesPart;
    Part fontsPart;
    Part bookmarksPart;
    Part historyPart;
    Part loginsPart;
    Part cookiesPart;
    const std::vector<Part*> parts{&devicePreferencesPart, &userPreferencesPart, &fontsPart,  &bookmarksPart,
                                   &historyPart,           &loginsPart,          &cookiesPart};
    QTimer moment;
    QTimer latest;

    static Profile* opened; ///< the stores are one for each process
};

Profile* Profile::Private::opened = nullptr;

Profile::Private::Private(Profile& profile)
    : owner(profile), cookieJar(new CookieJar(&profile)), cookies(*cookieJar), loginHandler(logins)
{
    for (QTimer* timer : {&moment, &latest}) {
        timer->setSingleShot(true);
        QObject::connect(timer, &QTimer::timeout, &owner, &Profile::save);
    }
    moment.setInterval(MOMENT_MS);
    latest.setInterval(LATEST_MS);
    makeParts();
    const auto watch = [this](RecordModel& model, Part& part) {
        QObject::connect(&model, &RecordModel::changed, &owner, [this, &part] { change(part); });
    };
    watch(bookmarks, bookmarksPart);
    watch(history, historyPart);
    watch(logins, loginsPart);
    watch(cookies, cookiesPart);
    QObject::connect(&bookmarks, &BookmarkModel::pictureNotSaved, &owner, &Profile::saveFailed);
    QObject::connect(&loginHandler, &LoginHandler::proxyLoginKept, &owner, &Profile::savePreferences);
}

void Profile::Private::makeParts()
{
    devicePreferencesPart.save = [this] {
        devicePreferences().saveSetting(&deviceDir);
        return TVNG_GetSaveError();
    };
    userPreferencesPart.save = [this] {
        userPreferences().saveSetting(&userDir);
        return TVNG_GetSaveError();
    };
    fontsPart.save = [this] {
        TVNC_FontListSetting::getInstance()->saveFontList(deviceDir);
        return TVNG_GetSaveError();
    };
    bookmarksPart.save = [this] { return bookmarks.save(userDir); };
    historyPart.save = [this] { return history.save(userDir); };
    loginsPart.save = [this] { return logins.save(userDir); };
    cookiesPart.save = [this] { return cookieJar->save(userDir); };
}

bool Profile::Private::refuse(Error kind, const QString& text)
{
    heldUser.reset();
    heldDevice.reset();
    error = kind;
    errorString = text;
    return false;
}

bool Profile::Private::hold(std::optional<UsedDirectory>& held, const QString& dir)
{
    const QString holder = held.emplace().hold(dir);
    return holder.isEmpty() || refuse(InUseError, tr("%1 is in use by %2; end it first").arg(dir, holder));
}

/// @param named what the user has named, for the messages
bool Profile::Private::open(const QString& named)
{
    if (opened)
        return refuse(InUseError, tr("%1: another profile is open in this process").arg(named));
    const bool isMade = makeDirectory(userDir) && makeDirectory(userDir + QLatin1String("thumbnail/")) &&
                        makeDirectory(deviceDir);
    if (!isMade)
        return refuse(PermissionError, tr("%1: cannot be written; check its permissions").arg(named));
    if (!hold(heldUser, userDir) || (deviceDir != userDir && !hold(heldDevice, deviceDir)))
        return false;
    opened = &owner;
    error = NoError;
    errorString.clear();
    TVNG_SetSafeSave(1);
    lookForDamage();
    load();
    return true;
}

void Profile::Private::lookForDamage()
{
    const auto inUserDir = [this](const char* name) { return userDir + QLatin1String(name); };
    const auto inDeviceDir = [this](const char* name) { return deviceDir + QLatin1String(name); };
    devicePreferencesPart.files = QStringList{inDeviceDir("repostry.xml")};
    userPreferencesPart.files = QStringList{inUserDir("repostry_private.xml")};
    fontsPart.files = QStringList{inDeviceDir("fontlist.xml")};
    bookmarksPart.files = QStringList{inUserDir("bookmark.xml")};
    historyPart.files = QStringList{inUserDir("visit.xml")};
    loginsPart.files = QStringList{inUserDir("authinfo.xml")};
    cookiesPart.files = QStringList{inUserDir("cookie.ini"), inUserDir("cookies.xml")};
    damages.clear();
    for (Part* part : parts) {
        part->isChanged = false;
        part->error.clear();
        part->uncopied.clear();
        for (const QString& file : part->files) {
            const QString text = damageOf(file);
            if (!text.isEmpty())
                addDamage(*part, file, text);
        }
    }
}

void Profile::Private::addDamage(Part& part, const QString& file, const QString& text)
{
    const Copy copy = keepCopy(file);
    if (copy.path.isEmpty())
        part.uncopied.append(file);
    damages.append({file, text, copy.path});
}

/// The preferences first: the others ask them.
void Profile::Private::load()
{
    devicePreferences().loadSetting(&deviceDir);
    userPreferences().loadSetting(&userDir);
    for (Part* part : {&devicePreferencesPart, &userPreferencesPart}) {
        if (!QFile::exists(part->files.first()))
            change(*part); // a new profile gets its defaults, for whoever looks into it
    }
    loadFonts();
    bookmarks.load(userDir);
    history.load(userDir);
    logins.load(userDir);
    const QString problem = cookieJar->load(userDir);
    if (!problem.isEmpty()) {
        const QString document = cookiesPart.files.last();
        addDamage(cookiesPart, document, tr("%1. The cookies of %2 are not here.").arg(problem, document));
    }
}

void Profile::Private::loadFonts()
{
    TVNC_FontListSetting& list = *TVNC_FontListSetting::getInstance();
    list.loadFontList(deviceDir);
    if (list.getCount() > 0)
        return;
    // The first start on this device.
    for (const QString& family : machineFonts()) {
        list.addFont(family);
        change(fontsPart);
    }
}

void Profile::Private::change(Part& part)
{
    part.isChanged = true;
    moment.start();
    if (!latest.isActive())
        latest.start();
}

QString Profile::Private::saveChecked(Part& part)
{
    while (!part.uncopied.isEmpty()) {
        const Copy copy = keepCopy(part.uncopied.first());
        if (copy.path.isEmpty())
            return tr("%1 is not saved, because the damaged file could not be copied: %2")
                .arg(part.uncopied.first(), copy.error);
        part.uncopied.removeFirst();
    }
    return part.save();
}

bool Profile::Private::save(Part& part)
{
    if (!part.isChanged)
        return true;
    const QString problem = saveChecked(part);
    part.isChanged = !problem.isEmpty();
    if (problem == part.error)
        return problem.isEmpty();
    part.error = problem;
    Q_EMIT owner.saveErrorChanged();
    if (!problem.isEmpty())
        Q_EMIT owner.saveFailed(problem);
    return problem.isEmpty();
}

Profile::Profile(QObject* parent) : QObject(parent), d(new Private(*this))
{
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, &Profile::save);
}

Profile::~Profile()
{
    close();
}

bool Profile::open(const QString& dir)
{
    close();
    const QString path = QDir(dir).absolutePath();
    if (!isAscii(path) || path.size() > MaximumDirectory)
        return d->refuse(PathError, tr("%1: a profile's path has at most %2 characters, all of them ASCII")
                                        .arg(path)
                                        .arg(MaximumDirectory));
    if (!makeDirectory(path))
        return d->refuse(PermissionError, tr("%1: cannot be written; check its permissions").arg(path));
    d->userDir = path + QLatin1String("/user/");
    d->deviceDir = path + QLatin1String("/common/");
    return d->open(path);
}

bool Profile::open(const QString& userDir, const QString& deviceDir)
{
    close();
    const QString user = withSlash(userDir);
    if (!isAscii(user) || user.size() > MaximumUserDirectory)
        return d->refuse(PathError, tr("%1: a user's directory has at most %2 characters, all of them ASCII")
                                        .arg(user)
                                        .arg(MaximumUserDirectory));
    d->userDir = user;
    d->deviceDir = withSlash(deviceDir);
    return d->open(user);
}

void Profile::close()
{
    if (!isOpen())
        return;
    save();
    d->loginHandler.forget(); // the next user's are others
    d->heldUser.reset();
    d->heldDevice.reset();
    Private::opened = nullptr;
}

bool Profile::isOpen() const
{
    return Private::opened == this;
}

Profile::Error Profile::error() const
{
    return d->error;
}

QString Profile::errorString() const
{
    return d->errorString;
}

QList<Damage> Profile::damages() const
{
    return d->damages;
}

QString Profile::saveError() const
{
    for (const Part* part : d->parts) {
        if (!part->error.isEmpty())
            return part->error;
    }
    return QString();
}

QString Profile::userDirectory() const
{
    return d->userDir;
}

QString Profile::deviceDirectory() const
{
    return d->deviceDir;
}

BookmarkModel* Profile::bookmarks() const
{
    return &d->bookmarks;
}

HistoryModel* Profile::history() const
{
    return &d->history;
}

LoginModel* Profile::logins() const
{
    return &d->logins;
}

CookieModel* Profile::cookies() const
{
    return &d->cookies;
}

CookieJar* Profile::cookieJar() const
{
    return d->cookieJar;
}

LoginHandler* Profile::loginHandler() const
{
    return &d->loginHandler;
}

QStringList Profile::fonts() const
{
    TVNC_FontListSetting& list = *TVNC_FontListSetting::getInstance();
    QStringList names;
    for (int i = 0; i < list.getCount(); ++i)
        names.append(list.getFont(i));
    return names;
}

TVNC_BrowserCommonSetting& Profile::devicePreferences()
{
    return *TVNC_BrowserCommonSetting::getInstance();
}

TVNC_BrowserUserSetting& Profile::userPreferences()
{
    return *TVNC_BrowserUserSetting::getInstance();
}

void Profile::savePreferences()
{
    d->change(d->devicePreferencesPart);
    d->change(d->userPreferencesPart);
    Q_EMIT preferencesChanged();
}

QString Profile::startPage() const
{
    QString url;
    if (userPreferences().getStartUp())
        userPreferences().getLastPage(&url);
    else
        userPreferences().getHomePage(&url);
    return url;
}

void Profile::setLastPage(const QString& url)
{
    if (userPreferences().setLastPage(url))
        d->change(d->userPreferencesPart);
}

void Profile::attach(QNetworkAccessManager* manager)
{
    manager->setCookieJar(d->cookieJar);
    d->cookieJar->setParent(this); // the manager would take it along
    manager->setProxyFactory(new ProxyFactory);
    d->loginHandler.attach(manager);
}

bool Profile::save()
{
    d->moment.stop();
    d->latest.stop();
    if (!isOpen())
        return true;
    bool isSaved = true;
    for (Part* part : d->parts)
        isSaved = d->save(*part) && isSaved;
    return isSaved;
}

void Profile::endUse(Occasion occasion)
{
    const auto isDue = [occasion](char code) { return code == static_cast<char>(occasion); };
    if (isDue(userPreferences().getCookieDeleteTiming()))
        d->cookieJar->clear();
    if (isDue(userPreferences().getCertificationDeleteTiming())) {
        d->logins.clear();
        d->loginHandler.forget();
    }
    if (isDue(devicePreferences().getCacheDeleteTiming()) && QDir(QLatin1String(CACHE_DIR)).exists())
        TVNC_NetworkDiskCache::getInstance()->clear();
    save();
}

} // namespace Tlv
