#ifndef TLVLIB_STORES_TVNC_FONTLISTSETTING_H
#define TLVLIB_STORES_TVNC_FONTLISTSETTING_H

#include <tlvlib/xml/TVNC_XMLSetting.h>

TLVLIB_NO_VIRTUAL_DESTRUCTOR_BEGIN
/**
 * The names of the fonts that are offered to the user, in the file "fontlist.xml":
 *
 * @code
 * <?xml version="1.0" encoding="UTF-8"?>
 * <fontlist docInfo="1.0">
 *     <font id="000">DejaVu Sans</font>
 *     <font id="001">VL Gothic</font>
 * </fontlist>
 * @endcode
 *
 * Fonts stand in the order in which they were added; a font's number is its position. The list starts without
 * a document: before the first loadFontList() there are no fonts, and what is added is lost.
 *
 * @code
 * TVNC_FontListSetting* fonts = TVNC_FontListSetting::getInstance();
 * fonts->loadFontList(directory);
 * fonts->addFont(QLatin1String("DejaVu Sans"));
 * fonts->saveFontList(directory);
 * @endcode
 *
 * Directories end in "/": the file name is appended as it is.
 */
class TLVLIB_EXPORT TVNC_FontListSetting : public TVNC_XMLSetting
{
public:
    /// The one list of the process, made on first use.
    static TVNC_FontListSetting* getInstance();

    /**
     * Replaces the list by that of @a dir + "fontlist.xml" and numbers it. A missing file gives an empty
     * list.
     *
     * Logs at level 3 "[TVNC_FontListSetting::loadFontList] start" and "... end". An empty directory changes
     * nothing and logs at level 2 "[TVNC_FontListSetting::loadFontList] Path is empty.".
     */
    void loadFontList(QString dir);

    /**
     * Writes the list to @a dir + "fontlist.xml", as TVNG_SetSafeSave() has it, with the numbers it has.
     * Before the first load the file stays as it was.
     *
     * Logs at level 3 "[TVNC_FontListSetting::saveFontList] start" and "... end". An empty directory writes
     * nothing and logs at level 2 "[TVNC_FontListSetting::saveFontList] Path is empty.".
     */
    void saveFontList(QString dir);

    /// How many fonts have a number: at most 999 of those that addFont() added.
    int getCount();

    /**
     * The name of the font numbered @a si_index; empty when there is none, or when the stored name is longer
     * than 256 bytes of UTF-8. Logs at level 3 "[TVNC_FontListSetting::getFont]".
     */
    QString getFont(int si_index);

    /**
     * Adds a font at the end. The same name may be added again. One of blanks alone is taken, but comes back
     * as empty from a file; a carriage return comes back as a line feed. From the 1000th font on, fonts are
     * stored but get no number. Nothing is saved.
     *
     * Logs at level 3 "[TVNC_FontListSetting::addFont]". An empty name is refused and logged at level 2 as
     * "[TVNC_FontListSetting::addFont] FontName is empty.".
     */
    void addFont(QString name);

private:
    TVNC_FontListSetting();
    ~TVNC_FontListSetting();
};
TLVLIB_NO_VIRTUAL_DESTRUCTOR_END

#endif
