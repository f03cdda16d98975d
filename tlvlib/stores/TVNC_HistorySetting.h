#ifndef TLVLIB_STORES_TVNC_HISTORYSETTING_H
#define TLVLIB_STORES_TVNC_HISTORYSETTING_H

#include <tlvlib/xml/TVNC_XMLSetting.h>

#include <QtCore/QDateTime>
#include <QtCore/QString>

/// One visit of a page. The order of the members is part of the binary interface.
struct TLVLIB_EXPORT TVNS_History
{
    ~TVNS_History();

    /**
     * Whether this visit is later than the other, so that sorting upwards puts the newest visit first.
     *
     * Local times are compared as they stand on the clock: neither the hour that a daylight-saving change
     * skips nor the one that it repeats changes places with its neighbours, on any Qt. A time without a
     * valid date is earlier than every time with one.
     */
    bool operator<(const TVNS_History& other) const;

    /// The page's title, of any length.
    QString title;

    /// The page's address, of any length. A carriage return in it, as in a title, comes back as a line feed
    /// from a file, and a text of blanks alone as empty.
    QString url;

    /**
     * When it was visited, as the clock showed it. Minutes are kept, seconds are not.
     *
     * A time that a daylight-saving change skips is not valid for Qt 5 (QDateTime::isValid()), whereas Qt 4
     * knows no such times. It is kept all the same: date() and time() tell it, and the store writes it back
     * as it was.
     */
    QDateTime dateTime;
};

TLVLIB_NO_VIRTUAL_DESTRUCTOR_BEGIN
/**
 * The visited pages, newest first, in the file "visit.xml":
 *
 * @code
 * <?xml version="1.0" encoding="UTF-8"?>
 * <history docInfo="1.0">
 *     <pageInfo id="000">
 *         <title>Weather</title>
 *         <url>http://example.com/weather</url>
 *         <dateTime>2011/04/12 10:15</dateTime>
 *     </pageInfo>
 *     <pageInfo id="001">
 *         <title>News</title>
 *         <url>http://example.com/</url>
 *         <dateTime>2011/04/12 09:58</dateTime>
 *     </pageInfo>
 * </history>
 * @endcode
 *
 * A visit's number is its position; new visits get number 0. At most 999 visits have a number. The list
 * starts without a document: before the first loadHistory() there are no visits, and what is recorded is
 * lost.
 *
 * @code
 * TVNC_HistorySetting* history = TVNC_HistorySetting::getInstance();
 * history->loadHistory(&directory, 50);
 * history->updateHistory(&visit); // the 51st visit takes the place of the oldest
 * history->saveHistory(&directory, 50);
 * @endcode
 *
 * Directories end in "/": the file name is appended as it is. Titles and addresses are not limited. Nothing
 * is reported as an error beyond the results and log lines told below.
 */
class TLVLIB_EXPORT TVNC_HistorySetting : public TVNC_XMLSetting
{
public:
    /// The one history of the process, made on first use.
    static TVNC_HistorySetting* getInstance();

    /**
     * Replaces the list by that of @a dir + "visit.xml", numbers it and sorts it; see sortHistory(). A
     * missing file gives an empty list. A file with more visits than the maximum keeps them.
     *
     * Logs at level 3 "[TVNC_HistorySetting::loadHistory] start" and "... end". Nothing changes, and level 2
     * tells why: for a null or empty directory "[TVNC_HistorySetting::loadHistory] Path is NULL or empty.",
     * for a maximum below 1 "[TVNC_HistorySetting::loadHistory] Error load_max:%d".
     *
     * @param dir        ends in "/"
     * @param si_loadMax how many visits updateHistory() keeps from now on; above 999 it bounds nothing
     */
    void loadHistory(QString* dir, int si_loadMax);

