#include "bench/Rows.h"
#include "bench/Stores.h"
#include "bench/Table.h"

#include <tlvlib/files/TVNG_SafeSave.h>

#include <QtCore/QDir>

namespace {

/// What the safe save costs beside the one in place, which is the bare one here, on the disk of the
/// directory.
void addRow(const Format& format, const char* what, const QString& dir, int count)
{
    const QString own = dir + "safe-" + format.root + QString::number(count) + '/';
    QDir().mkpath(own);
    fillStore(format, own, sampleRecords(format, count));
    const std::string row = "save " + std::to_string(count) + ' ' + what + " so that nothing is lost";
    const auto addMode = [&](const char* column, char on) {
        addWork(row, column,
                {[&format, own, on] {
                     TVNG_SetSafeSave(on);
                     saveStore(format, own);
                     TVNG_SetSafeSave(0);
                 },
                 // Loaded again each time, because the store is one for all rows.
                 [&format, own] {
                     loadStore(format, own);
                     release();
                 }});
    };
    addMode("bare", 0);
    addMode("tlvlib", 1);
}

} // namespace

void addSafeSaves(const QString& dir)
{
    addRow(BOOKMARKS, "bookmarks", dir, 50);
    addRow(BOOKMARKS, "bookmarks", dir, 999);
}
