#ifndef EXAMPLES_KIOSK_LOGINDIALOG_H
#define EXAMPLES_KIOSK_LOGINDIALOG_H

#include "Network.h"

#include <QtWidgets/QDialog>

class QLineEdit;

/// Asks for the login that a server wants.
class LoginDialog : public QDialog
{
    Q_OBJECT

public:
    /// @param question gets the answer when the dialog is accepted
    LoginDialog(LoginQuestion& question, QWidget* parent);

    void accept() override;

private:
    LoginQuestion& question_;
    QLineEdit* user_;
    QLineEdit* password_;
};

#endif
