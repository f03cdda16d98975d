#include "BookmarkPage.h"

#include <QtGui/QPainter>
#include <QtWidgets/QAction>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QVBoxLayout>

namespace {

/// A picture with a thin frame; an empty page where there is none.
QIcon iconOf(const QImage& picture)
{
    QPixmap pixmap(Bookmarks::PICTURE_WIDTH, Bookmarks::PICTURE_HEIGHT);
    pixmap.fill(Qt::white);
    QPainter painter(&pixmap);
    painter.drawImage(0, 0, picture);
    painter.setPen(QColor("#b8c0c8"));
    painter.drawRect(pixmap.rect().adjusted(0, 0, -1, -1));
    return pixmap;
}

} // namespace

BookmarkPage::BookmarkPage(Bookmarks& bookmarks)
    : bookmarks_(bookmarks), hint_(new QLabel), list_(new QListWidget)
{
    auto* title = new QLabel(tr("Bookmarks"));
    title->setProperty("isTitle", true);
    hint_->setText(tr("There are no bookmarks yet. Open a page and press Ctrl+D."));
    list_->setObjectName("bookmarks");
    list_->setViewMode(QListView::IconMode);
    list_->setMovement(QListView::Static);
    list_->setResizeMode(QListView::Adjust);
    list_->setIconSize(QSize(Bookmarks::PICTURE_WIDTH, Bookmarks::PICTURE_HEIGHT));
    list_->setGridSize(QSize(Bookmarks::PICTURE_WIDTH + 20, Bookmarks::PICTURE_HEIGHT + 44));
    list_->setWordWrap(true);
    list_->setContextMenuPolicy(Qt::ActionsContextMenu);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(title);
    layout->addWidget(hint_);
    layout->addWidget(list_, 1);

    const auto addAction = [this](const QString& text, const char* keys, void (BookmarkPage::*run)()) {
        auto* action = new QAction(text, list_);
        action->setShortcut(QKeySequence(keys));
        action->setShortcutContext(Qt::WidgetShortcut);
        connect(action, &QAction::triggered, this, run);
        list_->addAction(action);
    };
    addAction(tr("Rename ..."), "F2", &BookmarkPage::rename);
    addAction(tr("Remove"), "Delete", &BookmarkPage::remove);
    connect(list_, &QListWidget::itemActivated, this,
            [this](QListWidgetItem* item) { emit chosen(item->data(Qt::UserRole).toString()); });
    connect(&bookmarks_, &Bookmarks::changed, this, [this] {
        if (isVisible())
            refresh();
    });
}

void BookmarkPage::refresh()
{
    list_->clear();
    for (int i = 0; i < bookmarks_.count(); ++i) {
        const TVNS_Bookmark bookmark = bookmarks_.at(i);
        auto* item = new QListWidgetItem(iconOf(bookmarks_.picture(i)), bookmark.title, list_);
        item->setData(Qt::UserRole, bookmark.href);
        item->setToolTip(bookmark.href.toHtmlEscaped());
    }
    hint_->setVisible(list_->count() == 0);
    list_->setFocus();
}

void BookmarkPage::rename()
{
    const int position = list_->currentRow();
    if (position < 0)
        return;
    bool isGiven = false;
    const QString title = QInputDialog::getText(this, tr("Rename"), tr("Title"), QLineEdit::Normal,
                                                bookmarks_.at(position).title, &isGiven);
    if (isGiven)
        bookmarks_.rename(position, title);
}

void BookmarkPage::remove()
{
    if (list_->currentRow() >= 0)
        bookmarks_.remove(list_->currentRow());
}
