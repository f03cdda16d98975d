#ifndef EXAMPLES_KIOSK_KEPTPAGE_H
#define EXAMPLES_KIOSK_KEPTPAGE_H

#include "CookieJar.h"
#include "Logins.h"

#include <QtWidgets/QWidget>

class QTreeWidget;

/// The logins, with their passwords hidden, and the cookies, with their values hidden.
class KeptPage : public QWidget
{
    Q_OBJECT

public:
    KeptPage(Logins& logins, CookieJar& cookies);

    /// Shows both as they are now.
    void refresh();

private:
    void removeLogin();
    void removeCookie();

    Logins& logins_;
    CookieJar& cookies_;
    QTreeWidget* loginList_;
    QTreeWidget* cookieList_;
};

#endif
