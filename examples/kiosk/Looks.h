#ifndef EXAMPLES_KIOSK_LOOKS_H
#define EXAMPLES_KIOSK_LOOKS_H

#include <QtCore/QString>

class QAction;
class QDialog;

/// In pixels: what is touched with a finger is at least as high, and a button at least as wide.
constexpr int TOUCH_SIZE = 44;

/// In pixels, both ways.
constexpr int ICON_SIZE = 24;

/// What a button does, as it is shown.
struct Command
{
    const char* icon; ///< its name in the icon theme
    QString text;
    const char* keys; ///< a shortcut
};

/// Gives the application its style sheet and its icons. @return what is missing, and what to do about it;
/// empty when nothing is
QString setLooks();

/// Gives an action icon, text, shortcut and tooltip.
void dress(QAction& action, const Command& command);

/// A text with air between itself and the icon in front of it.
QString besideIcon(const QString& text);

/// Ends a dialog's layout with a button that accepts it and one that does not.
void addButtons(QDialog& dialog, const QString& acceptText);

#endif
