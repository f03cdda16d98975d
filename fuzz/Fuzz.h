#ifndef FUZZ_FUZZ_H
#define FUZZ_FUZZ_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <cstddef>
#include <cstdint>

/**
 * @file
 * What the fuzz targets have in common. Each target is a program of libFuzzer; see scripts/fuzz.
 */

/// A directory in memory of the process's own, with a "/" at its end. Made, with both logs off, when first
/// asked for.
const QString& scratchDir();

void writeFile(const QString& path, const QByteArray& bytes);
QByteArray readFile(const QString& path);

/// Does the event loop's work.
void release();

/// Ends the program, so that the fuzzer keeps the input, unless something holds.
#define MUST(condition)                                                                                      \
    do {                                                                                                     \
        if (!(condition))                                                                                    \
            broken(#condition, __FILE__, __LINE__);                                                          \
    } while (false)

[[noreturn]] void broken(const char* condition, const char* file, int line);

/// What the fuzzer calls.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

#endif
