#include "Dialogs.h"

#include "Looks.h"

#include <QtWidgets/QDialog>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>

namespace {

QLineEdit* addLine(QFormLayout& form, const char* name, const QString& label, const QString& text)
{
    auto* line = new QLineEdit(text);
    line->setObjectName(name);
    line->setAccessibleName(label);
    form.addRow(label, line);
    return line;
}

} // namespace

std::optional<Login> askForLogin(const Tlv::LoginRequest& request, QWidget* parent)
{
    QDialog dialog(parent);
    dialog.setWindowTitle(QDialog::tr("Login"));
    dialog.setMinimumWidth(480);
    auto* form = new QFormLayout(&dialog);
    auto* text = new QLabel(
        QDialog::tr("%1:%2 asks for a login: \"%3\"").arg(request.host).arg(request.port).arg(request.realm));
    text->setTextFormat(Qt::PlainText); // the realm is the server's
    text->setWordWrap(true);
    form->addRow(text);
    if (request.wasRefused) {
        auto* refused = new QLabel(QDialog::tr("The last one was refused."));
        refused->setProperty("isProblem", true);
        form->addRow(refused);
    }
    QLineEdit* user = addLine(*form, "user", QDialog::tr("User name"), request.user);
    QLineEdit* password = addLine(*form, "password", QDialog::tr("Password"), QString());
    password->setEchoMode(QLineEdit::Password);
    addButtons(dialog, QDialog::tr("Log in"));
    (request.user.isEmpty() ? user : password)->setFocus();
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return Login{user->text(), password->text()};
}

std::optional<QString> askForTitle(const QString& title, QWidget* parent)
{
    QDialog dialog(parent);
    dialog.setWindowTitle(QDialog::tr("Rename"));
    dialog.setMinimumWidth(480);
    auto* form = new QFormLayout(&dialog);
    QLineEdit* line = addLine(*form, "title", QDialog::tr("Title"), title);
    addButtons(dialog, QDialog::tr("Rename"));
    return dialog.exec() == QDialog::Accepted ? std::optional<QString>(line->text()) : std::nullopt;
}
