#ifndef TESTS_STORES_HISTORYTEST_H
#define TESTS_STORES_HISTORYTEST_H

#include "tests/support/LogRecorder.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/stores/TVNC_HistorySetting.h>

inline QDateTime at(int si_year, int si_month, int si_day, int si_hour, int si_minute, int si_second = 0)
{
    return QDateTime(QDate(si_year, si_month, si_day), QTime(si_hour, si_minute, si_second));
}

inline TVNS_History visit(const QString& title, const QString& url, const QDateTime& dateTime)
{
    TVNS_History history;
    history.title = title;
    history.url = url;
    history.dateTime = dateTime;
    return history;
}

/// A visit on 12 April 2011, its title and address made from one letter.
inline TVNS_History visit(const char* pc_name, int si_hour, int si_minute)
{
    return visit(utf8(pc_name), utf8("http://") + utf8(pc_name), at(2011, 4, 12, si_hour, si_minute));
}

/// A record as it may stand in a file.
inline QByteArray pageInfo(const QByteArray& url, const QByteArray& dateTime, const QByteArray& id = "")
{
    return "<pageInfo" + (id.isEmpty() ? QByteArray() : " id='" + id + "'") + "><title>t</title><url>" + url +
           "</url><dateTime>" + dateTime + "</dateTime></pageInfo>";
}

/// What the tests of the history have in common: a history in a directory of its own for each of them.
class HistoryTest : public QObject
{
protected:
    HistoryTest() : history_(TVNC_HistorySetting::getInstance()) {}

    /// An empty history that holds up to 50 visits.
    void begin()
    {
        dir_.reset(new TempDir);
        load();
        releaseDeferred();
        LogRecorder::clear();
    }

    void load(int si_max = 50)
    {
        QString dir = dir_->path();
        history_->loadHistory(&dir, si_max);
    }

    void loadFrom(const QByteArray& records, int si_max = 50)
    {
        writeFile(path(), "<history docInfo='1.0'>" + records + "</history>");
        load(si_max);
        LogRecorder::clear();
    }

    void save()
    {
        QString dir = dir_->path();
        history_->saveHistory(&dir, 50);
    }

    void record(const char* pc_name, int si_hour, int si_minute)
    {
        TVNS_History history = visit(pc_name, si_hour, si_minute);
        history_->setHistory(&history);
        LogRecorder::clear();
    }

    QString path() { return dir_->path() + utf8("visit.xml"); }
    QString described() { return describe(history_->getXMLRootNode()); }

    /// The addresses in document order, as one string.
    QString urls()
    {
        QStringList list;
        foreach (TVNC_XMLNode* pc_record, history_->getXMLRootNode()->getXMLNodeChildren())
            list << textOf(pc_record, "url");
        return list.join(utf8(" "));
    }

    QString ids()
    {
        QStringList list;
        foreach (TVNC_XMLNode* pc_record, history_->getXMLRootNode()->getXMLNodeChildren())
            list << pc_record->getAttribute().value(utf8("id")).toString();
        return list.join(utf8(" "));
    }

    QString dateTimeText(int si_position)
    {
        return textOf(history_->getXMLRootNode()->getXMLNodeChildren().at(si_position), "dateTime");
    }

    TVNC_HistorySetting* const history_;
    QScopedPointer<TempDir> dir_;

private:
    static QString textOf(TVNC_XMLNode* pc_record, const char* pc_name)
    {
        QString name = utf8(pc_name);
        TVNC_XMLNode* pc_element = pc_record ? pc_record->getXMLNodeChildByName(name) : nullptr;
        return pc_element ? pc_element->getText() : utf8("-");
    }
};

#endif
