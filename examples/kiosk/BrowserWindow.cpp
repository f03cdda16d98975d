#include "BrowserWindow.h"

#include "Dialogs.h"
#include "Pages.h"
#include "SettingsDialog.h"

#include <QtGui/QCloseEvent>
#include <QtWebKit/QWebHistory>
#include <QtWebKitWidgets/QWebFrame>
#include <QtWebKitWidgets/QWebPage>
#include <QtWebKitWidgets/QWebView>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QAction>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCompleter>
#include <QtWidgets/QDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QStackedWidget>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QStyledItemDelegate>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QToolButton>

using Tlv::BookmarkModel;
using Tlv::HistoryModel;
using Tlv::Profile;

namespace {

const char BLANK[] = "about:blank";

/// The address as it is shown and kept.
QString textOf(const QUrl& url)
{
    return QString::fromLatin1(url.toEncoded());
}

} // namespace

BrowserWindow::BrowserWindow(Profile& profile)
    : profile_(profile)
    , network_(profile)
    , stack_(new QStackedWidget)
    , web_(new QWebView)
    , lists_(new QTabWidget)
    , address_(new QLineEdit)
    , message_(new QLabel)
{
    setWindowTitle(tr("Kiosk"));
    makePages();
    makeToolBar();
    makeStatusBar();
    connectWeb();
    connectProfile();
    applyPreferences();
}

void BrowserWindow::makePages()
{
    web_->setAccessibleName(tr("Page"));
    web_->page()->setNetworkAccessManager(&network_);
    RecordPage* const pages[] = {makeBookmarkPage(*profile_.bookmarks()),
                                 makeHistoryPage(*profile_.history()), makeLoginPage(*profile_.logins()),
                                 makeCookiePage(*profile_.cookies())};
    for (RecordPage* page : pages) { // in the order of List
        lists_->addTab(page, page->accessibleName());
        connect(page, &RecordPage::chosen, this, &BrowserWindow::openUrl);
    }
    auto* back = new QToolButton;
    back->setIconSize(QSize(ICON_SIZE, ICON_SIZE));
    back->setDefaultAction(addAction({"process-stop-symbolic", tr("Back to the page"), "Escape"}, [this] {
        web_->stop();
        showWeb();
    }));
    lists_->setCornerWidget(back);
    stack_->addWidget(web_);
    stack_->addWidget(lists_);
    setCentralWidget(stack_);
}

QAction* BrowserWindow::addAction(const Command& command, const std::function<void()>& run)
{
    auto* action = new QAction(this);
    dress(*action, command);
    connect(action, &QAction::triggered, this, run);
    QWidget::addAction(action); // its shortcut works in all of the window
    return action;
}

void BrowserWindow::addWebAction(QToolBar& bar, QWebPage::WebAction webAction, const Command& command)
{
    QAction* action = web_->pageAction(webAction);
    dress(*action, command);
    connect(action, &QAction::triggered, this, &BrowserWindow::showWeb);
    bar.addAction(action);
}

void BrowserWindow::makeToolBar()
{
    QToolBar& bar = *addToolBar(tr("Navigation"));
    bar.setMovable(false);
    bar.setContextMenuPolicy(Qt::PreventContextMenu);
    bar.setIconSize(QSize(ICON_SIZE, ICON_SIZE));
    const auto addButton = [&](const Command& command, const std::function<void()>& run) {
        QAction* action = addAction(command, run);
        bar.addAction(action);
        return action;
    };
    addWebAction(bar, QWebPage::Back, {"go-previous-symbolic", tr("Back"), "Alt+Left"});
    addWebAction(bar, QWebPage::Forward, {"go-next-symbolic", tr("Forward"), "Alt+Right"});
    addWebAction(bar, QWebPage::Reload, {"view-refresh-symbolic", tr("Reload"), "F5"});
    addButton({"go-home-symbolic", tr("Home page"), "Alt+Home"}, [this] {
        QString url;
        Profile::userPreferences().getHomePage(&url);
        openOrShowBookmarks(url);
    });
    makeAddressLine();
    bar.addWidget(address_);
    bookmarkAction_ =
        addButton({"bookmark-new-symbolic", tr("Bookmark this page"), "Ctrl+D"}, [this] { bookmark(); });
    bar.addSeparator();
    addButton({"user-bookmarks-symbolic", tr("Bookmarks"), "Ctrl+B"}, [this] { showList(Bookmarks); });
    addButton({"document-open-recent-symbolic", tr("History"), "Ctrl+H"}, [this] { showList(History); });
    addButton({"dialog-password-symbolic", tr("Logins and cookies"), "Ctrl+K"}, [this] { showList(Logins); });
    addButton({"emblem-system-symbolic", tr("Settings"), "Ctrl+,"}, [this] {
        QDialog* dialog = makeSettingsDialog(profile_, this);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->open();
    });
    addButton({"system-log-out-symbolic", tr("Log out"), "Ctrl+Shift+Q"},
              [this] { endUse(Profile::LogOut, tr("Logged out.")); });

    // Without a place in the toolbar.
    addAction({"web-browser-symbolic", tr("Address"), "Ctrl+L"}, [this] {
        address_->setFocus();
        address_->selectAll();
    });
    addAction({"text-x-generic-symbolic", tr("Cookies"), "Ctrl+J"}, [this] { showList(Cookies); });
    addAction({"zoom-in-symbolic", tr("Larger"), "Ctrl++"}, [this] { changeZoom(1); });
    addAction({"zoom-out-symbolic", tr("Smaller"), "Ctrl+-"}, [this] { changeZoom(-1); });
    addAction({"application-exit-symbolic", tr("Quit"), "Ctrl+Q"}, [this] { close(); });
}

