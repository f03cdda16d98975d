#ifndef TLVLIB_BROWSER_HISTORYMODEL_H
#define TLVLIB_BROWSER_HISTORYMODEL_H

#include <tlvlib/browser/RecordModel.h>
#include <tlvlib/stores/TVNC_HistorySetting.h>

#include <QtCore/QDateTime>

namespace Tlv {

/**
 * The visited pages, the newest visit first. Columns: the time as "2011-04-12 10:15", which sorts as a text
 * does, the title and the address. Roles: "dateTime", "title", "url".
 *
 * Times are local and have minutes, no seconds. Visits of one minute may change places when they are loaded.
 * Titles and addresses have no limit. Addresses are compared to the letter, and each is there once: visiting
 * a page again moves it to the front.
 */
class TLVLIB_BROWSER_EXPORT HistoryModel : public RecordModel
{
    Q_OBJECT

public:
    /// The columns.
    enum Column { TimeColumn, TitleColumn, UrlColumn };
    /// The roles, for C++; QML has their names.
    enum Role { DateTimeRole = FirstRole, TitleRole, UrlRole };

    /// maximum() unless it is set.
    static constexpr int DefaultMaximum = 200;

    /// A model without visits, up to load().
    explicit HistoryModel(QObject* parent = nullptr);

    /// How many visits there are at most: 1 to 999, 200 unless it is set before loading. When they are as
    /// many, the oldest goes for the next. A longer file stays as long as it is.
    int maximum() const { return maximum_; }
    /// What is outside of 1 to 999 is taken for the nearer end.
    void setMaximum(int maximum);

    /// Replaces the visits by those of a directory, which ends in "/". Profile does this.
    void load(const QString& dir);

    /// Writes the visits. Profile does this. @return what failed, as BookmarkModel::save() tells it
    QString save(const QString& dir);

    /// The row of the newest visit of an address; -1 when there is none.
    Q_INVOKABLE int find(const QString& url) const;

    /// Records a visit in front, in place of an earlier one of the same address.
    Q_INVOKABLE void visit(const QString& url, const QString& title,
                           const QDateTime& time = QDateTime::currentDateTime());

    /// Gives a visited page its title, which pages tell late or change. An unknown address does nothing.
    Q_INVOKABLE void setTitle(const QString& url, const QString& title);

protected:
    /// @cond
    int storedCount() const override;
    QVariantList storedRecord(int row) const override;
    void removeStored(int row) override;
    QVariant shown(int column, const QVariant& value) const override;
    /// @endcond

private:
    TVNC_HistorySetting& store_;
    int maximum_ = DefaultMaximum;
};

} // namespace Tlv

#endif
