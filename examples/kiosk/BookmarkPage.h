#ifndef EXAMPLES_KIOSK_BOOKMARKPAGE_H
#define EXAMPLES_KIOSK_BOOKMARKPAGE_H

#include "Bookmarks.h"

#include <QtWidgets/QWidget>

class QLabel;
class QListWidget;

/// The bookmarks as a grid of their pictures.
class BookmarkPage : public QWidget
{
    Q_OBJECT

public:
    explicit BookmarkPage(Bookmarks& bookmarks);

    /// Shows the bookmarks as they are now.
    void refresh();

signals:
    void chosen(const QString& url);

private:
    void rename();
    void remove();

    Bookmarks& bookmarks_;
    QLabel* hint_;
    QListWidget* list_;
};

#endif
