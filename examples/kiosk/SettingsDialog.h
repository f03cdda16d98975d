#ifndef EXAMPLES_KIOSK_SETTINGSDIALOG_H
#define EXAMPLES_KIOSK_SETTINGSDIALOG_H

#include <tlvlib/browser/Profile.h>

#include <QtWidgets/QDialog>

#include <functional>
#include <vector>

class QFormLayout;
class QLabel;
class QTabWidget;

/// All preferences of the device and of the user. What a store refuses is told below its field.
class SettingsDialog : public QDialog
{
    Q_OBJECT

public:
    SettingsDialog(Tlv::Profile& profile, QWidget* parent);

    /// Hands all values to the stores. Stays open when one of them is refused; the others are saved.
    void accept() override;

private:
    void beginPage(const QString& title);
    void fillUserPages();
    void fillDevicePages();

    // A row each: its name for scripts, its label, and how its store is asked and told.
    template <typename Store>
    void addSwitch(const char* name, const QString& label, char (Store::*get)(), void (Store::*set)(char));
    template <typename Store, typename Code, typename Result>
    void addChoice(const char* name, const QString& label, const QStringList& words, Code (Store::*get)(),
                   Result (Store::*set)(Code), int firstCode = 0);
    template <typename Store>
    void addText(const char* name, const QString& label, int maxBytes, void (Store::*get)(QString*),
                 bool (Store::*set)(QString), const QStringList& proposals = {});
    template <typename Store>
    void addBytes(const char* name, const QString& label, bool isSecret, void (Store::*get)(QByteArray*),
                  bool (Store::*set)(QByteArray));
    /// @param apply hands the value over and tells whether it was taken
    void addRow(const char* name, const QString& label, QWidget* editor, int maxBytes,
                std::function<bool()> apply);

    struct Row
    {
        QLabel* problem;
        QString problemText;
        int page;
        std::function<bool()> apply;
    };

    Tlv::Profile& profile_;
    QTabWidget* pages_;
    QFormLayout* form_ = nullptr;
    std::vector<Row> rows_;
};

#endif
