#ifndef TOOLS_TLVCTL_COOKIES_COOKIELIST_H
#define TOOLS_TLVCTL_COOKIES_COOKIELIST_H

#include "tools/tlvctl/records/StoreList.h"

#include <tlvlib/stores/TVNC_CookieSetting.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>
#include <vector>

/// A cookie of either file.
struct CookieRecord : ListedRecord
{
    QString domain;
    QByteArray name;
    QString path;
    QString secure;               ///< "true" or "false"; the document may hold anything
    std::optional<bool> httpOnly; ///< the document does not know
    QString expires;              ///< "2031/05/06 07:08:09"; empty for the end of the browser
    QByteArray value;             ///< never shown unless it is asked for

    /// The line that shows a cookie: name, domain, path. Servers tell cookies apart by these three.
    QString line() const;
};

/// The cookies of one file, with what there is to say about it.
struct CookieFile
{
    std::vector<CookieRecord> records;
    QStringList remarks;
    bool isDamaged = false; ///< whether cookie.ini is not as a browser writes it
};

/// A cookie document.
class CookieDocument : public StoreOf<TVNC_CookieSetting>
{
public:
    explicit CookieDocument(const QString& path);

    void save() override;
    int count() const override { return static_cast<int>(store_.getAllCookieInfo().size()); }

    /// All entries, in the order of the document.
    std::vector<CookieRecord> records() const;
    QStringList remarks() const override;

    /// Removes the entry of a number. The others are numbered anew.
    void remove(int number) { store_.deleteCookieInfo(number); }

    /// Adds entries in front, in their order.
    void add(std::vector<QNetworkCookie> cookies);

    CookieFile read() const { return {records(), remarks(), false}; }

protected:
    void loadSetting() override;
};

/**
 * Prints the cookies of a file as "tlvctl cookies list" does.
 *
 * @param counted how many of them the store sees
 */
void printCookies(const CookieFile& cookies, int counted, bool withValues);

/// Whether a path names a cookie.ini: a directory does, and a file of that name.
bool isCookieIni(const QString& path);

/// The directory of a path for which that is so, with a "/" at its end.
QString cookieIniDir(const QString& path);

/**
 * Reads the file cookie.ini of a directory. Complains and returns nothing when it cannot be read. A missing
 * file has no cookies.
 */
std::optional<CookieFile> readCookieIni(const QString& dir);

/// Complains and returns false when a file with something else than cookies would be replaced.
bool checkIniReplaceable(const StoreFile& ini, const CookieFile& cookies, bool isForced);

/**
 * The cookies of a damaged cookie.ini, each whole, in its order.
 *
 * @param lost     how many more the file says it holds, or begins
 * @param rejected the bytes of those
 */
QList<QNetworkCookie> recoverCookies(const QString& dir, int& lost, QByteArray& rejected);

#endif
