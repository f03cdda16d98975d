/*
 * A bookmark file of any bytes, read as other browsers' HTML. What was read is written and read again, which
 * must give the same: titles and addresses are told apart by the markup alone.
 */

#include "fuzz/Fuzz.h"

#include "tools/tlvctl/bookmarks/BookmarkFile.h"

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    scratchDir(); // has the logs off
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const BookmarkFile file = readHtml(bytes);
    if (!file.problem.isEmpty()) {
        MUST(file.bookmarks.size() <= size);
        return 0;
    }
    std::vector<FiledBookmark> bookmarks = file.bookmarks;
    for (FiledBookmark& bookmark : bookmarks)
        bookmark.picture.clear(); // of any format; what is written is PNG
    const QByteArray html = writeHtml(bookmarks);
    const BookmarkFile again = readHtml(html);
    MUST(again.problem.isEmpty());
    MUST(again.bookmarks.size() == bookmarks.size());
    MUST(writeHtml(again.bookmarks) == html);
    return 0;
}
