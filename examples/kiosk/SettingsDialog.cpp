#include "SettingsDialog.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QTabWidget>

SettingsDialog::SettingsDialog(BrowserState& state, QWidget* parent)
    : QDialog(parent), state_(state), pages_(new QTabWidget)
{
    setWindowTitle(tr("Settings"));
    setObjectName("settings");
    fillUserPages();
    fillCommonPages();
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &SettingsDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(pages_, 1);
    layout->addWidget(buttons);
    resize(620, 400); // fits a panel of 800 x 480
}

void SettingsDialog::fillUserPages()
{
    User& user = BrowserState::user();
    const QStringList timings{tr("never"), tr("at log-out"), tr("when nobody uses the browser")};
    beginPage(tr("Pages"));
    addText("page.home", tr("Home page"), 256, user, &User::getHomePage, &User::setHomePage);
    addChoice("page.startup", tr("Begin with"), {tr("the home page"), tr("the last page")}, user,
              &User::getStartUp, &User::setStartUp);
    addText("page.last", tr("Last page"), 256, user, &User::getLastPage, &User::setLastPage);
    addChoice("page.zoom", tr("Zoom"),
              {"50 %", "60 %", "70 %", "80 %", "90 %", "100 %", "110 %", "120 %", "130 %", "140 %", "150 %"},
              user, &User::getZoomInfo, &User::setZoomInfo, 1);
    addText("page.font", tr("Font"), 256, user, &User::getFontName, &User::setFontName, state_.fonts());
    beginPage(tr("Privacy"));
    addChoice("cookies.clear", tr("Delete cookies"), timings, user, &User::getCookieDeleteTiming,
              &User::setCookieDeleteTiming);
    addChoice("auth.clear", tr("Delete logins"), timings, user, &User::getCertificationDeleteTiming,
              &User::setCertificationDeleteTiming);
    Common& common = BrowserState::common();
    addChoice("cache.clear", tr("Empty the disk cache"), timings, common, &Common::getCacheDeleteTiming,
              &Common::setCacheDeleteTiming);
    addSwitch("cache.enabled", tr("Use the disk cache"), common, &Common::getUseCacheInfo,
              &Common::setUseCacheInfo);
    addSwitch("cookies.accept", tr("Accept cookies"), common, &Common::getRcvCookieInfo,
              &Common::setRcvCookieInfo);
}

void SettingsDialog::fillCommonPages()
{
    Common& common = BrowserState::common();
    beginPage(tr("Content"));
    addSwitch("javascript.enabled", tr("Run JavaScript"), common, &Common::getUseJavaScriptInfo,
              &Common::setUseJavaScriptInfo);
    addSwitch("flash.enabled", tr("Play Flash"), common, &Common::getPlayFlashInfo,
              &Common::setPlayFlashInfo);
    addChoice("keyboard.priority", tr("Keyboard"), {tr("at USB"), tr("on the screen")}, common,
              &Common::getSWKeyBoardTypeInfo, &Common::setSWKeyBoardTypeInfo);
    addSwitch("security.ssl30", tr("Allow SSL 3.0"), common, &Common::getUseSSL30, &Common::setUseSSL30);
    addSwitch("security.tls10", tr("Allow TLS 1.0"), common, &Common::getUseTLS10, &Common::setUseTLS10);
    beginPage(tr("Proxy"));
    addSwitch("proxy.enabled", tr("Use a proxy"), common, &Common::getUseProxyInfo, &Common::setUseProxyInfo);
    addText("proxy.host", tr("Host"), 253, common, &Common::getProxyServerStr, &Common::setProxyServerStr);
    addText("proxy.http-port", tr("Port for HTTP"), 5, common, &Common::getProxyHttpPortStr,
            &Common::setProxyHttpPortStr);
    addText("proxy.https-port", tr("Port for HTTPS"), 5, common, &Common::getProxyHttpsPortStr,
            &Common::setProxyHttpsPortStr);
    addSwitch("proxy.http11", tr("Use HTTP/1.1"), common, &Common::getUseProxyHttpInfo,
              &Common::setUseProxyHttpInfo);
    addText("proxy.bypass", tr("Not for the domains"), 253, common, &Common::getNoProxyDomainStr,
            &Common::setNoProxyDomainStr);
    addSwitch("proxy.auth", tr("It asks for a login"), common, &Common::getUseProxyCertificationInfo,
              &Common::setUseProxyCertificationInfo);
    addBytes("proxy.user", tr("User name"), false, &Common::getProxyAccountStr, &Common::setProxyAccountStr);
    addBytes("proxy.password", tr("Password"), true, &Common::getProxyPasswordStr,
             &Common::setProxyPasswordStr);
}

