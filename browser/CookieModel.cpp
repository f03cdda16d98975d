#include <tlvlib/browser/CookieModel.h>

#include <QtCore/QDateTime>
#include <QtCore/QStringList>

namespace Tlv {

CookieModel::CookieModel(CookieJar& jar, QObject* parent)
    : RecordModel({{"domain", tr("Domain")},
                   {"name", tr("Name")},
                   {"path", tr("Path")},
                   {"flags", tr("Flags")},
                   {"expires", tr("Until")},
                   {"secure", QString()},
                   {"httpOnly", QString()}},
                  parent)
    , jar_(jar)
{
    connect(&jar_, &CookieJar::loaded, this, &CookieModel::storeLoaded);
    connect(&jar_, &CookieJar::cookieAdded, this, &CookieModel::endChanged);
    connect(&jar_, &CookieJar::cookiesRemoved, this, &CookieModel::recordsRemoved);
    connect(&jar_, &CookieJar::changed, this, &CookieModel::changed);
    storeLoaded();
}

bool CookieModel::removeRows(int row, int count, const QModelIndex& parent)
{
    if (parent.isValid() || row < 0 || count < 1 || row > this->count() - count)
        return false;
    for (int i = row + count - 1; i >= row; --i)
        removeStored(i); // the jar tells
    return true;
}

int CookieModel::storedCount() const
{
    return static_cast<int>(jar_.cookies().size());
}

QVariantList CookieModel::storedRecord(int row) const
{
    const QNetworkCookie cookie = jar_.cookies().at(row);
    QStringList flags;
    if (cookie.isSecure())
        flags.append(tr("secure"));
    if (cookie.isHttpOnly())
        flags.append(tr("HttpOnly"));
    return {cookie.domain(),         QString::fromUtf8(cookie.name()),
            cookie.path(),           flags.join(QLatin1String(", ")),
            cookie.expirationDate(), cookie.isSecure(),
            cookie.isHttpOnly()};
}

void CookieModel::removeStored(int row)
{
    jar_.deleteCookie(jar_.cookies().at(row));
}

QVariant CookieModel::shown(int column, const QVariant& value) const
{
    if (column != ExpiresColumn)
        return value;
    const QDateTime expires = value.toDateTime();
    return expires.isValid() ? expires.toLocalTime().toString(QLatin1String("yyyy-MM-dd hh:mm"))
                             : tr("end of the browser");
}

} // namespace Tlv
