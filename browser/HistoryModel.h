#ifndef TLVLIB_BROWSER_HISTORYMODEL_H
#define TLVLIB_BROWSER_HISTORYMODEL_H

#include <tlvlib/browser/StoredModel.h>
#include <tlvlib/stores/TVNC_HistorySetting.h>

#include <QtCore/QDateTime>

namespace Tlv {

/**
 * The visited pages, the newest visit first. Columns: the time as "2011-04-12 10:15", which sorts as a text
 * does, the title and the address. Roles: "dateTime", "title", "url".
 *
 * Times are local and have minutes, no seconds. Visits of one minute may change places when they are loaded.
 * Titles and addresses have no limit. Addresses are compared to the letter, and each is there once: visiting
 * a page again moves it to the front. When there are maximum() visits, 200 unless it is set, the oldest goes
 * for the next.
 */
class TLVLIB_BROWSER_EXPORT HistoryModel : public StoredModel
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
    void readStore(QString dir) override;
    void writeStore(QString dir) override;
    /// @endcond

private:
    TVNC_HistorySetting& store_;
};

} // namespace Tlv

#endif
