#include "TableView.h"

#include <QtWidgets/QHeaderView>

TableView::TableView(const char* name, QAbstractItemModel* model)
{
    setObjectName(name);
    setModel(model);
    setSelectionBehavior(QTableView::SelectRows);
    setSelectionMode(QTableView::SingleSelection);
    setEditTriggers(QTableView::NoEditTriggers);
    setShowGrid(false);
    setWordWrap(false);
    setTabKeyNavigation(false);
    verticalHeader()->hide();
    verticalHeader()->setMinimumSectionSize(fontMetrics().height());
    verticalHeader()->setDefaultSectionSize(fontMetrics().height());
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    horizontalHeader()->setHighlightSections(false);
}

void TableView::setWidths(int column, bool isRest)
{
    QHeaderView* header = horizontalHeader();
    header->setSectionResizeMode(isRest ? QHeaderView::ResizeToContents : QHeaderView::Stretch);
    header->setSectionResizeMode(column, isRest ? QHeaderView::Stretch : QHeaderView::ResizeToContents);
}
