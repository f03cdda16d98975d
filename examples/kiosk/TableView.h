#ifndef EXAMPLES_KIOSK_TABLEVIEW_H
#define EXAMPLES_KIOSK_TABLEVIEW_H

#include <QtWidgets/QTableView>

/// A table of whole rows, without lines and row numbers.
class TableView : public QTableView
{
    Q_OBJECT

public:
    TableView(const char* name, QAbstractItemModel* model);

    /// All columns share the width, but for one that takes what it needs; with @a isRest the other way round.
    void setWidths(int column, bool isRest);
};

#endif
