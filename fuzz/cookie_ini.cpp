/*
 * cookie.ini of any bytes, loaded, saved and converted in both directions; and, so that the file's own syntax
 * does not keep everything out, the same bytes as the serialised cookies in a file that is in order.
 */

#include "fuzz/Fuzz.h"

#include <tlvlib/stores/TVNC_CookieSetting.h>

#include <QtCore/QFile>
#include <QtCore/QSettings>

namespace {

void check()
{
    auto* store = TVNC_CookieSetting::getInstance();
    QString dir = scratchDir();
    QByteArray iniDir = dir.toLatin1();
    QByteArray document = (dir + "cookies.xml").toLatin1();
    const QList<QNetworkCookie> cookies = store->loadCookieInfo(&dir, 20);
    store->convertCookieIniToXML(iniDir.data(), document.data());
    store->convertCookieIniToXML(iniDir.data(), document.data());
    store->saveCookieInfo(cookies, &dir, 20);
    store->loadCookieInfo(&dir, 20);
    store->convertCookieXMLToIni(document.data(), iniDir.data());
    MUST(store->loadCookieInfo(&dir, 20).size() <= 20);
    QFile::remove(document);
    release();
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const QString path = scratchDir() + "cookie.ini";
    writeFile(path, bytes);
    check();
    QFile::remove(path);
    {
        QSettings settings(path, QSettings::IniFormat);
        settings.setValue("Cookie/cookies", bytes);
    }
    check();
    return 0;
}
