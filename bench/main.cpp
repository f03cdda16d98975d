/*
 * Measures the library against the limit that its file format sets and against what else a browser could use.
 *
 *     tlvlib_bench JSON_FILE [options of Google Benchmark]
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
    const QTemporaryDir scratch;
    if (argc < 2 || !scratch.isValid()) {
        std::fprintf(stderr, "usage: tlvlib_bench JSON_FILE [options of Google Benchmark]\n");
        return 2;
    }
    const QString dir = scratch.path() + '/';
    addGrowth(dir); // first, on a heap that nothing has been done to
    addLoadAndSave(dir);
    addSafeSaves(dir);
    addChanges(dir);
    addThumbnails(dir);
    addMemory(dir);
    addLogging();
    return runTable(argc - 1, argv + 1, argv[1]);
}
