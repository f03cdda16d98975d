#include "BrowserWindow.h"

#include "BookmarkPage.h"
#include "HistoryPage.h"
#include "KeptPage.h"
#include "LoginDialog.h"
#include "SettingsDialog.h"

#include <QtGui/QCloseEvent>
#include <QtWebKit/QWebHistory>
#include <QtWebKitWidgets/QWebFrame>
#include <QtWebKitWidgets/QWebPage>
#include <QtWebKitWidgets/QWebView>
#include <QtWidgets/QAction>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCompleter>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QStackedWidget>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QToolBar>

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
    web_->page()->setNetworkAccessManager(&network_);
    auto* bookmarks = new BookmarkPage(*profile_.bookmarks());
    auto* history = new HistoryPage(*profile_.history());
    connect(bookmarks, &BookmarkPage::chosen, this, &BrowserWindow::openUrl);
    connect(history, &HistoryPage::chosen, this, &BrowserWindow::openUrl);
    bookmarkPage_ = bookmarks;
    historyPage_ = history;
    keptPage_ = new KeptPage(profile_);
    for (QWidget* page : std::initializer_list<QWidget*>{web_, bookmarkPage_, historyPage_, keptPage_})
        stack_->addWidget(page);
    setCentralWidget(stack_);
}

QAction* BrowserWindow::addShortcut(const char* keys, const std::function<void()>& run)
{
    auto* action = new QAction(this);
    action->setShortcut(QKeySequence(keys));
    connect(action, &QAction::triggered, this, run);
    addAction(action);
    return action;
}

QAction* BrowserWindow::addButton(QToolBar& bar, const char* iconName, QStyle::StandardPixmap icon,
                                  const QString& text, const char* keys, const std::function<void()>& run)
{
    QAction* action = addShortcut(keys, run);
    action->setIcon(QIcon::fromTheme(iconName, style()->standardIcon(icon)));
    action->setText(text);
    action->setToolTip(QString("%1 (%2)").arg(text, keys));
    bar.addAction(action);
    return action;
}

void BrowserWindow::makeToolBar()
{
    QToolBar& bar = *addToolBar(tr("Navigation"));
    bar.setMovable(false);
    bar.setContextMenuPolicy(Qt::PreventContextMenu);
    const std::pair<QWebPage::WebAction, const char*> pageActions[] = {
        {QWebPage::Back, "Alt+Left"}, {QWebPage::Forward, "Alt+Right"}, {QWebPage::Reload, "F5"}};
    for (const auto& [webAction, shortcut] : pageActions) {
        QAction* action = web_->pageAction(webAction);
        action->setShortcut(QKeySequence(shortcut));
        action->setToolTip(QString("%1 (%2)").arg(action->text(), shortcut));
        connect(action, &QAction::triggered, this, [this] { showPage(web_); });
        bar.addAction(action);
    }
    addButton(bar, "go-home", QStyle::SP_DirHomeIcon, tr("Home page"), "Alt+Home", [this] {
        QString url;
        Profile::userPreferences().getHomePage(&url);
        openOrShowBookmarks(url);
    });

    address_->setObjectName("address");
    address_->setPlaceholderText(tr("Address"));
    auto* completer = new QCompleter(profile_.history(), this);
    completer->setCompletionColumn(HistoryModel::UrlColumn);
    completer->setFilterMode(Qt::MatchContains);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    address_->setCompleter(completer);
    connect(address_, &QLineEdit::returnPressed, this, [this] { openUrl(address_->text()); });
    bar.addWidget(address_);

    bookmarkAction_ = addButton(bar, "bookmark-new", QStyle::SP_DialogSaveButton, tr("Bookmark this page"),
                                "Ctrl+D", [this] { bookmark(); });
    bar.addSeparator();
    addButton(bar, "user-bookmarks", QStyle::SP_FileDialogListView, tr("Bookmarks"), "Ctrl+B",
              [this] { showPage(bookmarkPage_); });
    addButton(bar, "view-history", QStyle::SP_FileDialogDetailedView, tr("History"), "Ctrl+H",
              [this] { showPage(historyPage_); });
    addButton(bar, "dialog-password", QStyle::SP_DriveHDIcon, tr("Logins and cookies"), "Ctrl+K",
              [this] { showPage(keptPage_); });
    addButton(bar, "configure", QStyle::SP_FileDialogContentsView, tr("Settings"), "Ctrl+,",
              [this] { showSettings(); });
    addButton(bar, "system-log-out", QStyle::SP_DialogCloseButton, tr("Log out"), "Ctrl+Shift+Q",
              [this] { logOut(); });

    // Without a place in the toolbar.
    addShortcut("Ctrl+L", [this] {
        address_->setFocus();
        address_->selectAll();
    });
    addShortcut("Escape", [this] { stack_->currentWidget() == web_ ? web_->stop() : showPage(web_); });
    addShortcut("Ctrl++", [this] { changeZoom(1); });
    addShortcut("Ctrl+-", [this] { changeZoom(-1); });
    addShortcut("Ctrl+Q", [this] { close(); });
}

void BrowserWindow::makeStatusBar()
{
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
    connect(web_, &QWebView::loadStarted, this, [this] {
        isLoading_ = true;
        showMessage(tr("Loading ..."));
    });
    connect(web_, &QWebView::loadFinished, this, [this](bool isFine) {
        isLoading_ = false;
        showMessage(isFine ? QString() : tr("The page could not be loaded."));
    });
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
        showPage(bookmarkPage_);
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
    showPage(web_);
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

void BrowserWindow::logOut()
{
    endUse(Profile::LogOut, tr("Logged out."));
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
    showPage(bookmarkPage_);
    showMessage(text);
}

void BrowserWindow::showPage(QWidget* page)
{
    stack_->setCurrentWidget(page);
    page->setFocus();
}

void BrowserWindow::showSettings()
{
    auto* dialog = new SettingsDialog(profile_, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

void BrowserWindow::showMessage(const QString& text)
{
    message_->setText(text);
}

QString BrowserWindow::message() const
{
    return message_->text();
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
    bookmarkAction_->setIcon(
        style()->standardIcon(isBookmarked ? QStyle::SP_DialogApplyButton : QStyle::SP_DialogSaveButton));
}

void BrowserWindow::askForLogin(const Tlv::LoginRequest& request)
{
    LoginDialog dialog(request, this);
    if (dialog.exec() == QDialog::Accepted &&
        !profile_.loginHandler()->answer(request, dialog.user(), dialog.password()))
        web_->reload();
}

void BrowserWindow::closeEvent(QCloseEvent* event)
{
    profile_.save();
    event->accept();
}
