#include "bench/Others.h"
#include "bench/Rows.h"
#include "bench/Stores.h"
#include "bench/Table.h"

#include <tlvlib/diag/TVNG_DebugPrint.h>

#include <QtCore/QDir>

#include <malloc.h>

namespace {

size_t heap()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

/// Bytes that a call leaves on the heap.
template <typename Call>
double bytesLeftBy(Call call)
{
    const size_t before = heap();
    call();
    return static_cast<double>(heap()) - static_cast<double>(before);
}

void addHeap(const Format& format, const char* what, const QString& dir)
{
    addRatios({std::string("heap held by 999 ") + what + ", of QDom's"}, 0.5, [=, &format] {
        fillStore(format, dir, sampleRecords(format, 999));
        emptyStore(format);
        const double own = bytesLeftBy([&] {
            loadStore(format, dir);
            release();
        });
        DomStore dom(format, dir + format.file);
        const double others = bytesLeftBy([&] { dom.load(); });
        return std::vector<double>{own / others};
    });
}

/// Sets both sinks for one row's work.
Work logging(unsigned char systemLog, unsigned long fileLevel, int messages)
{
    return {[messages] {
                for (int i = 0; i < messages; ++i)
                    TVNG_DebugPrint(3, "[TVNC_HistorySetting::getHistory]");
                TVNG_DebugSetLogLevel(0);
                g_uc_SystemLogLevel = 1;
            },
            [systemLog, fileLevel] {
                g_uc_SystemLogLevel = systemLog;
                TVNG_DebugSetLogLevel(fileLevel);
            }};
}

} // namespace

void addMemory(const QString& dir)
{
    addHeap(BOOKMARKS, "bookmarks", dir);
    addHeap(HISTORY, "visits", dir);
}

void addLogging()
{
    // "bare" is a message that goes nowhere.
    const auto addSink = [](const std::string& row, const Work& work) {
        addRow(row, NO_TARGET, [work] { return Works{{"bare", logging(0, 0, 100)}, {"tlvlib", work}}; });
    };
    addSink("log 100 messages, to the system log alone", logging(1, 0, 100));
    if (QDir("/ata07/Talvenor/tmp").exists())
        addSink("log 100 messages, to the file alone", logging(0, 3, 100));
}
