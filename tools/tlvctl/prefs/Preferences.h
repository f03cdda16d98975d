#ifndef TOOLS_TLVCTL_PREFS_PREFERENCES_H
#define TOOLS_TLVCTL_PREFS_PREFERENCES_H

#include "tools/tlvctl/records/StoreList.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

/// One preference: the name that a person would use, where it stands, and how the library is asked for it.
struct Preference
{
    QString name; ///< such as "proxy.host"
    QString meaning;
    const char* group; ///< in the document
    const char* leaf;

    /// A choice has words for people and those of the document, in the same order, from the code on.
    QStringList words;
    QStringList storedWords;
    int firstCode = 0;

    int maxBytes = 0; ///< of a text, or of a login's bytes
    bool isBytes = false;
    bool isSecret = false;

    /// The value as the store answers it, in the words for people. Bytes are bytes, all else is UTF-8.
    std::function<QByteArray()> get;

    /// Hands a value to the store that checkedValue() has given.
    std::function<bool(const QByteArray& value)> set;

    /// Why a value that the store takes cannot work, to follow the name; empty when it can.
    QString doubtAbout(const QByteArray& value) const;

    bool isChoice() const { return !words.isEmpty(); }

    /// The text that stands in the document for a value.
    QString storedText(const QByteArray& value) const;

    /// What a value may be, for messages and lists.
    QString allowed() const;

    /// A value of the user's as set() takes it. Nothing, with what is wrong with it, when it cannot be kept.
    std::optional<QByteArray> checkedValue(const QByteArray& value, QString& problem) const;
};

/// A preference with what the file holds of it.
struct PreferenceRecord
{
    const Preference* preference;
    QByteArray value;              ///< as the store answers it
    std::optional<QString> stored; ///< the text in the file, if there is one
    std::vector<Flaw> flaws;
};

/// The preferences of the device, or those of a user, in a settings directory.
class Preferences : public Store
{
public:
    /// Those of the device for "common", those of a user for "user", nothing for any other scope.
    static std::unique_ptr<Preferences> open(const QString& scope, const QString& dir);

    int count() const override { return static_cast<int>(table_.size()); }
    QStringList changesOfLoading() const override;
    bool hasDefaults() const override { return true; }

    const std::vector<Preference>& table() const { return table_; }

    /// The preference of a name; null when there is none.
    const Preference* find(const QString& name) const;

    /// All of them, in the order of the table.
    std::vector<PreferenceRecord> records() const;
    PreferenceRecord record(const Preference& preference) const;

    /// Whether there was a document to load.
    bool isLoadedFromFile() const { return fileRoot_ != nullptr; }

protected:
    Preferences(const QString& dir, const QString& name, const char* root, std::vector<Preference> table);

    void takeFile(std::unique_ptr<TVNC_XMLNode> fileRoot) override { fileRoot_ = std::move(fileRoot); }

private:
    std::vector<Preference> table_;
    std::unique_ptr<TVNC_XMLNode> fileRoot_;
};

/// All preferences by the names that a person would use. A new one is a row there.
std::vector<Preference> commonPreferences();
std::vector<Preference> userPreferences();

#endif
