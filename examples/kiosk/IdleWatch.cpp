#include "IdleWatch.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>

IdleWatch::IdleWatch(std::chrono::milliseconds span)
{
    timer_.setSingleShot(true); // once, until somebody comes back
    timer_.setInterval(span);
    connect(&timer_, &QTimer::timeout, this, &IdleWatch::idle);
    timer_.start();
    QCoreApplication::instance()->installEventFilter(this);
}

bool IdleWatch::eventFilter(QObject* watched, QEvent* event)
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