void BrowserWindow::makeAddressLine()
{
    address_->setObjectName("address");
    address_->setPlaceholderText(tr("Address"));
    address_->setAccessibleName(tr("Address"));
    auto* completer = new QCompleter(profile_.history(), this);
    completer->setCompletionColumn(HistoryModel::UrlColumn);
    completer->setFilterMode(Qt::MatchContains);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->popup()->setItemDelegate(new QStyledItemDelegate(completer)); // obeys the style sheet
    address_->setCompleter(completer);
    connect(address_, &QLineEdit::returnPressed, this, [this] { openUrl(address_->text()); });
}

void BrowserWindow::makeStatusBar()
{
    message_->setObjectName("message");
    statusBar()->addWidget(message_, 1);
    statusBar()->setSizeGripEnabled(false);
    // What stays until it is solved has a place of its own, where nothing takes it away.
    const auto addProblem = [this](const QString& text) {
        auto* label = new QLabel(text);
        label->setProperty("isProblem", true);
        statusBar()->addPermanentWidget(label);
        return label;
    };
    QLabel* unsaved = addProblem(QString());
    connect(&profile_, &Profile::saveErrorChanged, this, [this, unsaved] {
        const QString error = profile_.saveError();
        unsaved->setText(error.isEmpty() ? QString() : tr("Not saved."));
        unsaved->setToolTip(error.toHtmlEscaped());
    });
    QStringList damages;
    for (const Tlv::Damage& damage : profile_.damages())
        damages.append(damage.text);
    if (!damages.isEmpty())
        addProblem(tr("Files were damaged."))->setToolTip(damages.join('\n').toHtmlEscaped());
}

void BrowserWindow::connectWeb()
{
    connect(web_, &QWebView::loadStarted, this, [this] { showMessage(tr("Loading ...")); });
    connect(web_, &QWebView::loadFinished, this,
            [this](bool isFine) { showMessage(isFine ? QString() : tr("The page could not be loaded.")); });
    connect(web_, &QWebView::urlChanged, this, &BrowserWindow::recordVisit);
    connect(web_, &QWebView::titleChanged, this, [this](const QString& title) {
        setWindowTitle(title.isEmpty() ? tr("Kiosk") : tr("%1 - Kiosk").arg(title));
        profile_.history()->setTitle(textOf(web_->url()), title);
    });
}

void BrowserWindow::connectProfile()
{
    connect(&profile_, &Profile::preferencesChanged, this, &BrowserWindow::applyPreferences);
    connect(&profile_, &Profile::saveFailed, this, &BrowserWindow::showMessage);
    connect(profile_.bookmarks(), &BookmarkModel::changed, this, &BrowserWindow::updateBookmarkAction);
    const Tlv::LoginHandler* handler = profile_.loginHandler();
    connect(handler, &Tlv::LoginHandler::loginRequired, this, &BrowserWindow::askForLogin);
    connect(handler, &Tlv::LoginHandler::loginFound, web_, &QWebView::reload);
    connect(handler, &Tlv::LoginHandler::loginNotKept, this, [this] {
        showMessage(tr("The login is used but not kept: the server's name, the user name or the password is "
                       "too long."));
    });
}

