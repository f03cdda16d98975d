#ifndef TLVLIB_BROWSER_RECORDMODEL_H
#define TLVLIB_BROWSER_RECORDMODEL_H

#include <tlvlib/browser/browser_export.h>

#include <QtCore/QAbstractTableModel>
#include <QtCore/QVariant>

#include <vector>

namespace Tlv {

/**
 * What the models of a profile have in common: a table of a store's records, one a row, that widgets show by
 * columns and QML by role names. Sorting and searching are the work of QSortFilterProxyModel.
 *
 * A model keeps a copy of what its store answers (at most 999 records), so that a view asks memory and never
 * the store. Change the records through the model alone: what others do to the store it does not see.
 *
 * Changes are told by rowsInserted(), rowsRemoved(), rowsMoved() and dataChanged(); the model is reset when
 * it is loaded and at no other time.
 */
class TLVLIB_BROWSER_EXPORT RecordModel : public QAbstractTableModel
{
    Q_OBJECT
    /// How many records there are.
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    /// How many records a store numbers. A file may hold more; they come up when records in front of them go.
    static constexpr int MaximumCount = 999;

    ~RecordModel() override;

    /// How many records there are.
    int count() const { return static_cast<int>(rows_.size()); }

    /// @cond
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;
    bool removeRows(int row, int count, const QModelIndex& parent = QModelIndex()) override;
    /// @endcond

    /// Removes one record; a row that is none does nothing.
    Q_INVOKABLE void remove(int row);

    /// Removes all records.
    Q_INVOKABLE void clear();

Q_SIGNALS:
    /// There is something to save.
    void changed();
    /// Records came or went.
    void countChanged();

protected:
    /// The role of the first field.
    static constexpr int FirstRole = Qt::UserRole + 1;

    /// A member of the records. The fields that have a title are columns, and stand before those that have
    /// none. Those that have a name are roles, from FirstRole on, in the order of the fields.
    struct Field
    {
        const char* name; ///< as a role; null for none
        QString title;    ///< as a column; empty for none
    };

    /// A model of records with these fields, empty up to storeLoaded().
    RecordModel(std::vector<Field> fields, QObject* parent);

    /// A record's field.
    QVariant field(int row, int number) const { return rows_.at(row).at(number); }

    /// @name The store, as the model sees it
    /// @{

    /// How many records have a number.
    virtual int storedCount() const = 0;
    /// The fields of a record.
    virtual QVariantList storedRecord(int row) const = 0;
    /// Removes a record from the store.
    virtual void removeStored(int row) = 0;

    /// @}

    /// What a column shows of its field.
    virtual QVariant shown(int column, const QVariant& value) const;

    /// @name What has happened to the store
    /// Told afterwards, step by step. Each brings the copy up to it, and tells the views.
    /// @{

    /// All records are others.
    void storeLoaded();
    /// There is a new one in front.
    void recordPrepended();
    /// One has moved to the front and has changed.
    void recordMovedToFront(int from);
    /// These are gone.
    void recordsRemoved(int first, int last);
    /// One has changed at its place.
    void recordChanged(int row);
    /// Records came or went at the end: an addition to a full list pushes one out of the numbers, and a
    /// removal lets one in.
    void endChanged();

    /// @}

private:
    const std::vector<Field> fields_;
    int columns_ = 0;
    QList<QVariantList> rows_;
};

} // namespace Tlv

#endif
