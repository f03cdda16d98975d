#ifndef TLVLIB_BROWSER_LOGINMODEL_H
#define TLVLIB_BROWSER_LOGINMODEL_H

#include <tlvlib/browser/RecordModel.h>
#include <tlvlib/stores/TVNC_AuthSetting.h>

namespace Tlv {

/**
 * The logins for servers, the newest first, without their passwords. Columns: the server as "host:port", the
 * scheme, the user name, and eight dots for whatever the password is. Roles: "server", "scheme", "user",
 * "host", "port".
 *
 * There is one login for each host, port and scheme. Limits, in bytes of UTF-8: 256 for a host, 272 each for
 * user name and password.
 */
class TLVLIB_BROWSER_EXPORT LoginModel : public RecordModel
{
    Q_OBJECT

public:
    /// The columns.
    enum Column { ServerColumn, SchemeColumn, UserColumn, PasswordColumn };
    /// The roles, for C++; QML has their names.
    enum Role { ServerRole = FirstRole, SchemeRole, UserRole, HostRole = UserRole + 2, PortRole };

    /// What a server asks for, in the codes of the store.
    enum Scheme { Basic = 0, Digest = 1, Ntlm = 2 };
    Q_ENUM(Scheme)

    /// maximum() unless it is set.
    static constexpr int DefaultMaximum = 50;

    /// A model without logins, up to load().
    explicit LoginModel(QObject* parent = nullptr);

    /// How many logins there are at most: 1 to 999, 50 unless it is set before loading. The oldest goes for
    /// the next.
    int maximum() const { return maximum_; }
    /// What is outside of 1 to 999 is taken for the nearer end.
    void setMaximum(int maximum);

    /// Replaces the logins by those of a directory, which ends in "/". Profile does this.
    void load(const QString& dir);

    /// Writes the logins. Profile does this. @return what failed, as BookmarkModel::save() tells it
    QString save(const QString& dir);

    /// The row of a login; -1 when there is none.
    int find(const QString& host, int port, Scheme scheme) const;

    /// User name and password of a row, in UTF-8; empty ones when there is no such row.
    QPair<QByteArray, QByteArray> credentials(int row) const;

    /**
     * Keeps a login in front, in place of an older one for the same host, port and scheme.
     *
     * @param host     of the server
     * @param port     of the server
     * @param scheme   for which it is
     * @param user     in UTF-8
     * @param password in UTF-8
     * @return false when a part of it is too long; nothing changes then
     */
    bool keep(const QString& host, int port, Scheme scheme, const QByteArray& user,
              const QByteArray& password);

protected:
    /// @cond
    int storedCount() const override;
    QVariantList storedRecord(int row) const override;
    void removeStored(int row) override;
    QVariant shown(int column, const QVariant& value) const override;
    /// @endcond

private:
    TVNS_AuthInfo stored(int row) const;

    TVNC_AuthSetting& store_;
    int maximum_ = DefaultMaximum;
};

} // namespace Tlv

#endif
