#ifndef TLVLIB_UTIL_TLVLIB_EXPORT_H
#define TLVLIB_UTIL_TLVLIB_EXPORT_H

#include <QtCore/QtGlobal>

/**
 * Marks what libtlvlib.so.1 exports. Everything else in the library is hidden, so a class or function
 * without this mark can change freely, and one with it is part of the binary interface.
 */
#ifdef TLVLIB_BUILD
#define TLVLIB_EXPORT Q_DECL_EXPORT
#else
#define TLVLIB_EXPORT Q_DECL_IMPORT
#endif

#endif
