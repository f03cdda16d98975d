#ifndef TOOLS_TLVCTL_RECORDS_STORE_H
#define TOOLS_TLVCTL_RECORDS_STORE_H

#include "tools/tlvctl/records/Document.h"

#include <tlvlib/xml/TVNC_XMLNode.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>
#include <optional>

/**
 * The file of a store in a settings directory, with what has to be checked around the store's own loading and
 * saving, which report nothing. The checks complain about what they find.
 */
class StoreFile
{
public:
    /**
     * @param dir  the directory, with or without a "/" at its end
     * @param name the file's name in it
     */
    StoreFile(const QString& dir, const QString& name);

    /// As the stores take it: with a "/" at its end.
    QString dir() const { return dir_; }
    QString path() const { return dir_ + name_; }

    /// Whether the directory exists.
    bool checkDirectory() const;

    /// Whether the file may be replaced: no if that would lose what could not be read of this document.
    bool checkReplaceable(const Document& document) const;

    /// Whether there is no file, or one that may be written.
    bool checkWritable() const;

    /// Keeps a copy of the file beside it, under the first free name of those that end in ".bak", ".bak2" and
    /// so on. Complains and returns nothing when that fails; an empty name when there is no file.
    std::optional<QString> keepCopy() const;

    /// Whether the file holds exactly this tree. Write errors, which the stores do not detect, end here.
    bool checkSaved(TVNC_XMLNode& expected) const;

    /// Complains that the file could not be written.
    void complainAboutSaving(const QString& problem, const QString& advice = QString()) const;

private:
    QString dir_;
    QString name_;
};

/// What the elements of a document are called.
struct DocumentForm
{
    const char* root;
    const char* record;           ///< null for preferences, which are no list
    const char* attribute = "id"; ///< of a record
};

/// A store of the library together with its file in a settings directory.
class Store
{
public:
    /**
     * @param dir  the settings directory, with or without a "/" at its end
     * @param name the file's name in it
     */
    Store(const QString& dir, const QString& name, const DocumentForm& form) : file_(dir, name), form_(form)
    {
    }
    virtual ~Store() = default;

    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    const StoreFile& file() const { return file_; }
    const DocumentForm& form() const { return form_; }

    /// Complains that nothing was changed, and why. Always false.
    bool refuse(const QString& problem) const;

    /// Has the store load the file. What becomes of it is not checked.
    void load() { load(readDocument(file_.path()).root); }

    /// The same, where the file's document was read already. It goes before the store loads its own.
    void load(std::unique_ptr<TVNC_XMLNode> fileRoot);

    /// Whether the file is no other document: its root, if there is one, has the store's name.
    bool hasOwnRoot(const Document& document) const;

    /// The same, with a complaint.
    bool checkRoot(const Document& document) const;

    /// Has the store save the file. What becomes of it is not checked.
    virtual void save() = 0;

    /// Whether the file holds what save() was to write. Complains where it does not.
    virtual bool checkSaved() { return file_.checkSaved(root()); }

    /// Saves the file as a command's result: whole, read back, and with a complaint when that went wrong.
    bool saveChecked();

    /// The document in memory. There is one after load().
    virtual TVNC_XMLNode& root() const = 0;

    /// How many records the store counts.
    virtual int count() const = 0;

    /// Lines that tell what load() has dropped or changed, which saving makes permanent.
    virtual QStringList changesOfLoading() const { return {}; }

    /// How many records have another number now than in the file.
    int renumbered() const { return renumbered_; }

    /// What else there is to say about the list: that loading numbers records anew.
    virtual QStringList remarks() const;

    /// The same as members of the list's object in JSON.
    virtual void writeRemarks(JsonWriter& json) const;

    /// Whether the store has something to show without a file, too.
    virtual bool hasDefaults() const { return false; }

protected:
    virtual void loadSetting() = 0;

    /// Takes the document in the file, of which there may be none, before loading.
    virtual void takeFile(std::unique_ptr<TVNC_XMLNode> /*fileRoot*/) {}

private:
    StoreFile file_;
    DocumentForm form_;
    int renumbered_ = 0;
};

/// A store that is one of the library's settings.
template <typename Setting>
class StoreOf : public Store
{
public:
    using Store::Store;

    TVNC_XMLNode& root() const override { return *store_.getXMLRootNode(); }

protected:
    Setting& store_ = *Setting::getInstance();
};

#endif
