#include "tests/support/TestSite.h"

#include <QtCore/QBuffer>
#include <QtCore/QCryptographicHash>
#include <QtCore/QRegularExpression>
#include <QtGui/QImage>
#include <QtGui/QLinearGradient>
#include <QtGui/QPainter>
#include <QtNetwork/QSslCertificate>
#include <QtNetwork/QSslSocket>

namespace {

const char STYLE[] =
    "body { font-family: sans-serif; margin: 0; background: #fbfaf7; color: #2b2b2b }"
    "header { background: %1; color: white; padding: 18px 32px }"
    "h1 { margin: 0; font-size: 28px } main { padding: 18px 32px; max-width: 900px }"
    "nav a { display: inline-block; margin: 4px 14px 4px 0; color: #1d5c8a }"
    "img { border-radius: 6px; margin-right: 12px } .card { background: white; padding: 14px;"
    " border: 1px solid #e2dfd6; border-radius: 6px; margin: 12px 0 }";

QByteArray md5(const QByteArray& text)
{
    return QCryptographicHash::hash(text, QCryptographicHash::Md5).toHex();
}

/// A field of a digest's header.
QByteArray field(const QByteArray& header, const char* name)
{
    const QRegularExpression expression(QString("\\b%1=\"?([^\",]*)\"?").arg(name));
    return expression.match(QString::fromLatin1(header)).captured(1).toLatin1();
}

QByteArray basicHeader(const QByteArray& user, const QByteArray& password)
{
    return "Basic " + (user + ':' + password).toBase64();
}

} // namespace

void TestServer::incomingConnection(qintptr descriptor)
{
    if (tls.localCertificate().isNull()) {
        QTcpServer::incomingConnection(descriptor);
        return;
    }
    auto* socket = new QSslSocket(this);
    socket->setSslConfiguration(tls);
    socket->setSocketDescriptor(descriptor);
    socket->startServerEncryption();
    addPendingConnection(socket);
}

bool TestSite::listenWithTls(const QSslConfiguration& tls)
{
    server_.tls = tls;
    return listen();
}

bool TestSite::listen(quint16 port)
{
    connect(&server_, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = server_.nextPendingConnection()) {
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { serve(*socket); });
            connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
                pending_.remove(socket);
                socket->deleteLater();
            });
        }
    });
    return server_.listen(QHostAddress::LocalHost, port);
}

QString TestSite::address(const QString& path) const
{
    const char* scheme = server_.tls.localCertificate().isNull() ? "http" : "https";
    return QString("%1://127.0.0.1:%2%3").arg(scheme).arg(port()).arg(path);
}

QList<int> TestSite::answers(const QByteArray& target) const
{
    QList<int> statuses;
    for (const Request& request : requests) {
        if (request.method == "GET" && request.target == target)
            statuses.append(request.status);
    }
    return statuses;
}

void TestSite::serve(QTcpSocket& socket)
{
    QByteArray& pending = pending_[&socket];
    pending += socket.readAll();
    for (auto end = pending.indexOf("\r\n\r\n"); end >= 0; end = pending.indexOf("\r\n\r\n")) {
        const QList<QByteArray> lines = pending.left(end).split('\n');
        pending.remove(0, end + 4);
        Request request;
        request.method = lines.first().split(' ').value(0);
        request.target = lines.first().split(' ').value(1);
        for (const QByteArray& line : lines.mid(1)) {
            const auto colon = line.indexOf(':');
            request.headers[line.left(colon).toLower()] = line.mid(colon + 1).trimmed();
        }
        const Answer given = request.target.startsWith('/') ? answer(request) : answerAsProxy(request);
        request.status = given.status;
        requests.append(request);
        QByteArray head = "HTTP/1.1 " + QByteArray::number(given.status) +
                          " Answer\r\nContent-Type: " + given.type +
                          "\r\nContent-Length: " + QByteArray::number(given.body.size()) + "\r\n";
        for (const QByteArray& header : given.headers)
            head += header + "\r\n";
        socket.write(head + "\r\n" + (request.method == "HEAD" ? QByteArray() : given.body));
    }
}

TestSite::Answer TestSite::page(const QString& title, const QString& body) const
{
    const QString colours[] = {"#2f5d50", "#7a3b3b", "#3b4f7a", "#6a5430"};
    Answer answer;
    answer.headers = {"Cache-Control: no-store"};
    answer.body = QString("<!DOCTYPE html><html><head><title>%1</title><style>%2</style></head><body>"
                          "<header><h1>%1</h1></header><main>%3<nav><a id='home' href='/'>Front page</a>"
                          "</nav></main></body></html>")
                      .arg(title, QString(STYLE).arg(colours[title.size() % 4]), body)
                      .toUtf8();
    return answer;
}

TestSite::Answer TestSite::frontPage() const
{
    return page(
        "Harbour Library",
        "<div class='card'><img src='/picture/harbour.png' width=240 height=120 align=left>"
        "<p>Open daily from ten to six. The reading room on the second floor looks out on the harbour."
        "</p><p>Today: maps of the northern coast, 1680 to 1920.</p><br clear=all></div>"
        "<nav><a id='news' href='/news'>News</a><a id='maps' href='/maps'>Maps</a>"
        "<a id='cookies' href='/cookies'>Remember me</a><a id='staff' href='/basic'>Staff</a>"
        "<a id='archive' href='/digest'>Archive</a><a id='catalogue' href='/script'>Catalogue</a></nav>"
        "<form action='/found'><input id='words' name='words' size=30><input id='find' type=submit "
        "value='Find'></form>");
}

