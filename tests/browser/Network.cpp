#include "tests/browser/Network.h"

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <QtCore/QUrl>
#include <QtNetwork/QNetworkAccessManager>
#include <QtNetwork/QNetworkReply>

#include <memory>

int get(QNetworkAccessManager& manager, const QString& address)
{
    const std::unique_ptr<QNetworkReply> reply(manager.get(QNetworkRequest(QUrl(address))));
    QEventLoop loop;
    QTimer::singleShot(20000, &loop, &QEventLoop::quit);
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    return reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}
