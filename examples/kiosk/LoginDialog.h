#ifndef EXAMPLES_KIOSK_LOGINDIALOG_H
#define EXAMPLES_KIOSK_LOGINDIALOG_H

#include <tlvlib/browser/LoginHandler.h>

#include <QtWidgets/QDialog>

class QLineEdit;

/// Asks for the login that a server wants.
class LoginDialog : public QDialog
{
    Q_OBJECT

public:
    LoginDialog(const Tlv::LoginRequest& request, QWidget* parent);

    QString user() const;
    QString password() const;

private:
    QLineEdit* user_;
    QLineEdit* password_;
};

#endif