TestSite::Answer TestSite::picture(const QByteArray& name) const
{
    QImage image(240, 120, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, 0, 120);
    sky.setColorAt(0, name == "map.png" ? QColor("#e9dfc3") : QColor("#9cc4de"));
    sky.setColorAt(1, name == "map.png" ? QColor("#cbb27b") : QColor("#f3d9b8"));
    painter.fillRect(image.rect(), sky);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor("#2f5d70"));
    painter.drawRect(0, 84, 240, 36);
    painter.setBrush(QColor("#7a3b3b"));
    for (int ship = 0; ship < 3; ++ship) {
        const int x = 30 + 70 * ship;
        painter.drawPolygon(
            QPolygon({QPoint(x, 78), QPoint(x + 44, 78), QPoint(x + 36, 92), QPoint(x + 8, 92)}));
        painter.drawPolygon(QPolygon({QPoint(x + 22, 30), QPoint(x + 22, 74), QPoint(x + 40, 74)}));
    }
    painter.end();
    Answer answer;
    answer.type = "image/png";
    answer.headers = {"Cache-Control: max-age=86400"};
    QBuffer buffer(&answer.body);
    image.save(&buffer, "PNG");
    return answer;
}

TestSite::Answer TestSite::answer(const Request& request) const
{
    const QByteArray path = request.target.split('?').first();
    if (path == "/")
        return frontPage();
    if (path == "/news")
        return page("News of the harbour", "<div class='card'>The lighthouse is open again.</div>"
                                           "<div class='card'>Ferries run every hour until September.</div>"
                                           "<a id='next' href='/maps'>Maps</a>");
    if (path == "/maps")
        return page("Maps", "<div class='card'><img src='/picture/map.png'><p>Coast, 1703.</p></div>");
    if (path.startsWith("/picture/"))
        return picture(path.mid(9));
    if (path == "/found")
        return page("Found", "<p>Looked for " + QString(request.target.mid(13)).toHtmlEscaped() + ".</p>");
    if (path == "/cookies") {
        Answer answer = page("Remembered", "<p>You will be remembered.</p>");
        const QByteArray expiry = "; expires=Wed, 06-May-2037 07:08:09 GMT; path=/";
        answer.headers +=
            {"Set-Cookie: reader=4711" + expiry, "Set-Cookie: visit=now; path=/",
             "Set-Cookie: card=c4rd" + expiry + "; secure", "Set-Cookie: sid=s1d" + expiry + "; HttpOnly"};
        return answer;
    }
    if (path == "/set") {
        Answer answer = page("Set", "<p>Set.</p>");
        answer.headers += "Set-Cookie: " + QByteArray::fromPercentEncoding(request.target.mid(5));
        return answer;
    }
    if (path == "/whoami")
        return page("Who am I", "<p id='cookie'>Cookies: " + request.headers.value("cookie") + "</p>");
    if (path == "/basic" || path == "/digest")
        return protectedPage(request, path == "/digest");
    if (path == "/script")
        return page("Catalogue",
                    "<p id='out'>Without script.</p><button id='more' onclick=\"document."
                    "getElementById('out').textContent = 'Clicked.'\">More</button>"
                    "<script>document.getElementById('out').textContent = 'With script.';"
                    "setTimeout(function () { document.title = 'A late title'; }, 50);</script>");
    if (path == "/control")
        return page(QString("Bell \x07 and \x1B[31mred\x0C"), "<p>A title with control characters.</p>");
    if (path == "/long")
        return page(QString(QChar(0x66F8)).repeated(50), "<p>A title of 150 bytes.</p>");
    Answer answer = page("Not found", "<p>There is no such page.</p>");
    answer.status = 404;
    return answer;
}

TestSite::Answer TestSite::answerAsProxy(const Request& request) const
{
    if (isStrictProxy &&
        request.headers.value("proxy-authorization") != basicHeader(basicUser, basicPassword)) {
        Answer answer = page("Proxy", "<p>Who are you?</p>");
        answer.status = 407;
        answer.headers += "Proxy-Authenticate: Basic realm=\"proxy\"";
        return answer;
    }
    return page("Elsewhere",
                "<p>Seen through the proxy: " + QString(request.target).toHtmlEscaped() + "</p>");
}

TestSite::Answer TestSite::protectedPage(const Request& request, bool isDigest) const
{
    const bool isFine = isDigest
                            ? isDigestFine(request)
                            : request.headers.value("authorization") == basicHeader(basicUser, basicPassword);
    if (isFine)
        return page(isDigest ? "Archive" : "Staff", "<p>Welcome in.</p>");
    Answer answer = page("Closed", "<p>Not without a login.</p>");
    answer.status = 401;
    answer.headers += isDigest ? "WWW-Authenticate: Digest realm=\"Archive\", nonce=\"5f2e\", qop=\"auth\""
                               : "WWW-Authenticate: Basic realm=\"Staff\"";
    return answer;
}

bool TestSite::isDigestFine(const Request& request) const
{
    const QByteArray header = request.headers.value("authorization");
    const QByteArray ha1 = md5(digestUser + ":Archive:" + digestPassword);
    const QByteArray ha2 = md5(request.method + ':' + field(header, "uri"));
    const QByteArray expected =
        md5(ha1 + ":5f2e:" + field(header, "nc") + ':' + field(header, "cnonce") + ":auth:" + ha2);
    return field(header, "username") == digestUser && field(header, "response") == expected;
}
