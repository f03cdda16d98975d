#include "SettingsDialog.h"

#include "Looks.h"

#include <QtCore/QCoreApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialog>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScroller>
#include <QtWidgets/QStyledItemDelegate>
#include <QtWidgets/QTabWidget>

#include <functional>
#include <vector>

using Device = TVNC_BrowserCommonSetting;
using User = TVNC_BrowserUserSetting;

namespace {

/// How a preference is shown and changed.
struct Field
{
    QWidget* editor;
    std::function<bool()> apply; ///< hands the value over; false when it is refused
    int maxBytes = 0;
};

struct Row
{
    const char* name; ///< for scripts
    QString label;
    Field field;
    QLabel* problem = nullptr;
    int page = 0;
};

/// Is touched on all of its row.
class Switch : public QCheckBox
{
protected:
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }
};

QComboBox* makeComboBox(const QStringList& words)
{
    auto* box = new QComboBox;
    box->addItems(words);
    box->setItemDelegate(new QStyledItemDelegate(box)); // obeys the style sheet, as its own one does not
    return box;
}

template <typename Store>
Field toggle(char (Store::*get)(), void (Store::*set)(char))
{
    auto* box = new Switch;
    box->setChecked((Store::getInstance()->*get)() != 0);
    return {box, [set, box] {
                (Store::getInstance()->*set)(box->isChecked() ? 1 : 0);
                return true;
            }};
}

template <typename Store, typename Code, typename Result>
Field choice(const QStringList& words, Code (Store::*get)(), Result (Store::*set)(Code), int firstCode = 0)
{
    QComboBox* box = makeComboBox(words);
    box->setCurrentIndex((Store::getInstance()->*get)() - firstCode);
    return {box, [set, box, firstCode] {
                (Store::getInstance()->*set)(static_cast<Code>(box->currentIndex() + firstCode));
                return true;
            }};
}

template <typename Store>
Field text(int maxBytes, void (Store::*get)(QString*), bool (Store::*set)(QString),
           const QStringList& proposals = {})
{
    QString text;
    (Store::getInstance()->*get)(&text);
    auto* line = new QLineEdit(text);
    line->setCursorPosition(0);
    QWidget* editor = line;
    if (!proposals.isEmpty()) {
        QComboBox* box = makeComboBox(proposals);
        box->setEditable(true);
        box->setLineEdit(line);
        box->setEditText(text);
        editor = box;
    }
    return {editor, [set, line] { return (Store::getInstance()->*set)(line->text()); }, maxBytes};
}

template <typename Store>
Field bytes(bool isSecret, void (Store::*get)(QByteArray*), bool (Store::*set)(QByteArray))
{
    QByteArray bytes;
    (Store::getInstance()->*get)(&bytes);
    auto* line = new QLineEdit(QString::fromUtf8(bytes));
    if (isSecret)
        line->setEchoMode(QLineEdit::Password);
    // Bytes that are no text stay as they are until somebody types over them.
    const auto apply = [set, line] {
        return !line->isModified() || (Store::getInstance()->*set)(line->text().toUtf8());
    };
    return {line, apply, 80};
}

class SettingsDialog : public QDialog
{
    Q_DECLARE_TR_FUNCTIONS(SettingsDialog)

public:
    SettingsDialog(Tlv::Profile& profile, QWidget* parent);

    /// Hands all values to the stores. Stays open when one of them is refused; the others are saved.
    void accept() override;

private:
    void addPage(const QString& title, const std::vector<Row>& rows);
    void addRow(QFormLayout& form, Row row);

    Tlv::Profile& profile_;
    QTabWidget* pages_;
    std::vector<Row> rows_;
};

