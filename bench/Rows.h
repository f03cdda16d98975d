#ifndef BENCH_ROWS_H
#define BENCH_ROWS_H

#include <QtCore/QString>

/**
 * @file
 * The rows of the table, by what they measure. Each function prepares its files in a directory, which ends in
 * "/", and adds its rows.
 */

void addLoadAndSave(const QString& dir);
void addSafeSaves(const QString& dir);
void addChanges(const QString& dir);
void addGrowth(const QString& dir);
void addThumbnails(const QString& dir);
void addMemory(const QString& dir);
void addLogging();

#endif
