#ifndef EXAMPLES_KIOSK_DELAYEDSAVE_H
#define EXAMPLES_KIOSK_DELAYEDSAVE_H

#include <QtCore/QTimer>

#include <functional>

/// Saves a moment after the last change: a page with ten cookies costs one write to the flash.
class DelayedSave
{
public:
    explicit DelayedSave(std::function<void()> save);

    /// There is something to save.
    void schedule() { timer_.start(); }

    /// Saves now, if there is something to save.
    void flush();

private:
    QTimer timer_;
    std::function<void()> save_;
};

#endif
