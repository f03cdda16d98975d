#include "RecordPage.h"

#include <QtCore/QSortFilterProxyModel>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QAction>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QScroller>
#include <QtWidgets/QToolButton>

RecordPage::RecordPage(const QString& title, const QString& emptyText, Tlv::RecordModel& model,
                       QAbstractItemView* view)
    : view_(view), head_(new QHBoxLayout)
{
    auto* filter = new QSortFilterProxyModel(this);
    filter->setSourceModel(&model);
    filter->setFilterKeyColumn(-1); // all of them
    filter->setFilterCaseSensitivity(Qt::CaseInsensitive);
    view->setModel(filter);
    view->setAccessibleName(title);
    view->setSelectionMode(QAbstractItemView::SingleSelection);
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    QScroller::grabGesture(view->viewport());

    auto* search = new QLineEdit;
    search->setObjectName("search");
    search->setPlaceholderText(tr("Search"));
    search->setAccessibleName(tr("Search in: %1").arg(title));
    connect(search, &QLineEdit::textChanged, filter, &QSortFilterProxyModel::setFilterFixedString);

    auto* hint = new QLabel(emptyText);
    hint->setWordWrap(true);
    const auto showHint = [hint, &model] { hint->setVisible(model.count() == 0); };
    connect(&model, &Tlv::RecordModel::countChanged, hint, showHint);
    showHint();

    head_->addWidget(search, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(head_);
    layout->addWidget(hint);
    layout->addWidget(view, 1);
    setFocusProxy(view);
    setAccessibleName(title);
}

QAction* RecordPage::addButton(const Command& command, const std::function<void()>& run)
{
    auto* action = new QAction(view_);
    dress(*action, command);
    action->setShortcutContext(Qt::WidgetShortcut);
    connect(action, &QAction::triggered, this, run);
    action->setIconText(besideIcon(command.text));
    view_->addAction(action);
    auto* button = new QToolButton;
    button->setDefaultAction(action);
    button->setAccessibleName(command.text);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setIconSize(QSize(ICON_SIZE, ICON_SIZE));
    head_->addWidget(button);
    return action;
}

void RecordPage::addRecordButton(const Command& command, const std::function<void(const QModelIndex&)>& run)
{
    // Not the current one, which a list has as soon as it has the focus, without showing it.
    const QItemSelectionModel* selection = view_->selectionModel();
    QAction* action = addButton(command, [selection, run] { run(selection->selectedIndexes().first()); });
    const auto update = [selection, action] { action->setEnabled(selection->hasSelection()); };
    connect(selection, &QItemSelectionModel::selectionChanged, action, update);
    update();
}

void RecordPage::addRemoveButton()
{
    addRecordButton({"user-trash-symbolic", tr("Remove"), "Delete"},
                    [this](const QModelIndex& index) { view_->model()->removeRow(index.row()); });
}

void RecordPage::addOpenButton(int addressRole)
{
    const auto open = [this, addressRole](const QModelIndex& index) {
        emit chosen(index.data(addressRole).toString());
    };
    addRecordButton({"document-open-symbolic", tr("Open"), "Ctrl+O"}, open);
    connect(view_, &QAbstractItemView::activated, this, open);
}
