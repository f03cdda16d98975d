#ifndef TLVLIB_BROWSER_BROWSER_EXPORT_H
#define TLVLIB_BROWSER_BROWSER_EXPORT_H

/// Marks what libtlvlib-browser.so.1 exports; everything else in it is hidden.
#define TLVLIB_BROWSER_EXPORT __attribute__((visibility("default")))

#endif