void BrowserWindow::openOrShowBookmarks(const QString& url)
{
    if (url == BLANK || url.isEmpty())
        showList(Bookmarks);
    else
        openUrl(url);
}

void BrowserWindow::openUrl(const QString& text)
{
    const QUrl url = QUrl::fromUserInput(text.trimmed());
    if (!url.isValid()) {
        showMessage(tr("This is no address."));
        return;
    }
    showWeb();
    web_->load(url);
}

void BrowserWindow::recordVisit(const QUrl& url)
{
    const QString text = textOf(url);
    address_->setText(text == BLANK ? QString() : text);
    address_->setCursorPosition(0);
    updateBookmarkAction();
    if (url.isEmpty() || text == BLANK)
        return;
    profile_.history()->visit(text, web_->title());
    profile_.setLastPage(text);
}

void BrowserWindow::bookmark()
{
    const QString url = textOf(web_->url());
    if (web_->url().isEmpty() || url == BLANK) {
        showMessage(tr("There is no page to bookmark."));
        return;
    }
    BookmarkModel& bookmarks = *profile_.bookmarks();
    bookmarks.add(web_->title().isEmpty() ? url : web_->title(), url,
                  BookmarkModel::pictureOf(web_->grab().toImage()));
    showMessage(bookmarks.errorString().isEmpty() ? tr("Bookmarked.") : bookmarks.errorString());
}

void BrowserWindow::endUse(Profile::Occasion occasion, const QString& text)
{
    web_->stop();
    profile_.endUse(occasion);
    // What this process remembers beside the profile: logins, and the cache, whose object is not told that
    // its directory was emptied.
    network_.clearAccessCache();
    network_.applyPreferences();
    QWebSettings::clearMemoryCaches();
    web_->load(QUrl(BLANK));
    web_->history()->clear();
    showList(Bookmarks);
    showMessage(text);
}

void BrowserWindow::showWeb()
{
    stack_->setCurrentWidget(web_);
    web_->setFocus();
}

void BrowserWindow::showList(List list)
{
    stack_->setCurrentWidget(lists_);
    lists_->setCurrentIndex(list);
    lists_->currentWidget()->setFocus();
}

void BrowserWindow::showMessage(const QString& text)
{
    message_->setText(text);
}

void BrowserWindow::applyPreferences()
{
    TVNC_BrowserCommonSetting& device = Profile::devicePreferences();
    TVNC_BrowserUserSetting& user = Profile::userPreferences();
    QWebSettings& settings = *web_->settings();
    settings.setAttribute(QWebSettings::JavascriptEnabled, device.getUseJavaScriptInfo() != 0);
    settings.setAttribute(QWebSettings::PluginsEnabled, device.getPlayFlashInfo() != 0);
    QString font;
    user.getFontName(&font);
    if (font.isEmpty())
        settings.resetFontFamily(QWebSettings::StandardFont);
    else
        settings.setFontFamily(QWebSettings::StandardFont, font);
    web_->setZoomFactor(0.4 + 0.1 * user.getZoomInfo());
    // The keyboard on the screen comes up by itself, or the one at USB is used.
    qApp->setAutoSipEnabled(device.getSWKeyBoardTypeInfo() != 0);
    showMessage(network_.applyPreferences());
}

void BrowserWindow::changeZoom(int steps)
{
    TVNC_BrowserUserSetting& user = Profile::userPreferences();
    if (user.setZoomInfo(static_cast<short>(user.getZoomInfo() + steps))) // refuses what is too much
        profile_.savePreferences();
}

void BrowserWindow::updateBookmarkAction()
{
    const bool isBookmarked = profile_.bookmarks()->find(textOf(web_->url())) >= 0;
    bookmarkAction_->setIcon(QIcon::fromTheme(isBookmarked ? "starred-symbolic" : "bookmark-new-symbolic"));
}

void BrowserWindow::askForLogin(const Tlv::LoginRequest& request)
{
    const std::optional<Login> login = ::askForLogin(request, this);
    if (login && !profile_.loginHandler()->answer(request, login->user, login->password))
        web_->reload();
}

void BrowserWindow::closeEvent(QCloseEvent* event)
{
    profile_.save();
    event->accept();
}
