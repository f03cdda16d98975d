#include "tools/tlvctl/prefs/PreferenceWishes.h"

#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/records/StoreChange.h"

namespace {

/// A value in a line of its own words, where an empty one would not be seen.
QString namedValue(const Preference& preference, const QByteArray& value)
{
    return value.isEmpty() ? "\"\"" : preference.isSecret ? "(hidden)" : printableBytes(value);
}

/// Sets a preference, unless the file has that value already.
Outcome grant(const Preferences& preferences, const Wish& wish, QStringList& changes)
{
    const Preference& preference = *wish.preference;
    const PreferenceRecord before = preferences.record(preference);
    const QString value = preference.isSecret ? "(hidden)" : namedValue(preference, wish.value);
    if (before.stored && *before.stored == preference.storedText(wish.value)) {
        changes.append(QString("%1: %2, as it was").arg(preference.name, value));
        return Outcome::UNCHANGED;
    }
    if (!preference.set(wish.value))
        return refused(preferences, QString("the store refuses the value of %1").arg(preference.name));
    if (preference.isSecret) {
        changes.append(QString("%1: another one").arg(preference.name));
        return Outcome::CHANGED;
    }
    QString line = QString("%1: %2 -> %3").arg(preference.name, namedValue(preference, before.value), value);
    const QByteArray answer = preference.get();
    if (answer != wish.value)
        line += QString(", which is answered as %1").arg(namedValue(preference, answer));
    changes.append(line);
    return Outcome::CHANGED;
}

} // namespace

Argument scopeArgument()
{
    return {"common|user", "The preferences of the device, or those of a user."};
}

Argument preferenceDirArgument()
{
    return {"DIR", "The settings directory that holds repostry.xml or repostry_private.xml."};
}

std::unique_ptr<Preferences> openPreferences(const QCommandLineParser& arguments)
{
    const QString scope = arguments.positionalArguments().at(0);
    std::unique_ptr<Preferences> preferences = Preferences::open(scope, pathArgument(arguments, 1));
    if (!preferences)
        wrongUsage(QString("%1 is neither \"common\" nor \"user\"").arg(quoted(scope)));
    return preferences;
}

const Preference* findPreference(const Preferences& preferences, const QString& name)
{
    if (const Preference* const found = preferences.find(name))
        return found;
    QStringList names;
    for (const Preference& preference : preferences.table())
        names.append(preference.name);
    complain(preferences.file().path(),
             QString("there is no preference %1; there are %2").arg(quoted(name), names.join(", ")));
    return nullptr;
}

int grantWishes(Preferences& preferences, const std::vector<Wish>& wishes,
                const QCommandLineParser& arguments)
{
    return changeStore(preferences, arguments, [&](QStringList& changes) {
        Outcome all = Outcome::UNCHANGED;
        for (const Wish& wish : wishes) {
            const Outcome outcome = grant(preferences, wish, changes);
            if (outcome == Outcome::REFUSED)
                return outcome;
            if (outcome == Outcome::CHANGED)
                all = outcome;
        }
        return all;
    });
}
