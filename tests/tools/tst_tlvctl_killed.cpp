#include "tests/tools/TlvctlRun.h"

#include <QtCore/QDir>

#include <memory>
#include <optional>
#include <vector>

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

/// The tool is killed at every moment of a change.
class tst_tlvctl_killed : public QObject
{
    Q_OBJECT

private slots:
    void init() { dir_ = std::make_unique<TempDir>(); }
    void cleanup() { dir_.reset(); }

    void filesAreWhole_data();
    void filesAreWhole();

private:
    QString path(const QString& name = QString()) const { return dir_->path() + name; }

    std::unique_ptr<TempDir> dir_;
};

const char COOKIES[] = "[Cookie]\ncookies=\"@ByteArray(\\0\\0\\0\\x1\\0\\0\\0\\x3\\x61=b)\"\n";

/// Kills the tool before a call of the system's. The number of calls that it has made; nothing when it could
/// not be watched.
std::optional<int> callsUntilKilled(const QStringList& arguments, int last)
{
    std::vector<QByteArray> words{TLVCTL};
    for (const QString& argument : arguments)
        words.push_back(argument.toLocal8Bit());
    std::vector<char*> argv;
    for (QByteArray& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        const int nowhere = open("/dev/null", O_RDWR);
        dup2(nowhere, STDIN_FILENO);
        dup2(nowhere, STDOUT_FILENO);
        dup2(nowhere, STDERR_FILENO);
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0)
            execv(argv.front(), argv.data());
        _exit(127);
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child || !WIFSTOPPED(status))
        return std::nullopt;
    ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_EXITKILL);
    int stops = 0;
    while (WIFSTOPPED(status) && stops < 2 * last) {
        ptrace(PTRACE_SYSCALL, child, nullptr, nullptr); // stops at the beginning and the end of each call
        waitpid(child, &status, 0);
        ++stops;
    }
    if (WIFSTOPPED(status)) {
        kill(child, SIGKILL);
        waitpid(child, &status, 0);
    }
    return stops / 2;
}

void tst_tlvctl_killed::filesAreWhole_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("command");
    QTest::newRow("fonts") << "fontlist.xml" << QStringList{"fonts", "add", "DIR", "Serif"};
    QTest::newRow("bookmarks") << "bookmark.xml" << QStringList{"bookmarks", "rename", "DIR", "0", "New"};
    QTest::newRow("preferences") << "repostry_private.xml"
                                 << QStringList{"prefs", "set", "user", "DIR", "page.zoom", "1.1"};
    QTest::newRow("to-ini") << "cookie.ini" << QStringList{"cookies", "to-ini", "DIR/cookies.xml", "DIR"};
    QTest::newRow("repair") << "visit.xml" << QStringList{"check", "--repair", "DIR"};
    QTest::newRow("pack") << "pack.xml" << QStringList{"thumbnails", "pack", "DIR", "DIR/pack.xml"};
}

void tst_tlvctl_killed::filesAreWhole()
{
    QFETCH(QString, name);
    QFETCH(QStringList, command);
    command.replaceInStrings("DIR", path().left(path().size() - 1));
    writeFile(path("fontlist.xml"), fontList({"Sans"}));
    QCOMPARE(tlvctl({"bookmarks", "add", path(), "h"}).code, 0);
    QCOMPARE(tlvctl({"prefs", "set", "user", path(), "page.zoom", "1.0"}).code, 0);
    writeFile(path("cookie.ini"), COOKIES);
    QCOMPARE(tlvctl({"cookies", "from-ini", path(), path("cookies.xml")}).code, 0);
    writeFile(path("cookie.ini"), QByteArray(COOKIES).replace("=b", "=c"));
    writeFile(path("visit.xml"), "<history docInfo=\"1.0\"><pageInfo id=\"000\"><title>t</title><url>u</url>"
                                 "<dateTime>2011/04/12 10:15</dateTime></pageInfo><pageInfo id=");
    QCOMPARE(tlvctl({"thumbnails", "pack", path(), path("pack.xml")}).code, 0);
    writeFile(path("1.png"), "x");

    const QByteArray before = readFile(path(name));
    const std::optional<int> calls = callsUntilKilled(command, 1 << 20);
    if (!calls)
        QSKIP("no process may watch another one here");
    const QByteArray after = readFile(path(name));
    QVERIFY(after != before);
    const auto clear = [this](const QStringList& files) {
        for (const QString& file : QDir(path()).entryList(files, QDir::Files))
            QFile::remove(path(file));
    };
    const auto isSavedAt = [&](int call) {
        writeFile(path(name), before);
        clear({"*.bak*", "*.rejected*", "*.tlvsave", "tlvlib.lock*"}); // so that the calls are the same
        callsUntilKilled(command, call);
        const QByteArray left = readFile(path(name));
        if (left != before && left != after)
            QTest::qFail(left.constData(), __FILE__, __LINE__);
        return left == after;
    };
    int saved = *calls; // the first call at which the file is as it is to be
    for (int old = 0; saved - old > 1;) {
        const int middle = (old + saved) / 2;
        (isSavedAt(middle) ? saved : old) = middle;
    }
    // Around that, where it locks, copies, writes, syncs and renames.
    int count = 0;
    for (int call = saved - 60; call < saved + 40; ++call)
        count += isSavedAt(call) ? 1 : 0;
    QVERIFY(!QTest::currentTestFailed());
    QVERIFY(count > 0 && count < 100);

    // What lies about then, a lock and half a file, stops nobody.
    isSavedAt(saved - 1);
    writeFile(path(name), before);
    clear({"*.bak*", "*.rejected*"});
    tlvctl(command);
    QCOMPARE(readFile(path(name)), after);
    tlvctl({"check", "--repair", path()});
    QCOMPARE(QDir(path()).entryList({"*.tlvsave", "tlvlib.lock*"}, QDir::Files), QStringList());
}

TLVCTL_TEST_MAIN(tst_tlvctl_killed)
#include "tst_tlvctl_killed.moc"
