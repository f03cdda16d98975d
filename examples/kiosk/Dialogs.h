#ifndef EXAMPLES_KIOSK_DIALOGS_H
#define EXAMPLES_KIOSK_DIALOGS_H

#include <tlvlib/browser/LoginHandler.h>

#include <optional>

class QWidget;

struct Login
{
    QString user;
    QString password;
};

/// Asks for the login that a server wants; nothing when nobody gives one.
std::optional<Login> askForLogin(const Tlv::LoginRequest& request, QWidget* parent);

/// Asks for another title of a bookmark; nothing when it is to stay.
std::optional<QString> askForTitle(const QString& title, QWidget* parent);

#endif
