#include <tlvlib/browser/IdleTimer.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>

namespace Tlv {

IdleTimer::IdleTimer(std::chrono::milliseconds span, QObject* parent) : QObject(parent)
{
    timer_.setSingleShot(true); // once, until somebody comes back
    timer_.setInterval(span);
    connect(&timer_, &QTimer::timeout, this, &IdleTimer::idle);
    timer_.start();
    QCoreApplication::instance()->installEventFilter(this);
}

bool IdleTimer::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::MouseButtonPress:
    case QEvent::MouseMove:
    case QEvent::TouchBegin:
    case QEvent::Wheel:
        timer_.start();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace Tlv
