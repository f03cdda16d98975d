#ifndef BENCH_ROWS_H
#define BENCH_ROWS_H

#include <QtCore/QString>

/**
 * @file
 * The rows of the table, by what they measure. Each function adds its rows, which have their files in a
 * directory that ends in "/".
 */

void addLoadAndSave(const QString& dir);
void addSafeSaves(const QString& dir);
void addChanges(const QString& dir);
void addGrowth(const QString& dir);
void addThumbnails(const QString& dir);
void addMemory(const QString& dir);
void addLogging();

#endif
