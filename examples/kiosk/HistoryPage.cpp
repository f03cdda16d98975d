#include "HistoryPage.h"

#include "TableView.h"

#include <QtCore/QSortFilterProxyModel>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

using Tlv::HistoryModel;

namespace {

/// The visits with a text in their title or address.
class VisitFilter : public QSortFilterProxyModel
{
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override
    {
        const QModelIndex visit = sourceModel()->index(row, 0, parent);
        return visit.data(HistoryModel::TitleRole).toString().contains(filterRegularExpression()) ||
               visit.data(HistoryModel::UrlRole).toString().contains(filterRegularExpression());
    }
};

} // namespace

HistoryPage::HistoryPage(HistoryModel& history)
{
    auto* title = new QLabel(tr("History"));
    title->setProperty("isTitle", true);
    auto* search = new QLineEdit;
    search->setObjectName("search");
    search->setPlaceholderText(tr("Search titles and addresses"));
    search->setClearButtonEnabled(true);
    auto* clear = new QPushButton(tr("Clear history"));
    auto* filter = new VisitFilter(this);
    filter->setSourceModel(&history);
    filter->setFilterCaseSensitivity(Qt::CaseInsensitive);
    auto* table = new TableView("history", filter);
    table->setTextElideMode(Qt::ElideMiddle);
    table->setWidths(HistoryModel::TimeColumn, false);

    auto* top = new QHBoxLayout;
    top->addWidget(title);
    top->addStretch();
    top->addWidget(search, 1);
    top->addWidget(clear);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(table, 1);

    connect(search, &QLineEdit::textChanged, filter, &VisitFilter::setFilterFixedString);
    connect(clear, &QPushButton::clicked, &history, &HistoryModel::clear);
    connect(table, &QTableView::activated, this,
            [this](const QModelIndex& index) { emit chosen(index.data(HistoryModel::UrlRole).toString()); });
}
