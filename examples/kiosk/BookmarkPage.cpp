#include "BookmarkPage.h"

#include <QtGui/QPainter>
#include <QtWidgets/QAction>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListView>
#include <QtWidgets/QStyledItemDelegate>
#include <QtWidgets/QVBoxLayout>

using Tlv::BookmarkModel;

namespace {

const QSize PICTURE_SIZE = BookmarkModel::PictureSize;

/// Gives the pictures a thin frame; an empty page where there is none. All are of one size, so that a picture
/// is asked for when it is painted, and not for the layout.
class FramingDelegate : public QStyledItemDelegate
{
public:
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override
    {
        return PICTURE_SIZE + QSize(20, option.fontMetrics.height() + 2);
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        QPixmap pixmap(PICTURE_SIZE);
        pixmap.fill(Qt::white);
        QPainter painter(&pixmap);
        painter.drawImage(0, 0, index.data(Qt::DecorationRole).value<QImage>());
        painter.setPen(QColor("#b8c0c8"));
        painter.drawRect(pixmap.rect().adjusted(0, 0, -1, -1));
        option->features |= QStyleOptionViewItem::HasDecoration;
        option->decorationSize = PICTURE_SIZE;
        option->icon = pixmap;
    }
};

} // namespace

BookmarkPage::BookmarkPage(BookmarkModel& bookmarks) : bookmarks_(bookmarks), list_(new QListView)
{
    auto* title = new QLabel(tr("Bookmarks"));
    title->setProperty("isTitle", true);
    auto* hint = new QLabel(tr("There are no bookmarks yet. Open a page and press Ctrl+D."));
    hint->setVisible(bookmarks.count() == 0);
    connect(&bookmarks, &BookmarkModel::countChanged, hint,
            [hint, &bookmarks] { hint->setVisible(bookmarks.count() == 0); });
    list_->setObjectName("bookmarks");
    list_->setModel(&bookmarks);
    list_->setItemDelegate(new FramingDelegate);
    list_->setViewMode(QListView::IconMode);
    list_->setMovement(QListView::Static);
    list_->setResizeMode(QListView::Adjust);
    list_->setIconSize(PICTURE_SIZE);
    list_->setGridSize(PICTURE_SIZE + QSize(20, 44));
    list_->setWordWrap(true);
    list_->setEditTriggers(QListView::NoEditTriggers);
    list_->setContextMenuPolicy(Qt::ActionsContextMenu);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(title);
    layout->addWidget(hint);
    layout->addWidget(list_, 1);
    setFocusProxy(list_);

    const auto addAction = [this](const QString& text, const char* keys, void (BookmarkPage::*run)()) {
        auto* action = new QAction(text, list_);
        action->setShortcut(QKeySequence(keys));
        action->setShortcutContext(Qt::WidgetShortcut);
        connect(action, &QAction::triggered, this, run);
        list_->addAction(action);
    };
    addAction(tr("Rename ..."), "F2", &BookmarkPage::rename);
    addAction(tr("Remove"), "Delete", &BookmarkPage::remove);
    connect(list_, &QListView::activated, this,
            [this](const QModelIndex& index) { emit chosen(index.data(BookmarkModel::UrlRole).toString()); });
}

void BookmarkPage::rename()
{
    const QModelIndex index = list_->currentIndex();
    if (!index.isValid())
        return;
    bool isGiven = false;
    const QString title = QInputDialog::getText(this, tr("Rename"), tr("Title"), QLineEdit::Normal,
                                                index.data().toString(), &isGiven);
    if (isGiven)
        bookmarks_.rename(index.row(), title);
}

void BookmarkPage::remove()
{
    bookmarks_.remove(list_->currentIndex().row());
}
