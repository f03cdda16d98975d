#ifndef TESTS_CRASH_WORKLOAD_H
#define TESTS_CRASH_WORKLOAD_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

/**
 * @file
 * Every way in which the library saves, and every way to load what it saved.
 */

/// One save of the library's into a directory. The round is part of what it saves.
struct Save
{
    const char* pc_name;
    void (*pc_run)(const QString& dir, int si_round);
};

extern const Save SAVES[];
extern const int SAVE_COUNT;

/// Makes the directories that the saves need, and the pictures that are packed.
void prepareDirectory(const QString& dir);

/// What the library makes of a file, as text; other files give other texts. Empty when there is no such file.
QByteArray loaded(const QString& dir, const QByteArray& name);

#endif
