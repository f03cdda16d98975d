#ifndef TESTS_BROWSER_ROWFOLLOWER_H
#define TESTS_BROWSER_ROWFOLLOWER_H

#include <QtCore/QAbstractItemModel>
#include <QtCore/QStringList>
#include <QtTest/QAbstractItemModelTester>

/**
 * A view's side of a model: knows of it what the signals have told, and reads the rows that they name. Qt's
 * own tester looks on.
 */
class RowFollower : public QObject
{
    Q_OBJECT

public:
    explicit RowFollower(QAbstractItemModel& model);

    /// Whether following the signals has led to what the model has.
    bool agrees() const;
    int resets() const { return resets_; }

    /// All texts of a model, row by row.
    static QList<QStringList> rowsOf(const QAbstractItemModel& model);

private:
    static QStringList rowOf(const QAbstractItemModel& model, int row);

    QAbstractItemModel& model_;
    QAbstractItemModelTester tester_;
    QList<QStringList> rows_;
    int resets_ = 0;
};

#endif
