#ifndef EXAMPLES_KIOSK_BROWSERWINDOW_H
#define EXAMPLES_KIOSK_BROWSERWINDOW_H

#include "Network.h"

#include <QtWidgets/QMainWindow>
#include <QtWidgets/QStyle>

#include <functional>

class QLabel;
class QLineEdit;
class QStackedWidget;
class QToolBar;
class QWebView;

/// The browser's one window: a toolbar, the page, and in its place now and then one of the browser's own
/// pages.
class BrowserWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit BrowserWindow(Tlv::Profile& profile);

    /// Opens the page that the preferences name, or the bookmarks when there is none.
    void start() { openOrShowBookmarks(profile_.startPage()); }

    void openUrl(const QString& text);
    void bookmark();
    void logOut();

    /// Leaves the page, and deletes and saves what the preferences say for this occasion.
    void endUse(Tlv::Profile::Occasion occasion, const QString& text);

    QWebView& web() const { return *web_; }
    bool isLoading() const { return isLoading_; }
    QString message() const;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void makePages();
    void makeToolBar();
    void makeStatusBar();
    void connectWeb();
    void connectProfile();
    QAction* addShortcut(const char* keys, const std::function<void()>& run);
    /// @param icon is shown where the desktop has none of this name
    QAction* addButton(QToolBar& bar, const char* iconName, QStyle::StandardPixmap icon, const QString& text,
                       const char* keys, const std::function<void()>& run);

    void showPage(QWidget* page);
    void openOrShowBookmarks(const QString& url);
    void showSettings();
    void showMessage(const QString& text);
    void recordVisit(const QUrl& url);
    void applyPreferences();
    void updateBookmarkAction();
    void changeZoom(int steps);
    void askForLogin(const Tlv::LoginRequest& request);

    Tlv::Profile& profile_;
    Network network_;
    bool isLoading_ = false;

    QStackedWidget* stack_;
    QWebView* web_;
    QWidget* bookmarkPage_ = nullptr;
    QWidget* historyPage_ = nullptr;
    QWidget* keptPage_ = nullptr;
    QLineEdit* address_;
    QAction* bookmarkAction_ = nullptr;
    QLabel* message_;
};

#endif
