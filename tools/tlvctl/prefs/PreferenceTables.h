#ifndef TOOLS_TLVCTL_PREFS_PREFERENCETABLES_H
#define TOOLS_TLVCTL_PREFS_PREFERENCETABLES_H

#include "tools/tlvctl/prefs/Preferences.h"

/**
 * @file
 * All preferences by the names that a person would use. A new one is a row here.
 */

std::vector<Preference> commonPreferences();
std::vector<Preference> userPreferences();

#endif
