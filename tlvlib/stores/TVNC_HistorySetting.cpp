#include "tlvlib/stores/TVNC_HistorySetting.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/diag/TVNG_ifMemory.h"
#include "tlvlib/files/TVNG_saveMode.h"
#include "tlvlib/format/TVNG_documentForm.h"
#include "tlvlib/util/TVNG_ClockTime.h"
#include "tlvlib/util/TVNG_QtVersion.h"
#include "tlvlib/util/TVNG_immortal.h"
#include "tlvlib/util/TVNG_limits.h"
#include "tlvlib/util/TVNG_literal.h"
#include "tlvlib/util/TVNG_quickSort.h"
#include "tlvlib/xml/TVNC_NodeAccess.h"
#include "tlvlib/xml/TVNC_RecordNumbers.h"
#include "tlvlib/xml/TVNG_Records.h"
#include "tlvlib/xml/TVNG_nodes.h"

#include <QtCore/QVector>

namespace {

/// The names in the document.
struct HistoryNames
{
    QString file = TVNG_literal("visit.xml");
    QString root = TVNG_literal("history");
    QString pageInfo = TVNG_literal("pageInfo");
    QString title = TVNG_literal("title");
    QString url = TVNG_literal("url");
    QString dateTime = TVNG_literal("dateTime");
    QString dateTimeFormat = TVNG_literal(TVNG_DATE_TIME_FORMAT);
};

HistoryNames& historyNames()
{
    return TVNG_immortal<HistoryNames>();
}

/// Copies the texts that a record has; what it lacks stays as it was in @a out.
void readVisit(TVNC_XMLNode& record, TVNS_History& out)
{
    TVNG_copyField(record, historyNames().title, out.title);
    TVNG_copyField(record, historyNames().url, out.url);
    QString dateTime;
    if (TVNG_copyField(record, historyNames().dateTime, dateTime))
        out.dateTime = TVNG_clockTime(dateTime, historyNames().dateTimeFormat);
}

/// A visit that is being added at the front, without numbering.
class NewVisit : public TVNC_NewRecord
{
public:
    NewVisit(TVNC_XMLSetting& setting, const TVNS_History& visit)
        : TVNC_NewRecord(setting, historyNames().pageInfo)
    {
        if (!node())
            return;
        addField(historyNames().title, visit.title, TVNG_CHARACTER_DATA);
        addField(historyNames().url, visit.url, TVNG_CHARACTER_DATA);
        addField(historyNames().dateTime, TVNG_clockText(visit.dateTime, historyNames().dateTimeFormat),
                 TVNG_CHARACTER_DATA);
    }
};

void setFieldText(TVNC_XMLNode& record, QString& name, QString text)
{
    if (TVNC_XMLNode* pc_field = record.getXMLNodeChildByName(name))
        pc_field->setText(text);
}

/// A record on its way through the sort.
struct Visit
{
    TVNC_XMLNode* pc_record;
    QDate date;
    QTime time;
};

/// The order of TVNS_History's operator<, without the time zone that a QDateTime finds out about.
bool isNewer(const Visit* pc_visit, const Visit* pc_other)
{
    return pc_visit->date != pc_other->date ? pc_visit->date > pc_other->date
                                            : pc_visit->time > pc_other->time;
}

Visit visitOf(TVNC_XMLNode& record)
{
    Visit visit = {&record, QDate(), QTime()};
    QString text;
    if (!TVNG_copyField(record, historyNames().dateTime, text))
        return visit;
    if (!TVNG_clockParts(text, historyNames().dateTimeFormat, visit.date, visit.time)) {
        const QDateTime dateTime = TVNG_clockTime(text, historyNames().dateTimeFormat);
        visit.date = dateTime.date();
        visit.time = dateTime.time();
    }
    return visit;
}

/// Whether an element is of this name and has nothing but a text.
bool isField(TVNC_XMLNode* pc_node, const QString& name)
{
    return pc_node && TVNC_NodeAccess::name(*pc_node) == name &&
           TVNC_NodeAccess::children(*pc_node).isEmpty() && TVNC_NodeAccess::attributes(*pc_node).isEmpty();
}

/// Whether a record is what addVisit() would make of it, but for text types and the form of the time.
bool isAsAdded(TVNC_XMLNode& record)
{
    const QList<TVNC_XMLNode*>& fields = TVNC_NodeAccess::children(record);
    return TVNC_NodeAccess::name(record) == historyNames().pageInfo &&
           TVNC_NodeAccess::storedText(record).isEmpty() && fields.size() == 3 &&
           isField(fields.at(0), historyNames().title) && isField(fields.at(1), historyNames().url) &&
           isField(fields.at(2), historyNames().dateTime);
}

/// Puts such a record back at the front of the root, as addVisit() would make it anew.
void putBack(TVNC_XMLNode& root, const Visit& visit)
{
    const QList<TVNC_XMLNode*>& fields = TVNC_NodeAccess::children(*visit.pc_record);
    for (int i = 0; i < fields.size(); ++i)
        fields.at(i)->setTextType(TVNG_CHARACTER_DATA);
    QDate date;
    QTime time;
    QString text = TVNC_NodeAccess::text(*fields.at(2));
    if (!TVNG_clockParts(text, historyNames().dateTimeFormat, date, time)) {
        text = TVNG_clockText(TVNG_clockTime(text, historyNames().dateTimeFormat),
                              historyNames().dateTimeFormat);
        fields.at(2)->setText(text);
    }
    char c_prepend = 1;
    root.addXMLNode(visit.pc_record, c_prepend);
    if (!visit.pc_record->getXMLNodeParent())
        qBadAlloc();
}

void logGetHistory()
{
    TVNG_DebugPrint(3, "[TVNC_HistorySetting::getHistory]");
}

void logSetHistory()
{
    TVNG_DebugPrint(3, "[TVNC_HistorySetting::setHistory]");
}

/// Puts the visits back, the last one first, into a document that has nothing but null records. Null records,
/// which only a program can have put there, stay and are logged at each numbering.
void putBackAll(TVNC_XMLSetting& history, const QVector<const Visit*>& sorted, bool b_fresh)
{
    TVNC_XMLNode& root = *history.getXMLRootNode();
    const bool b_numberEach = history.getXMLNodeCnt() > 0;
    for (int i = static_cast<int>(sorted.size()) - 1; i >= 0; --i) {
        logSetHistory();
        TVNC_XMLNode* pc_record = sorted.at(i)->pc_record;
        if (b_fresh && isAsAdded(*pc_record)) {
            putBack(root, *sorted.at(i));
        } else {
            TVNS_History visit;
            readVisit(*pc_record, visit);
            NewVisit copy(history, visit);
            if (!copy.isComplete())
                qBadAlloc(); // a part of a visit does not stand for it
            copy.keep();
            pc_record = copy.node();
        }
        if (b_numberEach)
            history.setIDforChildren(TVNC_RecordNumbers::attributeName());
        else if (i >= TVNC_RecordNumbers::LIMIT) // it keeps the last number that it had on its way back
            TVNC_RecordNumbers::give(*pc_record, TVNC_RecordNumbers::LIMIT - 1);
    }
}

// To the outside, this reads every position with getHistory() and puts every visit back with setHistory(),
// and the log says so. Both would search or number the whole list each time; what they do to a record is done
// here without that. Records that were just read from the file, which nobody can know yet, are put back
// themselves instead of copies of them. When memory runs out on the way, the list is as it was.
void sort(TVNC_XMLSetting& history, bool b_fresh)
{
    TVNG_DebugPrint(3, "[TVNC_HistorySetting::sortHistory]");
    if (!history.getXMLRootNode())
        return;

    const QList<TVNC_XMLNode*> records = TVNG_recordsByNumber(history, history.getXMLNodeCnt());
    QVector<Visit> visits;
    visits.reserve(records.size());
    for (int i = 0; i < records.size(); ++i) {
        logGetHistory();
        if (records.at(i))
            visits.append(visitOf(*records.at(i)));
    }
    QVector<const Visit*> sorted;
    sorted.reserve(visits.size());
    for (int i = 0; i < visits.size(); ++i)
        sorted.append(&visits.at(i));
    TVNG_quickSort(sorted.begin(), sorted.end(), isNewer);

    TVNC_XMLNode& root = *history.getXMLRootNode();
    QList<TVNC_XMLNode*> old = TVNG_takeChildren(root);
    const bool b_sorted = TVNG_hasMemoryFor([&] {
        for (int i = 0; i < old.size(); ++i) {
            if (!old.at(i))
                TVNC_NodeAccess::children(root).append(nullptr);
        }
        history.deleteAllSetting();
        putBackAll(history, sorted, b_fresh);
    });
    if (!b_sorted) {
        const QList<TVNC_XMLNode*> copies = TVNG_takeChildren(root);
        TVNG_giveChildren(root, old);
        for (int i = 0; i < copies.size(); ++i) {
            if (copies.at(i) && !copies.at(i)->getXMLNodeParent())
                delete copies.at(i);
        }
        qBadAlloc(); // for the operation that sorts
    }
    for (int i = 0; i < old.size(); ++i) {
        if (old.at(i) && !old.at(i)->getXMLNodeParent())
            TVNG_release(old.at(i));
    }
    history.setIDforChildren(TVNC_RecordNumbers::attributeName());
}

} // namespace

