#ifndef BENCH_TABLE_H
#define BENCH_TABLE_H

#include <QtCore/QString>

#include <functional>
#include <string>

/**
 * @file
 * The table of ratios. A row is a piece of work, a column is one who does it: "bare" is the bare calls that
 * the file's format cannot go without, and 1.00 by definition.
 */

/// A piece of work, repeated until its time is known well enough.
struct Work
{
    std::function<void()> run;    ///< timed
    std::function<void()> before; ///< not timed: prepares the next time; may be empty
};

/**
 * Adds one who does the work of a row.
 *
 * @param row    such as "load 999 bookmarks"
 * @param column "bare", "tlvlib", "QDom", "pugixml" or "SQLite"
 */
void addWork(const std::string& row, const char* column, Work work);

/// What tlvlib is to reach in a row: at most this ratio to the bare calls.
void addTarget(const std::string& row, double ratio);

/// Adds a figure that was measured in another way, as a ratio to the row's bare figure.
void addRatio(const std::string& row, const char* column, double ratio);

/**
 * Runs all works, those of a row interleaved, prints the table and writes it as JSON.
 *
 * @return the exit code: 0 when all targets are reached
 */
int runTable(int argc, char** argv, const QString& jsonPath);

#endif
