#include "KeptPage.h"

#include <QtCore/QDateTime>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTreeWidget>

namespace {

QTreeWidget* makeList(const char* name, const QStringList& headers)
{
    auto* list = new QTreeWidget;
    list->setObjectName(name);
    list->setHeaderLabels(headers);
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    list->header()->setStretchLastSection(false);
    list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    return list;
}

} // namespace

KeptPage::KeptPage(Logins& logins, CookieJar& cookies)
    : logins_(logins)
    , cookies_(cookies)
    , loginList_(makeList("logins", {tr("Server"), tr("Scheme"), tr("User name"), tr("Password")}))
    , cookieList_(makeList("cookies", {tr("Domain"), tr("Name"), tr("Path"), tr("Flags"), tr("Until")}))
{
    auto* layout = new QVBoxLayout(this);
    const auto addPart = [&](const QString& text, QTreeWidget* list, void (KeptPage::*remove)()) {
        auto* title = new QLabel(text);
        title->setProperty("isTitle", true);
        auto* button = new QPushButton(tr("Remove"));
        connect(button, &QPushButton::clicked, this, remove);
        auto* top = new QHBoxLayout;
        top->addWidget(title);
        top->addStretch();
        top->addWidget(button);
        layout->addLayout(top);
        layout->addWidget(list, 1);
    };
    addPart(tr("Logins"), loginList_, &KeptPage::removeLogin);
    addPart(tr("Cookies"), cookieList_, &KeptPage::removeCookie);
    const auto refreshShown = [this] {
        if (isVisible())
            refresh();
    };
    connect(&logins_, &Logins::changed, this, refreshShown);
    connect(&cookies_, &CookieJar::changed, this, refreshShown);
}

void KeptPage::refresh()
{
    loginList_->clear();
    const QStringList schemes{tr("Basic"), tr("Digest"), tr("NTLM")};
    for (int i = 0; i < logins_.count(); ++i) {
        const TVNS_AuthInfo login = logins_.at(i);
        new QTreeWidgetItem(loginList_, {login.hostName + ':' + login.portNum, schemes.value(login.authType),
                                         QString::fromUtf8(login.user), QString(8, QChar(0x2022))});
    }
    cookieList_->clear();
    for (const QNetworkCookie& cookie : cookies_.cookies()) {
        QStringList flags;
        if (cookie.isSecure())
            flags.append(tr("secure"));
        if (cookie.isHttpOnly())
            flags.append(tr("HttpOnly"));
        const QString until = cookie.isSessionCookie()
                                  ? tr("end of the browser")
                                  : cookie.expirationDate().toLocalTime().toString("yyyy-MM-dd hh:mm");
        new QTreeWidgetItem(cookieList_, {cookie.domain(), QString::fromUtf8(cookie.name()), cookie.path(),
                                          flags.join(", "), until});
    }
}

void KeptPage::removeLogin()
{
    const int position = loginList_->indexOfTopLevelItem(loginList_->currentItem());
    if (position >= 0)
        logins_.remove(position);
}

void KeptPage::removeCookie()
{
    const int position = cookieList_->indexOfTopLevelItem(cookieList_->currentItem());
    if (position >= 0)
        cookies_.deleteCookie(cookies_.cookies().at(position));
}
