#ifndef TOOLS_TLVCTL_FONTS_FONTLIST_H
#define TOOLS_TLVCTL_FONTS_FONTLIST_H

#include "tools/tlvctl/records/StoreList.h"

#include <tlvlib/stores/TVNC_FontListSetting.h>

#include <vector>

/// One record of the font list. Its label is its name.
struct FontRecord : ListedRecord
{
    QString name;
    QString element;
};

/// The font list of a settings directory.
class FontList : public StoreOf<TVNC_FontListSetting>
{
public:
    /// @param dir the settings directory, with or without a "/" at its end
    explicit FontList(const QString& dir) : StoreOf(dir, "fontlist.xml", {"fontlist", "font"}) {}

    void save() override { store_.saveFontList(file().dir()); }
    int count() const override { return store_.getCount(); }

    /// All records of the document, in its order.
    std::vector<FontRecord> records() const;

    /// How many more fonts can have a number.
    int numbersLeft() const;

    /// Adds a font at the end and returns its number. There must be one left.
    int add(const QString& name);

    /// Why a name cannot be a font's, to follow "the name"; empty when it can.
    static QString problemWithFont(const QString& name);

    /// What stands behind the number of a font: its name.
    static QString label(const QString& name);

protected:
    void loadSetting() override { store_.loadFontList(file().dir()); }
};

#endif
