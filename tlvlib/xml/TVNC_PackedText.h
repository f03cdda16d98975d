#ifndef TLVLIB_XML_TVNC_PACKEDTEXT_H
#define TLVLIB_XML_TVNC_PACKEDTEXT_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <cstring>

/**
 * Long texts of ASCII, such as a picture's, packed: two characters in one unit of a QString, until somebody
 * asks for the text. A pack of thumbnails takes half the memory that it would take otherwise, and is written
 * and read without conversions of megabytes; docs/performance.md has the figures. Internal to the library;
 * not installed.
 *
 * The first unit tells whether the last one is half full. A node knows whether its text is packed.
 */
class TVNC_PackedText
{
public:
    /// Texts from this size on are worth it.
    static const int SIZE_MIN = 1024;

    static QString pack(const char* pc_ascii, int si_size)
    {
        QString packed(1 + (si_size + 1) / 2, QChar(static_cast<ushort>(si_size % 2)));
        std::memcpy(packed.data() + 1, pc_ascii, static_cast<size_t>(si_size));
        return packed;
    }

    /// The bytes of a packed text, as long as it lives.
    static QByteArray bytes(const QString& packed)
    {
        const int si_size = 2 * (static_cast<int>(packed.size()) - 1) - packed.at(0).unicode();
        return QByteArray::fromRawData(reinterpret_cast<const char*>(packed.constData() + 1), si_size);
    }

    static QString unpack(const QString& packed)
    {
        const QByteArray ascii = bytes(packed);
        return QString::fromLatin1(ascii.constData(), static_cast<int>(ascii.size()));
    }
};

#endif
