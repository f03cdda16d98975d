#ifndef TESTS_SUPPORT_PRIVATEROOT_H
#define TESTS_SUPPORT_PRIVATEROOT_H

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

#endif
