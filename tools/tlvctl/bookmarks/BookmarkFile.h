#ifndef TOOLS_TLVCTL_BOOKMARKS_BOOKMARKFILE_H
#define TOOLS_TLVCTL_BOOKMARKS_BOOKMARKFILE_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <vector>

/**
 * @file
 * The bookmark files of other browsers: the HTML file that all of them write and read, and XBEL.
 */

/// A bookmark in such a file.
struct FiledBookmark
{
    QString title;
    QString href;
    QByteArray picture; ///< the bytes of a picture in any format; empty for none
};

/// What such a file holds.
struct BookmarkFile
{
    std::vector<FiledBookmark> bookmarks; ///< of all folders, in the order of the file
    int folders = 0;
    int others = 0;  ///< what stands among the bookmarks and is none, such as an alias
    QString problem; ///< why the file is refused, to follow "it"; empty when it is not
};

QByteArray writeHtml(const std::vector<FiledBookmark>& bookmarks);
QByteArray writeXbel(const std::vector<FiledBookmark>& bookmarks);

/// Reads the HTML file in whatever encoding and state it is, with a progress bar.
BookmarkFile readHtml(const QByteArray& bytes);
BookmarkFile readXbel(const QString& path);

/// A title on one line, without control characters and blanks that stand alone, so that every format can
/// carry it.
QString plainTitle(const QString& title);

#endif
