#ifndef TLVLIB_XML_TVNG_CANONICALFORM_H
#define TLVLIB_XML_TVNG_CANONICALFORM_H

/**
 * @file
 * What the fast reader and the fast writer of documents agree about: names of ASCII letters, digits and a few
 * signs, and how a document begins. Internal to the library; not installed.
 */

/// A document's first line, without its line break.
#define TVNG_XML_DECLARATION "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"

inline bool TVNG_isNameStart(unsigned int ui_character)
{
    return (ui_character >= 'a' && ui_character <= 'z') || (ui_character >= 'A' && ui_character <= 'Z') ||
           ui_character == '_';
}

inline bool TVNG_isNameCharacter(unsigned int ui_character)
{
    return TVNG_isNameStart(ui_character) || (ui_character >= '0' && ui_character <= '9') ||
           ui_character == '-' || ui_character == '.';
}

#endif
