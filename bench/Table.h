#ifndef BENCH_TABLE_H
#define BENCH_TABLE_H

#include "bench/Measurement.h"

#include <QtCore/QString>

#include <functional>
#include <string>
#include <utility>
#include <vector>

/**
 * @file
 * The table of ratios. A row is a piece of work, a column is one who does it: "bare" is the bare calls that
 * the file's format cannot go without, and 1.00 by definition. Each row is measured in processes of its own.
 */

/// A piece of work, repeated until its time is known well enough, in each of a few processes.
struct Work
{
    std::function<void()> run;    ///< timed
    std::function<void()> before; ///< not timed: prepares the next time; may be empty
};

/// Who does a row's work: "bare", and any of "tlvlib", "QDom", "pugixml" and "SQLite".
using Works = std::vector<std::pair<const char*, Work>>;

const double NO_TARGET = 0;

/**
 * Adds a row of works, which take turns.
 *
 * @param row     such as "load 999 bookmarks"
 * @param target  what tlvlib is to reach: at most this ratio to the bare calls
 * @param prepare makes what the works need, and the works, in the row's process
 */
void addRow(const std::string& row, double target, std::function<Works()> prepare);

/**
 * Adds rows that are measured together, and in another way.
 *
 * @param rows    their names
 * @param target  at most, of each
 * @param measure gives tlvlib's ratio of each row
 */
void addRatios(const std::vector<std::string>& rows, double target, const Measurement& measure);

/**
 * Measures all rows, prints the table and writes it as JSON.
 *
 * @param pattern regular expression: only rows in whose names it is found
 * @return the exit code: 0 when all targets are reached, 1 when one is missed
 */
int runTable(const std::string& pattern, const QString& jsonPath);

#endif
