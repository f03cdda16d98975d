#ifndef TOOLS_TLVCTL_PREFS_PREFERENCEWISHES_H
#define TOOLS_TLVCTL_PREFS_PREFERENCEWISHES_H

#include "tools/tlvctl/commandline/CommandLine.h"
#include "tools/tlvctl/prefs/Preferences.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <memory>
#include <vector>

/**
 * @file
 * What the commands for preferences have in common: finding them, and setting them.
 */

/// The arguments "common|user" and "DIR", which stand first.
Argument scopeArgument();
Argument preferenceDirArgument();

/// Complains and returns null when the first argument is no scope.
std::unique_ptr<Preferences> openPreferences(const QCommandLineParser& arguments);

/// Complains and returns null when there is no preference of this name.
const Preference* findPreference(const Preferences& preferences, const QString& name);

/// A value that was asked for.
struct Wish
{
    const Preference* preference;
    QByteArray value;
};

/// Sets preferences, saves the file and tells what changed. Values that the file has already stay.
int grantWishes(Preferences& preferences, const std::vector<Wish>& wishes,
                const QCommandLineParser& arguments);

#endif
