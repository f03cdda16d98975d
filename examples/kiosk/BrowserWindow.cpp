#include "BrowserWindow.h"

#include "BookmarkPage.h"
#include "HistoryPage.h"
#include "KeptPage.h"
#include "LoginDialog.h"
#include "SettingsDialog.h"

#include <QtCore/QStringListModel>
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

namespace {

const char BLANK[] = "about:blank";

/// The address as it is shown and kept.
QString textOf(const QUrl& url)
{
    return QString::fromLatin1(url.toEncoded());
}

} // namespace

BrowserWindow::BrowserWindow(BrowserState& state) : state_(state), network_(state)
{
    setWindowTitle(tr("Kiosk"));
    makePages();
    makeToolBar();
    message_ = new QLabel;
    statusBar()->addWidget(message_, 1);
    saveProblem_ = new QLabel;
    saveProblem_->setProperty("isProblem", true);
    statusBar()->addPermanentWidget(saveProblem_);
    statusBar()->setSizeGripEnabled(false);
    connectWeb();

    network_.askForLogin = [this](LoginQuestion& question) { return askForLogin(question); };
    connect(&network_, &Network::message, this, &BrowserWindow::showMessage);
    connect(&state_, &BrowserState::preferencesChanged, this, &BrowserWindow::applyPreferences);
    connect(&state_, &BrowserState::saved, this, &BrowserWindow::showSaveProblem);
    connect(&state_.history, &History::changed, this, &BrowserWindow::updateCompletions);
    connect(&state_.bookmarks, &Bookmarks::changed, this, &BrowserWindow::updateBookmarkAction);
    updateCompletions();
    applyPreferences();
}

BrowserWindow::~BrowserWindow() = default;

void BrowserWindow::makePages()
{
    stack_ = new QStackedWidget;
    web_ = new QWebView;
    web_->page()->setNetworkAccessManager(&network_);
    bookmarkPage_ = new BookmarkPage(state_.bookmarks);
    historyPage_ = new HistoryPage(state_.history);
    keptPage_ = new KeptPage(state_.logins, state_.cookies);
    for (QWidget* page : std::initializer_list<QWidget*>{web_, bookmarkPage_, historyPage_, keptPage_})
        stack_->addWidget(page);
    setCentralWidget(stack_);
    connect(bookmarkPage_, &BookmarkPage::chosen, this, &BrowserWindow::openUrl);
    connect(historyPage_, &HistoryPage::chosen, this, &BrowserWindow::openUrl);
}

QAction* BrowserWindow::addAction(const char* iconName, QStyle::StandardPixmap icon, const QString& text,
                                  const char* keys, void (BrowserWindow::*run)())
{
    auto* action = new QAction(QIcon::fromTheme(iconName, style()->standardIcon(icon)), text, this);
    action->setShortcut(QKeySequence(keys));
    action->setToolTip(QString("%1 (%2)").arg(text, keys));
    connect(action, &QAction::triggered, this, run);
    QMainWindow::addAction(action);
    return action;
}

