#include "tools/tlvctl/cookies/CookieList.h"

#include "tlvlib/util/TVNG_limits.h"
#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/Text.h"

#include <QtCore/QDataStream>
#include <QtCore/QDateTime>
#include <QtCore/QFileInfo>
#include <QtCore/QSettings>
#include <QtCore/QTemporaryFile>
#include <QtCore/QtEndian>

#include <algorithm>
#include <utility>

#include <sys/stat.h>

namespace {

const QString INI_NAME = "cookie.ini";
const QString TIME_FORMAT = TVNG_EXPIRES_FORMAT;

// --- The document -----------------------------------------------------------------------------------------

/// The text of an element. One that is missing is a flaw.
QString textOf(TVNC_XMLNode& entry, const char* element, std::vector<Flaw>& flaws)
{
    const std::optional<QString> text = textOf(entry, element);
    if (!text)
        flaws.push_back(missingElement(element, ": read as empty"));
    return text.value_or(QString());
}

bool isTime(const QString& text)
{
    const QDate date = QDate::fromString(text.left(10), "yyyy/MM/dd");
    const QTime time = QTime::fromString(text.mid(11), "hh:mm:ss");
    return text.size() == TIME_FORMAT.size() && text.at(10) == ' ' && date.isValid() && time.isValid();
}

CookieRecord readEntry(TVNC_XMLNode& node)
{
    CookieRecord record;
    checkName(node, "webSiteInfo", {"notNamedWebSiteInfo", QString()}, record.flaws);
    record.domain = textOf(node, "website", record.flaws);
    record.name = textOf(node, "name", record.flaws).toUtf8();
    record.path = textOf(node, "path", record.flaws);
    record.secure = textOf(node, "secure", record.flaws);
    record.expires = textOf(node, "expires", record.flaws);
    record.value = textOf(node, "contents", record.flaws).toUtf8();
    if (!record.secure.isEmpty() && record.secure != "true" && record.secure != "false")
        record.flaws.push_back(
            {"secureUnknown", QString("secure is %1, neither \"true\" nor \"false\": read as \"false\"")
                                  .arg(quoted(record.secure))});
    if (!record.expires.isEmpty() && !isTime(record.expires))
        record.flaws.push_back(
            {"expiryUnreadable", QString("expiry %1 is not of the form \"%2\": read as none")
                                     .arg(quoted(record.expires), TIME_FORMAT)});
    return record;
}

QString flagsOf(const CookieRecord& record)
{
    QStringList flags;
    if (record.secure == "true")
        flags.append("secure");
    if (record.httpOnly.value_or(false))
        flags.append("HttpOnly");
    return flags.join(' ');
}

// --- cookie.ini -------------------------------------------------------------------------------------------

CookieRecord recordOf(const QNetworkCookie& cookie)
{
    CookieRecord record;
    record.domain = cookie.domain();
    record.name = cookie.name();
    record.path = cookie.path();
    record.secure = cookie.isSecure() ? "true" : "false";
    record.httpOnly = cookie.isHttpOnly();
    record.value = cookie.value();
    if (!cookie.isSessionCookie()) {
        record.expires = cookie.expirationDate().toUTC().toString(TIME_FORMAT);
        if (cookie.expirationDate() < QDateTime::currentDateTimeUtc())
            record.flaws.push_back({"expired", "expired"});
    }
    return record;
}

/// Compares what the file says of itself with what is in it.
QStringList remarksAbout(const QByteArray& stored)
{
    QStringList remarks;
    QDataStream stream(stored);
    quint32 count = 0;
    stream >> count;
    if (stored.size() < static_cast<int>(sizeof(count)))
        return {"the file holds no list of cookies"};
    quint32 entries = 0;
    while (entries < count && !stream.atEnd()) {
        QByteArray rawForm;
        stream >> rawForm;
        ++entries;
        const bool isWhole = stream.status() == QDataStream::Ok;
        const int cookies = static_cast<int>(QNetworkCookie::parseCookies(rawForm).size());
        if (!isWhole)
            remarks.append(QString("entry %1 is cut off: it is left out").arg(entries));
        else if (cookies != 1)
            remarks.append(QString("entry %1 holds %2 cookies instead of one").arg(entries).arg(cookies));
    }
    // Every entry takes some bytes; a number beyond that is none that a browser has written.
    if (count > static_cast<quint32>(stored.size()))
        remarks.append(QString("damaged: the number of entries is none, and %1 are there").arg(entries));
    else if (entries < count)
        remarks.append(
            QString("the file says that it holds %1 entries, but there are %2").arg(count).arg(entries));
    if (!stream.atEnd())
        remarks.append(QString("behind the %1 entries that the file says it holds, %2 bytes are not read")
                           .arg(entries)
                           .arg(stream.device()->bytesAvailable()));
    return remarks;
}

} // namespace

