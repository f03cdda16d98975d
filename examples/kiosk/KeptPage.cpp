#include "KeptPage.h"

#include "TableView.h"

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

KeptPage::KeptPage(const Tlv::Profile& profile)
{
    auto* layout = new QVBoxLayout(this);
    addPart(*layout, "logins", tr("Logins"), *profile.logins());
    addPart(*layout, "cookies", tr("Cookies"), *profile.cookies());
}

void KeptPage::addPart(QVBoxLayout& layout, const char* name, const QString& text, Tlv::RecordModel& model)
{
    auto* title = new QLabel(text);
    title->setProperty("isTitle", true);
    auto* button = new QPushButton(tr("Remove"));
    auto* table = new TableView(name, &model);
    table->setWidths(0, true);
    connect(button, &QPushButton::clicked, table,
            [table, &model] { model.remove(table->currentIndex().row()); });
    auto* top = new QHBoxLayout;
    top->addWidget(title);
    top->addStretch();
    top->addWidget(button);
    layout.addLayout(top);
    layout.addWidget(table, 1);
}
