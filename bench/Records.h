#ifndef BENCH_RECORDS_H
#define BENCH_RECORDS_H

#include <QtCore/QString>

#include <array>
#include <vector>

/// What a store's record holds, without regard to who keeps it: two or three texts.
using Record = std::array<QString, 3>;
using Records = std::vector<Record>;

/// How a store's document is made up.
struct Format
{
    const char* file;
    const char* root;
    const char* record;
    std::vector<const char*> fields; ///< in the order of the document; none when the record itself has a text
};

extern const Format BOOKMARKS; ///< address, title, picture
extern const Format HISTORY;   ///< title, address, time
extern const Format FONTS;     ///< name

/// Records as a browser has them: texts of usual lengths, some of them not ASCII; times a few minutes apart,
/// not in their order.
Records sampleRecords(const Format& format, int count);

/// "007"
QString numberOf(int position);

#endif
