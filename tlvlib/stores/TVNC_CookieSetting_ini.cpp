#include "tlvlib/stores/TVNC_CookieSetting.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/util/QEXC_TextCodec.h"

#include <QtCore/QByteArray>
#include <QtCore/QDataStream>
#include <QtCore/QSettings>
#include <QtCore/QVariant>

// The file cookie.ini. Nothing of a cookie goes into a log line.

namespace {

QString pathIn(const QString& dir)
{
    return dir + QEXC_TextCodec::fromSJIS("cookie.ini");
}

/// The section of the file, and its only key.
QString section()
{
    return QEXC_TextCodec::fromSJIS("Cookie");
}

QString key()
{
    return QEXC_TextCodec::fromSJIS("cookies");
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

} // namespace

void TVNC_CookieSetting::saveCookieInfo(QList<QNetworkCookie> cookies, QString* dir, int si_saveMax)
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
    QSettings settings(pathIn(*dir), QSettings::IniFormat);
    settings.clear();
    settings.beginGroup(section());
    settings.setValue(key(), serialised(cookies));
    settings.endGroup();
    // Written when the settings go, which is after this line of the log.
    TVNG_DebugPrint(3, "[TVNC_CookieSetting::saveCookieInfo] end");
}

QList<QNetworkCookie> TVNC_CookieSetting::loadCookieInfo(QString* dir, int si_loadMax)
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
    si_maxCount_ = si_loadMax;
    QSettings settings(pathIn(*dir), QSettings::IniFormat);
    settings.beginGroup(section());
    const QList<QNetworkCookie> cookies = deserialised(settings.value(key()).toByteArray());
    settings.endGroup();
    TVNG_DebugPrint(3, "[TVNC_CookieSetting::loadCookieInfo] end");
    return cookies;
}
