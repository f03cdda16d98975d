#ifndef TESTS_SUPPORT_FAILINGALLOCATIONS_H
#define TESTS_SUPPORT_FAILINGALLOCATIONS_H

/**
 * @file
 * Lets allocations fail, whoever makes them. Includes the definitions: for one source of a program.
 */

#include <cerrno>
#include <cstddef>

/// Whether this program can have allocations fail, by taking the place of the C library's own functions.
#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define CAN_FAIL_ALLOCATIONS 1
#else
#define CAN_FAIL_ALLOCATIONS 0
#endif

/// 0: nothing fails; n: the nth allocation from now on fails, and all that follow it if b_forGood.
static long failingAllocation = 0;
static bool b_forGood = false;

#if CAN_FAIL_ALLOCATIONS
static bool fails()
{
    if (failingAllocation == 0)
        return false;
    if (failingAllocation > 1) {
        --failingAllocation;
        return false;
    }
    if (!b_forGood)
        failingAllocation = 0;
    errno = ENOMEM;
    return true;
}

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* pc_memory, size_t size);

void* malloc(size_t size) noexcept
{
    return fails() ? nullptr : __libc_malloc(size);
}

void* calloc(size_t count, size_t size) noexcept
{
    return fails() ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* pc_memory, size_t size) noexcept
{
    return fails() ? nullptr : __libc_realloc(pc_memory, size);
}
}
#endif

#endif
