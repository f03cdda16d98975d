/*
 * Pieces of work whose instructions are counted; see bench/instructions.
 *
 *     scenarios NAME SCRATCH_DIR
 */

#include "bench/Stores.h"
#include "platform/liblog_silent.h"

#include <tlvlib/stores/TVNC_BookmarksSetting.h>
#include <tlvlib/stores/TVNC_HistorySetting.h>
#include <tlvlib/thumbs/TVNC_ThumbnailConverter.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>

#include <valgrind/callgrind.h>

#include <cstdio>
#include <functional>
#include <map>
#include <string>

namespace {

/// A store with 999 records, from its file.
void prepare(const Format& format, const QString& dir)
{
    fillStore(format, dir, sampleRecords(format, 999));
    loadStore(format, dir);
    release();
}

void preparePictures(const QString& dir)
{
    QDir().mkpath(dir + "pictures");
    QByteArray bytes(20 * 1024, 'p');
    for (int i = 0; i < 50; ++i) {
        QFile file(dir + QString("pictures/%1.png").arg(i));
        if (file.open(QIODevice::WriteOnly))
            file.write(bytes);
    }
}

struct Scenario
{
    std::function<void(const QString& dir)> prepare;
    std::function<void(const QString& dir)> run; ///< counted
};

void visit(int count)
{
    for (int i = 0; i < count; ++i) {
        TVNS_History visit;
        visit.title = "A page";
        visit.url = QString("http://www.example.com/%1").arg(i);
        visit.dateTime = QDateTime(QDate(2011, 5, 6), QTime(7, 8));
        TVNC_HistorySetting::getInstance()->updateHistory(&visit);
    }
}

void pack(const QString& dir)
{
    QByteArray source = (dir + "pictures/").toLatin1();
    QByteArray target = (dir + "pack.xml").toLatin1();
    TVNC_ThumbnailConverter::getInstance()->convertThumbnailPngToXML(source.data(), target.data());
}

const std::map<std::string, Scenario> SCENARIOS{
    {"load-bookmarks",
     {[](const QString& dir) { prepare(BOOKMARKS, dir); },
      [](const QString& dir) { loadStore(BOOKMARKS, dir); }}},
    {"load-visits",
     {[](const QString& dir) { prepare(HISTORY, dir); },
      [](const QString& dir) { loadStore(HISTORY, dir); }}},
    {"save-bookmarks",
     {[](const QString& dir) { prepare(BOOKMARKS, dir); },
      [](const QString& dir) { saveStore(BOOKMARKS, dir); }}},
    {"save-visits",
     {[](const QString& dir) { prepare(HISTORY, dir); },
      [](const QString& dir) { saveStore(HISTORY, dir); }}},
    {"record-20-visits",
     {[](const QString& dir) { prepare(HISTORY, dir); }, [](const QString&) { visit(20); }}},
    {"look-up-an-absent-address",
     {[](const QString& dir) { prepare(HISTORY, dir); },
      [](const QString&) {
          QString url = "http://www.example.com/absent";
          TVNC_HistorySetting::getInstance()->getHistoryIndex(url);
      }}},
    {"read-999-bookmarks",
     {[](const QString& dir) { prepare(BOOKMARKS, dir); },
      [](const QString&) { recordsOfStore(BOOKMARKS); }}},
    {"pack-50-pictures", {preparePictures, pack}},
};

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const auto scenario = SCENARIOS.find(argc == 3 ? argv[1] : "");
    if (scenario == SCENARIOS.end()) {
        for (const auto& known : SCENARIOS)
            std::printf("%s\n", known.first.c_str());
        return argc == 1 ? 0 : 2;
    }
    const QString dir = QString(argv[2]) + '/';
    scenario->second.prepare(dir);
    CALLGRIND_TOGGLE_COLLECT;
    scenario->second.run(dir);
    CALLGRIND_TOGGLE_COLLECT;
    return 0;
}
