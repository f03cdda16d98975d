#include "tools/tlvctl/prefs/Preferences.h"

#include "tools/tlvctl/commandline/Text.h"

#include <tlvlib/prefs/TVNC_BrowserCommonSetting.h>
#include <tlvlib/prefs/TVNC_BrowserUserSetting.h>

namespace {

/// The file of one of the two stores.
template <typename Setting>
class PreferencesOf : public Preferences
{
public:
    PreferencesOf(const QString& dir, const QString& name, const char* root, std::vector<Preference> table)
        : Preferences(dir, name, root, std::move(table)), store_(*Setting::getInstance())
    {
    }

    void save() override
    {
        QString dir = file().dir();
        store_.saveSetting(&dir);
    }

    TVNC_XMLNode& root() const override { return *store_.getXMLRootNode(); }

protected:
    void loadSetting() override
    {
        QString dir = file().dir();
        store_.loadSetting(&dir);
    }

private:
    Setting& store_;
};

/// The text of a leaf; nothing when the document lacks it.
std::optional<QString> textIn(TVNC_XMLNode* root, const Preference& preference)
{
    TVNC_XMLNode* const group = root ? childOf(*root, preference.group) : nullptr;
    return group ? textOf(*group, preference.leaf) : std::nullopt;
}

/// What is wrong with a text in the document that the store does not answer as it stands.
Flaw oddText(const Preference& preference, const QString& stored)
{
    if (preference.isBytes) // Of a password not even the length is told.
        return {"loginOdd",
                QString("not the base64 of up to %1 bytes throughout: the store answers what it can")
                    .arg(preference.maxBytes)};
    if (preference.isChoice())
        return {"unknownWord", QString("the file holds %1, which is none of %2")
                                   .arg(quoted(stored), preference.storedWords.join(", "))};
    if (stored.isEmpty())
        return {"empty", "the file holds an empty text"};
    return {"tooLong",
            QString("the file holds %1 bytes, over %2").arg(utf8Size(stored)).arg(preference.maxBytes)};
}

/// What a choice is also called: "on" and "off", and a zoom in percent.
QString otherWord(const Preference& preference, const QString& word)
{
    if (preference.words == QStringList{"no", "yes"}) {
        if (word == "on" || word == "true" || word == "1")
            return "yes";
        if (word == "off" || word == "false" || word == "0")
            return "no";
    }
    for (const QString& own : preference.words) {
        if (word == QString("%1%").arg(qRound(own.toDouble() * 100)) && own.contains('.'))
            return own;
    }
    return word;
}

} // namespace

QString Preference::allowed() const
{
    if (isChoice())
        return words.join(", ");
    return QString(isBytes ? "up to %1 bytes" : "up to %1 bytes of UTF-8").arg(maxBytes);
}

QString Preference::storedText(const QByteArray& value) const
{
    if (isBytes)
        return QString::fromLatin1(value.toBase64());
    const QString text = QString::fromUtf8(value);
    return isChoice() ? storedWords.value(static_cast<int>(words.indexOf(text))) : text;
}

QString Preference::doubtAbout(const QByteArray& value) const
{
    if (!QString(leaf).startsWith("port") || value.isEmpty())
        return QString();
    bool isNumber = false;
    const int port = value.toInt(&isNumber);
    if (isNumber && port >= 1 && port <= 65535)
        return QString();
    return QString("cannot be %1, which is no port from 1 to 65535; set it with --force all the same")
        .arg(quoted(QString::fromUtf8(value)));
}

std::optional<QByteArray> Preference::checkedValue(const QByteArray& value, QString& problem) const
{
    if (isChoice()) {
        const QString word = otherWord(*this, QString::fromUtf8(value).toLower());
        if (words.contains(word))
            return word.toUtf8();
        problem =
            QString("cannot be %1; it can be one of %2").arg(quoted(QString::fromUtf8(value)), allowed());
        return std::nullopt;
    }
    if (value.size() > maxBytes) {
        problem =
            QString("has %1 bytes, more than the %2 that the store takes").arg(value.size()).arg(maxBytes);
        return std::nullopt;
    }
    if (isBytes || value.isEmpty() || survivesSaving(QString::fromUtf8(value)))
        return value;
    problem = "consists of blanks or has control characters, which the file cannot keep";
    return std::nullopt;
}

Preferences::Preferences(const QString& dir, const QString& name, const char* root,
                         std::vector<Preference> table)
    : Store(dir, name, {root, nullptr}), table_(std::move(table))
{
}

std::unique_ptr<Preferences> Preferences::open(const QString& scope, const QString& dir)
{
    if (scope == "common")
        return std::make_unique<PreferencesOf<TVNC_BrowserCommonSetting>>(
            dir, "repostry.xml", "repostry_common", commonPreferences());
    if (scope == "user")
        return std::make_unique<PreferencesOf<TVNC_BrowserUserSetting>>(dir, "repostry_private.xml",
                                                                        "repostry", userPreferences());
    return nullptr;
}

QStringList Preferences::changesOfLoading() const
{
    int missing = 0;
    for (const Preference& preference : table_)
        missing += textIn(fileRoot_.get(), preference) ? 0 : 1;
    if (missing == 0)
        return {};
    return {
        QString("preferences that the file lacks, and that get their defaults by loading: %1").arg(missing)};
}

const Preference* Preferences::find(const QString& name) const
{
    for (const Preference& preference : table_) {
        if (preference.name == name)
            return &preference;
    }
    return nullptr;
}

PreferenceRecord Preferences::record(const Preference& preference) const
{
    PreferenceRecord record{&preference, preference.get(), textIn(fileRoot_.get(), preference), {}};
    if (!fileRoot_)
        return record;
    if (!record.stored) {
        record.flaws.push_back({"missing", "not in the file: the store answers the default"});
        return record;
    }
    if (*record.stored != preference.storedText(record.value))
        record.flaws.push_back(oddText(preference, *record.stored));
    return record;
}

std::vector<PreferenceRecord> Preferences::records() const
{
    std::vector<PreferenceRecord> records;
    for (const Preference& preference : table_)
        records.push_back(record(preference));
    return records;
}
