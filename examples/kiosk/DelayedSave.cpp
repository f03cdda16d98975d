#include "DelayedSave.h"

#include <tlvlib/files/TVNG_SafeSave.h>

DelayedSave::DelayedSave(std::vector<std::function<void()>> saves) : saves_(std::move(saves))
{
    timer_.setSingleShot(true);
    timer_.setInterval(300);
    connect(&timer_, &QTimer::timeout, this, &DelayedSave::save);
}

void DelayedSave::flush()
{
    if (timer_.isActive() || !problem_.isEmpty())
        save();
}

void DelayedSave::save()
{
    timer_.stop();
    problem_.clear();
    for (const std::function<void()>& save : saves_) {
        save();
        if (problem_.isEmpty())
            problem_ = TVNG_GetSaveError();
    }
    emit tried();
}
