#include "tlvlib/util/QEXC_TextCodec.h"

#include "tlvlib/util/TVNG_memory.h"

#include <QTextCodec> // without a module: from Qt 6 on it is Core5Compat

namespace {

QTextCodec* findCodec()
{
    QTextCodec* pc_codec = QTextCodec::codecForName("SJIS");
    return pc_codec ? pc_codec : QTextCodec::codecForName("ISO-8859-1");
}

/// One of the library's two static initialisers. Never changed afterwards, so any thread may read it.
QTextCodec* const pc_sjisCodec = findCodec();

} // namespace

QString QEXC_TextCodec::fromSJIS(const char* text)
{
    QString decoded;
    TVNG_hasMemoryFor([&] { decoded = pc_sjisCodec->toUnicode(text); });
    return decoded;
}
