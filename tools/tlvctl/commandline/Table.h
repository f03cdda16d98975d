#ifndef TOOLS_TLVCTL_COMMANDLINE_TABLE_H
#define TOOLS_TLVCTL_COMMANDLINE_TABLE_H

#include <QtCore/QStringList>

#include <vector>

/**
 * A table for people. On a terminal, the widest columns are cut so that a line fits its width; into a pipe or
 * a file everything is written, and a cell that is wider than most pushes the rest of its line to the right
 * instead of widening every other line.
 *
 * Cells are printed as they are: texts of others go through printable() first.
 */
class Table
{
public:
    /// @param keepsFirst whether the first column is never cut, because it is what other commands need
    explicit Table(const QStringList& header, bool keepsFirst = false);

    void addRow(const QStringList& cells);

    /// Writes the header and the rows to standard output; nothing when there are no rows.
    void print() const;

private:
    std::vector<int> columnWidths(int lineWidth) const;
    std::vector<int> naturalWidths() const;

    bool keepsFirst_;
    std::vector<QStringList> rows_; ///< the header is the first
};

/// How many columns of a terminal a text takes: two for the wide characters of East Asia, none for accents.
int displayWidth(const QString& text);

/// The text, cut so that it takes at most @a width columns, with a "…" at its end where it was cut.
QString cutToWidth(const QString& text, int width);

#endif
