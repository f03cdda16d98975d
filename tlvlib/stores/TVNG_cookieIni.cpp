#include "tlvlib/stores/TVNG_cookieIni.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/files/TVNC_SavedFile.h"
#include "tlvlib/files/TVNC_SecretSave.h"
#include "tlvlib/files/TVNG_openFile.h"
#include "tlvlib/files/TVNG_saveMode.h"
#include "tlvlib/util/TVNG_literal.h"

#include <QtCore/QByteArray>
#include <QtCore/QDataStream>
#include <QtCore/QDateTime>
#include <QtCore/QFileInfo>
#include <QtCore/QSettings>
#include <QtCore/QVariant>

#include <cctype>
#include <sys/time.h>

// The file cookie.ini. Nothing of a cookie goes into a log line.

namespace {

const char INI_FILE[] = "cookie.ini";

/// The section of the file, and its only key.
QString section()
{
    return TVNG_literal("Cookie");
}

QString key()
{
    return TVNG_literal("cookies");
}

QByteArray serialised(const QList<QNetworkCookie>& cookies)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::ReadWrite);
    stream << static_cast<qint32>(cookies.size());
    for (int i = 0; i < cookies.size(); ++i)
        stream << cookies.at(i).toRawForm(QNetworkCookie::Full);
    return bytes;
}

QList<QNetworkCookie> deserialised(const QByteArray& bytes)
{
    QList<QNetworkCookie> cookies;
    QDataStream stream(bytes);
    // Unsigned: a count of -1 means as many as there are. Neither the count nor a length is trusted; the
    // stream takes memory for no more than it has data.
    quint32 ul_count = 0;
    stream >> ul_count;
    for (quint32 i = 0; i < ul_count; ++i) {
        QByteArray rawForm;
        stream >> rawForm;
        cookies += QNetworkCookie::parseCookies(rawForm);
        if (stream.atEnd())
            break;
    }
    return cookies;
}

/// A byte of a value as QSettings writes it. @a b_afterHex: whether a digit would be taken for one of "\x".
QByteArray escaped(unsigned char uc_byte, bool b_afterHex)
{
    if (uc_byte == 0)
        return QByteArray("\\0");
    if (uc_byte >= '\a' && uc_byte <= '\r')
        return QByteArray("\\") + "abtnvfr"[uc_byte - '\a'];
    if (uc_byte == '"' || uc_byte == '\\')
        return QByteArray("\\") + static_cast<char>(uc_byte);
    if (uc_byte < 0x20 || uc_byte >= 0x7F || (b_afterHex && std::isxdigit(uc_byte)))
        return QByteArray("\\x") + QByteArray::number(uc_byte, 16);
    return QByteArray(1, static_cast<char>(uc_byte));
}

/**
 * The text of the file as QSettings writes it. Needed because QSettings itself neither replaces a file whole
 * on every Qt nor syncs the directory, and leaves files of its own behind when it is interrupted.
 */
QByteArray iniText(const QByteArray& value)
{
    QByteArray text;
    bool b_afterHex = false;
    for (int i = 0; i < value.size(); ++i) {
        const QByteArray sign = escaped(static_cast<unsigned char>(value.at(i)), b_afterHex);
        b_afterHex = sign.startsWith("\\x") || sign == "\\0";
        text += sign;
    }
    const bool b_quoted = value.contains(';') || value.contains(',') || value.contains('=');
    const QByteArray quote(b_quoted ? "\"" : "");
    return '[' + section().toLatin1() + "]\n" + key().toLatin1() + '=' + quote + "@ByteArray(" + text + ')' +
           quote + '\n';
}

/**
 * Makes a file newer than it was. QSettings takes a file of the same size and time for the one that it has
 * read before; on the device times have full seconds.
 */
void makeNewer(const QString& path, const QDateTime& before)
{
    const QDateTime now = QFileInfo(path).lastModified();
    if (!before.isValid() || now > before)
        return;
    struct timeval times[2];
    times[0].tv_sec = static_cast<time_t>(before.toMSecsSinceEpoch() / 1000 + 1);
    times[0].tv_usec = 0;
    times[1] = times[0];
    ::utimes(QFile::encodeName(path).constData(), times);
}

bool saveWhole(const QString& path, const QByteArray& value)
{
    const TVNC_SecretSave secret(true);
    const QDateTime before = QFileInfo(path).lastModified();
    TVNC_SavedFile file(path);
    if (!file.open())
        return false;
    file.device().write(iniText(value));
    if (!file.commit())
        return false;
    makeNewer(path, before);
    return true;
}

} // namespace

void TVNG_saveCookieIni(const QList<QNetworkCookie>& cookies, QString* dir, int si_saveMax)
{
    TVNG_DebugPrint(3, "[TVNC_CookieSetting::saveCookieInfo] start");
    if (!dir || dir->isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_CookieSetting::saveCookieInfo] Path is NULL or empty.");
        return;
    }
    // Only tested: all cookies are written.
    if (si_saveMax < 1) {
        TVNG_DebugPrint(2, "[TVNC_CookieSetting::saveCookieInfo] Error save_max:%d", si_saveMax);
        return;
    }
    const QString path = TVNG_pathIn(*dir, INI_FILE);
    const QByteArray value = serialised(cookies);
    if (TVNG_isSafeSave()) {
        if (!saveWhole(path, value))
            TVNG_DebugPrint(2, "[TVNC_CookieSetting::saveCookieInfo] Couldn't replace cookie.ini.");
        TVNG_DebugPrint(3, "[TVNC_CookieSetting::saveCookieInfo] end");
        return;
    }
    const QString group = section();
    const QString name = key();
    QSettings settings(path, QSettings::IniFormat);
    settings.clear(); // the new value is complete by now
    settings.beginGroup(group);
    settings.setValue(name, value);
    settings.endGroup();
    // Written when the settings go, which is after this line of the log.
    TVNG_DebugPrint(3, "[TVNC_CookieSetting::saveCookieInfo] end");
}

QList<QNetworkCookie> TVNG_loadCookieIni(QString* dir, int si_loadMax, int& si_maxCount)
{
    TVNG_DebugPrint(3, "[TVNC_CookieSetting::loadCookieInfo] start");
    if (!dir || dir->isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_CookieSetting::loadCookieInfo] Path is NULL or empty.");
        return QList<QNetworkCookie>();
    }
    if (si_loadMax < 1) {
        TVNG_DebugPrint(2, "[TVNC_CookieSetting::loadCookieInfo] Error load_max:%d", si_loadMax);
        return QList<QNetworkCookie>();
    }
    si_maxCount = si_loadMax;
    QSettings settings(TVNG_pathIn(*dir, INI_FILE), QSettings::IniFormat);
    settings.beginGroup(section());
    const QList<QNetworkCookie> cookies = deserialised(settings.value(key()).toByteArray());
    settings.endGroup();
    TVNG_DebugPrint(3, "[TVNC_CookieSetting::loadCookieInfo] end");
    return cookies;
}