QString CookieRecord::line() const
{
    return QStringList{printableBytes(name), printable(domain), printable(path)}.join("  ");
}

CookieDocument::CookieDocument(const QString& path)
    : StoreOf(QFileInfo(path).path(), QFileInfo(path).fileName(), {"cookie", "webSiteInfo"})
{
}

void CookieDocument::loadSetting()
{
    QString path = file().path();
    store_.load(path);
}

void CookieDocument::save()
{
    QString path = file().path();
    const mode_t mask = umask(S_IRWXG | S_IRWXO); // a new document is its owner's alone
    store_.save(path);
    umask(mask);
}

std::vector<CookieRecord> CookieDocument::records() const
{
    std::vector<CookieRecord> records;
    QSet<int> taken;
    const QList<TVNC_XMLNode*> nodes = root().getXMLNodeChildren();
    for (TVNC_XMLNode* node : nodes) {
        CookieRecord record = readEntry(*node);
        record.filePosition = static_cast<int>(records.size());
        record.number = numberOf(*node, taken);
        if (!record.number || *record.number < 0 || *record.number >= nodes.size())
            record.flaws.insert(
                record.flaws.begin(),
                {"hidden",
                 QString("has no number from 0 to %1: the store does not see it").arg(nodes.size() - 1)});
        records.push_back(record);
    }
    return records;
}

void CookieDocument::add(std::vector<QNetworkCookie> cookies)
{
    QXmlStreamAttributes attributes;
    attributes.append("docInfo", "1.0");
    QString name = "cookie";
    QString id = "id";
    root().setName(name);
    root().setAttribute(attributes);
    std::for_each(cookies.rbegin(), cookies.rend(),
                  [this](QNetworkCookie& cookie) { store_.addCookieInfo(cookie); });
    store_.setIDforChildren(id);
}

QStringList CookieDocument::remarks() const
{
    if (root().getXMLNodeChildren().size() <= TVNG_CONVERTED_MAX)
        return {};
    return {QString("the conversions look at the first %1 entries only").arg(TVNG_CONVERTED_MAX)};
}

void printCookies(const CookieFile& cookies, int counted, bool withValues)
{
    const std::vector<CookieRecord>& records = cookies.records;
    const auto cells = [&records, withValues](size_t i) {
        const CookieRecord& record = records[i];
        QStringList row{printableBytes(record.name), printable(record.domain), printable(record.path),
                        flagsOf(record), printable(record.expires)};
        if (withValues)
            row.append(printableBytes(record.value));
        return row;
    };
    QStringList header{"name", "domain", "path", "flags", "expires"};
    if (withValues)
        header.append("value");
    printRecords(counted, header, {records.begin(), records.end()}, cells, cookies.remarks);
}

bool isCookieIni(const QString& path)
{
    return QFileInfo(path).isDir() || QFileInfo(path).fileName() == INI_NAME;
}

QString cookieIniDir(const QString& path)
{
    const QString dir = QFileInfo(path).isDir() ? path : QFileInfo(path).path();
    return dir.endsWith('/') ? dir : dir + '/';
}

