#include "LoginDialog.h"

#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>

LoginDialog::LoginDialog(const Tlv::LoginRequest& request, QWidget* parent)
    : QDialog(parent), user_(new QLineEdit(request.user)), password_(new QLineEdit)
{
    setWindowTitle(tr("Login"));
    user_->setObjectName("user");
    password_->setObjectName("password");
    password_->setEchoMode(QLineEdit::Password);

    auto* text = new QLabel;
    text->setTextFormat(Qt::PlainText); // the realm is the server's
    text->setWordWrap(true);
    text->setText(
        tr("%1:%2 asks for a login: \"%3\"").arg(request.host).arg(request.port).arg(request.realm));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QFormLayout(this);
    layout->addRow(text);
    if (request.wasRefused) {
        auto* refused = new QLabel(tr("The last one was refused."));
        refused->setProperty("isProblem", true);
        layout->addRow(refused);
    }
    layout->addRow(tr("User name"), user_);
    layout->addRow(tr("Password"), password_);
    layout->addRow(buttons);
    (request.user.isEmpty() ? user_ : password_)->setFocus();
}

QString LoginDialog::user() const
{
    return user_->text();
}

QString LoginDialog::password() const
{
    return password_->text();
}
