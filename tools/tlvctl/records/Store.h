#ifndef TOOLS_TLVCTL_RECORDS_STORE_H
#define TOOLS_TLVCTL_RECORDS_STORE_H

#include "tools/tlvctl/records/StoreFile.h"

#include <tlvlib/xml/TVNC_XMLNode.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

/// A store of the library together with its file in a settings directory.
class Store
{
public:
    /**
     * @param dir  the settings directory, with or without a "/" at its end
     * @param name the file's name in it
     */
    Store(const QString& dir, const QString& name) : file_(dir, name) {}
    virtual ~Store() = default;

    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    const StoreFile& file() const { return file_; }

    /// Has the store load the file. What becomes of it is not checked.
    virtual void load() = 0;

    /// Has the store save the file. What becomes of it is not checked.
    virtual void save() = 0;

    /// Whether the file holds what save() was to write. Complains where it does not.
    virtual bool checkSaved() { return file_.checkSaved(root()); }

    /// The document in memory. There is one after load().
    virtual TVNC_XMLNode& root() const = 0;

    /// How many records the store counts.
    virtual int count() const = 0;

    /// Lines that tell what load() has dropped or changed, which saving makes permanent.
    virtual QStringList changesOfLoading() const { return {}; }

    /// Whether the store has something to show without a file, too.
    virtual bool hasDefaults() const { return false; }

private:
    StoreFile file_;
};

#endif
