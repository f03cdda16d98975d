/*
 * The test site as a program, for the demo: kiosk_site FILE serves until it is ended, and writes its address
 * into the file when it can be visited.
 */

#include "tests/support/TestSite.h"

#include <QtCore/QSaveFile>
#include <QtGui/QGuiApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    QGuiApplication application(argc, argv);
    TestSite site;
    QSaveFile file(application.arguments().value(1));
    if (!site.listen() || !file.open(QIODevice::WriteOnly) || file.write(site.address().toLatin1()) < 0 ||
        !file.commit()) {
        std::fprintf(stderr,
                     "kiosk_site: cannot serve, or cannot write its address: give it a file to write\n");
        return 1;
    }
    return application.exec();
}
