#ifndef TESTS_SUPPORT_TESTSITE_H
#define TESTS_SUPPORT_TESTSITE_H

#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtNetwork/QSslConfiguration>
#include <QtNetwork/QTcpServer>

class QTcpSocket;

/// Speaks TLS when it has a certificate.
class TestServer : public QTcpServer
{
public:
    QSslConfiguration tls;

protected:
    void incomingConnection(qintptr descriptor) override;
};

/**
 * A small web site on 127.0.0.1, for a browser to be tested with: linked pages, cookies of all kinds, areas
 * that want a login, cacheable pictures, a script, and pages that are hard on a history. "/set?" sets
 * the cookie that stands behind it. It is a proxy as well, whose every site is one page.
 */
class TestSite : public QObject
{
    Q_OBJECT

public:
    struct Request
    {
        QByteArray method;
        QByteArray target; ///< a path, or a whole address when the site is asked as a proxy
        QHash<QByteArray, QByteArray> headers; ///< by their names in small letters
        int status;
    };

    /// Who may enter. Others can be set while the site runs.
    QByteArray basicUser = "bob";
    QByteArray basicPassword = "builder";
    QByteArray digestUser = "alice";
    QByteArray digestPassword = "wonderland";

    /// Whether it asks for bob's login as a proxy.
    bool isStrictProxy = false;

    /// Begins to serve at a free port, or at this one.
    bool listen(quint16 port = 0);
    /// The same over TLS, with a certificate and its key.
    bool listenWithTls(const QSslConfiguration& tls);
    quint16 port() const { return server_.serverPort(); }
    QString address(const QString& path = "/") const;

    /// What was asked so far, in its order.
    QList<Request> requests;

    /// The status of every page that was got from a target so far.
    QList<int> answers(const QByteArray& target) const;

private:
    struct Answer
    {
        int status = 200;
        QByteArray type = "text/html; charset=utf-8";
        QList<QByteArray> headers;
        QByteArray body;
    };

    void serve(QTcpSocket& socket);
    Answer answer(const Request& request) const;
    Answer answerAsProxy(const Request& request) const;
    Answer page(const QString& title, const QString& body) const;
    Answer frontPage() const;
    Answer picture(const QByteArray& name) const;
    Answer protectedPage(const Request& request, bool isDigest) const;
    bool isDigestFine(const Request& request) const;

    QHash<QTcpSocket*, QByteArray> pending_; ///< what has come of the next request
    TestServer server_;                      ///< goes first, and its sockets with it
};

#endif
