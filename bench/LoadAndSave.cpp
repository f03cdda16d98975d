#include "bench/Others.h"
#include "bench/Rows.h"
#include "bench/Stores.h"
#include "bench/Table.h"

#include <QtCore/QDateTime>

#include <memory>

namespace {

/// The file of so many records, and those who keep them.
struct Contest
{
    Contest(const Format& format_, const QString& dir_, int count)
        : format(format_)
        , dir(dir_)
        , path(dir + format.file)
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

using SharedContest = std::shared_ptr<Contest>;

Work bareLoad(const SharedContest& c)
{
    return {[c] { bareTokenLoop(c->path); }, {}};
}

/// What each needs before it can answer.
Works loads(const SharedContest& c)
{
    return {{"bare", bareLoad(c)},
            {"tlvlib", {[c] { loadStore(c->format, c->dir); }, [c] { emptyStore(c->format); }}},
            {"QDom", {[c] { c->dom.load(); }, [c] { c->dom.clear(); }}},
            {"pugixml", {[c] { c->pugi.load(); }, [c] { c->pugi.clear(); }}}};
}

/// Once more, over the same records: these are let go.
Works loadsIntoFull(const SharedContest& c)
{
    return {{"bare", bareLoad(c)}, {"tlvlib", {[c] { loadStore(c->format, c->dir); }, release}}};
}

/// What the library does for the caller, too: the times of visits are no texts.
void handOut(const Format& format, const Records& records)
{
    if (&format != &HISTORY)
        return;
    for (const Record& record : records)
        QDateTime::fromString(record[2], "yyyy/MM/dd hh:mm");
}

Works loadsWithHandingOut(const SharedContest& c)
{
    return {{"bare", bareLoad(c)},
            {"tlvlib",
             {[c] {
                  loadStore(c->format, c->dir);
                  recordsOfStore(c->format);
              },
              [c] { emptyStore(c->format); }}},
            {"QDom",
             {[c] {
                  c->dom.load();
                  handOut(c->format, c->dom.records());
              },
              [c] { c->dom.clear(); }}},
            {"pugixml",
             {[c] {
                  c->pugi.load();
                  handOut(c->format, c->pugi.records());
              },
              [c] { c->pugi.clear(); }}},
            {"SQLite",
             {[c] {
                  c->sqlite.open();
                  handOut(c->format, c->sqlite.records());
                  c->sqlite.close();
              },
              {}}}};
}

/// A browser saves once what it has loaded, so that the library's records are new each time.
Works saves(const SharedContest& c)
{
    c->dom.load();
    c->pugi.load();
    return {{"bare", {[c] { bareWriterCalls(c->path, c->format, c->records); }, {}}},
            {"tlvlib",
             {[c] { saveStore(c->format, c->dir); },
              [c] {
                  loadStore(c->format, c->dir);
                  release();
              }}},
            {"QDom", {[c] { c->dom.save(); }, {}}},
            {"pugixml", {[c] { c->pugi.save(); }, {}}},
            {"SQLite",
             {[c] {
                  c->sqlite.open();
                  c->sqlite.replaceAll(c->records);
                  c->sqlite.close();
              },
              {}}}};
}

struct Targets
{
    double load;
    double loadIntoFull;
    double handOut;
    double save;
};

void addRows(const Format& format, const char* what, const QString& dir, int count, const Targets& targets)
{
    const std::string records = std::to_string(count) + ' ' + what;
    const auto with = [=, &format](Works (*works)(const SharedContest&)) {
        return [=, &format] { return works(std::make_shared<Contest>(format, dir, count)); };
    };
    addRow("load " + records, targets.load, with(loads));
    addRow("load " + records + " into a full store", targets.loadIntoFull, with(loadsIntoFull));
    addRow("load and hand out " + records, targets.handOut, with(loadsWithHandingOut));
    addRow("save " + records, targets.save, with(saves));
}

} // namespace

void addLoadAndSave(const QString& dir)
{
    const Targets none{NO_TARGET, NO_TARGET, NO_TARGET, NO_TARGET};
    addRows(BOOKMARKS, "bookmarks", dir, 50, none);
    addRows(BOOKMARKS, "bookmarks", dir, 999, {1.6, 1, 0.6, 0.6});
    addRows(HISTORY, "visits", dir, 50, none);
    addRows(HISTORY, "visits", dir, 999, {2, 1, NO_TARGET, 0.6});
    addRows(FONTS, "fonts", dir, 50, none);
    addRows(FONTS, "fonts", dir, 999, none);
}
