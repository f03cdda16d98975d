#include "tests/support/TestSite.h"
#include "tests/support/TestSupport.h"

#include "BrowserWindow.h"
#include "Looks.h"

#include <QtCore/QProcess>
#include <QtCore/QTimer>
#include <QtGui/QIcon>
#include <QtNetwork/QTcpServer>
#include <QtTest/QTest>
#include <QtWebKitWidgets/QWebView>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QAction>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QCompleter>
#include <QtWidgets/QDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListView>
#include <QtWidgets/QTabBar>
#include <QtWidgets/QTableView>
#include <QtWidgets/QToolButton>

#include <cstdio>
#include <memory>

using Tlv::Profile;

/// The example browser's windows from within: what a finger touches, what is told of each button, and what
/// the buttons of the lists do.
class tst_kiosk_windows : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void everyActionIsTold();
    void everyTargetFitsAFinger_data();
    void everyTargetFitsAFinger();
    void rowsOfPopUpsFitAFinger();
    void allOfASwitchIsTouched();
    void nothingIsCutOff_data();
    void nothingIsCutOff();
    void withoutIconsButtonsShowTheirNames();

    void buttonsNeedAChosenRecord();
    void chosenRecordIsOpened();
    void bookmarkIsRenamed();
    void recordsAreRemoved();
    void foundRecordIsTheOneThatIsRemoved();
    void emptyListSaysSo();
    void windowMayGoWhileAPageIsLoaded();

private:
    void press(const char* keys);
    /// Shows a page or a dialog by its shortcut. @return the dialog, or the window
    QWidget* show(const char* keys);
    /// The list that is shown.
    template <typename View>
    View* list() const;
    /// Calls something with the next dialog, which is modal.
    static void withDialog(const std::function<void(QDialog&)>& run);

    std::unique_ptr<TempDir> dir_;
    std::unique_ptr<Profile> profile_;
    std::unique_ptr<BrowserWindow> window_;
};

namespace {

template <typename Widget>
QList<Widget*> visibleChildren(const QWidget& parent)
{
    QList<Widget*> visible;
    for (Widget* widget : parent.findChildren<Widget*>()) {
        if (widget->isVisible())
            visible.append(widget);
    }
    return visible;
}

QByteArray nameOf(const QWidget& widget)
{
    return widget.metaObject()->className() + (" " + widget.objectName() + widget.accessibleName()).toUtf8();
}

/// Prints what setLooks() says, and the names of the buttons that are to be seen: "..." leads to the others.
int printNames(const QString& dir)
{
    std::printf("%s\n", qPrintable(setLooks()));
    Profile profile;
    if (!profile.open(dir))
        return EXIT_FAILURE;
    BrowserWindow window(profile);
    window.resize(800, 480);
    window.show();
    QCoreApplication::processEvents();
    for (const QToolButton* button : visibleChildren<QToolButton>(window)) {
        const int needed = std::max(TOUCH_SIZE, button->fontMetrics().horizontalAdvance(button->text()));
        const bool isWhole =
            button->width() >= needed && button->visibleRegion().boundingRect() == button->rect();
        const bool isNamed = button->icon().isNull() && !button->text().isEmpty();
        std::printf("%s%s, ", isNamed ? qPrintable(button->text()) : "...", isWhole ? "" : " cut off");
    }
    return EXIT_SUCCESS;
}

} // namespace

void tst_kiosk_windows::initTestCase()
{
    QCOMPARE(setLooks(), QString());
}