void BrowserWindow::makeToolBar()
{
    QToolBar* bar = addToolBar(tr("Navigation"));
    bar->setMovable(false);
    bar->setContextMenuPolicy(Qt::PreventContextMenu);
    const std::pair<QWebPage::WebAction, const char*> pageActions[] = {
        {QWebPage::Back, "Alt+Left"}, {QWebPage::Forward, "Alt+Right"}, {QWebPage::Reload, "F5"}};
    for (const auto& [webAction, shortcut] : pageActions) {
        QAction* action = web_->pageAction(webAction);
        action->setShortcut(QKeySequence(shortcut));
        action->setToolTip(QString("%1 (%2)").arg(action->text(), shortcut));
        connect(action, &QAction::triggered, this, &BrowserWindow::showWeb);
        bar->addAction(action);
    }
    bar->addAction(
        addAction("go-home", QStyle::SP_DirHomeIcon, tr("Home page"), "Alt+Home", &BrowserWindow::home));

    address_ = new QLineEdit;
    address_->setObjectName("address");
    address_->setPlaceholderText(tr("Address"));
    completions_ = new QStringListModel(this);
    auto* completer = new QCompleter(completions_, this);
    completer->setFilterMode(Qt::MatchContains);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    address_->setCompleter(completer);
    connect(address_, &QLineEdit::returnPressed, this, [this] { openUrl(address_->text()); });
    bar->addWidget(address_);

    bookmarkAction_ = addAction("bookmark-new", QStyle::SP_DialogSaveButton, tr("Bookmark this page"),
                                "Ctrl+D", &BrowserWindow::bookmark);
    bar->addAction(bookmarkAction_);
    bar->addSeparator();
    bar->addAction(addAction("user-bookmarks", QStyle::SP_FileDialogListView, tr("Bookmarks"), "Ctrl+B",
                             &BrowserWindow::showBookmarks));
    bar->addAction(addAction("view-history", QStyle::SP_FileDialogDetailedView, tr("History"), "Ctrl+H",
                             &BrowserWindow::showHistory));
    bar->addAction(addAction("dialog-password", QStyle::SP_DriveHDIcon, tr("Logins and cookies"), "Ctrl+K",
                             &BrowserWindow::showKept));
    bar->addAction(addAction("configure", QStyle::SP_FileDialogContentsView, tr("Settings"), "Ctrl+,",
                             &BrowserWindow::showSettings));
    bar->addAction(addAction("system-log-out", QStyle::SP_DialogCloseButton, tr("Log out"), "Ctrl+Shift+Q",
                             &BrowserWindow::logOut));

    // Without a place in the toolbar.
    const auto shortcut = [this](const char* keys, std::function<void()> run) {
        auto* action = new QAction(this);
        action->setShortcut(QKeySequence(keys));
        connect(action, &QAction::triggered, this, run);
        QMainWindow::addAction(action);
    };
    shortcut("Ctrl+L", [this] {
        address_->setFocus();
        address_->selectAll();
    });
    shortcut("Escape", [this] { stack_->currentWidget() == web_ ? web_->stop() : showWeb(); });
    shortcut("Ctrl++", [this] { changeZoom(1); });
    shortcut("Ctrl+-", [this] { changeZoom(-1); });
    shortcut("Ctrl+Q", [this] { close(); });
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
        state_.history.setTitle(textOf(web_->url()), title);
    });
}

