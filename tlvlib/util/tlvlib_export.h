#ifndef TLVLIB_UTIL_TLVLIB_EXPORT_H
#define TLVLIB_UTIL_TLVLIB_EXPORT_H

/**
 * Marks what libtlvlib.so.1 exports. Everything else in the library is hidden, so a class or function
 * without this mark can change freely, and one with it is part of the binary interface.
 *
 * Not Qt's own macro for the purpose: in Qt 4 that is empty where Qt itself was built without it.
 */
#define TLVLIB_EXPORT __attribute__((visibility("default")))

/**
 * Stand around a class of the public interface that has virtual operations and no virtual destructor. It
 * cannot get one, since that would move the operations behind it; a program that turns the warning on is
 * spared it here.
 */
#define TLVLIB_NO_VIRTUAL_DESTRUCTOR_BEGIN                                                                   \
    _Pragma("GCC diagnostic push") _Pragma("GCC diagnostic ignored \"-Wnon-virtual-dtor\"")
#define TLVLIB_NO_VIRTUAL_DESTRUCTOR_END _Pragma("GCC diagnostic pop")

#endif
