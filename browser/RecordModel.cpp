#include <tlvlib/browser/RecordModel.h>

#include <algorithm>

namespace Tlv {

RecordModel::RecordModel(std::vector<Field> fields, QObject* parent)
    : QAbstractTableModel(parent)
    , fields_(std::move(fields))
    , columns_(static_cast<int>(std::count_if(fields_.begin(), fields_.end(),
                                              [](const Field& field) { return !field.title.isEmpty(); })))
{
    connect(this, &QAbstractItemModel::rowsInserted, this, &RecordModel::countChanged);
    connect(this, &QAbstractItemModel::rowsRemoved, this, &RecordModel::countChanged);
    connect(this, &QAbstractItemModel::modelReset, this, &RecordModel::countChanged);
}

RecordModel::~RecordModel() = default;

int RecordModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : count();
}

int RecordModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : columns_;
}

QVariant RecordModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return QVariant();
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return shown(index.column(), field(index.row(), index.column()));
    const int number = role - FirstRole;
    const bool isField = number >= 0 && number < static_cast<int>(fields_.size());
    return isField ? field(index.row(), number) : QVariant();
}

QVariant RecordModel::shown(int, const QVariant& value) const
{
    return value;
}

QVariant RecordModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    const bool isTitle = orientation == Qt::Horizontal && role == Qt::DisplayRole;
    if (!isTitle || section < 0 || section >= columns_)
        return QAbstractTableModel::headerData(section, orientation, role);
    return fields_[static_cast<std::size_t>(section)].title;
}

QHash<int, QByteArray> RecordModel::roleNames() const
{
    QHash<int, QByteArray> names = QAbstractTableModel::roleNames();
    int role = FirstRole;
    for (const Field& field : fields_) {
        if (field.name)
            names[role] = field.name;
        ++role;
    }
    return names;
}

bool RecordModel::removeRows(int row, int count, const QModelIndex& parent)
{
    if (parent.isValid() || row < 0 || count < 1 || row > this->count() - count)
        return false;
    // From the back, because each removal moves what is behind it.
    for (int i = row + count - 1; i >= row; --i)
        removeStored(i);
    recordsRemoved(row, row + count - 1);
    Q_EMIT changed();
    return true;
}

void RecordModel::remove(int row)
{
    removeRows(row, 1);
}

void RecordModel::clear()
{
    // More than once when the store has records behind those that are numbered.
    while (count() > 0)
        removeRows(0, count());
}

void RecordModel::storeLoaded()
{
    beginResetModel();
    rows_.clear();
    const int stored = storedCount();
    for (int row = 0; row < stored; ++row)
        rows_.append(storedRecord(row));
    endResetModel();
}

void RecordModel::recordPrepended()
{
    beginInsertRows(QModelIndex(), 0, 0);
    rows_.prepend(storedRecord(0));
    endInsertRows();
    endChanged();
}

void RecordModel::recordMovedToFront(int from)
{
    if (from > 0) {
        beginMoveRows(QModelIndex(), from, from, QModelIndex(), 0);
        rows_.move(from, 0);
        endMoveRows();
    }
    recordChanged(0);
}

void RecordModel::recordsRemoved(int first, int last)
{
    beginRemoveRows(QModelIndex(), first, last);
    rows_.erase(rows_.begin() + first, rows_.begin() + last + 1);
    endRemoveRows();
    endChanged();
}

void RecordModel::recordChanged(int row)
{
    rows_[row] = storedRecord(row);
    Q_EMIT dataChanged(index(row, 0), index(row, columns_ - 1));
}

void RecordModel::endChanged()
{
    const int stored = storedCount();
    const int shownNow = count();
    if (stored > shownNow) {
        beginInsertRows(QModelIndex(), shownNow, stored - 1);
        for (int row = shownNow; row < stored; ++row)
            rows_.append(storedRecord(row));
        endInsertRows();
    } else if (stored < shownNow) {
        beginRemoveRows(QModelIndex(), stored, shownNow - 1);
        rows_.erase(rows_.begin() + stored, rows_.end());
        endRemoveRows();
    }
}

} // namespace Tlv
