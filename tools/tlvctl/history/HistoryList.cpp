#include "tools/tlvctl/history/HistoryList.h"

#include "tlvlib/util/TVNG_limits.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/records/StoreChange.h"

#include <QtCore/QHash>
#include <QtCore/QSet>

#include <algorithm>
#include <deque>
#include <utility>

namespace {

const QString TIME_FORMAT = TVNG_DATE_TIME_FORMAT;
const char* const FIELDS[] = {"title", "url", "dateTime"};

/// What loading makes of the text of a time.
QString loadedTime(const QString& text)
{
    QDateTime time;
    if (HistoryList::parseTime(text, time))
        return text;
    return HistoryList::timeText(QDateTime::fromString(text, TIME_FORMAT));
}

/// Whether a record holds nothing but what the store reads of it.
bool isPlain(TVNC_XMLNode& record)
{
    int known = 0;
    for (const char* field : FIELDS) {
        TVNC_XMLNode* const child = childOf(record, field);
        if (!child)
            continue;
        ++known;
        if (!child->getXMLNodeChildren().isEmpty() || !child->getAttribute().isEmpty())
            return false;
    }
    const QXmlStreamAttributes& attributes = record.getAttribute();
    const bool hasOther = attributes.size() > (attributes.hasAttribute("id") ? 1 : 0);
    return record.getText().isEmpty() && !hasOther && record.getXMLNodeChildren().size() == known;
}

/// What loading changes in a record that it takes over.
std::vector<Flaw> changesOf(TVNC_XMLNode& record)
{
    std::vector<Flaw> flaws;
    checkName(record, "pageInfo", {"notNamedPageInfo", ": loading makes it one"}, flaws);
    for (const char* field : FIELDS) {
        if (!childOf(record, field))
            flaws.push_back(missingElement(field, ": loading adds an empty one"));
    }
    const QString time = textOf(record, "dateTime").value_or(QString());
    const QString loaded = loadedTime(time);
    if (!time.isEmpty() && loaded.isEmpty())
        flaws.push_back({"timeUnreadable", QString("time %1 is not of the form \"%2\": loading empties it")
                                               .arg(quoted(time), TIME_FORMAT)});
    else if (time != loaded)
        flaws.push_back(
            {"timeChanged", QString("time %1: loading makes it %2").arg(quoted(time), quoted(loaded))});
    if (!isPlain(record))
        flaws.push_back(
            {"surplusContent", "holds more than title, address and time: loading drops the rest"});
    return flaws;
}

VisitRecord readRecord(TVNC_XMLNode& node)
{
    VisitRecord record;
    record.title = textOf(node, "title").value_or(QString());
    record.url = textOf(node, "url").value_or(QString());
    record.time = textOf(node, "dateTime").value_or(QString());
    return record;
}

/// By what the records of the file are found again among those that were loaded.
QStringList keyOf(const VisitRecord& record)
{
    return {record.title, record.url, record.time};
}

/// Which records of a file the store takes over: those that it finds by a number below their count.
std::vector<bool> takenOver(const QList<TVNC_XMLNode*>& records)
{
    std::vector<bool> taken(static_cast<size_t>(records.size()), false);
    QSet<int> numbers;
    for (int i = 0; i < records.size(); ++i) {
        if (i < NUMBERED_MAX) {
            numbers.insert(i); // loading numbers these anew
            taken[static_cast<size_t>(i)] = true;
            continue;
        }
        const std::optional<int> number = numberOf(*records.at(i), numbers);
        taken[static_cast<size_t>(i)] = number && *number >= 0 && *number < records.size();
    }
    return taken;
}

} // namespace

HistoryList::HistoryList(const QString& dir, int maximum)
    : StoreOf(dir, "visit.xml", {"history", "pageInfo"}), maximum_(maximum)
{
}

void HistoryList::loadSetting()
{
    QString dir = file().dir();
    store_.loadHistory(&dir, maximum_);
    compareWithFile(std::move(fileRoot_));
}

void HistoryList::save()
{
    QString dir = file().dir();
    store_.saveHistory(&dir, maximum_);
}