void BrowserWindow::start()
{
    const QString url = state_.firstPage();
    if (url == BLANK || url.isEmpty())
        showBookmarks();
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

void BrowserWindow::home()
{
    QString url;
    BrowserState::user().getHomePage(&url);
    if (url == BLANK)
        showBookmarks();
    else
        openUrl(url);
}

void BrowserWindow::recordVisit(const QUrl& url)
{
    const QString text = textOf(url);
    address_->setText(text == BLANK ? QString() : text);
    address_->setCursorPosition(0);
    updateBookmarkAction();
    if (url.isEmpty() || text == BLANK)
        return;
    state_.history.visit(text, web_->title());
    state_.setLastPage(text);
}

void BrowserWindow::bookmark()
{
    const QString url = textOf(web_->url());
    if (web_->url().isEmpty() || url == BLANK) {
        showMessage(tr("There is no page to bookmark."));
        return;
    }
    // What is to be seen of the page, from its upper left corner on.
    const QSize size(Bookmarks::PICTURE_WIDTH, Bookmarks::PICTURE_HEIGHT);
    const QImage shown = web_->grab().toImage();
    const QImage scaled = shown.scaled(size, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation)
                              .copy(QRect(QPoint(0, 0), size));
    const QString title = web_->title().isEmpty() ? url : web_->title();
    const QString problem = state_.bookmarks.add(title, url, scaled);
    showMessage(problem.isEmpty() ? tr("Bookmarked.") : problem);
}

void BrowserWindow::logOut()
{
    endUse(Timing::LOG_OUT, tr("Logged out."));
}

void BrowserWindow::endUse(Timing timing, const QString& text)
{
    web_->stop();
    state_.end(timing);
    // What this process remembers beside the stores: logins, and the cache, whose object is not told that its
    // directory was emptied.
    network_.clearAccessCache();
    network_.applyPreferences();
    QWebSettings::clearMemoryCaches();
    web_->load(QUrl(BLANK));
    web_->history()->clear();
    showBookmarks();
    showMessage(text);
}

void BrowserWindow::showWeb()
{
    stack_->setCurrentWidget(web_);
}

void BrowserWindow::showBookmarks()
{
    bookmarkPage_->refresh();
    stack_->setCurrentWidget(bookmarkPage_);
}

void BrowserWindow::showHistory()
{
    historyPage_->refresh();
    stack_->setCurrentWidget(historyPage_);
}

void BrowserWindow::showKept()
{
    keptPage_->refresh();
    stack_->setCurrentWidget(keptPage_);
}

void BrowserWindow::showSettings()
{
    auto* dialog = new SettingsDialog(state_, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

void BrowserWindow::showMessage(const QString& text)
{
    message_->setText(text);
}

void BrowserWindow::showSaveProblem()
{
    // Its place is beside the message line, where nothing takes it away before it is solved.
    const QString problem = state_.saveProblem();
    saveProblem_->setText(problem.isEmpty() ? QString() : tr("Not saved."));
    saveProblem_->setToolTip(problem.toHtmlEscaped());
    if (!problem.isEmpty())
        showMessage(problem);
}

QString BrowserWindow::message() const
{
    return message_->text();
}

void BrowserWindow::applyPreferences()
{
    TVNC_BrowserCommonSetting& common = BrowserState::common();
    TVNC_BrowserUserSetting& user = BrowserState::user();
    QWebSettings& settings = *web_->settings();
    settings.setAttribute(QWebSettings::JavascriptEnabled, common.getUseJavaScriptInfo() != 0);
    settings.setAttribute(QWebSettings::PluginsEnabled, common.getPlayFlashInfo() != 0);
    QString font;
    user.getFontName(&font);
    if (font.isEmpty())
        settings.resetFontFamily(QWebSettings::StandardFont);
    else
        settings.setFontFamily(QWebSettings::StandardFont, font);
    web_->setZoomFactor(0.4 + 0.1 * user.getZoomInfo());
    // The keyboard on the screen comes up by itself, or the one at USB is used.
    qApp->setAutoSipEnabled(common.getSWKeyBoardTypeInfo() != 0);
    showMessage(network_.applyPreferences());
}

void BrowserWindow::changeZoom(int steps)
{
    TVNC_BrowserUserSetting& user = BrowserState::user();
    if (user.setZoomInfo(static_cast<short>(user.getZoomInfo() + steps))) // refuses what is too much
        state_.savePreferences();
}

void BrowserWindow::updateCompletions()
{
    QStringList urls;
    for (const TVNS_History& visit : state_.history.visits())
        urls.append(visit.url);
    completions_->setStringList(urls);
}

void BrowserWindow::updateBookmarkAction()
{
    const bool isBookmarked = state_.bookmarks.find(textOf(web_->url())) >= 0;
    bookmarkAction_->setIcon(
        style()->standardIcon(isBookmarked ? QStyle::SP_DialogApplyButton : QStyle::SP_DialogSaveButton));
}

bool BrowserWindow::askForLogin(LoginQuestion& question)
{
    LoginDialog dialog(question, this);
    return dialog.exec() == QDialog::Accepted;
}

void BrowserWindow::closeEvent(QCloseEvent* event)
{
    state_.save();
    event->accept();
}
