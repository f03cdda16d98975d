#ifndef TESTS_BROWSER_NETWORK_H
#define TESTS_BROWSER_NETWORK_H

#include <QtCore/QString>

class QNetworkAccessManager;

/// Gets a page to its end, serving it meanwhile if the site is in this process. @return its status
int get(QNetworkAccessManager& manager, const QString& address);

#endif
