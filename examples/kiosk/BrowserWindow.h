#ifndef EXAMPLES_KIOSK_BROWSERWINDOW_H
#define EXAMPLES_KIOSK_BROWSERWINDOW_H

#include "BrowserState.h"
#include "Network.h"

#include <QtWidgets/QMainWindow>
#include <QtWidgets/QStyle>

class BookmarkPage;
class HistoryPage;
class KeptPage;
class QLabel;
class QLineEdit;
class QStackedWidget;
class QStringListModel;
class QWebView;

/// The browser's one window: a toolbar, the page, and in its place now and then one of the browser's own
/// pages.
class BrowserWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit BrowserWindow(BrowserState& state);
    ~BrowserWindow() override;

    /// Opens the page that the preferences name, or the bookmarks when there is none.
    void start();

    void openUrl(const QString& text);
    void home();
    void bookmark();
    void logOut();

    /// Leaves the page, and deletes and saves what the preferences say for this occasion.
    void endUse(Timing timing, const QString& text);

    void showBookmarks();
    void showHistory();
    void showKept();
    void showWeb();
    void showSettings();
    void showMessage(const QString& text);
    void showSaveProblem();

    QWebView& web() const { return *web_; }
    bool isLoading() const { return isLoading_; }
    QString message() const;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void makeToolBar();
    void makePages();
    void connectWeb();
    void recordVisit(const QUrl& url);
    void applyPreferences();
    void updateCompletions();
    void updateBookmarkAction();
    void changeZoom(int steps);
    bool askForLogin(LoginQuestion& question);
    /// @param icon is shown where the desktop has none of this name
    QAction* addAction(const char* iconName, QStyle::StandardPixmap icon, const QString& text,
                       const char* keys, void (BrowserWindow::*run)());

    BrowserState& state_;
    Network network_;
    bool isLoading_ = false;

    QStackedWidget* stack_ = nullptr;
    QWebView* web_ = nullptr;
    BookmarkPage* bookmarkPage_ = nullptr;
    HistoryPage* historyPage_ = nullptr;
    KeptPage* keptPage_ = nullptr;
    QLineEdit* address_ = nullptr;
    QStringListModel* completions_ = nullptr;
    QAction* bookmarkAction_ = nullptr;
    QLabel* message_ = nullptr;
    QLabel* saveProblem_ = nullptr;
};

#endif
