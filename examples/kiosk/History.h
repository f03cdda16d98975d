#ifndef EXAMPLES_KIOSK_HISTORY_H
#define EXAMPLES_KIOSK_HISTORY_H

#include "DelayedSave.h"
#include "Profile.h"

#include <tlvlib/stores/TVNC_HistorySetting.h>

#include <QtCore/QList>
#include <QtCore/QObject>

/// The visited pages, the newest first.
class History : public QObject
{
    Q_OBJECT

public:
    explicit History(const Profile& profile);

    void load();
    void save();

    /// When it saves, and what became of it.
    DelayedSave& saving() { return saving_; }

    /// Records a visit now. A page that was visited before moves to the front.
    void visit(const QString& url, const QString& title);

    /// Gives the newest visit of an address its title, which pages tell late or change.
    void setTitle(const QString& url, const QString& title);

    /// The visits with a text in their title or address; all for an empty text.
    QList<TVNS_History> visits(const QString& text = QString()) const;

    void clear();

signals:
    void changed();

private:
    void changeAndSave();

    TVNC_HistorySetting& store_;
    Profile profile_;
    DelayedSave saving_;
};

#endif
