#ifndef TLVLIB_UTIL_TLVLIB_EXPORT_H
#define TLVLIB_UTIL_TLVLIB_EXPORT_H

/**
 * Marks what libtlvlib.so.1 exports. Everything else in the library is hidden, so a class or function
 * without this mark can change freely, and one with it is part of the binary interface.
 *
 * Not Qt's own macro for the purpose: in Qt 4 that is empty where Qt itself was built without it.
 */
#define TLVLIB_EXPORT __attribute__((visibility("default")))

#endif
