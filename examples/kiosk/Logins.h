#ifndef EXAMPLES_KIOSK_LOGINS_H
#define EXAMPLES_KIOSK_LOGINS_H

#include "DelayedSave.h"
#include "Profile.h"

#include <tlvlib/stores/TVNC_AuthSetting.h>

#include <QtCore/QObject>

/// The logins for servers, the newest first.
class Logins : public QObject
{
    Q_OBJECT

public:
    explicit Logins(const Profile& profile);

    void load();
    void save();

    /// When it saves, and what became of it.
    DelayedSave& saving() { return saving_; }

    int count() const { return store_.getAuthInfoCnt(); }
    TVNS_AuthInfo at(int position) const;

    /// The position of the login for a server and a scheme; -1 when there is none.
    int find(const QString& host, const QString& port, unsigned char scheme) const;

    /**
     * Keeps a login, in place of an older one for the same server and scheme. When there are too many, the
     * oldest goes.
     *
     * @return why it cannot be kept; empty when it was
     */
    QString keep(TVNS_AuthInfo login);

    void remove(int position);
    void clear();

signals:
    void changed();

private:
    void changeAndSave();

    TVNC_AuthSetting& store_;
    Profile profile_;
    DelayedSave saving_;
};

#endif
