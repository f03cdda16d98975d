#include "Looks.h"

#include <QtCore/QFile>
#include <QtCore/QStandardPaths>
#include <QtGui/QIcon>
#include <QtWidgets/QAction>
#include <QtWidgets/QApplication>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QDialog>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QProxyStyle>
#include <QtWidgets/QPushButton>

namespace {

const char ICON_THEME[] = "Adwaita";

/// Fusion, with a button for what a toolbar has no room for that can be touched.
class Style : public QProxyStyle
{
public:
    Style() : QProxyStyle("Fusion") {}

    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override
    {
        return metric == PM_ToolBarExtensionExtent ? TOUCH_SIZE
                                                   : QProxyStyle::pixelMetric(metric, option, widget);
    }
};

} // namespace

QString setLooks()
{
    qApp->setStyle(new Style);
    QFile sheet(":/kiosk/style.qss");
    if (sheet.open(QIODevice::ReadOnly))
        qApp->setStyleSheet(
            QString::fromUtf8(sheet.readAll()).replace("TOUCH", QString("%1px").arg(TOUCH_SIZE)));

    // A machine without a desktop has nobody who tells Qt where the icons are.
    QIcon::setThemeSearchPaths(QStandardPaths::locateAll(QStandardPaths::GenericDataLocation, "icons",
                                                         QStandardPaths::LocateDirectory));
    QIcon::setThemeName(ICON_THEME);
    // The theme may be there without the plug-in that paints its pictures.
    if (!QIcon::fromTheme("go-home-symbolic").pixmap(ICON_SIZE).isNull())
        return QString();
    QIcon::setThemeSearchPaths({}); // a button without an icon shows its text
    return QString("The icons are missing, and buttons show their names instead: install the icon theme "
                   "\"%1\" (adwaita-icon-theme) and Qt's plug-in for SVG (libqt5svg5).")
        .arg(ICON_THEME);
}

void dress(QAction& action, const Command& command)
{
    action.setIcon(QIcon::fromTheme(command.icon));
    action.setText(command.text);
    action.setShortcut(QKeySequence(command.keys));
    action.setToolTip(
        QString("%1 (%2)").arg(command.text, action.shortcut().toString(QKeySequence::NativeText)));
}

QString besideIcon(const QString& text)
{
    return QChar(0x2002) + text;
}

void addButtons(QDialog& dialog, const QString& acceptText)
{
    auto* box = new QDialogButtonBox;
    const auto addButton = [box](const char* icon, const QString& text, QDialogButtonBox::ButtonRole role) {
        QPushButton* button = box->addButton(besideIcon(text), role);
        button->setAccessibleName(text);
        button->setIcon(QIcon::fromTheme(icon));
        return button;
    };
    QPushButton* accept = addButton("object-select-symbolic", acceptText, QDialogButtonBox::AcceptRole);
    accept->setToolTip(QString("%1 (Return)").arg(acceptText));
    accept->setDefault(true);
    addButton("process-stop-symbolic", QDialog::tr("Cancel"), QDialogButtonBox::RejectRole)
        ->setToolTip(QDialog::tr("Cancel (Esc)"));
    QObject::connect(box, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(box, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    dialog.layout()->addWidget(box);
    dialog.layout()->setContentsMargins(16, 16, 16, 16);
}
