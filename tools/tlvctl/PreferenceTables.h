#ifndef TOOLS_TLVCTL_PREFERENCETABLES_H
#define TOOLS_TLVCTL_PREFERENCETABLES_H

#include "tools/tlvctl/Preferences.h"

/**
 * @file
 * All preferences by the names that a person would use. A new one is a row here.
 */

std::vector<Preference> commonPreferences();
std::vector<Preference> userPreferences();

#endif