std::optional<CookieFile> readCookieIni(const QString& dir)
{
    const QString path = dir + INI_NAME;
    CookieFile cookies;
    if (!QFileInfo::exists(path))
        return cookies;
    // Of a file that it has read before, QSettings does not tell again that it is damaged.
    QFile file(path);
    QTemporaryFile copy;
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        complain(path, "cannot be read; make it a readable file");
        return std::nullopt;
    }
    if (!copy.open() || copy.write(file.readAll()) != file.size() || !copy.flush()) {
        complain(path, "cannot be copied to be read; look for free space with \"df /tmp\"");
        return std::nullopt;
    }
    QSettings settings(copy.fileName(), QSettings::IniFormat);
    const QStringList keys = settings.allKeys();
    if (settings.status() != QSettings::NoError)
        cookies.remarks.append("the file is no INI file throughout: what is not understood is skipped");
    for (const QString& key : keys) {
        if (key != "Cookie/cookies")
            cookies.remarks.append(QString("key %1 is not the store's: saving removes it").arg(quoted(key)));
    }
    const QStringList ofList = remarksAbout(settings.value("Cookie/cookies").toByteArray());
    cookies.isDamaged = !ofList.isEmpty() || settings.status() != QSettings::NoError;
    cookies.remarks += ofList;
    QString storeDir = dir;
    for (const QNetworkCookie& cookie :
         TVNC_CookieSetting::getInstance()->loadCookieInfo(&storeDir, TVNG_CONVERTED_MAX)) {
        CookieRecord record = recordOf(cookie);
        record.number = record.filePosition = static_cast<int>(cookies.records.size());
        cookies.records.push_back(record);
    }
    return cookies;
}

bool checkIniReplaceable(const StoreFile& ini, const CookieFile& cookies, bool isForced)
{
    if (isForced || cookies.remarks.isEmpty())
        return true;
    complain(ini.path(),
             QString("holds more than whole cookies (%1); nothing was changed, because that would be "
                     "lost. Go on with --force")
                 .arg(cookies.remarks.join("; ")));
    return false;
}

namespace {

const int LENGTH_BYTES = 4;

/// The bytes of an INI file without quotation marks inside of a value, where QSettings would end it: those of
/// a browser are escaped.
QByteArray withOuterQuotes(const QByteArray& ini)
{
    QByteArray mended;
    const auto first = ini.indexOf('"');
    const auto last = ini.lastIndexOf('"');
    bool isEscaped = false;
    for (decltype(ini.size()) i = 0; i < ini.size(); ++i) {
        const char c = ini.at(i);
        if (c != '"' || isEscaped || i <= first || i >= last)
            mended += c;
        isEscaped = c == '\\' && !isEscaped;
    }
    return mended;
}

/// The cookie whose length and form begin here; nothing when it is not one whole cookie.
std::optional<QNetworkCookie> cookieAt(const QByteArray& stored, int at, int& behind)
{
    if (stored.size() - at <= LENGTH_BYTES)
        return std::nullopt;
    const quint32 length = qFromBigEndian<quint32>(stored.constData() + at);
    if (length == 0 || length > static_cast<quint32>(stored.size() - at - LENGTH_BYTES))
        return std::nullopt;
    const QByteArray form = stored.mid(at + LENGTH_BYTES, static_cast<int>(length));
    const QList<QNetworkCookie> cookies = QNetworkCookie::parseCookies(form);
    const bool isText =
        std::all_of(form.begin(), form.end(), [](char c) { return c >= ' ' || c == '\t' || c < 0; });
    if (cookies.size() != 1 || cookies.first().name().isEmpty() || !isText)
        return std::nullopt;
    behind = at + LENGTH_BYTES + static_cast<int>(length);
    return cookies.first();
}

} // namespace

QList<QNetworkCookie> recoverCookies(const QString& dir, int& lost, QByteArray& rejected)
{
    QFile file(dir + INI_NAME);
    QTemporaryFile copy;
    if (!file.open(QIODevice::ReadOnly) || !copy.open() || copy.write(withOuterQuotes(file.readAll())) < 0 ||
        !copy.flush())
        return {};
    QSettings settings(copy.fileName(), QSettings::IniFormat);
    QByteArray stored = settings.value("Cookie/cookies").toByteArray();
    for (const QString& key : settings.allKeys()) {
        if (stored.isEmpty())
            stored = settings.value(key).toByteArray(); // its name may be what is damaged
    }
    QList<QNetworkCookie> cookies;
    lost = 0;
    bool isInGap = false;
    for (int at = LENGTH_BYTES; at < stored.size();) {
        int behind = at;
        if (const std::optional<QNetworkCookie> cookie = cookieAt(stored, at, behind)) {
            cookies.append(*cookie);
            at = behind;
            isInGap = false;
            continue;
        }
        lost += isInGap ? 0 : 1;
        isInGap = true;
        rejected += stored.at(at++);
    }
    return cookies;
}