void tst_kiosk_windows::init()
{
    dir_ = std::make_unique<TempDir>();
    profile_ = std::make_unique<Profile>();
    QVERIFY(profile_->open(dir_->path() + "profile"));
    const QDateTime morning(QDate(2011, 4, 12), QTime(10, 15));
    for (const char* name : {"Gypsy moths", "Ferries", "Piggyback"}) {
        const QString url = QString("http://example.org/%1").arg(name).toLower().remove(' ');
        QVERIFY(profile_->bookmarks()->add(name, url));
        profile_->history()->visit(url, name, morning);
        QVERIFY(profile_->logins()->keep(QString(name).remove(' '), 80, Tlv::LoginModel::Basic, "bob",
                                         "builder"));
        QVERIFY(profile_->cookieJar()->setCookiesFromUrl({QNetworkCookie(name, "1")}, QUrl(url)));
    }
    window_ = std::make_unique<BrowserWindow>(*profile_);
    window_->resize(800, 480);
    window_->show();
}

void tst_kiosk_windows::cleanup()
{
    window_.reset();
    profile_.reset();
    dir_.reset();
}

void tst_kiosk_windows::press(const char* keys)
{
    for (QAction* action : window_->findChildren<QAction*>()) {
        const QList<QWidget*> widgets = action->associatedWidgets();
        const bool isShown = std::any_of(widgets.begin(), widgets.end(),
                                         [](const QWidget* widget) { return widget->isVisible(); });
        if (action->shortcut() == QKeySequence(keys) && isShown) {
            QVERIFY2(action->isEnabled(), keys);
            action->trigger();
            QCoreApplication::processEvents();
            return;
        }
    }
    QFAIL(keys);
}

QWidget* tst_kiosk_windows::show(const char* keys)
{
    press(keys);
    QWidget* dialog = QApplication::activeModalWidget();
    return dialog ? dialog : window_.get();
}

template <typename View>
View* tst_kiosk_windows::list() const
{
    return visibleChildren<View>(*window_).value(0);
}

void tst_kiosk_windows::withDialog(const std::function<void(QDialog&)>& run)
{
    QTimer::singleShot(0, [run] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        run(*dialog);
    });
}

// --- Looks -------------------------------------------------------------------------------------------------

void tst_kiosk_windows::everyActionIsTold()
{
    int commands = 0;
    for (QAction* action : window_->findChildren<QAction*>()) {
        // Qt has actions of its own, such as those of the page's menu.
        const bool isOwn = !action->shortcut().isEmpty() && !action->associatedWidgets().isEmpty();
        if (action->isSeparator() || !isOwn)
            continue;
        ++commands;
        const QByteArray name = action->text().toUtf8();
        QVERIFY(!name.isEmpty());
        QVERIFY2(!action->icon().pixmap(ICON_SIZE).isNull(), name);
        QCOMPARE(action->toolTip(), QString("%1 (%2)").arg(action->text(), action->shortcut().toString(
                                                                               QKeySequence::NativeText)));
    }
    QCOMPARE(commands, 24);
    for (const char* keys : {"Ctrl+B", "Ctrl+H", "Ctrl+K", "Ctrl+J", "Ctrl+,"}) {
        const QWidget& top = *show(keys);
        QVERIFY(visibleChildren<QAbstractButton>(top).size() > 1);
        for (const QAbstractButton* button : visibleChildren<QAbstractButton>(top)) {
            QVERIFY2(!button->text().isEmpty(), nameOf(*button));
            QVERIFY2(!button->toolTip().isEmpty() || qobject_cast<const QCheckBox*>(button), nameOf(*button));
        }
        for (const QLineEdit* line : visibleChildren<QLineEdit>(top))
            QVERIFY2(!line->accessibleName().isEmpty() || qobject_cast<QComboBox*>(line->parent()),
                     nameOf(*line));
        for (const QComboBox* box : visibleChildren<QComboBox>(top))
            QVERIFY2(!box->accessibleName().isEmpty(), nameOf(*box));
        for (const QTableView* table : visibleChildren<QTableView>(top))
            QVERIFY2(!table->accessibleName().isEmpty(), nameOf(*table));
    }
}

