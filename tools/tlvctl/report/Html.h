#ifndef TOOLS_TLVCTL_REPORT_HTML_H
#define TOOLS_TLVCTL_REPORT_HTML_H

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <vector>

/**
 * @file
 * Pieces of a page that needs nothing but itself. What is named "text" is anybody's and is escaped here; what
 * is named "html" is of these functions' own making.
 */

/// A stored text, with everything visible, and without the passwords of addresses in it.
QString htmlText(const QString& text);

/// A stored address: a link when it leads to a web page, text otherwise.
QString htmlLink(const QString& address, const QString& text);

/// One bar of a chart.
struct Bar
{
    QString text;
    qint64 size;
    QString shown; ///< the size as it is written; empty for the number itself
};

/// Bars that lie below each other, each with its text and its size.
QString htmlBars(const std::vector<Bar>& bars);

/// Columns beside each other as a drawing, each with its text as a tooltip, and the first and last one's
/// below.
QString htmlColumns(const std::vector<Bar>& columns, const QString& label);

/// A table; the cells are html.
QString htmlTable(const QStringList& header, const std::vector<QStringList>& rows);

/// A part of the page with its heading, which can be jumped to.
QString htmlSection(const QString& id, const QString& heading, const QString& html);

/// The whole page.
QString htmlPage(const QString& title, const QString& html);

#endif
