#ifndef EXAMPLES_KIOSK_HISTORYPAGE_H
#define EXAMPLES_KIOSK_HISTORYPAGE_H

#include <tlvlib/browser/HistoryModel.h>

#include <QtWidgets/QWidget>

/// The visited pages, with a search in their titles and addresses.
class HistoryPage : public QWidget
{
    Q_OBJECT

public:
    explicit HistoryPage(Tlv::HistoryModel& history);

signals:
    void chosen(const QString& url);
};

#endif
