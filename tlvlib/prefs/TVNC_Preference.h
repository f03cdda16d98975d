#ifndef TLVLIB_PREFS_TVNC_PREFERENCE_H
#define TLVLIB_PREFS_TVNC_PREFERENCE_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

class TVNC_PreferenceList;
class TVNC_XMLNode;
class TVNC_XMLSetting;

/**
 * @file
 * The preferences of a document. A document is described by a structure whose members are its preferences, in
 * the order in which a new document gets them:
 *
 * @code
 * struct Preferences : public TVNC_PreferenceList
 * {
 *     TVNC_ChoicePreference enableProxy{*this, "proxy", "enableProxy", "false true", 0};
 *     TVNC_TextPreference hostName{*this, "proxy", "hostName", 253, ""};
 * };
 * @endcode
 *
 * Such a member is all there is to say about a preference; loading and the accessors follow from it. What
 * accessors call throws nothing: when memory runs out, setters change nothing but the group, which may be
 * there then, and getters give the default or, where they have no memory for that, nothing. What a load
 * calls, complete() and setDefault(), throws std::bad_alloc. The members themselves take no memory. Internal
 * to the library; not installed.
 */

/**
 * One preference: a leaf element in a group element below the root. Group and leaf are the first of their
 * names. Whatever writes a preference creates what is missing, last among its siblings, and empties the text
 * of the group.
 */
class TVNC_Preference
{
public:
    /// The leaf; null when the document lacks it, or without a root.
    TVNC_XMLNode* find(TVNC_XMLSetting& setting) const;

    /// Writes the preference's default.
    virtual void setDefault(TVNC_XMLSetting& setting) const = 0;

protected:
    /// Joins the list. The names are literals of the system.
    TVNC_Preference(TVNC_PreferenceList& list, const char* pc_group, const char* pc_leaf);
    ~TVNC_Preference() {}

    /// Creates the group or empties its text. Null without a root and when memory ran out.
    TVNC_XMLNode* writeGroup(TVNC_XMLSetting& setting) const;

    /// Writes group and leaf. False without a root and when memory ran out for the group.
    bool write(TVNC_XMLSetting& setting, const QString& text, char c_textType) const;

    void writeLeaf(TVNC_XMLSetting& setting, TVNC_XMLNode* pc_group, const QString& text,
                   char c_textType) const;

private:
    Q_DISABLE_COPY(TVNC_Preference)

    friend class TVNC_PreferenceList;

    const char* const pc_group_;
    const char* const pc_leaf_;
    const TVNC_Preference* pc_next_; ///< in the list
};

/// The preferences of a document, in the order in which a new document gets them.
class TVNC_PreferenceList
{
public:
    TVNC_PreferenceList() : pc_first_(nullptr), pc_last_(nullptr) {}

    /**
     * Makes a document that was just loaded a complete one: gives the root its name, and every preference
     * that is missing its default. A root that had another name gets docInfo="1.0" as its only attribute; its
     * children stay. Elements that exist stay as they are, whatever their text. Without a root this does
     * nothing.
     */
    void complete(TVNC_XMLSetting& setting, const char* pc_rootName) const;

private:
    Q_DISABLE_COPY(TVNC_PreferenceList)

    friend class TVNC_Preference;

    const TVNC_Preference* pc_first_;
    TVNC_Preference* pc_last_;
};

/**
 * A preference that is one of several words, each of which has a code. Whatever is no word, and no code,
 * stands for the default. A switch that is on by default therefore reads as on for any text but its off word,
 * and is set to on by any code but 0; one that is off by default reads as on for its on word alone, and is
 * set to on by 1 alone. Files and browsers rely on both.
 */
class TVNC_ChoicePreference : public TVNC_Preference
{
public:
    /**
     * @param pc_words     the words in the order of their codes, with blanks between them
     * @param si_default   the code of the default
     * @param si_firstCode the code of the first word
     */
    TVNC_ChoicePreference(TVNC_PreferenceList& list, const char* pc_group, const char* pc_leaf,
                          const char* pc_words, int si_default, int si_firstCode = 0);

    /// The code of what the document holds; the default's for any other text, without the leaf or a root.
    int code(TVNC_XMLSetting& setting) const;

    /// Writes the word of a code, an unsigned byte whatever the compiler takes a char for; the default's for
    /// any other code.
    void set(TVNC_XMLSetting& setting, char c_code) const;

    /**
     * Writes the word of a code, but refuses any other code: only the group is written then.
     *
     * @return whether the word was written
     */
    bool setOrRefuse(TVNC_XMLSetting& setting, int si_code) const;

    virtual void setDefault(TVNC_XMLSetting& setting) const;

private:
    void writeWord(TVNC_XMLSetting& setting, int si_code) const;

    /// The position of a word; -1 for any other text.
    int indexOf(const QString& text) const;

    /// The word at a position, of @a si_size bytes; null where there is none.
    const char* word(int si_index, int& si_size) const;

    const char* const pc_words_;
    int si_default_;
    int si_firstCode_;
};

/// A preference that is a text of limited length.
class TVNC_TextPreference : public TVNC_Preference
{
public:
    enum Emptiness { MAY_BE_EMPTY, EMPTY_IS_DEFAULT };

    /**
     * @param si_maxBytes how long the text may be, in bytes of UTF-8
     * @param emptiness   whether an empty text in the document is answered as it is, or as the default
     */
    TVNC_TextPreference(TVNC_PreferenceList& list, const char* pc_group, const char* pc_leaf, int si_maxBytes,
                        const char* pc_default, Emptiness emptiness = MAY_BE_EMPTY);

    /// The text, or the default when the leaf is missing or its text too long. Without a root, and for null,
    /// this does nothing.
    void get(TVNC_XMLSetting& setting, QString* pc_out) const;

    /// False for a text that is too long, and without a root; nothing is changed then.
    bool set(TVNC_XMLSetting& setting, const QString& text) const;

    virtual void setDefault(TVNC_XMLSetting& setting) const;

private:
    const char* const pc_default_;
    int si_maxBytes_;
    Emptiness emptiness_;
};

/// A preference that is any bytes, up to a number of them: base64 in a CDATA section. Empty by default.
class TVNC_BytesPreference : public TVNC_Preference
{
public:
    TVNC_BytesPreference(TVNC_PreferenceList& list, const char* pc_group, const char* pc_leaf,
                         int si_maxBytes);

    /// The bytes; empty when the leaf is missing or holds too many. Without a root, and for null, this does
    /// nothing.
    void get(TVNC_XMLSetting& setting, QByteArray* pc_out) const;

    /// False for too many bytes, and without a root; nothing is changed then.
    bool set(TVNC_XMLSetting& setting, const QByteArray& bytes) const;

    virtual void setDefault(TVNC_XMLSetting& setting) const;

private:
    int si_maxBytes_;
};

#endif
