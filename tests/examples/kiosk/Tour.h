#ifndef TESTS_EXAMPLES_KIOSK_TOUR_H
#define TESTS_EXAMPLES_KIOSK_TOUR_H

#include <QtCore/QObject>
#include <QtCore/QStringList>
#include <QtCore/QTimer>

class BrowserWindow;
class QWebView;
class QWidget;

/**
 * Drives the browser through the steps of a text file, one a line, each beginning when the one before is done
 * and the page is there. It uses what a user would use: addresses, clicks, keys, the dialogs.
 *
 *     open URL                 as typed into the address bar
 *     click SELECTOR           the first element of a CSS selector
 *     type SELECTOR TEXT       clicks it and types
 *     press KEYS               a shortcut of the window, such as Ctrl+D
 *     choose TEXT              a bookmark or a visit, by its title
 *     login USER PASSWORD      answers the question for a login
 *     set NAME VALUE           a field of the dialog or the page, such as "search"; yes and no for a switch;
 *                              "pages" is the page of the settings that is shown
 *     save                     the dialog, such as the settings, which press Ctrl+, opens
 *     cancel                   any dialog
 *     expect TEXT              fails unless it is to be seen in the page or the dialog
 *     message TEXT             fails unless it is in the message line
 *     screenshot FILE          a PNG of the window
 *     wait MS                  so many milliseconds
 *     # ...                    a comment
 *
 * The end of the file closes the window.
 */
class Tour : public QObject
{
    Q_OBJECT

public:
    Tour();

    /// @return why the file cannot be read; empty when it was
    QString read(const QString& path);

    /// Begins in a window that is shown.
    void start(BrowserWindow& window);

    bool hasFailed() const { return hasFailed_; }

private:
    void poll();
    void fail(const QString& problem);

    // A step returns what is wrong, and nothing when it could be done.
    QString run(const QString& verb, const QString& rest);
    QString runInWindow(const QString& verb, const QString& rest);
    QString click(const QString& selector);
    QString type(const QString& selector, const QString& text);
    QString press(const QString& keys);
    QString choose(const QString& text);
    QString logIn(const QString& user, const QString& password);
    QString set(const QString& name, const QString& value);
    QString screenshot(const QString& file);
    QStringList visibleTexts() const;
    QString message() const;
    QWidget& top() const;

    BrowserWindow* window_ = nullptr;
    QWebView* web_ = nullptr;
    bool isLoading_ = false;
    QString path_;
    QStringList steps_;
    int next_ = 0;
    int idlePolls_ = 0;
    int polls_ = 0;
    int waitPolls_ = 0; ///< before the next step
    bool hasFailed_ = false;
    QTimer timer_;
};

#endif