TVNS_History::~TVNS_History() {}

bool TVNS_History::operator<(const TVNS_History& other) const
{
    return TVNG_isLater(dateTime, other.dateTime);
}

TVNC_HistorySetting::TVNC_HistorySetting() : si_maxCount_(0) {}

TVNC_HistorySetting::~TVNC_HistorySetting() {}

TVNC_HistorySetting* TVNC_HistorySetting::getInstance()
{
    static TVNC_HistorySetting instance;
    return &instance;
}

void TVNC_HistorySetting::loadHistory(QString* dir, int si_loadMax)
{
    TVNG_DebugPrint(3, "[TVNC_HistorySetting::loadHistory] start");
    if (!dir || dir->isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_HistorySetting::loadHistory] Path is NULL or empty.");
        return;
    }
    if (si_loadMax < 1) {
        TVNG_DebugPrint(2, "[TVNC_HistorySetting::loadHistory] Error load_max:%d", si_loadMax);
        return;
    }
    TVNG_ifMemory([&] {
        QString path = *dir + historyNames().file;
        si_maxCount_ = si_loadMax;
        deleteAllSetting();
        load(path);
        setIDforChildren(TVNC_RecordNumbers::attributeName());
        sort(*this, true);
        TVNG_DebugPrint(3, "[TVNC_HistorySetting::loadHistory] end");
    });
}

