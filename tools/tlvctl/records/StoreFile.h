#ifndef TOOLS_TLVCTL_RECORDS_STOREFILE_H
#define TOOLS_TLVCTL_RECORDS_STOREFILE_H

#include "tools/tlvctl/records/Document.h"

#include <QtCore/QString>

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

    /// Whether the file may be replaced: no if that would lose what could not be read, unless forced.
    bool checkReplaceable(bool isForced) const;

    /// Whether the file holds exactly this tree. Write errors, which the stores do not detect, end here.
    bool checkSaved(TVNC_XMLNode& expected) const;

private:
    QString dir_;
    QString name_;
};

#endif
