/*
 * Measures the library against the limit that its file format sets and against what else a browser could use.
 *
 *     tlvlib_bench JSON_FILE [ROWS]
 *
 * ROWS is a regular expression: only the rows in whose names it is found are measured.
 */

#include "bench/Rows.h"
#include "bench/Table.h"
#include "platform/liblog_silent.h"

#include <QtCore/QTemporaryDir>
#include <QtGui/QGuiApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    const QTemporaryDir disk;
    // A disk's own time is the same for all who write to it, and would hide in what they differ.
    const QTemporaryDir memory("/dev/shm/tlvlib_bench-XXXXXX");
    if (argc < 2 || argc > 3 || !disk.isValid()) {
        std::fprintf(stderr, "usage: tlvlib_bench JSON_FILE [ROWS]\n");
        return 2;
    }
    const QString dir = (memory.isValid() ? memory : disk).path() + '/';
    addGrowth(dir);
    addLoadAndSave(dir);
    addSafeSaves(disk.path() + '/');
    addChanges(dir);
    addThumbnails(dir);
    addMemory(dir);
    addLogging();
    return runTable(argc > 2 ? argv[2] : "", argv[1]);
}
