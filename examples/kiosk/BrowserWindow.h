#ifndef EXAMPLES_KIOSK_BROWSERWINDOW_H
#define EXAMPLES_KIOSK_BROWSERWINDOW_H

#include "Looks.h"
#include "Network.h"

#include <QtWebKitWidgets/QWebPage>
#include <QtWidgets/QMainWindow>

#include <functional>

class QLabel;
class QLineEdit;
class QStackedWidget;
class QTabWidget;
class QToolBar;
class QWebView;

/// The browser's one window: a toolbar, the page, and in its place now and then the browser's own lists.
class BrowserWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit BrowserWindow(Tlv::Profile& profile);

    /// Opens the page that the preferences name, or the bookmarks when there is none.
    void start() { openOrShowBookmarks(profile_.startPage()); }

    void openUrl(const QString& text);

    /// Leaves the page, and deletes and saves what the preferences say for this occasion.
    void endUse(Tlv::Profile::Occasion occasion, const QString& text);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void makePages();
    void makeToolBar();
    void makeStatusBar();
    void connectWeb();
    void connectProfile();
    void makeAddressLine();
    /// A command of the window, in the toolbar or not.
    QAction* addAction(const Command& command, const std::function<void()>& run);
    void addWebAction(QToolBar& bar, QWebPage::WebAction webAction, const Command& command);

    /// The browser's own pages.
    enum List { Bookmarks, History, Logins, Cookies };
    void showList(List list);
    void showWeb();
    void openOrShowBookmarks(const QString& url);
    void bookmark();
    void showMessage(const QString& text);
    void recordVisit(const QUrl& url);
    void applyPreferences();
    void updateBookmarkAction();
    void changeZoom(int steps);
    void askForLogin(const Tlv::LoginRequest& request);

    Tlv::Profile& profile_;
    Network network_;

    QStackedWidget* stack_;
    QWebView* web_;
    QTabWidget* lists_;
    QLineEdit* address_;
    QAction* bookmarkAction_ = nullptr;
    QLabel* message_;
};

#endif