void SettingsDialog::beginPage(const QString& title)
{
    auto* page = new QWidget;
    form_ = new QFormLayout(page);
    auto* scroller = new QScrollArea;
    scroller->setWidget(page);
    scroller->setWidgetResizable(true);
    scroller->setFrameShape(QFrame::NoFrame);
    pages_->addTab(scroller, title);
}

template <typename Store>
void SettingsDialog::addSwitch(const char* name, const QString& label, Store& store, char (Store::*get)(),
                               void (Store::*set)(char))
{
    auto* box = new QCheckBox;
    box->setChecked((store.*get)() != 0);
    addRow(name, label, box, 0, [&store, set, box] {
        (store.*set)(box->isChecked() ? 1 : 0);
        return true;
    });
}

template <typename Store, typename Code, typename Result>
void SettingsDialog::addChoice(const char* name, const QString& label, const QStringList& words, Store& store,
                               Code (Store::*get)(), Result (Store::*set)(Code), int firstCode)
{
    auto* box = new QComboBox;
    box->addItems(words);
    box->setCurrentIndex((store.*get)() - firstCode);
    addRow(name, label, box, 0, [&store, set, box, firstCode] {
        (store.*set)(static_cast<Code>(box->currentIndex() + firstCode));
        return true;
    });
}

template <typename Store>
void SettingsDialog::addText(const char* name, const QString& label, int maxBytes, Store& store,
                             void (Store::*get)(QString*), bool (Store::*set)(QString),
                             const QStringList& proposals)
{
    QString text;
    (store.*get)(&text);
    auto* line = new QLineEdit(text);
    line->setCursorPosition(0);
    QWidget* editor = line;
    if (!proposals.isEmpty()) {
        auto* box = new QComboBox;
        box->setEditable(true);
        box->addItems(proposals);
        box->setLineEdit(line);
        box->setEditText(text);
        editor = box;
    }
    addRow(name, label, editor, maxBytes, [&store, set, line] { return (store.*set)(line->text()); });
}

void SettingsDialog::addBytes(const char* name, const QString& label, bool isSecret,
                              void (Common::*get)(QByteArray*), bool (Common::*set)(QByteArray))
{
    QByteArray bytes;
    (BrowserState::common().*get)(&bytes);
    auto* line = new QLineEdit(QString::fromUtf8(bytes));
    if (isSecret)
        line->setEchoMode(QLineEdit::Password);
    addRow(name, label, line, 80, [set, line, bytes] {
        // Bytes that are no text stay as they are until somebody types over them.
        return !line->isModified() || (BrowserState::common().*set)(line->text().toUtf8());
    });
}

void SettingsDialog::addRow(const char* name, const QString& label, QWidget* editor, int maxBytes,
                            std::function<bool()> apply)
{
    editor->setObjectName(name);
    auto* problem = new QLabel;
    problem->setProperty("isProblem", true);
    problem->hide();
    form_->addRow(label, editor);
    form_->addRow(QString(), problem);
    rows_.push_back({problem, tr("Too long: %1 bytes are the most.").arg(maxBytes), pages_->count() - 1,
                     std::move(apply)});
}

void SettingsDialog::accept()
{
    int firstRefused = -1;
    for (const Row& row : rows_) {
        const bool isTaken = row.apply();
        row.problem->setText(isTaken ? QString() : row.problemText);
        row.problem->setVisible(!isTaken);
        if (!isTaken && firstRefused < 0)
            firstRefused = row.page;
    }
    state_.savePreferences();
    if (firstRefused < 0)
        QDialog::accept();
    else
        pages_->setCurrentIndex(firstRefused);
}
