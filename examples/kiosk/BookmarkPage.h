#ifndef EXAMPLES_KIOSK_BOOKMARKPAGE_H
#define EXAMPLES_KIOSK_BOOKMARKPAGE_H

#include <tlvlib/browser/BookmarkModel.h>

#include <QtWidgets/QWidget>

class QListView;

/// The bookmarks as a grid of their pictures.
class BookmarkPage : public QWidget
{
    Q_OBJECT

public:
    explicit BookmarkPage(Tlv::BookmarkModel& bookmarks);

signals:
    void chosen(const QString& url);

private:
    void rename();
    void remove();

    Tlv::BookmarkModel& bookmarks_;
    QListView* list_;
};

#endif
