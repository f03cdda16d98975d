/**
 * @file
 * tlvctl: looks into the settings directory of a device, repairs it and converts it.
 */

#include "tools/tlvctl/Tool.h"
#include "tools/tlvctl/commandline/Console.h"

#include <QtCore/QFile>
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QtCore/QTextCodec>
#endif

#include <clocale>

#include <langinfo.h>

namespace {

/**
 * Command lines and file names are in the encoding of the locale. Where that has no letters beyond ASCII,
 * they are taken as UTF-8, as Qt itself does if it was built with ICU; otherwise it would read Latin-1.
 * Qt 6 takes them as UTF-8 wherever it runs.
 *
 * @return the encoding's name
 */
QString chooseEncoding()
{
    std::setlocale(LC_CTYPE, "");
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    if (qstrcmp(nl_langinfo(CODESET), "ANSI_X3.4-1968") == 0)
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    return QString::fromLatin1(QTextCodec::codecForLocale()->name());
#else
    return "UTF-8";
#endif
}

} // namespace

int main(int argc, char** argv)
{
    const QString encoding = chooseEncoding();
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        const QString argument = QFile::decodeName(argv[i]);
        if (QFile::encodeName(argument) != argv[i]) {
            complain(QString("argument %1 is not text in the encoding of the locale, %2; convert it, or "
                             "set LC_ALL")
                         .arg(QString::number(i), encoding));
            return WRONG_USAGE;
        }
        arguments.append(argument);
    }
    return runCommandLine(tool(), arguments);
}
