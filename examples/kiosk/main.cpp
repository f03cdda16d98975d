/*
 * A small browser that keeps all its state with tlvlib: windows and pages over the ready-made pieces of
 * tlvlib/browser.
 *
 *     kiosk --profile DIR [URL]
 */

#include "Kiosk.h"

#include <QtWidgets/QApplication>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    return runKiosk(application.arguments());
}
