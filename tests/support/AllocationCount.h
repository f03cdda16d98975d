#ifndef TESTS_SUPPORT_ALLOCATIONCOUNT_H
#define TESTS_SUPPORT_ALLOCATIONCOUNT_H

/**
 * @file
 * Counts what a program allocates. Includes the definitions: for one source of a program.
 */

#include <cstddef>

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define CAN_COUNT_ALLOCATIONS 1

static long allocationCount =
    0; // of all threads, without a lock: for programs that have one while they count

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* pc_memory, size_t size);

void* malloc(size_t size) noexcept
{
    ++allocationCount;
    return __libc_malloc(size);
}

void* calloc(size_t count, size_t size) noexcept
{
    ++allocationCount;
    return __libc_calloc(count, size);
}

void* realloc(void* pc_memory, size_t size) noexcept
{
    ++allocationCount;
    return __libc_realloc(pc_memory, size);
}
}

#else
#define CAN_COUNT_ALLOCATIONS 0
static const long allocationCount = 0;
#endif

#endif