void TVNC_HistorySetting::saveHistory(QString* dir, int si_saveMax)
{
    TVNG_DebugPrint(3, "[TVNC_HistorySetting::saveHistory] start");
    if (!dir || dir->isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_HistorySetting::saveHistory] Path is NULL or empty.");
        return;
    }
    if (si_saveMax < 1) {
        // The text names an operation of the authentication store. The devices' log filters look for it.
        TVNG_DebugPrint(2, "[TVNC_HistorySetting::saveAuthInfo] Error save_max:%d", si_saveMax);
        return;
    }
    TVNG_saveIfMemory([&] {
        QString path = *dir + historyNames().file;
        TVNG_nameRoot(getXMLRootNode(), historyNames().root);
        save(path);
        TVNG_DebugPrint(3, "[TVNC_HistorySetting::saveHistory] end");
    });
}

int TVNC_HistorySetting::getHistoryCnt()
{
    return TVNG_ifMemory(0, [&] {
        return getXMLRootNodeChildCntByName(TVNC_RecordNumbers::attributeName(), historyNames().pageInfo);
    });
}

void TVNC_HistorySetting::setHistory(TVNS_History* pc_history)
{
    logSetHistory();
    if (!pc_history)
        return;
    TVNG_ifMemory([&] {
        NewVisit visit(*this, *pc_history);
        if (!visit.node())
            return;
        visit.keep();
        setIDforChildren(TVNC_RecordNumbers::attributeName());
    });
}

void TVNC_HistorySetting::updateHistory(TVNS_History* pc_history)
{
    TVNG_DebugPrint(3, "[TVNC_HistorySetting::updateHistory]");
    // One visit goes, however many are too many, and it goes even when the record turns out to be null.
    // Before the first load the maximum is 0, so the number is -1, which no visit has.
    if (getXMLNodeCnt() >= si_maxCount_)
        deleteHistory(si_maxCount_ - 1);
    setHistory(pc_history);
}

bool TVNC_HistorySetting::getHistory(int si_id, TVNS_History* pc_out)
{
    logGetHistory();
    return TVNG_ifMemory(false, [&] {
        TVNC_XMLNode* pc_record = pc_out ? TVNG_recordByNumber(*this, si_id) : nullptr;
        if (!pc_record)
            return false;
        TVNS_History visit = *pc_out;
        readVisit(*pc_record, visit);
        *pc_out = visit;
        return true;
    });
}

int TVNC_HistorySetting::getHistoryIndex(QString& url)
{
    return TVNG_ifMemory(-1, [&] {
        const QList<TVNC_XMLNode*> records = TVNG_recordsByNumber(*this, getHistoryCnt());
        // Not cleared between visits: browsers know a visit without address by that of the one before it.
        QString visited;
        for (int i = 0; i < records.size(); ++i) {
            logGetHistory();
            if (!records.at(i))
                continue;
            TVNG_copyField(*records.at(i), historyNames().url, visited);
            if (visited == url)
                return i;
        }
        return -1;
    });
}

void TVNC_HistorySetting::changeHistory(int si_id, TVNS_History& history)
{
    TVNG_DebugPrint(3, "[TVNC_HistorySetting::changeHistory]");
    TVNG_ifMemory([&] {
        TVNC_XMLNode* pc_record = TVNG_recordByNumber(*this, si_id);
        if (!pc_record)
            return;
        const QString dateTime = TVNG_clockText(history.dateTime, historyNames().dateTimeFormat);
        setFieldText(*pc_record, historyNames().title, history.title);
        setFieldText(*pc_record, historyNames().url, history.url);
        setFieldText(*pc_record, historyNames().dateTime, dateTime);
    });
}

void TVNC_HistorySetting::changeHistoryTitle(int si_id, QString& title)
{
    TVNG_DebugPrint(3, "[TVNC_HistorySetting::changeHistoryTitle]");
    TVNG_ifMemory([&] {
        if (TVNC_XMLNode* pc_record = TVNG_recordByNumber(*this, si_id))
            setFieldText(*pc_record, historyNames().title, title);
    });
}

void TVNC_HistorySetting::deleteHistory(int si_id)
{
    TVNG_DebugPrint(3, "[TVNC_HistorySetting::deleteHistory] si_nodeNum:%d", si_id);
    TVNG_ifMemory([&] { TVNG_deleteRecord(*this, si_id); });
}

void TVNC_HistorySetting::sortHistory()
{
    TVNG_ifMemory([&] { sort(*this, false); });
}