void tst_kiosk_windows::everyTargetFitsAFinger_data()
{
    QTest::addColumn<QByteArray>("keys");
    QTest::addColumn<int>("tab");
    for (const char* keys : {"Ctrl+B", "Ctrl+H", "Ctrl+K", "Ctrl+J", "Escape"})
        QTest::newRow(keys) << QByteArray(keys) << -1;
    for (int tab = 0; tab < 4; ++tab)
        QTest::newRow(qPrintable(QString("settings %1").arg(tab))) << QByteArray("Ctrl+,") << tab;
}

void tst_kiosk_windows::everyTargetFitsAFinger()
{
    QFETCH(QByteArray, keys);
    QFETCH(int, tab);
    QCOMPARE(TOUCH_SIZE, 44);
    QWidget& top = *show(keys);
    if (tab >= 0)
        top.findChild<QTabBar*>()->setCurrentIndex(tab);
    QCoreApplication::processEvents();
    for (const QAbstractButton* button : visibleChildren<QAbstractButton>(top))
        QVERIFY2(button->height() >= TOUCH_SIZE && button->width() >= TOUCH_SIZE, nameOf(*button));
    for (const QLineEdit* line : visibleChildren<QLineEdit>(top))
        QVERIFY2(line->height() >= TOUCH_SIZE || qobject_cast<QComboBox*>(line->parent()), nameOf(*line));
    for (const QComboBox* box : visibleChildren<QComboBox>(top))
        QVERIFY2(box->height() >= TOUCH_SIZE, nameOf(*box));
    for (const QTabBar* bar : visibleChildren<QTabBar>(top)) {
        for (int i = 0; i < bar->count(); ++i)
            QVERIFY2(bar->tabRect(i).height() >= TOUCH_SIZE && bar->tabRect(i).width() >= TOUCH_SIZE,
                     qPrintable(bar->tabText(i)));
    }
    for (const QTableView* table : visibleChildren<QTableView>(top))
        QVERIFY2(table->visualRect(table->model()->index(0, 0)).height() >= TOUCH_SIZE, nameOf(*table));
    for (const QListView* view : visibleChildren<QListView>(top))
        QVERIFY2(view->visualRect(view->model()->index(0, 0)).height() >= TOUCH_SIZE, nameOf(*view));
}

void tst_kiosk_windows::rowsOfPopUpsFitAFinger()
{
    auto* address = window_->findChild<QLineEdit*>("address");
    address->setFocus();
    QTest::keyClicks(address, "moths");
    QAbstractItemView* popup = address->completer()->popup();
    QTRY_VERIFY(popup->isVisible());
    const QModelIndex first = popup->model()->index(0, Tlv::HistoryModel::UrlColumn);
    QVERIFY(popup->visualRect(first).height() >= TOUCH_SIZE);
    popup->hide();

    const QWidget& settings = *show("Ctrl+,");
    QVERIFY(visibleChildren<QComboBox>(settings).size() > 2);
    for (QComboBox* box : visibleChildren<QComboBox>(settings)) {
        box->showPopup();
        QTRY_VERIFY(box->view()->isVisible());
        QVERIFY(box->view()->visualRect(box->model()->index(0, 0)).height() >= TOUCH_SIZE);
        box->hidePopup();
    }
}

void tst_kiosk_windows::allOfASwitchIsTouched()
{
    QWidget& settings = *show("Ctrl+,");
    settings.findChild<QTabBar*>()->setCurrentIndex(1);
    auto* box = settings.findChild<QCheckBox*>("cookies.accept");
    for (const QPoint& place : {QPoint(3, 3), QPoint(TOUCH_SIZE * 2, box->height() - 3)}) {
        const bool before = box->isChecked();
        QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, place);
        QCOMPARE(box->isChecked(), !before);
    }
}

void tst_kiosk_windows::nothingIsCutOff_data()
{
    everyTargetFitsAFinger_data();
}

