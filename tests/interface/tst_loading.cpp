#include "platform/liblog.h"

#include <QTextCodec>
#include <QtCore/QDir>
#include <QtTest/QtTest>

#include <cstdarg>

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

/*
 * Loading the library touches no file, starts no thread, prints and logs nothing. This program does not link
 * it but loads it while it runs, and stands in for the functions that would do such things: everything that
 * the library and Qt call goes through them.
 */

static bool watching = false;
static int threadsStarted = 0;
static int logCalls = 0;
static QStringList* opened = nullptr; // while watching

template <typename Function>
static Function next(const char* pc_name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, pc_name));
}

static void noteOpen(const char* pc_path)
{
    if (watching)
        opened->append(QFile::decodeName(pc_path));
}

static mode_t modeOf(int flags, va_list arguments)
{
    return flags & O_CREAT ? static_cast<mode_t>(va_arg(arguments, int)) : 0;
}

extern "C" {

int open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    noteOpen(path);
    return next<int (*)(const char*, int, mode_t)>("open")(path, flags, mode);
}

int open64(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    noteOpen(path);
    return next<int (*)(const char*, int, mode_t)>("open64")(path, flags, mode);
}

FILE* fopen(const char* path, const char* mode)
{
    noteOpen(path);
    return next<FILE* (*)(const char*, const char*)>("fopen")(path, mode);
}

FILE* fopen64(const char* path, const char* mode)
{
    noteOpen(path);
    return next<FILE* (*)(const char*, const char*)>("fopen64")(path, mode);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*), void* argument)
{
    if (watching)
        ++threadsStarted;
    return next<int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*)>("pthread_create")(
        thread, attributes, start, argument);
}

int LIBF_WriteSystemLog(int, int, int, const char*, unsigned short*)
{
    return ++logCalls;
}

int LIBF_SetSignalHandler01(int)
{
    return ++logCalls;
}

int LIBF_SetApiSignalInfoNonSave(int)
{
    return ++logCalls;
}

int LIBF_AttachMemory(void)
{
    return ++logCalls;
}

} // extern "C"

class tst_loading : public QObject
{
    Q_OBJECT

private slots:
    void standInsAreCalled();
    void loadingDoesNothing();
};

void tst_loading::standInsAreCalled()
{
    opened = new QStringList;
    watching = true;
    QFile file(QLatin1String("/dev/null"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    watching = false;
    QCOMPARE(*opened, QStringList(QLatin1String("/dev/null")));
    opened->clear();
}

void tst_loading::loadingDoesNothing()
{
    // What a desk's Qt and ICU do on the first use of any codec is not the library's doing.
    QTextCodec::codecForName("SJIS");

    // Standard output and error go into a pipe for the moment.
    int ends[2];
    QCOMPARE(pipe(ends), 0);
    const int si_stdout = dup(1);
    const int si_stderr = dup(2);
    fflush(stdout);
    fflush(stderr);
    dup2(ends[1], 1);
    dup2(ends[1], 2);

    // From its place beside the tests: under the address sanitizer a name alone is not looked for there.
    const QByteArray library = QFile::encodeName(QCoreApplication::applicationDirPath() +
                                                 QLatin1String("/../../lib/libtlvlib.so.1"));
    watching = true;
    void* pc_library = dlopen(library.constData(), RTLD_NOW | RTLD_GLOBAL);
    watching = false;

    fflush(stdout);
    fflush(stderr);
    dup2(si_stdout, 1);
    dup2(si_stderr, 2);
    close(ends[1]);
    char c_printed;
    const ssize_t printed = read(ends[0], &c_printed, 1);
    close(ends[0]);
    close(si_stdout);
    close(si_stderr);

    QVERIFY2(pc_library, dlerror());
    QVERIFY(dlsym(pc_library, "_Z15TVNG_DebugPrintmPKcz"));
    QCOMPARE(*opened, QStringList()); // the dynamic linker's own look at the library does not pass here
    QCOMPARE(threadsStarted, 0);
    QCOMPARE(logCalls, 0);
    QCOMPARE(static_cast<long>(printed), 0L);
}

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    tst_loading test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_loading.moc"
