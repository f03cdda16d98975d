#include "tools/tlvctl/cookies/CookieJar.h"

#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/Text.h"

#include <QtCore/QDateTime>

#include <algorithm>
#include <optional>

namespace {

const char HEAD[] = "# Netscape HTTP Cookie File\n\n";
const QByteArray HTTP_ONLY = "#HttpOnly_";
const QByteArray BYTE_ORDER_MARK = "\xEF\xBB\xBF";

/// The fields of a line. A value that is empty may lack its tab, too.
enum Field { DOMAIN, SUBDOMAINS, PATH, SECURE, EXPIRES, NAME, VALUE, FIELDS };

QByteArray word(bool isTrue)
{
    return isTrue ? "TRUE" : "FALSE";
}

/// Seconds since 1970; 0 stands for the end of the browser, so what expired before then has 1.
QByteArray expiryOf(const QNetworkCookie& cookie)
{
    const qint64 seconds = cookie.expirationDate().toSecsSinceEpoch();
    return cookie.isSessionCookie() ? "0" : QByteArray::number(std::max<qint64>(seconds, 1));
}

/// One line without its end. Nothing, with the problem, when it is no cookie.
std::optional<QNetworkCookie> readLine(QByteArray line, QString& problem)
{
    QNetworkCookie cookie;
    cookie.setHttpOnly(line.startsWith(HTTP_ONLY));
    if (cookie.isHttpOnly())
        line.remove(0, HTTP_ONLY.size());
    const QList<QByteArray> fields = line.split('\t');
    if (fields.size() != FIELDS && fields.size() != VALUE) {
        problem = QString("has %1 fields instead of %2").arg(fields.size()).arg(int(FIELDS));
        return std::nullopt;
    }
    bool isTime = fields.at(EXPIRES).isEmpty();
    const qint64 seconds = isTime ? 0 : fields.at(EXPIRES).toLongLong(&isTime);
    QByteArray domain = fields.at(DOMAIN).toLower();
    while (domain.startsWith('.'))
        domain.remove(0, 1);
    if (!isTime || domain.isEmpty() || fields.at(NAME).isEmpty()) {
        problem = !isTime            ? "has no number for the time of its expiry"
                  : domain.isEmpty() ? "has no domain"
                                     : "has no name";
        return std::nullopt;
    }
    const bool isForSubdomains = fields.at(SUBDOMAINS).toUpper() == "TRUE";
    cookie.setDomain((isForSubdomains ? "." : "") + QString::fromUtf8(domain));
    cookie.setPath(fields.at(PATH).isEmpty() ? "/" : QString::fromUtf8(fields.at(PATH)));
    cookie.setSecure(fields.at(SECURE).toUpper() == "TRUE");
    if (seconds != 0)
        cookie.setExpirationDate(QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC));
    cookie.setName(fields.at(NAME));
    cookie.setValue(fields.value(VALUE));
    return cookie;
}

} // namespace

QString problemWithJar(const QNetworkCookie& cookie)
{
    const QByteArray all = cookie.domain().toUtf8() + cookie.path().toUtf8() + cookie.name() + cookie.value();
    if (std::any_of(all.begin(), all.end(),
                    [](char c) { return c == '\t' || c == '\n' || c == '\r' || c == 0; }))
        return "has a tab, a line break or a zero byte, which the file cannot hold";
    if (cookie.name().isEmpty())
        return "has no name";
    const bool hasDomain = !cookie.domain().isEmpty() && !cookie.domain().startsWith('#');
    return hasDomain ? QString() : "has no domain";
}

QByteArray writeJar(const std::vector<QNetworkCookie>& cookies)
{
    QByteArray jar = HEAD;
    for (const QNetworkCookie& cookie : cookies) {
        const QList<QByteArray> fields{cookie.domain().toUtf8(),
                                       word(cookie.domain().startsWith('.')),
                                       cookie.path().isEmpty() ? QByteArray("/") : cookie.path().toUtf8(),
                                       word(cookie.isSecure()),
                                       expiryOf(cookie),
                                       cookie.name(),
                                       cookie.value()};
        jar += (cookie.isHttpOnly() ? HTTP_ONLY : QByteArray()) + fields.join('\t') + '\n';
    }
    return jar;
}

std::vector<QNetworkCookie> readJar(const QByteArray& bytes, QStringList& leftOut)
{
    std::vector<QNetworkCookie> cookies;
    const QList<QByteArray> lines =
        (bytes.startsWith(BYTE_ORDER_MARK) ? bytes.mid(BYTE_ORDER_MARK.size()) : bytes).split('\n');
    Progress progress(static_cast<size_t>(lines.size()));
    for (int i = 0; i < lines.size(); ++i) {
        progress.advance();
        QByteArray line = lines.at(i);
        if (line.endsWith('\r'))
            line.chop(1);
        const bool isComment = line.startsWith('#') && !line.startsWith(HTTP_ONLY);
        if (line.trimmed().isEmpty() || isComment)
            continue;
        QString problem;
        if (const std::optional<QNetworkCookie> cookie = readLine(line, problem))
            cookies.push_back(*cookie);
        else
            leftOut.append(QString("left out  line %1, which %2").arg(i + 1).arg(problem));
    }
    return cookies;
}
