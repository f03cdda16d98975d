#include "tests/support/TestSupport.h"

#include <tlvlib/browser/IdleTimer.h>

#include <QtGui/QKeyEvent>

using Tlv::IdleTimer;

class tst_IdleTimer : public QObject
{
    Q_OBJECT

private slots:
    void tellsOnceUntilSomebodyComesBack();
};

void tst_IdleTimer::tellsOnceUntilSomebodyComesBack()
{
    IdleTimer timer(std::chrono::milliseconds(20));
    QSignalSpy idle(&timer, &IdleTimer::idle);
    QVERIFY(idle.wait());
    QVERIFY(!idle.wait(200)); // nobody has come back
    QObject window;
    QEvent noInput(QEvent::User);
    QCoreApplication::sendEvent(&window, &noInput);
    QVERIFY(!idle.wait(200));
    QKeyEvent key(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier);
    QCoreApplication::sendEvent(&window, &key);
    QVERIFY(idle.wait());
    QCOMPARE(idle.count(), 2);
}

TLVLIB_TEST_MAIN(tst_IdleTimer)
#include "tst_IdleTimer.moc"
