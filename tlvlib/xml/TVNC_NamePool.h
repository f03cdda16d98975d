#ifndef TLVLIB_XML_TVNC_NAMEPOOL_H
#define TLVLIB_XML_TVNC_NAMEPOOL_H

#include <QtCore/QString>

/**
 * Gives every "pageInfo" and "title" of a document the same shared string instead of one each. Internal to
 * the library; not installed.
 *
 * Of two names that fall into the same slot only the later one is remembered, so that a hostile file with a
 * million names costs no more than the names themselves.
 */
class TVNC_NamePool
{
public:
    /// @param pc_name QChars, or bytes of ASCII; at least one
    template <typename Character>
    const QString& shared(const Character* pc_name, int si_size)
    {
        const unsigned int ul_slot = (static_cast<unsigned int>(si_size) * 7u + unit(pc_name[0]) * 31u +
                                      unit(pc_name[si_size / 2]) * 5u + unit(pc_name[si_size - 1])) %
                                     SLOTS;
        QString& slot = names_[ul_slot];
        if (!equals(slot, pc_name, si_size))
            slot = toString(pc_name, si_size);
        return slot;
    }

    template <typename Character>
    static bool equals(const QString& text, const Character* pc_name, int si_size)
    {
        if (text.size() != si_size)
            return false;
        const QChar* const pc_text = text.constData();
        for (int i = 0; i < si_size; ++i) {
            if (pc_text[i].unicode() != unit(pc_name[i]))
                return false;
        }
        return true;
    }

private:
    static unsigned int unit(char c_ascii) { return static_cast<unsigned char>(c_ascii); }
    static unsigned int unit(QChar character) { return character.unicode(); }
    static QString toString(const char* pc_name, int si_size)
    {
        return QString::fromLatin1(pc_name, si_size);
    }
    static QString toString(const QChar* pc_name, int si_size) { return QString(pc_name, si_size); }

    static const unsigned int SLOTS = 64;
    QString names_[SLOTS];
};

#endif
