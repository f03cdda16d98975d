#ifndef TLVLIB_BROWSER_COOKIEMODEL_H
#define TLVLIB_BROWSER_COOKIEMODEL_H

#include <tlvlib/browser/CookieJar.h>
#include <tlvlib/browser/RecordModel.h>

namespace Tlv {

/**
 * The cookies of a jar without their values, in the order in which they came. Columns: domain, name, path,
 * flags ("secure, HttpOnly") and until when, in local time. Roles: "domain", "name", "path", "flags",
 * "expires" (no valid time for a session cookie), "secure", "httpOnly".
 *
 * Removing a row removes the cookie from the jar.
 */
class TLVLIB_BROWSER_EXPORT CookieModel : public RecordModel
{
    Q_OBJECT

public:
    /// The columns.
    enum Column { DomainColumn, NameColumn, PathColumn, FlagsColumn, ExpiresColumn };
    /// The roles, for C++; QML has their names.
    enum Role {
        DomainRole = FirstRole,
        NameRole,
        PathRole,
        FlagsRole,
        ExpiresRole,
        SecureRole,
        HttpOnlyRole
    };

    /// A model of a jar that outlives it.
    explicit CookieModel(CookieJar& jar, QObject* parent = nullptr);

    /// Removes cookies from the jar.
    bool removeRows(int row, int count, const QModelIndex& parent = QModelIndex()) override;

protected:
    /// @cond
    int storedCount() const override;
    QVariantList storedRecord(int row) const override;
    void removeStored(int row) override;
    QVariant shown(int column, const QVariant& value) const override;
    /// @endcond

private:
    CookieJar& jar_;
};

} // namespace Tlv

#endif
