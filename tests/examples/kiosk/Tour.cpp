#include "Tour.h"

#include "BrowserWindow.h"

#include <QtCore/QAbstractItemModel>
#include <QtCore/QFile>
#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtWebKit/QWebElement>
#include <QtWebKitWidgets/QWebFrame>
#include <QtWebKitWidgets/QWebPage>
#include <QtWebKitWidgets/QWebView>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QAction>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QTabWidget>

#include <algorithm>
#include <cstdio>

namespace {

const int POLL_MS = 20;
const int SETTLED_POLLS = 6;
const int TIMEOUT_POLLS = 30000 / POLL_MS;

QDialog* openDialog()
{
    return qobject_cast<QDialog*>(QApplication::activeModalWidget());
}

template <typename Widget>
QList<Widget*> visibleChildren(const QWidget& parent)
{
    QList<Widget*> children = parent.findChildren<Widget*>();
    const auto isHidden = [](const Widget* widget) { return !widget->isVisible(); };
    children.erase(std::remove_if(children.begin(), children.end(), isHidden), children.end());
    return children;
}

bool isAnyVisible(const QList<QWidget*>& widgets)
{
    return std::any_of(widgets.begin(), widgets.end(),
                       [](const QWidget* widget) { return widget->isVisible(); });
}

void sendMouse(QWidget& widget, QEvent::Type type, const QPoint& position, Qt::MouseButtons buttons)
{
    QMouseEvent event(type, position, Qt::LeftButton, buttons, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
}

QString unless(bool isFine, const QString& problem)
{
    return isFine ? QString() : problem;
}

} // namespace

Tour::Tour()
{
    timer_.setInterval(POLL_MS);
    connect(&timer_, &QTimer::timeout, this, &Tour::poll);
}

void Tour::start(BrowserWindow& window)
{
    window_ = &window;
    web_ = window.findChild<QWebView*>();
    connect(web_, &QWebView::loadStarted, this, [this] { isLoading_ = true; });
    connect(web_, &QWebView::loadFinished, this, [this] { isLoading_ = false; });
    timer_.start();
}

QString Tour::message() const
{
    return window_->findChild<QLabel*>("message")->text();
}

QString Tour::read(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString("%1: cannot be read: %2; name a file with the steps of a tour")
            .arg(path, file.errorString());
    path_ = path;
    steps_ = QString::fromUtf8(file.readAll()).split('\n');
    return QString();
}

void Tour::poll()
{
    if (waitPolls_ > 0) {
        --waitPolls_;
        return;
    }
    ++polls_;
    idlePolls_ = openDialog() || !isLoading_ ? idlePolls_ + 1 : 0;
    if (idlePolls_ < SETTLED_POLLS) {
        if (polls_ > TIMEOUT_POLLS)
            fail("the step is not done after 30 seconds");
        return;
    }
    idlePolls_ = 0;
    polls_ = 0;
    while (next_ < steps_.size()) {
        const QString step = steps_.at(next_++).trimmed();
        if (step.isEmpty() || step.startsWith('#'))
            continue;
        const QString problem = run(step.section(' ', 0, 0), step.section(' ', 1));
        if (!problem.isEmpty())
            fail(problem);
        return;
    }
    timer_.stop();
    if (openDialog())
        fail("a dialog is open at the end");
    else
        window_->close();
}

void Tour::fail(const QString& problem)
{
    timer_.stop();
    hasFailed_ = true;
    std::fprintf(stderr, "kiosk: %s:%d: %s\n", qPrintable(path_), next_, qPrintable(problem));
    std::fprintf(stderr, "kiosk: message line: \"%s\"; to be seen: \"%s\"\n", qPrintable(message()),
                 qPrintable(visibleTexts().join(" | ").left(500)));
    if (QDialog* dialog = openDialog())
        dialog->reject();
    window_->close();
}

QString Tour::run(const QString& verb, const QString& rest)
{
    QDialog* dialog = openDialog();
    if (verb == "expect")
        return unless(visibleTexts().join('\n').contains(rest),
                      QString("\"%1\" is not to be seen").arg(rest));
    if (verb == "screenshot")
        return screenshot(rest);
    if (verb == "set")
        return set(rest.section(' ', 0, 0), rest.section(' ', 1));
    if (verb == "login")
        return logIn(rest.section(' ', 0, 0), rest.section(' ', 1));
    if (verb != "save" && verb != "cancel")
        return dialog ? "a dialog is open" : runInWindow(verb, rest);
    if (!dialog)
        return "no dialog is open";
    verb == "save" ? dialog->accept() : dialog->reject();
    return QString();
}

QString Tour::runInWindow(const QString& verb, const QString& rest)
{
    if (verb == "click")
        return click(rest);
    if (verb == "type")
        return type(rest.section(' ', 0, 0), rest.section(' ', 1));
    if (verb == "press")
        return press(rest);
    if (verb == "choose")
        return choose(rest);
    if (verb == "message")
        return unless(message().contains(rest), "the message line does not have it");
    if (verb == "open")
        window_->openUrl(rest);
    else if (verb == "wait")
        waitPolls_ = rest.toInt() / POLL_MS;
    else
        return QString("there is no step \"%1\"").arg(verb);
    return QString();
}

QString Tour::click(const QString& selector)
{
    QWebFrame* frame = web_->page()->mainFrame();
    const QWebElement element = frame->findFirstElement(selector);
    if (element.isNull())
        return QString("there is no element \"%1\"").arg(selector);
    frame->setScrollPosition(element.geometry().topLeft() - QPoint(20, 20));
    const QPoint centre = element.geometry().center() - frame->scrollPosition();
    sendMouse(*web_, QEvent::MouseMove, centre, Qt::NoButton);
    sendMouse(*web_, QEvent::MouseButtonPress, centre, Qt::LeftButton);
    sendMouse(*web_, QEvent::MouseButtonRelease, centre, Qt::NoButton);
    return QString();
}

QString Tour::type(const QString& selector, const QString& text)
{
    const QString problem = click(selector);
    if (!problem.isEmpty())
        return problem;
    for (const QChar c : text) {
        QKeyEvent pressed(QEvent::KeyPress, c.toUpper().unicode(), Qt::NoModifier, c);
        QKeyEvent released(QEvent::KeyRelease, c.toUpper().unicode(), Qt::NoModifier, c);
        QApplication::sendEvent(web_, &pressed);
        QApplication::sendEvent(web_, &released);
    }
    return QString();
}

QString Tour::press(const QString& keys)
{
    for (QAction* action : window_->findChildren<QAction*>()) {
        if (action->shortcut() == QKeySequence(keys) && action->isEnabled() &&
            isAnyVisible(action->associatedWidgets())) {
            action->trigger();
            return QString();
        }
    }
    return QString("there is no shortcut %1, or not now").arg(keys);
}

QString Tour::choose(const QString& text)
{
    for (QAbstractItemView* view : visibleChildren<QAbstractItemView>(*window_)) {
        const QAbstractItemModel& model = *view->model();
        for (int column = 0; column < model.columnCount(); ++column) {
            const QModelIndexList found =
                model.match(model.index(0, column), Qt::DisplayRole, text, 1, Qt::MatchExactly);
            if (found.isEmpty())
                continue;
            emit view->activated(found.first());
            return QString();
        }
    }
    return "nothing of that title is shown";
}

QString Tour::logIn(const QString& user, const QString& password)
{
    const QString problem = set("user", user) + set("password", password);
    if (problem.isEmpty())
        openDialog()->accept();
    return problem;
}

QString Tour::set(const QString& name, const QString& value)
{
    // The fields of all pages of a dialog, but in the window those of the page that is shown.
    QWidget* field = nullptr;
    for (QWidget* widget : top().findChildren<QWidget*>(name)) {
        if (openDialog() || widget->isVisible())
            field = widget;
    }
    if (auto* box = qobject_cast<QCheckBox*>(field)) {
        box->setChecked(value == "yes");
    } else if (auto* choice = qobject_cast<QComboBox*>(field)) {
        if (!choice->isEditable() && choice->findText(value) < 0)
            return QString("there is no choice \"%1\"").arg(value);
        choice->setCurrentText(value);
    } else if (auto* pages = qobject_cast<QTabWidget*>(field)) {
        int page = pages->count() - 1;
        while (page >= 0 && pages->tabText(page) != value)
            --page;
        if (page < 0)
            return QString("there is no page \"%1\"").arg(value);
        pages->setCurrentIndex(page);
    } else if (auto* line = qobject_cast<QLineEdit*>(field)) {
        line->setText(value);
        line->setModified(true);
    } else {
        return QString("there is no field \"%1\"").arg(name);
    }
    return QString();
}

QString Tour::screenshot(const QString& file)
{
    QPixmap picture = window_->grab();
    if (QDialog* dialog = openDialog()) {
        QPainter painter(&picture);
        painter.fillRect(picture.rect(), QColor(0, 0, 0, 70));
        const QPoint place((picture.width() - dialog->width()) / 2,
                           (picture.height() - dialog->height()) / 2);
        painter.drawPixmap(place, dialog->grab());
    }
    return unless(picture.save(file, "PNG"), QString("%1 cannot be written").arg(file));
}

QStringList Tour::visibleTexts() const
{
    QStringList texts;
    for (const QLabel* label : visibleChildren<QLabel>(top()))
        texts.append(label->text());
    for (const QAbstractItemView* view : visibleChildren<QAbstractItemView>(top())) {
        for (int row = 0; row < view->model()->rowCount(); ++row) {
            for (int column = 0; column < view->model()->columnCount(); ++column)
                texts.append(view->model()->index(row, column).data().toString());
        }
    }
    if (web_->isVisible())
        texts.append(web_->page()->mainFrame()->toPlainText());
    return texts;
}

QWidget& Tour::top() const
{
    QDialog* dialog = openDialog();
    return dialog ? static_cast<QWidget&>(*dialog) : *window_;
}
