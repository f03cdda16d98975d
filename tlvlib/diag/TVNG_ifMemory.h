#ifndef TLVLIB_DIAG_TVNG_IFMEMORY_H
#define TLVLIB_DIAG_TVNG_IFMEMORY_H

/**
 * @file
 * An operation of the interface runs here whatever may run out of memory. No exception leaves it then, and
 * level 1 of the log has "[TVNG_ifMemory] Fail". Internal to the library; not installed.
 */

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/util/TVNG_memory.h"

/// For an operation without a result.
template <typename Work>
void TVNG_ifMemory(Work work)
{
    if (!TVNG_hasMemoryFor(work))
        TVNG_DebugPrint(1, "[TVNG_ifMemory] Fail");
}

/// For one with a result: what @a work returns, or @a otherwise when memory has run out.
template <typename Result, typename Work>
Result TVNG_ifMemory(const Result& otherwise, Work work)
{
    Result result = otherwise;
    TVNG_ifMemory([&] { result = work(); });
    return result;
}

#endif
