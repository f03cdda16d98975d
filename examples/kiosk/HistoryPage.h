#ifndef EXAMPLES_KIOSK_HISTORYPAGE_H
#define EXAMPLES_KIOSK_HISTORYPAGE_H

#include "History.h"

#include <QtWidgets/QWidget>

class QLineEdit;
class QTreeWidget;

/// The visited pages, with a search in their titles and addresses.
class HistoryPage : public QWidget
{
    Q_OBJECT

public:
    explicit HistoryPage(History& history);

    /// Shows the visits as they are now.
    void refresh();

signals:
    void chosen(const QString& url);

private:
    History& history_;
    QLineEdit* search_;
    QTreeWidget* list_;
};

#endif
