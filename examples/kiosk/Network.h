#ifndef EXAMPLES_KIOSK_NETWORK_H
#define EXAMPLES_KIOSK_NETWORK_H

#include <tlvlib/browser/Profile.h>

#include <QtNetwork/QNetworkAccessManager>

/// The browser's way to the network: the profile's cookies, proxies and logins, and what else the preferences
/// say of it.
class Network : public QNetworkAccessManager
{
    Q_OBJECT

public:
    explicit Network(Tlv::Profile& profile);

    /// Takes over what the preferences say. @return what of it cannot be had; empty when all can
    QString applyPreferences();

protected:
    QNetworkReply* createRequest(Operation operation, const QNetworkRequest& request,
                                 QIODevice* data) override;
};

#endif
