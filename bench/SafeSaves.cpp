#include "bench/Rows.h"
#include "bench/Stores.h"
#include "bench/Table.h"

#include <tlvlib/files/TVNG_SafeSave.h>

namespace {

/// What the safe save costs beside the one in place, which is the bare one here, on the disk of the
/// directory.
void addSaves(const Format& format, const char* what, const QString& dir, int count)
{
    addRow("save " + std::to_string(count) + ' ' + what + " so that nothing is lost", NO_TARGET,
           [=, &format] {
               fillStore(format, dir, sampleRecords(format, count));
               const auto save = [&format, dir](char on) {
                   return Work{[&format, dir, on] {
                                   TVNG_SetSafeSave(on);
                                   saveStore(format, dir);
                               },
                               [&format, dir] {
                                   loadStore(format, dir);
                                   release();
                               }};
               };
               return Works{{"bare", save(0)}, {"tlvlib", save(1)}};
           });
}

} // namespace

void addSafeSaves(const QString& dir)
{
    addSaves(BOOKMARKS, "bookmarks", dir, 50);
    addSaves(BOOKMARKS, "bookmarks", dir, 999);
}
