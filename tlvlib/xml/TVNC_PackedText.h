#ifndef TLVLIB_XML_TVNC_PACKEDTEXT_H
#define TLVLIB_XML_TVNC_PACKEDTEXT_H

#include "tlvlib/xml/TVNC_NodeAccess.h"

#include <QtCore/QByteArray>

#include <cstring>

/**
 * Long texts of ASCII, such as a picture's, packed: two characters in the room of one, until somebody asks
 * for the text. A pack of thumbnails takes half the memory that it would take otherwise, and is written and
 * read without conversions of megabytes; docs/performance.md has the figures. Internal to the library; not
 * installed.
 *
 * A packed text stands in the units of the node's QString. The first unit tells whether the last one is half
 * full.
 */
class TVNC_PackedText
{
public:
    /// Texts from this size on are worth it.
    static const int SIZE_MIN = 1024;

    /// Gives a node a packed text.
    static void set(TVNC_XMLNode& node, const char* pc_ascii, int si_size)
    {
        QString room(1 + (si_size + 1) / 2, QChar(static_cast<ushort>(si_size % 2)));
        std::memcpy(room.data() + 1, pc_ascii, static_cast<size_t>(si_size));
        node.setText(room);
        TVNC_NodeAccess::state(node) |= TVNC_NodeAccess::PACKED_TEXT;
    }

    /// The bytes of a packed text, as long as the node keeps it; a null array for any other.
    static QByteArray bytes(TVNC_XMLNode& node)
    {
        if (!(TVNC_NodeAccess::state(node) & TVNC_NodeAccess::PACKED_TEXT))
            return QByteArray();
        const QString& room = TVNC_NodeAccess::text(node);
        const int si_size = 2 * (static_cast<int>(room.size()) - 1) - room.at(0).unicode();
        return QByteArray::fromRawData(reinterpret_cast<const char*>(room.constData() + 1), si_size);
    }

    /// Makes the text of a node one like any other.
    static void unpack(TVNC_XMLNode& node)
    {
        const QByteArray packed = bytes(node);
        if (packed.isNull())
            return;
        QString text = QString::fromLatin1(packed.constData(), static_cast<int>(packed.size()));
        node.setText(text);
    }
};

#endif