void tst_kiosk_windows::nothingIsCutOff()
{
    QFETCH(QByteArray, keys);
    QFETCH(int, tab);
    QWidget& top = *show(keys);
    if (tab >= 0)
        top.findChild<QTabBar*>()->setCurrentIndex(tab);
    QCoreApplication::processEvents();
    for (const QLabel* label : visibleChildren<QLabel>(top)) {
        const QSize needed = label->fontMetrics().size(0, label->text());
        QVERIFY2(label->contentsRect().height() >= needed.height() || label->text().isEmpty(),
                 qPrintable(label->text()));
        QVERIFY2(label->width() >= needed.width() || label->wordWrap(), qPrintable(label->text()));
    }
    // Those within a field, too: with its ascenders and descenders a line of text fits into it.
    for (const QLineEdit* line : visibleChildren<QLineEdit>(top))
        QVERIFY2(line->contentsRect().height() >= line->fontMetrics().height(), nameOf(*line));
    for (const QAbstractButton* button : visibleChildren<QAbstractButton>(top))
        QVERIFY2(button->width() >= button->sizeHint().width(), nameOf(*button));
    for (const QSize& panel : {QSize(640, 400), QSize(800, 480)}) {
        window_->resize(panel);
        QCOMPARE(window_->size(), panel); // there is room for everything
    }
    QVERIFY(top.width() <= 800 && top.height() <= 480);
}

// In a process of its own: Qt keeps the icons that it has found.
void tst_kiosk_windows::withoutIconsButtonsShowTheirNames()
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_DATA_DIRS", dir_->path());
    environment.insert("XDG_DATA_HOME", dir_->path());
    process.setProcessEnvironment(environment);
    process.start(QCoreApplication::applicationFilePath(), {"--names", dir_->path() + "other"});
    QVERIFY(process.waitForFinished());
    const QString told = process.readAllStandardOutput();
    QVERIFY2(
        told.startsWith("The icons are missing, and buttons show their names instead: install the icon theme "
                        "\"Adwaita\" (adwaita-icon-theme) and Qt's plug-in for SVG (libqt5svg5).\n"
                        "..., Back, Forward, Reload, Home page, "),
        qPrintable(told));
    QVERIFY2(!told.contains("cut off"), qPrintable(told));
    QCOMPARE(process.exitCode(), 0);
}

// --- Lists -------------------------------------------------------------------------------------------------

void tst_kiosk_windows::buttonsNeedAChosenRecord()
{
    show("Ctrl+H");
    auto* table = list<QTableView>();
    QHash<QString, QToolButton*> buttons;
    for (QToolButton* button : visibleChildren<QToolButton>(*table->parentWidget()))
        buttons[button->accessibleName()] = button;
    QCOMPARE(buttons.size(), 3);
    QVERIFY(!buttons["Open"]->isEnabled() && !buttons["Remove"]->isEnabled());
    QVERIFY(buttons["Clear history"]->isEnabled());
    QTest::mouseClick(table->viewport(), Qt::LeftButton, Qt::NoModifier,
                      table->visualRect(table->model()->index(1, 1)).center());
    QVERIFY(buttons["Open"]->isEnabled() && buttons["Remove"]->isEnabled());
    profile_->history()->clear();
    QVERIFY(!buttons["Open"]->isEnabled() && !buttons["Remove"]->isEnabled());
}

void tst_kiosk_windows::chosenRecordIsOpened()
{
    TestSite site;
    QVERIFY(site.listen());
    QVERIFY(profile_->bookmarks()->add("Maps", site.address("/maps")));
    show("Ctrl+B");
    auto* view = list<QListView>();
    view->setCurrentIndex(view->model()->index(0, 0));
    press("Ctrl+O");
    const auto* web = window_->findChild<QWebView*>();
    QVERIFY(web->isVisible());
    QTRY_COMPARE(web->url(), QUrl(site.address("/maps")));
}

