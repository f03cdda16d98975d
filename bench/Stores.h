#ifndef BENCH_STORES_H
#define BENCH_STORES_H

#include "bench/Records.h"

#include <QtCore/QString>

/**
 * @file
 * The library's stores behind the same few calls, so that each is measured alike.
 */

/// Has the event loop's work done: the release of what a store has let go.
void release();

/// Fills a directory's document with records, the first one in front.
void fillStore(const Format& format, QString dir, const Records& records);

void loadStore(const Format& format, QString dir);

/// Lets go of all records of a store, as at the start of a program, and has them released.
void emptyStore(const Format& format);

void saveStore(const Format& format, QString dir);

/// All records, one by one, as the store hands them out.
Records recordsOfStore(const Format& format);

#endif
