#include "bench/Others.h"
#include "bench/Rows.h"
#include "bench/Stores.h"
#include "bench/Table.h"

#include <QtCore/QDateTime>
#include <QtCore/QDir>

#include <memory>

namespace {

/// The file of so many records in a directory of its own, and those who keep them.
struct Contest
{
    Contest(const Format& format_, const QString& dir_, int count)
        : format(format_)
        , dir(dir_ + format_.root + QString::number(count) + '/')
        , path((QDir().mkpath(dir), dir + format_.file))
        , records(sampleRecords(format, count))
        , dom(format, path)
        , pugi(format, path)
        , sqlite(format, path)
    {
        fillStore(format, dir, records);
        sqlite.open();
        sqlite.replaceAll(records);
        sqlite.close();
    }

    const Format& format;
    QString dir;
    QString path;
    Records records;
    DomStore dom;
    PugiStore pugi;
    SqliteStore sqlite;
};

/// What the library does for the caller, too: the times of visits are no texts.
void handOut(const Format& format, const Records& records)
{
    if (&format != &HISTORY)
        return;
    for (const Record& record : records)
        QDateTime::fromString(record[2], "yyyy/MM/dd hh:mm");
}

/// What is to be reached; 0 for no target.
struct Targets
{
    double load;
    double handOut;
    double loadFull;
    double save;
};

void addRows(const std::shared_ptr<Contest>& contest, const char* what, int count, const Targets& targets)
{
    Contest* const c = contest.get();
    const std::string records = std::to_string(count) + ' ' + what;

    const auto target = [](const std::string& reached, double ratio) {
        if (ratio > 0)
            addTarget(reached, ratio);
    };
    const auto empty = [c] { emptyStore(c->format); };

    // What each needs before it can answer.
    std::string row = "load " + records;
    addWork(row, "bare", {[contest] { bareTokenLoop(contest->path); }, {}});
    addWork(row, "tlvlib", {[c] { loadStore(c->format, c->dir); }, empty});
    addWork(row, "QDom", {[c] { c->dom.load(); }, [c] { c->dom.clear(); }});
    addWork(row, "pugixml", {[c] { c->pugi.load(); }, [c] { c->pugi.clear(); }});
    target(row, targets.load);

    // Once more, over the same records: these are let go.
    row = "load " + records + " into a full store";
    addWork(row, "bare", {[c] { bareTokenLoop(c->path); }, {}});
    addWork(row, "tlvlib",
            {[c] { loadStore(c->format, c->dir); },
             [c] {
                 holdStore(c->format, c->dir);
                 release();
             }});
    target(row, targets.loadFull);

    row = "load and hand out " + records;
    addWork(row, "bare", {[c] { bareTokenLoop(c->path); }, {}});
    addWork(row, "tlvlib",
            {[c] {
                 loadStore(c->format, c->dir);
                 recordsOfStore(c->format);
             },
             empty});
    addWork(row, "QDom",
            {[c] {
                 c->dom.load();
                 handOut(c->format, c->dom.records());
             },
             [c] { c->dom.clear(); }});
    addWork(row, "pugixml",
            {[c] {
                 c->pugi.load();
                 handOut(c->format, c->pugi.records());
             },
             [c] { c->pugi.clear(); }});
    addWork(row, "SQLite",
            {[c] {
                 c->sqlite.open();
                 handOut(c->format, c->sqlite.records());
                 c->sqlite.close();
             },
             {}});
    target(row, targets.handOut);

    row = "save " + records;
    const QString copy = c->dir + "copy.xml";
    const QString copyDir = c->dir + "copy/";
    QDir().mkpath(copyDir);
    auto dom = std::make_shared<DomStore>(c->format, copy);
    auto pugi = std::make_shared<PugiStore>(c->format, copy);
    const auto loadOnce = [c, copy](auto& store) {
        QFile::remove(copy);
        QFile::copy(c->path, copy);
        store.load();
    };
    loadOnce(*dom);
    loadOnce(*pugi);
    addWork(row, "bare", {[c, copy] { bareWriterCalls(copy, c->format, c->records); }, {}});
    // Loaded again each time, because the store is one for all rows.
    addWork(row, "tlvlib",
            {[c, copyDir] { saveStore(c->format, copyDir); },
             [c] {
                 loadStore(c->format, c->dir);
                 release();
             }});
    addWork(row, "QDom", {[dom] { dom->save(); }, {}});
    addWork(row, "pugixml", {[pugi] { pugi->save(); }, {}});
    addWork(row, "SQLite",
            {[c] {
                 c->sqlite.open();
                 c->sqlite.replaceAll(c->records);
                 c->sqlite.close();
             },
             {}});
    target(row, targets.save);
}

} // namespace

void addLoadAndSave(const QString& dir)
{
    const Targets none{0, 0, 0, 0};
    addRows(std::make_shared<Contest>(BOOKMARKS, dir, 50), "bookmarks", 50, none);
    addRows(std::make_shared<Contest>(BOOKMARKS, dir, 999), "bookmarks", 999, {1.6, 0.6, 1, 0.6});
    addRows(std::make_shared<Contest>(HISTORY, dir, 50), "visits", 50, none);
    addRows(std::make_shared<Contest>(HISTORY, dir, 999), "visits", 999, {2, 0, 1, 0.6});
    addRows(std::make_shared<Contest>(FONTS, dir, 50), "fonts", 50, none);
    addRows(std::make_shared<Contest>(FONTS, dir, 999), "fonts", 999, none);
}
