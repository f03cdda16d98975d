#ifndef TLVLIB_UTIL_TVNG_MEMORY_H
#define TLVLIB_UTIL_TVNG_MEMORY_H

#include <QtCore/QtGlobal>

#include <new>

/**
 * Does what may run out of memory, so that no exception leaves the library. Inside, std::bad_alloc tells of
 * it, as Qt does, and what takes memory is done before anything is let go. Each operation of the interface
 * catches it, most of them with TVNG_ifMemory(). Internal to the library; not installed.
 *
 * @return whether there was memory for all of it
 */
template <typename Work>
bool TVNG_hasMemoryFor(Work work)
{
    QT_TRY
    {
        work();
        return true;
    }
    QT_CATCH(const std::bad_alloc&)
    {
        return false;
    }
}

#endif