SettingsDialog::SettingsDialog(Tlv::Profile& profile, QWidget* parent)
    : QDialog(parent), profile_(profile), pages_(new QTabWidget)
{
    const QStringList starts{tr("the home page"), tr("the last page")};
    const QStringList timings{tr("never"), tr("at log-out"), tr("when nobody uses the browser")};
    const QStringList keyboards{tr("at USB"), tr("on the screen")};
    QStringList zooms;
    for (int percent = 50; percent <= 150; percent += 10)
        zooms.append(QString("%1 %").arg(percent));

    addPage(tr("Pages"),
            {
                {"page.home", tr("Home page"), text(256, &User::getHomePage, &User::setHomePage)},
                {"page.startup", tr("Begin with"), choice(starts, &User::getStartUp, &User::setStartUp)},
                {"page.last", tr("Last page"), text(256, &User::getLastPage, &User::setLastPage)},
                {"page.zoom", tr("Zoom"), choice(zooms, &User::getZoomInfo, &User::setZoomInfo, 1)},
                {"page.font", tr("Font"), text(256, &User::getFontName, &User::setFontName, profile.fonts())},
            });
    addPage(tr("Privacy"),
            {
                {"cookies.clear", tr("Delete cookies"),
                 choice(timings, &User::getCookieDeleteTiming, &User::setCookieDeleteTiming)},
                {"auth.clear", tr("Delete logins"),
                 choice(timings, &User::getCertificationDeleteTiming, &User::setCertificationDeleteTiming)},
                {"cache.clear", tr("Empty the disk cache"),
                 choice(timings, &Device::getCacheDeleteTiming, &Device::setCacheDeleteTiming)},
                {"cache.enabled", tr("Use the disk cache"),
                 toggle(&Device::getUseCacheInfo, &Device::setUseCacheInfo)},
                {"cookies.accept", tr("Accept cookies"),
                 toggle(&Device::getRcvCookieInfo, &Device::setRcvCookieInfo)},
            });
    addPage(
        tr("Content"),
        {
            {"javascript.enabled", tr("Run JavaScript"),
             toggle(&Device::getUseJavaScriptInfo, &Device::setUseJavaScriptInfo)},
            {"flash.enabled", tr("Play Flash"), toggle(&Device::getPlayFlashInfo, &Device::setPlayFlashInfo)},
            {"keyboard.priority", tr("Keyboard"),
             choice(keyboards, &Device::getSWKeyBoardTypeInfo, &Device::setSWKeyBoardTypeInfo)},
            {"security.ssl30", tr("Allow SSL 3.0"), toggle(&Device::getUseSSL30, &Device::setUseSSL30)},
            {"security.tls10", tr("Allow TLS 1.0"), toggle(&Device::getUseTLS10, &Device::setUseTLS10)},
        });
    addPage(
        tr("Proxy"),
        {
            {"proxy.enabled", tr("Use a proxy"), toggle(&Device::getUseProxyInfo, &Device::setUseProxyInfo)},
            {"proxy.host", tr("Host"), text(253, &Device::getProxyServerStr, &Device::setProxyServerStr)},
            {"proxy.http-port", tr("Port for HTTP"),
             text(5, &Device::getProxyHttpPortStr, &Device::setProxyHttpPortStr)},
            {"proxy.https-port", tr("Port for HTTPS"),
             text(5, &Device::getProxyHttpsPortStr, &Device::setProxyHttpsPortStr)},
            {"proxy.http11", tr("Use HTTP/1.1"),
             toggle(&Device::getUseProxyHttpInfo, &Device::setUseProxyHttpInfo)},
            {"proxy.bypass", tr("Not for the domains"),
             text(253, &Device::getNoProxyDomainStr, &Device::setNoProxyDomainStr)},
            {"proxy.auth", tr("It asks for a login"),
             toggle(&Device::getUseProxyCertificationInfo, &Device::setUseProxyCertificationInfo)},
            {"proxy.user", tr("User name"),
             bytes(false, &Device::getProxyAccountStr, &Device::setProxyAccountStr)},
            {"proxy.password", tr("Password"),
             bytes(true, &Device::getProxyPasswordStr, &Device::setProxyPasswordStr)},
        });

    setWindowTitle(tr("Settings"));
    pages_->setObjectName("pages");
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(pages_, 1);
    addButtons(*this, tr("Save"));
    resize(QSize(720, 440).boundedTo(parent->size() - QSize(20, 20)));
}

void SettingsDialog::addPage(const QString& title, const std::vector<Row>& rows)
{
    auto* page = new QWidget;
    auto* form = new QFormLayout(page);
    auto* scroller = new QScrollArea;
    scroller->setWidget(page);
    scroller->setWidgetResizable(true);
    scroller->setFrameShape(QFrame::NoFrame);
    QScroller::grabGesture(scroller->viewport());
    pages_->addTab(scroller, title);
    for (const Row& row : rows)
        addRow(*form, row);
}

void SettingsDialog::addRow(QFormLayout& form, Row row)
{
    row.field.editor->setObjectName(row.name);
    row.field.editor->setAccessibleName(row.label);
    row.page = pages_->count() - 1;
    row.problem = new QLabel(tr("Too long: %1 bytes are the most.").arg(row.field.maxBytes));
    row.problem->setProperty("isProblem", true);
    row.problem->hide();
    auto* box = qobject_cast<QCheckBox*>(row.field.editor);
    if (box)
        box->setText(row.label);
    form.addRow(box ? QString() : row.label, row.field.editor);
    form.addRow(QString(), row.problem);
    rows_.push_back(std::move(row));
}

void SettingsDialog::accept()
{
    int firstRefused = -1;
    for (const Row& row : rows_) {
        const bool isTaken = row.field.apply();
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

} // namespace

QDialog* makeSettingsDialog(Tlv::Profile& profile, QWidget* parent)
{
    return new SettingsDialog(profile, parent);
}