void tst_kiosk_windows::bookmarkIsRenamed()
{
    show("Ctrl+B");
    auto* view = list<QListView>();
    view->setCurrentIndex(view->model()->index(1, 0));
    withDialog([](QDialog& dialog) {
        auto* line = dialog.findChild<QLineEdit*>("title");
        QCOMPARE(line->text(), QString("Ferries"));
        QCOMPARE(line->accessibleName(), QString("Title"));
        line->setText("Boats");
        dialog.accept();
    });
    press("F2");
    QCOMPARE(profile_->bookmarks()->index(1, 0).data().toString(), QString("Boats"));
    withDialog([](QDialog& dialog) {
        dialog.findChild<QLineEdit*>("title")->setText("Ships");
        dialog.reject();
    });
    press("F2");
    QCOMPARE(profile_->bookmarks()->index(1, 0).data().toString(), QString("Boats"));
}

void tst_kiosk_windows::recordsAreRemoved()
{
    const std::pair<const char*, Tlv::RecordModel*> lists[] = {{"Ctrl+B", profile_->bookmarks()},
                                                               {"Ctrl+H", profile_->history()},
                                                               {"Ctrl+K", profile_->logins()},
                                                               {"Ctrl+J", profile_->cookies()}};
    for (const auto& [keys, model] : lists) {
        show(keys);
        const QString kept = model->index(0, 1).data().toString();
        auto* view = list<QAbstractItemView>();
        QVERIFY(!view->accessibleName().isEmpty());
        view->setCurrentIndex(view->model()->index(1, 0));
        press("Delete");
        QCOMPARE(model->count(), 2);
        QCOMPARE(model->index(0, 1).data().toString(), kept);
    }
    show("Ctrl+H");
    press("Ctrl+Shift+Delete");
    QCOMPARE(profile_->history()->count(), 0);
}

void tst_kiosk_windows::foundRecordIsTheOneThatIsRemoved()
{
    show("Ctrl+B");
    const QList<QLineEdit*> lines = visibleChildren<QLineEdit>(*window_);
    const auto search = std::find_if(lines.begin(), lines.end(), [](const QLineEdit* line) {
        return line->accessibleName() == QString("Search in: Bookmarks");
    });
    QVERIFY(search != lines.end());
    (*search)->setText("EXAMPLE.ORG/GYPSY"); // in the address, which the pictures do not show
    auto* view = list<QListView>();
    QCOMPARE(view->model()->rowCount(), 1);
    view->setCurrentIndex(view->model()->index(0, 0));
    press("Delete");
    QCOMPARE(profile_->bookmarks()->count(), 2);
    QCOMPARE(profile_->bookmarks()->find("http://example.org/gypsymoths"), -1);
}

void tst_kiosk_windows::emptyListSaysSo()
{
    show("Ctrl+K");
    const auto isTold = [this] {
        const QList<QLabel*> labels = visibleChildren<QLabel>(*window_);
        return std::any_of(labels.begin(), labels.end(),
                           [](const QLabel* label) { return label->text() == "No login is kept."; });
    };
    QVERIFY(!isTold());
    profile_->logins()->clear();
    QVERIFY(isTold());
    profile_->bookmarks()->clear();
    press("Ctrl+B");
    window_->resize(640, 400);
    QCoreApplication::processEvents();
    QCOMPARE(window_->size(), QSize(640, 400)); // the longest text has room, too
}

void tst_kiosk_windows::windowMayGoWhileAPageIsLoaded()
{
    QTcpServer silent; // takes a request, and says nothing
    QVERIFY(silent.listen(QHostAddress::LocalHost));
    window_->openUrl(QString("http://127.0.0.1:%1/").arg(silent.serverPort()));
    QVERIFY(silent.waitForNewConnection(5000));
    QCoreApplication::processEvents();
    window_.reset();
    QCoreApplication::processEvents();
    QVERIFY(profile_->save());
}

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    if (argc == 3 && qstrcmp(argv[1], "--names") == 0)
        return printNames(argv[2]);
    tst_kiosk_windows test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_kiosk_windows.moc"
