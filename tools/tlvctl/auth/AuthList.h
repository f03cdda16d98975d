#ifndef TOOLS_TLVCTL_AUTH_AUTHLIST_H
#define TOOLS_TLVCTL_AUTH_AUTHLIST_H

#include "tools/tlvctl/records/StoreList.h"

#include <tlvlib/stores/TVNC_AuthSetting.h>

#include <optional>
#include <vector>

/// One record of the credentials. What the store does not answer, because it is too long, is empty.
struct AuthRecord : ListedRecord
{
    TVNS_AuthInfo info;
};

/// The credentials of a settings directory.
class AuthList : public StoreOf<TVNC_AuthSetting>
{
public:
    /**
     * @param dir     the settings directory, with or without a "/" at its end
     * @param maximum how many entries the store is to keep
     */
    AuthList(const QString& dir, int maximum);

    void save() override;
    int count() const override { return store_.getAuthInfoCnt(); }

    /// All records, in the order of the document.
    std::vector<AuthRecord> records() const;

    /// An entry that the store has.
    TVNS_AuthInfo entry(int number) const;

    void remove(int number) { store_.deleteAuthInfo(number); }

    /**
     * Adds an entry in front as a browser does: when the store is full, its oldest entry goes. Appends lines
     * for what has gone and what has come.
     *
     * @return whether the store took it
     */
    bool add(TVNS_AuthInfo info, QStringList& changes);

    /// The word for a scheme: "basic", "digest" or "NTLM".
    static QString typeName(unsigned char type);

    /// Finds a scheme by its word, in small or capital letters.
    static std::optional<unsigned char> typeOf(const QString& word);

    /// The line that shows an entry, without its password.
    static QString line(const TVNS_AuthInfo& info);

protected:
    void loadSetting() override;

private:
    int maximum_;
};

#endif
