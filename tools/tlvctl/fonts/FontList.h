#ifndef TOOLS_TLVCTL_FONTS_FONTLIST_H
#define TOOLS_TLVCTL_FONTS_FONTLIST_H

#include "tools/tlvctl/records/Store.h"

#include <QtCore/QString>

#include <optional>
#include <vector>

class TVNC_FontListSetting;

/// What keeps a record of the font list from being a font like any other.
enum class FontFlaw {
    NO_NUMBER,    ///< getFont() cannot be asked for it
    TOO_LONG,     ///< getFont() answers an empty name
    EMPTY,        ///< has no name
    OTHER_ELEMENT ///< getFont() answers it, getCount() does not count it
};

/// One record of the font list, seen or not seen by the users of the store.
struct FontRecord
{
    std::optional<int> number;
    QString name;
    QString element;
    std::vector<FontFlaw> flaws;
};

/// The font list of a settings directory.
class FontList : public Store
{
public:
    /// The longest name that the store hands out, in bytes of UTF-8.
    static const int NAME_MAX_BYTES = 256;

    /// @param dir the settings directory, with or without a "/" at its end
    explicit FontList(const QString& dir);

    void load() override;
    void save() override;
    TVNC_XMLNode& root() const override;

    /// How many fonts the store counts.
    int count() const override;

    /// All records of the document, in its order.
    std::vector<FontRecord> records() const;

    /// How many more fonts can have a number.
    int numbersLeft() const;

    /// Adds a font at the end and returns its number. There must be one left.
    int add(const QString& name);

    /// Why a name cannot be a font's, to follow "the name"; empty when it can.
    static QString problemWithName(const QString& name);

    /// What a flaw means, fit for a terminal.
    static QString explanation(FontFlaw flaw, const FontRecord& record);

    /// The line that shows a font to the user: "007  Sans", with dashes where there is no number.
    static QString line(const std::optional<int>& number, const QString& name);

private:
    TVNC_FontListSetting& store_;
};

#endif
