#ifndef TOOLS_TLVCTL_HISTORY_HISTORYLIST_H
#define TOOLS_TLVCTL_HISTORY_HISTORYLIST_H

#include "tools/tlvctl/records/StoreList.h"

#include <tlvlib/stores/TVNC_HistorySetting.h>

#include <QtCore/QString>

#include <optional>
#include <vector>

/// One record of the history's file, as the store has it after loading.
struct VisitRecord : ListedRecord
{
    bool isDropped = false; ///< by loading; the rest is what the file holds
    QString time;           ///< as the file has it, "2011/04/12 10:15"; empty for none
    QString title;
    QString url;
};

/// The history of a settings directory.
class HistoryList : public StoreOf<TVNC_HistorySetting>
{
public:
    /**
     * @param dir     the settings directory, with or without a "/" at its end
     * @param maximum how many visits the store is to keep
     */
    HistoryList(const QString& dir, int maximum);

    void save() override;
    int count() const override { return store_.getHistoryCnt(); }

    /// What loading has dropped or changed, which saving makes permanent.
    QStringList changesOfLoading() const override;

    /// All records as they were loaded: those that the store has, in its order, then those that it dropped.
    std::vector<VisitRecord> records() const { return loaded_; }

    QStringList remarks() const override;
    void writeRemarks(JsonWriter& json) const override;

    /// The number of the newest visit of an address, if there is one.
    std::optional<int> find(const QString& url);

    /// A visit that the store has.
    TVNS_History entry(int number) const;

    void remove(int number) { store_.deleteHistory(number); }

    /**
     * Records a visit as a browser does: an earlier one of the same address goes, and where the store is
     * still full then, so does its oldest. Appends lines for what has gone.
     */
    void add(TVNS_History visit, QStringList& changes);

    /// Sorts the list as the next loading will, and tells the number that a visit has then.
    std::optional<int> numberAfterSorting(const TVNS_History& visit);

    /// Whether a time is of the form "yyyy/MM/dd hh:mm"; then it is read.
    static bool parseTime(const QString& text, QDateTime& time);

    /// The time of a visit as the file has it.
    static QString timeText(const QDateTime& time);

    /// The line that shows a visit: time, title, address.
    static QString line(const TVNS_History& visit);

protected:
    void loadSetting() override;
    void takeFile(std::unique_ptr<TVNC_XMLNode> fileRoot) override { fileRoot_ = std::move(fileRoot); }

private:
    /// Puts what was loaded beside the document in the file, of which there may be none.
    void compareWithFile(std::unique_ptr<TVNC_XMLNode> fileRoot);

    std::unique_ptr<TVNC_XMLNode> fileRoot_; ///< between takeFile() and the end of loading
    int maximum_;
    std::vector<VisitRecord> loaded_;
    bool isSorted_ = true; ///< whether loading left the order as it is in the file
};

#endif
