#ifndef TESTS_SUPPORT_TESTSUPPORT_H
#define TESTS_SUPPORT_TESTSUPPORT_H

/**
 * @file
 * What the tests need beside QtTest, kept to what Qt 4.8 has.
 */

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtCore/QString>
#include <QtTest/QtTest>

/// A directory of its own for a test, removed with everything in it afterwards.
class TempDir
{
public:
    TempDir();
    ~TempDir();

    /// With a "/" at its end.
    QString path() const { return path_; }

private:
    Q_DISABLE_COPY(TempDir)
    QString path_;
};

/// All bytes of a file; a null array when it cannot be read.
QByteArray readFile(const QString& path);

/// Writes a file; fails the test program when that does not work.
void writeFile(const QString& path, const QByteArray& bytes);

/// The path of a file of tests/data/, or of the list of symbols: the build copies them beside the programs'
/// folders.
QString testData(const QString& name);

/// A string from UTF-8, as short as test tables need it.
inline QString utf8(const char* pc_text)
{
    return QString::fromUtf8(pc_text);
}

/// Runs what deleteLater() has left to do, which no event loop does in a test.
inline void releaseDeferred()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// A main function without a GUI: QTEST_MAIN of Qt 4.8 would start a QApplication.
#define TLVLIB_TEST_MAIN(TestClass)                                                                          \
    int main(int argc, char** argv)                                                                          \
    {                                                                                                        \
        QCoreApplication application(argc, argv);                                                            \
        TestClass test;                                                                                      \
        return QTest::qExec(&test, argc, argv);                                                              \
    }

#endif
