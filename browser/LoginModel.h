#ifndef TLVLIB_BROWSER_LOGINMODEL_H
#define TLVLIB_BROWSER_LOGINMODEL_H

#include <tlvlib/browser/StoredModel.h>
#include <tlvlib/stores/TVNC_AuthSetting.h>

namespace Tlv {

/**
 * The logins for servers, the newest first, without their passwords. Columns: the server as "host:port", the
 * scheme, the user name, and eight dots for whatever the password is. Roles: "server", "scheme", "user",
 * "host", "port".
 *
 * There is one login for each host, port and scheme. When there are maximum() of them, 50 unless it is set,
 * the oldest goes for the next. Limits, in bytes of UTF-8: 256 for a host, 272 each for user name and
 * password.
 */
class TLVLIB_BROWSER_EXPORT LoginModel : public StoredModel
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
    void readStore(QString dir) override;
    void writeStore(QString dir) override;
    /// @endcond

private:
    TVNS_AuthInfo stored(int row) const;

    TVNC_AuthSetting& store_;
};

} // namespace Tlv

#endif
