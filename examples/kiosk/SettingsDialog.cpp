#include "SettingsDialog.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QTabWidget>

using Device = TVNC_BrowserCommonSetting;
using User = TVNC_BrowserUserSetting;

SettingsDialog::SettingsDialog(Tlv::Profile& profile, QWidget* parent)
    : QDialog(parent), profile_(profile), pages_(new QTabWidget)
{
    setWindowTitle(tr("Settings"));
    setObjectName("settings");
    fillUserPages();
    fillDevicePages();
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
    const QStringList starts{tr("the home page"), tr("the last page")};
    const QStringList timings{tr("never"), tr("at log-out"), tr("when nobody uses the browser")};
    QStringList zooms;
    for (int percent = 50; percent <= 150; percent += 10)
        zooms.append(QString("%1 %").arg(percent));
    beginPage(tr("Pages"));
    addText("page.home", tr("Home page"), 256, &User::getHomePage, &User::setHomePage);
    addChoice("page.startup", tr("Begin with"), starts, &User::getStartUp, &User::setStartUp);
    addText("page.last", tr("Last page"), 256, &User::getLastPage, &User::setLastPage);
    addChoice("page.zoom", tr("Zoom"), zooms, &User::getZoomInfo, &User::setZoomInfo, 1);
    addText("page.font", tr("Font"), 256, &User::getFontName, &User::setFontName, profile_.fonts());
    beginPage(tr("Privacy"));
    addChoice("cookies.clear", tr("Delete cookies"), timings, &User::getCookieDeleteTiming,
              &User::setCookieDeleteTiming);
    addChoice("auth.clear", tr("Delete logins"), timings, &User::getCertificationDeleteTiming,
              &User::setCertificationDeleteTiming);
    addChoice("cache.clear", tr("Empty the disk cache"), timings, &Device::getCacheDeleteTiming,
              &Device::setCacheDeleteTiming);
    addSwitch("cache.enabled", tr("Use the disk cache"), &Device::getUseCacheInfo, &Device::setUseCacheInfo);
    addSwitch("cookies.accept", tr("Accept cookies"), &Device::getRcvCookieInfo, &Device::setRcvCookieInfo);
}

void SettingsDialog::fillDevicePages()
{
    const QStringList keyboards{tr("at USB"), tr("on the screen")};
    beginPage(tr("Content"));
    addSwitch("javascript.enabled", tr("Run JavaScript"), &Device::getUseJavaScriptInfo,
              &Device::setUseJavaScriptInfo);
    addSwitch("flash.enabled", tr("Play Flash"), &Device::getPlayFlashInfo, &Device::setPlayFlashInfo);
    addChoice("keyboard.priority", tr("Keyboard"), keyboards, &Device::getSWKeyBoardTypeInfo,
              &Device::setSWKeyBoardTypeInfo);
    addSwitch("security.ssl30", tr("Allow SSL 3.0"), &Device::getUseSSL30, &Device::setUseSSL30);
    addSwitch("security.tls10", tr("Allow TLS 1.0"), &Device::getUseTLS10, &Device::setUseTLS10);
    beginPage(tr("Proxy"));
    addSwitch("proxy.enabled", tr("Use a proxy"), &Device::getUseProxyInfo, &Device::setUseProxyInfo);
    addText("proxy.host", tr("Host"), 253, &Device::getProxyServerStr, &Device::setProxyServerStr);
    addText("proxy.http-port", tr("Port for HTTP"), 5, &Device::getProxyHttpPortStr,
            &Device::setProxyHttpPortStr);
    addText("proxy.https-port", tr("Port for HTTPS"), 5, &Device::getProxyHttpsPortStr,
            &Device::setProxyHttpsPortStr);
    addSwitch("proxy.http11", tr("Use HTTP/1.1"), &Device::getUseProxyHttpInfo, &Device::setUseProxyHttpInfo);
    addText("proxy.bypass", tr("Not for the domains"), 253, &Device::getNoProxyDomainStr,
            &Device::setNoProxyDomainStr);
    addSwitch("proxy.auth", tr("It asks for a login"), &Device::getUseProxyCertificationInfo,
              &Device::setUseProxyCertificationInfo);
    addBytes("proxy.user", tr("User name"), false, &Device::getProxyAccountStr, &Device::setProxyAccountStr);
    addBytes("proxy.password", tr("Password"), true, &Device::getProxyPasswordStr,
             &Device::setProxyPasswordStr);
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
void SettingsDialog::addSwitch(const char* name, const QString& label, char (Store::*get)(),
                               void (Store::*set)(char))
{
    auto* box = new QCheckBox;
    box->setChecked((Store::getInstance()->*get)() != 0);
    addRow(name, label, box, 0, [set, box] {
        (Store::getInstance()->*set)(box->isChecked() ? 1 : 0);
        return true;
    });
}

template <typename Store, typename Code, typename Result>
void SettingsDialog::addChoice(const char* name, const QString& label, const QStringList& words,
                               Code (Store::*get)(), Result (Store::*set)(Code), int firstCode)
{
    auto* box = new QComboBox;
    box->addItems(words);
    box->setCurrentIndex((Store::getInstance()->*get)() - firstCode);
    addRow(name, label, box, 0, [set, box, firstCode] {
        (Store::getInstance()->*set)(static_cast<Code>(box->currentIndex() + firstCode));
        return true;
    });
}

template <typename Store>
void SettingsDialog::addText(const char* name, const QString& label, int maxBytes,
                             void (Store::*get)(QString*), bool (Store::*set)(QString),
                             const QStringList& proposals)
{
    QString text;
    (Store::getInstance()->*get)(&text);
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
    addRow(name, label, editor, maxBytes, [set, line] { return (Store::getInstance()->*set)(line->text()); });
}

template <typename Store>
void SettingsDialog::addBytes(const char* name, const QString& label, bool isSecret,
                              void (Store::*get)(QByteArray*), bool (Store::*set)(QByteArray))
{
    QByteArray bytes;
    (Store::getInstance()->*get)(&bytes);
    auto* line = new QLineEdit(QString::fromUtf8(bytes));
    if (isSecret)
        line->setEchoMode(QLineEdit::Password);
    addRow(name, label, line, 80, [set, line] {
        // Bytes that are no text stay as they are until somebody types over them.
        return !line->isModified() || (Store::getInstance()->*set)(line->text().toUtf8());
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
    profile_.savePreferences();
    if (firstRefused < 0)
        QDialog::accept();
    else
        pages_->setCurrentIndex(firstRefused);
}
