#include "tests/support/TestSite.h"
#include "tests/support/TestSupport.h"

#include <QtCore/QProcess>

/// The README's "a browser's state in 40 lines", built from there and run.
class tst_readme : public QObject
{
    Q_OBJECT

private slots:
    void stateComesBack();
    void unusableProfileIsRefused();
    void hasFortyLines();

private:
    /// Runs the program, serving the site meanwhile. @return what it prints
    static QByteArray run(const QStringList& arguments, int code = 0);
};

QByteArray tst_readme::run(const QStringList& arguments, int code)
{
    QProcess process;
    QEventLoop loop;
    connect(&process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), &loop,
            &QEventLoop::quit);
    QTimer::singleShot(60000, &process, &QProcess::kill);
    process.start(README_PROGRAM, arguments);
    loop.exec();
    const bool isFine = process.exitStatus() == QProcess::NormalExit && process.exitCode() == code;
    return isFine ? process.readAllStandardOutput() : process.readAllStandardError();
}

void tst_readme::stateComesBack()
{
    const TempDir dir;
    TestSite site;
    QVERIFY(site.listen());
    const QString profile = dir.path() + "profile";
    QCOMPARE(run({profile, site.address("/cookies"), site.address("/basic")}),
             QByteArray("bookmarks 2, visits 2, logins 1, cookies 4\n"));
    QCOMPARE(site.answers("/basic"), (QList<int>{401, 200}));
    QCOMPARE(run({profile}),
             QByteArray("bookmarks 2, visits 2, logins 1, cookies 3\n")); // less the session's
}

void tst_readme::unusableProfileIsRefused()
{
    QProcess process;
    process.start(README_PROGRAM, {"/proc/profile"});
    QVERIFY(process.waitForFinished());
    QVERIFY(
        process.readAllStandardError().contains("/proc/profile: cannot be written; check its permissions"));
}

void tst_readme::hasFortyLines()
{
    const int lines = static_cast<int>(readFile(README_SOURCE).count('\n'));
    QVERIFY2(lines > 20 && lines <= 40, QByteArray::number(lines));
}

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QCoreApplication application(argc, argv);
    tst_readme test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_readme.moc"
