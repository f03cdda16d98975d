#include "tests/browser/RowFollower.h"

RowFollower::RowFollower(QAbstractItemModel& model)
    : model_(model)
    , tester_(&model, QAbstractItemModelTester::FailureReportingMode::QtTest)
    , rows_(rowsOf(model))
{
    connect(&model, &QAbstractItemModel::modelReset, this, [this] {
        ++resets_;
        rows_ = rowsOf(model_);
    });
    connect(&model, &QAbstractItemModel::rowsInserted, this, [this](const QModelIndex&, int first, int last) {
        for (int row = first; row <= last; ++row)
            rows_.insert(row, rowOf(model_, row));
    });
    connect(&model, &QAbstractItemModel::rowsRemoved, this, [this](const QModelIndex&, int first, int last) {
        rows_.erase(rows_.begin() + first, rows_.begin() + last + 1);
    });
    connect(
        &model, &QAbstractItemModel::rowsMoved, this,
        [this](const QModelIndex&, int first, int, const QModelIndex&, int to) { rows_.move(first, to); });
    connect(&model, &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex& first, const QModelIndex& last) {
                for (int row = first.row(); row <= last.row(); ++row)
                    rows_[row] = rowOf(model_, row);
            });
}

bool RowFollower::agrees() const
{
    return rows_ == rowsOf(model_);
}

QStringList RowFollower::rowOf(const QAbstractItemModel& model, int row)
{
    QStringList texts;
    for (int column = 0; column < model.columnCount(); ++column)
        texts.append(model.index(row, column).data().toString());
    return texts;
}

QList<QStringList> RowFollower::rowsOf(const QAbstractItemModel& model)
{
    QList<QStringList> rows;
    for (int row = 0; row < model.rowCount(); ++row)
        rows.append(rowOf(model, row));
    return rows;
}
