#ifndef TESTS_SUPPORT_LOGRECORDER_H
#define TESTS_SUPPORT_LOGRECORDER_H

#include <QtCore/QStringList>

/**
 * Sees every message of the library with its level. A program that links this defines TVNG_DebugPrint()
 * itself and so takes the place of the library's own, as any program can.
 */
class LogRecorder
{
public:
    /**
     * The messages since the last call as a block of lines, each its level, a space, its text and a line
     * feed, such as "3 [TVNC_XMLSetting::save] start\n". Hexadecimal addresses stand as "0x*", but the null
     * address as "0x0".
     */
    static QString take();

    /// The same as a list, without the line feeds, for those who look for some of them.
    static QStringList takeLines();

    /// Forgets the messages so far.
    static void clear() { takeLines(); }

    /// While it is set, it is called with each message once that is recorded, as a program's own log is. It
    /// may use the library.
    static void (*pc_onMessage)(const QString& message);
};

#endif
