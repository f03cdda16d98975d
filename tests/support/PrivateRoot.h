#ifndef TESTS_SUPPORT_PRIVATEROOT_H
#define TESTS_SUPPORT_PRIVATEROOT_H

#include "tests/support/TestSupport.h"

#include <cstdio>

/**
 * Gives the process a file system of its own in which "/ata07" is an empty directory in memory and everything
 * else is as on the machine, so that the device's fixed paths can be used without leaving anything behind.
 * Works for ordinary users where the kernel lets them have namespaces.
 *
 * Call it first in main(): the process must not have a second thread yet.
 *
 * @return false, with the reason on standard error, where that cannot be had
 */
bool enterPrivateRoot();

/// The exit code of a test program that the machine cannot run.
const int TEST_SKIPPED = 77;

/// A main function that runs the tests with such a file system, or tells that they are skipped.
#define TLVLIB_PRIVATE_ROOT_TEST_MAIN(TestClass)                                                             \
    int main(int argc, char** argv)                                                                          \
    {                                                                                                        \
        if (!enterPrivateRoot()) {                                                                           \
            std::fprintf(stderr, "Skipped: the device's paths are only used in a private file system.\n");   \
            return TEST_SKIPPED;                                                                             \
        }                                                                                                    \
        QCoreApplication application(argc, argv);                                                            \
        TestClass test;                                                                                      \
        return QTest::qExec(&test, argc, argv);                                                              \
    }

#endif
