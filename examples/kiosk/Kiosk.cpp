#include "Kiosk.h"

#include "BrowserWindow.h"
#include "Looks.h"

#include <tlvlib/browser/IdleTimer.h>
#include <tlvlib/diag/TVNG_DebugPrint.h>

#include <QtCore/QCommandLineParser>
#include <QtWidgets/QApplication>

#include <cstdio>
#include <optional>

using Tlv::Profile;

namespace {

const int WRONG_USAGE = 2;

int complain(const QString& problem, int exitCode)
{
    std::fprintf(stderr, "kiosk: %s\n", qPrintable(problem));
    return exitCode;
}

/// "800x480"; nothing for anything else.
std::optional<QSize> sizeOf(const QString& text)
{
    const QStringList parts = text.split('x');
    const QSize size(parts.value(0).toInt(), parts.value(1).toInt());
    const bool isSize = parts.size() == 2 && size.width() >= 320 && size.height() >= 240;
    return isSize ? std::optional<QSize>(size) : std::nullopt;
}

/// A number from 0 on; nothing for anything else.
std::optional<int> numberOf(const QString& text)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    return isNumber && number >= 0 ? std::optional<int>(number) : std::nullopt;
}

} // namespace

int runKiosk(const QStringList& arguments, const std::function<void(BrowserWindow&)>& begin)
{
    QCoreApplication::setApplicationName("kiosk");
    QCommandLineParser parser;
    parser.setApplicationDescription("A small browser that keeps its state with tlvlib.");
    parser.addHelpOption();
    parser.addPositionalArgument("URL", "The page to begin with, instead of that of the preferences.",
                                 "[URL]");
    parser.addOptions(
        {{"profile", "Where the state is kept; made when it is missing.", "DIR", "kiosk-profile"},
         {"size", "Size of the window in pixels, such as 800x480.", "WxH", "1280x800"},
         {"log-level", "What goes into the library's log file: 0 nothing, 3 everything.", "N", "0"},
         {"idle-timeout", "Seconds without input after which the use ends; 0 for never.", "S", "0"}});
    parser.process(arguments);
    const std::optional<QSize> size = sizeOf(parser.value("size"));
    if (!size)
        return complain("--size is such as 800x480, and at least 320x240", WRONG_USAGE);
    const std::optional<int> logLevel = numberOf(parser.value("log-level"));
    const std::optional<int> idleSeconds = numberOf(parser.value("idle-timeout"));
    if (!logLevel || !idleSeconds)
        return complain("--log-level and --idle-timeout are numbers from 0 on", WRONG_USAGE);
    TVNG_DebugSetLogLevel(static_cast<unsigned long>(*logLevel));

    Profile profile;
    if (!profile.open(parser.value("profile"))) {
        const char* otherwise = profile.error() == Profile::PathError ? ";" : ", or";
        return complain(
            QString("%1%2 name another directory with --profile").arg(profile.errorString(), otherwise),
            EXIT_FAILURE);
    }
    for (const Tlv::Damage& damage : profile.damages())
        complain(damage.text, EXIT_SUCCESS);

    const QString missing = setLooks();
    if (!missing.isEmpty())
        complain(missing, EXIT_SUCCESS);
    BrowserWindow window(profile);
    window.resize(*size);

    std::optional<Tlv::IdleTimer> idleTimer;
    if (*idleSeconds > 0) {
        idleTimer.emplace(std::chrono::seconds(*idleSeconds));
        QObject::connect(&*idleTimer, &Tlv::IdleTimer::idle, &window, [&window] {
            window.endUse(Profile::Timeout, QObject::tr("Nobody was here for a while."));
        });
    }
    window.show();
    if (parser.positionalArguments().isEmpty())
        window.start();
    else
        window.openUrl(parser.positionalArguments().first());
    if (begin)
        begin(window);
    const int exitCode = QCoreApplication::exec();
    if (!profile.saveError().isEmpty())
        return complain(profile.saveError(), EXIT_FAILURE);
    return exitCode;
}
