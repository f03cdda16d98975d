#include "HistoryPage.h"

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTreeWidget>

HistoryPage::HistoryPage(History& history) : history_(history), search_(new QLineEdit), list_(new QTreeWidget)
{
    auto* title = new QLabel(tr("History"));
    title->setProperty("isTitle", true);
    search_->setObjectName("search");
    search_->setPlaceholderText(tr("Search titles and addresses"));
    search_->setClearButtonEnabled(true);
    auto* clear = new QPushButton(tr("Clear history"));
    list_->setObjectName("history");
    list_->setHeaderLabels({tr("Time"), tr("Title"), tr("Address")});
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->setTextElideMode(Qt::ElideMiddle);
    list_->header()->setSectionResizeMode(QHeaderView::Stretch);
    list_->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);

    auto* top = new QHBoxLayout;
    top->addWidget(title);
    top->addStretch();
    top->addWidget(search_, 1);
    top->addWidget(clear);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(list_, 1);

    connect(search_, &QLineEdit::textChanged, this, &HistoryPage::refresh);
    connect(clear, &QPushButton::clicked, &history_, &History::clear);
    connect(list_, &QTreeWidget::itemActivated, this,
            [this](QTreeWidgetItem* item) { emit chosen(item->text(2)); });
    connect(&history_, &History::changed, this, [this] {
        if (isVisible())
            refresh();
    });
}

void HistoryPage::refresh()
{
    list_->clear();
    for (const TVNS_History& visit : history_.visits(search_->text()))
        new QTreeWidgetItem(list_, {visit.dateTime.toString("yyyy-MM-dd hh:mm"), visit.title, visit.url});
}
