#ifndef EXAMPLES_KIOSK_IDLEWATCH_H
#define EXAMPLES_KIOSK_IDLEWATCH_H

#include <QtCore/QTimer>

#include <chrono>

/// Tells when nobody has used keyboard, mouse or panel for a while.
class IdleWatch : public QObject
{
    Q_OBJECT

public:
    explicit IdleWatch(std::chrono::milliseconds span);

signals:
    void idle();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QTimer timer_;
};

#endif
