#include "DelayedSave.h"

DelayedSave::DelayedSave(std::function<void()> save) : save_(std::move(save))
{
    timer_.setSingleShot(true);
    timer_.setInterval(300);
    QObject::connect(&timer_, &QTimer::timeout, save_);
}

void DelayedSave::flush()
{
    if (!timer_.isActive())
        return;
    timer_.stop();
    save_();
}
