#include "Pages.h"

#include "Dialogs.h"

#include <QtGui/QPainter>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QListView>
#include <QtWidgets/QStyledItemDelegate>
#include <QtWidgets/QTableView>

using Tlv::BookmarkModel;
using Tlv::CookieModel;
using Tlv::HistoryModel;
using Tlv::LoginModel;

namespace {

const QSize PICTURE_SIZE = BookmarkModel::PictureSize;
const QSize AROUND_PICTURE(24, 44); ///< air, and the title

/// Gives the pictures a thin frame; an empty page where there is none. All are of one size, so that a picture
/// is asked for when it is painted, and not for the layout.
class FramingDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override
    {
        return PICTURE_SIZE + AROUND_PICTURE;
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

/// A page with a table of whole rows. The named columns share the width that the others leave.
RecordPage* makeTablePage(const QString& title, const QString& emptyText, Tlv::RecordModel& model,
                          std::initializer_list<int> wideColumns)
{
    auto* table = new QTableView;
    auto* page = new RecordPage(title, emptyText, model, table);
    table->setSelectionBehavior(QTableView::SelectRows);
    table->setShowGrid(false);
    table->setWordWrap(false);
    table->setTabKeyNavigation(false);
    table->setTextElideMode(Qt::ElideMiddle);
    table->verticalHeader()->hide();
    table->verticalHeader()->setDefaultSectionSize(TOUCH_SIZE);
    QHeaderView* header = table->horizontalHeader();
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setHighlightSections(false);
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    for (const int column : wideColumns)
        header->setSectionResizeMode(column, QHeaderView::Stretch);
    return page;
}

} // namespace

RecordPage* makeBookmarkPage(BookmarkModel& bookmarks)
{
    auto* list = new QListView;
    auto* page = new RecordPage(
        RecordPage::tr("Bookmarks"),
        RecordPage::tr("There are no bookmarks yet. Open a page and press Ctrl+D, or touch the "
                       "button behind its address."),
        bookmarks, list);
    list->setItemDelegate(new FramingDelegate(list));
    list->setViewMode(QListView::IconMode);
    list->setMovement(QListView::Static);
    list->setResizeMode(QListView::Adjust);
    list->setIconSize(PICTURE_SIZE);
    list->setGridSize(PICTURE_SIZE + AROUND_PICTURE);
    page->addOpenButton(BookmarkModel::UrlRole);
    page->addRecordButton({"document-edit-symbolic", RecordPage::tr("Rename"), "F2"},
                          [list](const QModelIndex& index) {
                              if (const auto title = askForTitle(index.data().toString(), list))
                                  list->model()->setData(index, *title);
                          });
    page->addRemoveButton();
    return page;
}

RecordPage* makeHistoryPage(HistoryModel& history)
{
    RecordPage* page = makeTablePage(RecordPage::tr("History"), RecordPage::tr("No page has been visited."),
                                     history, {HistoryModel::TitleColumn, HistoryModel::UrlColumn});
    page->addOpenButton(HistoryModel::UrlRole);
    page->addRemoveButton();
    page->addButton({"edit-clear-all-symbolic", RecordPage::tr("Clear history"), "Ctrl+Shift+Delete"},
                    [&history] { history.clear(); });
    return page;
}

RecordPage* makeLoginPage(LoginModel& logins)
{
    RecordPage* page = makeTablePage(RecordPage::tr("Logins"), RecordPage::tr("No login is kept."), logins,
                                     {LoginModel::ServerColumn, LoginModel::UserColumn});
    page->addRemoveButton();
    return page;
}

RecordPage* makeCookiePage(CookieModel& cookies)
{
    RecordPage* page = makeTablePage(RecordPage::tr("Cookies"), RecordPage::tr("There are no cookies."),
                                     cookies, {CookieModel::DomainColumn, CookieModel::NameColumn});
    page->addRemoveButton();
    return page;
}
