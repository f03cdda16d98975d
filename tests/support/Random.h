#ifndef TESTS_SUPPORT_RANDOM_H
#define TESTS_SUPPORT_RANDOM_H

#include <QtCore/QtGlobal>

/// A sequence of numbers that looks random and is the same for a seed on every machine.
class Random
{
public:
    explicit Random(quint32 ul_seed) : ul_state(ul_seed) {}

    /// A number from 0 to @a ul_below - 1.
    quint32 next(quint32 ul_below)
    {
        ul_state = ul_state * 1664525u + 1013904223u;
        return (ul_state >> 8) % ul_below;
    }

private:
    quint32 ul_state;
};

#endif
