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
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    /// How many records a store numbers. A file may hold more; they come up when records in front of them go.
    static constexpr int MaximumCount = 999;

    ~RecordModel() override;

    int count() const { return static_cast<int>(rows_.size()); }

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;
    bool removeRows(int row, int count, const QModelIndex& parent = QModelIndex()) override;

    /// Removes one record; a row that is none does nothing.
    Q_INVOKABLE void remove(int row);

    /// Removes all records.
    Q_INVOKABLE void clear();

Q_SIGNALS:
    /// There is something to save.
    void changed();
    void countChanged();

protected:
    static constexpr int FirstRole = Qt::UserRole + 1;

    /// A member of the records. The fields that have a title are columns, and stand before those that have
    /// none. Those that have a name are roles, from FirstRole on, in the order of the fields.
    struct Field
    {
        const char* name;
        QString title;
    };

    RecordModel(std::vector<Field> fields, QObject* parent);

    /// A record's field.
    QVariant field(int row, int number) const { return rows_.at(row).at(number); }

    // The store, as the model sees it.
    virtual int storedCount() const = 0;
    virtual QVariantList storedRecord(int row) const = 0;
    virtual void removeStored(int row) = 0;

    /// What a column shows of its field.
    virtual QVariant shown(int column, const QVariant& value) const;

    // What has happened to the store, told afterwards, step by step. Each brings the copy up to it.
    void storeLoaded();
    void recordPrepended();
    void recordMovedToFront(int from);
    void recordsRemoved(int first, int last);
    void recordChanged(int row);
    /// Records came or went at the end: an addition to a full list pushes one out of the numbers, and a
    /// removal lets one in.
    void endChanged();

private:
    const std::vector<Field> fields_;
    int columns_ = 0;
    QList<QVariantList> rows_;
};

} // namespace Tlv

#endif
