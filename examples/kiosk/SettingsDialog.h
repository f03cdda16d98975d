#ifndef EXAMPLES_KIOSK_SETTINGSDIALOG_H
#define EXAMPLES_KIOSK_SETTINGSDIALOG_H

#include <tlvlib/browser/Profile.h>

class QDialog;
class QWidget;

/// A dialog with all preferences of the device and of the user. What a store refuses is told below its field.
QDialog* makeSettingsDialog(Tlv::Profile& profile, QWidget* parent);

#endif
