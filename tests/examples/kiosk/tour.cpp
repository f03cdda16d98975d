/*
 * The example browser, driven by a script: kiosk_tour SCRIPT does the steps that Tour.h describes. What
 * stands behind the script is what kiosk takes.
 */

#include "Tour.h"
#include "Kiosk.h"

#include <QtWidgets/QApplication>

#include <cstdio>
#include <memory>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QStringList arguments = application.arguments();
    Tour tour;
    const QString problem = tour.read(arguments.value(1));
    if (!problem.isEmpty()) {
        std::fprintf(stderr, "kiosk_tour: %s\n", qPrintable(problem));
        return EXIT_FAILURE;
    }
    arguments.removeAt(1);
    const int exitCode = runKiosk(arguments, [&tour](BrowserWindow& window) { tour.start(window); });
    return tour.hasFailed() ? EXIT_FAILURE : exitCode;
}
