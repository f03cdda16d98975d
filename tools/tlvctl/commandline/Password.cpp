#include "tools/tlvctl/commandline/Password.h"

#include "tools/tlvctl/commandline/Console.h"

#include <QtCore/QFile>

#include <cerrno>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace {

volatile std::sig_atomic_t caughtSignal = 0;

void catchSignal(int signal)
{
    caughtSignal = signal;
}

/**
 * A terminal that shows nothing of what is typed. It is set back at the end, also when a signal ends the
 * process: that is held back until then, and only let through while waitForInput() waits.
 */
class SilentTerminal
{
public:
    explicit SilentTerminal(int fd) : fd_(fd)
    {
        caughtSignal = 0;
        struct sigaction action
        {
        };
        action.sa_handler = catchSignal;
        sigset_t heldBack;
        sigemptyset(&heldBack);
        for (size_t i = 0; i < COUNT; ++i) {
            sigaction(SIGNALS[i], &action, &actions_[i]);
            sigaddset(&heldBack, SIGNALS[i]);
        }
        sigprocmask(SIG_BLOCK, &heldBack, &mask_);
        isSilent_ = tcgetattr(fd_, &settings_) == 0;
        if (!isSilent_)
            return;
        termios silent = settings_;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHOE | ECHOK | ECHONL);
        isSilent_ = tcsetattr(fd_, TCSAFLUSH, &silent) == 0;
    }

    ~SilentTerminal()
    {
        if (isSilent_)
            tcsetattr(fd_, TCSAFLUSH, &settings_);
        for (size_t i = 0; i < COUNT; ++i)
            sigaction(SIGNALS[i], &actions_[i], nullptr);
        if (caughtSignal != 0)
            std::raise(caughtSignal);
        sigprocmask(SIG_SETMASK, &mask_, nullptr);
    }

    SilentTerminal(const SilentTerminal&) = delete;
    SilentTerminal& operator=(const SilentTerminal&) = delete;

    bool isSilent() const { return isSilent_; }

    /**
     * Waits until something was typed. False with errno set when a signal came, no matter when since the
     * terminal became silent, and when that fails.
     */
    bool waitForInput() const
    {
        pollfd input{fd_, POLLIN, 0};
        return caughtSignal == 0 && ppoll(&input, 1, nullptr, &mask_) >= 0;
    }

private:
    static constexpr int SIGNALS[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP};
    static const size_t COUNT = sizeof(SIGNALS) / sizeof(SIGNALS[0]);

    int fd_;
    bool isSilent_;
    termios settings_;
    sigset_t mask_; ///< of the process before
    struct sigaction actions_[COUNT];
};

/**
 * Reads up to the end, or on a terminal up to the end of the line, but little more than @a maxBytes. False
 * with errno set when that fails.
 */
bool readBytes(int fd, const SilentTerminal* terminal, int maxBytes, QByteArray& bytes)
{
    const int enough = maxBytes + 3; // one too many, and a line break
    while (bytes.size() < enough && !(terminal && bytes.endsWith('\n'))) {
        if (terminal && !terminal->waitForInput())
            return false;
        char buffer[512];
        const ssize_t count = read(fd, buffer, sizeof(buffer));
        if (count == 0)
            break;
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return false;
        bytes.append(buffer, static_cast<int>(count));
    }
    return true;
}

/// Asks the user. The question goes to standard error, standard output being for what has changed.
bool askUser(int fd, int maxBytes, QByteArray& bytes)
{
    const SilentTerminal terminal(fd);
    if (!terminal.isSilent())
        return false;
    const char question[] = "Password: ";
    const ssize_t written = write(STDERR_FILENO, question, sizeof(question) - 1);
    bool isRead = readBytes(fd, &terminal, maxBytes, bytes);
    if (isRead && !bytes.endsWith('\n') && bytes.size() <= maxBytes) { // the user ended the input instead
        errno = ECANCELED;
        isRead = false;
    }
    // The user's own line break was not shown either.
    const int error = errno;
    const bool isShown = written >= 0 && write(STDERR_FILENO, "\n", 1) >= 0;
    errno = error;
    return isShown && isRead;
}

void cutLineBreak(QByteArray& bytes)
{
    if (!bytes.endsWith('\n'))
        return;
    bytes.chop(1);
    if (bytes.endsWith('\r'))
        bytes.chop(1);
}

} // namespace

std::optional<QByteArray> readPassword(const std::optional<QString>& path, int maxBytes)
{
    const QString source = path ? *path : "standard input";
    const int fd = path ? open(QFile::encodeName(*path).constData(), O_RDONLY | O_CLOEXEC) : STDIN_FILENO;
    QByteArray bytes;
    const bool isRead = fd >= 0 && (path || !isatty(fd) ? readBytes(fd, nullptr, maxBytes, bytes)
                                                        : askUser(fd, maxBytes, bytes));
    const int error = errno;
    if (path && fd >= 0)
        close(fd);
    if (!isRead) {
        complain(source, QString("the password cannot be read: %1; name a readable file with "
                                 "--password-file, or write it to standard input")
                             .arg(QString::fromLocal8Bit(std::strerror(error))));
        return std::nullopt;
    }
    cutLineBreak(bytes);
    if (bytes.size() <= maxBytes)
        return bytes;
    // How long it is stays untold, as everything about it does.
    complain(source, QString("nothing was changed: the password has more than the %1 bytes that the store "
                             "takes; give a shorter one")
                         .arg(maxBytes));
    return std::nullopt;
}
