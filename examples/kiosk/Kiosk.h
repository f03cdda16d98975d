#ifndef EXAMPLES_KIOSK_KIOSK_H
#define EXAMPLES_KIOSK_KIOSK_H

#include <QtCore/QStringList>

#include <functional>

class BrowserWindow;

/// Runs the browser up to its end, in an application that is there. @return the exit code of the program
/// @param begin is called, if there is one, when the window is shown
int runKiosk(const QStringList& arguments, const std::function<void(BrowserWindow&)>& begin = {});

#endif
