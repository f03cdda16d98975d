#ifndef EXAMPLES_KIOSK_RECORDPAGE_H
#define EXAMPLES_KIOSK_RECORDPAGE_H

#include "Looks.h"

#include <tlvlib/browser/RecordModel.h>

#include <QtWidgets/QWidget>

#include <functional>

class QAbstractItemView;
class QHBoxLayout;

/// A list of records, with a search in all that is shown of them, and buttons for what can be done to them.
class RecordPage : public QWidget
{
    Q_OBJECT

public:
    /**
     * @param title     of the list
     * @param emptyText is told while there are no records
     * @param model     the records
     * @param view      shows them; becomes the page's
     */
    RecordPage(const QString& title, const QString& emptyText, Tlv::RecordModel& model,
               QAbstractItemView* view);

    /// A button that does something to the list.
    QAction* addButton(const Command& command, const std::function<void()>& run);

    /// A button that does something to the chosen record, and is only there when there is one.
    void addRecordButton(const Command& command, const std::function<void(const QModelIndex&)>& run);

    /// A button that removes the chosen record.
    void addRemoveButton();

    /// A button, and a double click, that open the chosen record's address.
    void addOpenButton(int addressRole);

signals:
    /// An address is to be opened.
    void chosen(const QString& url);

private:
    QAbstractItemView* view_;
    QHBoxLayout* head_;
};

#endif