/// The store sorts, so the records of the file are found by content.
void HistoryList::compareWithFile(std::unique_ptr<TVNC_XMLNode> fileRoot)
{
    const QList<TVNC_XMLNode*> fileRecords =
        fileRoot ? fileRoot->getXMLNodeChildren() : QList<TVNC_XMLNode*>();
    const std::vector<bool> taken = takenOver(fileRecords);
    QHash<QStringList, std::deque<int>> positions;
    std::vector<VisitRecord> dropped;
    for (int i = 0; i < fileRecords.size(); ++i) {
        VisitRecord record = readRecord(*fileRecords.at(i));
        record.filePosition = i;
        if (taken[static_cast<size_t>(i)]) {
            record.time = loadedTime(record.time);
            positions[keyOf(record)].push_back(i);
            continue;
        }
        record.isDropped = true;
        record.flaws = {{"dropped", QString("is dropped by loading: the store numbers the first %1 records, "
                                            "and takes over no others")
                                        .arg(NUMBERED_MAX)}};
        dropped.push_back(record);
    }

    loaded_.clear();
    QSet<int> numbers;
    for (TVNC_XMLNode* node : std::as_const(root().getXMLNodeChildren())) {
        VisitRecord record = readRecord(*node);
        record.number = numberOf(*node, numbers);
        std::deque<int>& candidates = positions[keyOf(record)];
        if (!candidates.empty()) {
            record.filePosition = candidates.front();
            record.flaws = changesOf(*fileRecords.at(candidates.front()));
            candidates.pop_front();
        }
        if (!record.number)
            record.flaws.push_back(
                {"noNumber", "has no number: cannot be asked for, and is lost after the next saving"});
        loaded_.push_back(record);
    }
    isSorted_ = std::is_sorted(loaded_.begin(), loaded_.end(), [](const auto& left, const auto& right) {
        return left.filePosition < right.filePosition;
    });
    loaded_.insert(loaded_.end(), dropped.begin(), dropped.end());
}

QStringList HistoryList::changesOfLoading() const
{
    QStringList lines;
    for (const VisitRecord& record : loaded_) {
        if (record.isDropped)
            lines.append(changeLine(
                "dropped", recordName(record),
                QStringList{printable(record.time), printable(record.title), printable(record.url)}.join(
                    "  ")));
        else if (!record.flaws.empty())
            lines.append(changeLine("loaded", recordName(record), explanationsOf(record.flaws)));
    }
    return lines;
}

QStringList HistoryList::remarks() const
{
    QStringList remarks = Store::remarks();
    if (!isSorted_)
        remarks.append("the order in the file is another one: loading sorts the newest visit first");
    return remarks;
}

void HistoryList::writeRemarks(JsonWriter& json) const
{
    Store::writeRemarks(json);
    json.member("sorted", isSorted_);
}

std::optional<int> HistoryList::find(const QString& url)
{
    QString copy = url;
    const int number = store_.getHistoryIndex(copy);
    return number < 0 ? std::nullopt : std::optional<int>(number);
}

TVNS_History HistoryList::entry(int number) const
{
    TVNS_History visit;
    store_.getHistory(number, &visit);
    return visit;
}

void HistoryList::add(TVNS_History visit, QStringList& changes)
{
    const std::optional<int> earlier = find(visit.url);
    if (earlier) {
        changes.append(changeLine("removed", numberText(earlier), line(entry(*earlier))));
        remove(*earlier);
    }
    if (root().getXMLNodeChildren().size() >= maximum_) {
        const int oldest = maximum_ - 1;
        const bool isShifted = earlier && oldest >= *earlier; // told as it was before the command
        changes.append(
            changeLine("removed", numberText(isShifted ? oldest + 1 : oldest), line(entry(oldest))));
    }
    store_.updateHistory(&visit);
}

std::optional<int> HistoryList::numberAfterSorting(const TVNS_History& visit)
{
    store_.sortHistory();
    const QStringList key{visit.title, visit.url, timeText(visit.dateTime)};
    QSet<int> numbers;
    for (TVNC_XMLNode* node : std::as_const(root().getXMLNodeChildren())) {
        const std::optional<int> number = numberOf(*node, numbers);
        if (number && keyOf(readRecord(*node)) == key)
            return number;
    }
    return std::nullopt;
}

bool HistoryList::parseTime(const QString& text, QDateTime& time)
{
    // Apart, because a time that a daylight-saving change skips makes no valid QDateTime, but is one here.
    const QDate date = QDate::fromString(text.left(10), "yyyy/MM/dd");
    const QTime clock = QTime::fromString(text.mid(11), "hh:mm");
    if (text.size() != 16 || text.at(10) != ' ' || !date.isValid() || !clock.isValid())
        return false;
    time = QDateTime(date, clock);
    return timeText(time) == text;
}

QString HistoryList::timeText(const QDateTime& time)
{
    return QDateTime(time.date(), time.time(), Qt::UTC).toString(TIME_FORMAT);
}

QString HistoryList::line(const TVNS_History& visit)
{
    return QStringList{timeText(visit.dateTime), printable(visit.title), printable(visit.url)}.join("  ");
}
