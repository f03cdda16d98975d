#include "LoginDialog.h"

#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>

LoginDialog::LoginDialog(LoginQuestion& question, QWidget* parent)
    : QDialog(parent), question_(question), user_(new QLineEdit(question.user)), password_(new QLineEdit)
{
    setWindowTitle(tr("Login"));
    user_->setObjectName("user");
    password_->setObjectName("password");
    password_->setEchoMode(QLineEdit::Password);

    auto* text = new QLabel;
    text->setTextFormat(Qt::PlainText); // the realm is the server's
    text->setWordWrap(true);
    text->setText(tr("%1 asks for a login: \"%2\"").arg(question.server, question.realm));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QFormLayout(this);
    layout->addRow(text);
    if (question.wasRefused) {
        auto* refused = new QLabel(tr("The last one was refused."));
        refused->setProperty("isProblem", true);
        layout->addRow(refused);
    }
    layout->addRow(tr("User name"), user_);
    layout->addRow(tr("Password"), password_);
    layout->addRow(buttons);
    (question.user.isEmpty() ? user_ : password_)->setFocus();
}

void LoginDialog::accept()
{
    question_.user = user_->text();
    question_.password = password_->text();
    QDialog::accept();
}