    /**
     * Writes the list to @a dir + "visit.xml", as TVNG_SetSafeSave() has it, and in its present order. Before
     * the first load the file stays as it was.
     *
     * Logs at level 3 "[TVNC_HistorySetting::saveHistory] start" and "... end". Nothing is written, and level
     * 2 tells why: for a null or empty directory "[TVNC_HistorySetting::saveHistory] Path is NULL or empty.",
     * for a maximum below 1 "[TVNC_HistorySetting::saveAuthInfo] Error save_max:%d", which names another
     * operation.
     *
     * @param dir        ends in "/"
     * @param si_saveMax must be 1 or more and bounds nothing
     */
    void saveHistory(QString* dir, int si_saveMax);

    /// How many visits have a number: at most 999. Time grows with the list.
    int getHistoryCnt();

    /**
     * Records a visit at the front, whatever the maximum and whether or not the page is there already. Null
     * records nothing. Logs at level 3 "[TVNC_HistorySetting::setHistory]".
     *
     * A time is stored as it stands, without conversion; one without a valid date becomes an empty text.
     */
    void setHistory(TVNS_History* pc_history);

    /**
     * Records a visit with setHistory(). When the list holds the maximum or more, it first deletes one visit
     * with deleteHistory(): that of number maximum - 1, the oldest of a list that holds exactly the maximum.
     * A longer list stays as long as it is. Null deletes but records nothing.
     *
     * Logs at level 3 "[TVNC_HistorySetting::updateHistory]" and what the two operations log.
     */
    void updateHistory(TVNS_History* pc_history);

    /**
     * Reads a visit. An element that is missing in the file leaves its field of @a pc_out as it was; a time
     * that is not of the form "yyyy/MM/dd hh:mm" becomes a QDateTime that is not valid.
     *
     * Logs at level 3 "[TVNC_HistorySetting::getHistory]".
     *
     * @return false, with nothing written, for null, without a document, and for a number that no visit has
     */
    bool getHistory(int si_id, TVNS_History* pc_out);

    /**
     * The number of the newest visit of an address, compared exactly; -1 when there is none. A visit without
     * address counts with that of the one before it.
     *
     * Logs at level 3 one "[TVNC_HistorySetting::getHistory]" for each visit that was compared.
     */
    int getHistoryIndex(QString& url);

    /**
     * Rewrites the title, the address and the time of a visit, those of them that its element has. The visit
     * stays at its place, also with a newer time, until the next sortHistory() or loadHistory().
     *
     * Logs at level 3 "[TVNC_HistorySetting::changeHistory]".
     */
    void changeHistory(int si_id, TVNS_History& history);

    /// Rewrites the title of a visit that has one. Logs at level 3
    /// "[TVNC_HistorySetting::changeHistoryTitle]".
    void changeHistoryTitle(int si_id, QString& title);

    /// Removes a visit, if there is one of this number, and numbers the rest again. Logs at level 3
    /// "[TVNC_HistorySetting::deleteHistory] si_nodeNum:%d" with the number.
    void deleteHistory(int si_id);

    /**
     * Puts the newest visit first. Visits of the same minute come in the order in which the quicksort of the
     * device leaves them, which is not that of the file: it changes with every load, and with it which of
     * them updateHistory() takes for the oldest.
     *
     * The list is built anew: only records that are found by a number below the count of all records are
     * taken over (of a file that this library wrote, the first 999), each as a "pageInfo" with its three
     * texts; all else that a file held in them is dropped. The old records are released with
     * QObject::deleteLater().
     *
     * Logs at level 3 "[TVNC_HistorySetting::sortHistory]"; then, if there is a document, one
     * "[TVNC_HistorySetting::getHistory]" for each record, "[TVNC_XMLSetting::deleteRootChildren] 0x%X" with
     * the root's address, and one "[TVNC_HistorySetting::setHistory]" for each visit taken over.
     */
    void sortHistory();

private:
    TVNC_HistorySetting();
    ~TVNC_HistorySetting();

    /// How many visits updateHistory() keeps: 0 until loadHistory() sets it.
    int si_maxCount_;
};
TLVLIB_NO_VIRTUAL_DESTRUCTOR_END

#endif
