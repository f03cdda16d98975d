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
     * The messages since the last call, in order, each as its level, a space and its text, such as
     * "3 [TVNC_XMLSetting::save] start". Hexadecimal addresses stand as "0x*", but the null address as "0x0".
     */
    static QStringList take();

    /// Forgets the messages so far.
    static void clear() { take(); }
};

#endif
