#include "tools/tlvctl/records/Store.h"

#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/JsonWriter.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/records/Record.h"

#include <QtCore/QFileInfo>

StoreFile::StoreFile(const QString& dir, const QString& name)
    : dir_(dir.isEmpty() || dir.endsWith('/') ? dir : dir + '/'), name_(name)
{
}

bool StoreFile::checkDirectory() const
{
    if (QFileInfo(dir_).isDir())
        return true;
    const QString path = dir_.left(dir_.size() - 1); // without its "/", so that a plain file is found
    if (dir_.isEmpty())
        complain(dir_, QString("no directory; name the one that holds %1, \".\" for this one").arg(name_));
    else if (QFileInfo::exists(path))
        complain(path, QString("not a directory; name the directory that holds %1").arg(name_));
    else
        complain(path, QString("no such directory; create it with \"mkdir -p %1\"").arg(printable(path)));
    return false;
}

bool StoreFile::checkReplaceable(bool isForced) const
{
    if (isForced)
        return true;
    const Document document = readDocument(path());
    if (document.state == Document::State::DAMAGED) {
        complain(path(), describe(document.damage) +
                             "; nothing was changed, because saving would lose everything from "
                             "that line on. Correct the file there, or go on with --force");
        return false;
    }
    if (document.state == Document::State::UNREADABLE) {
        complain(path(), QString("cannot be read: %1; nothing was changed, because saving would lose all "
                                 "that it holds. Make it readable, or go on with --force")
                             .arg(printable(document.problem)));
        return false;
    }
    return true;
}

bool StoreFile::checkSaved(TVNC_XMLNode& expected) const
{
    const Document saved = readDocument(path());
    QString problem;
    if (saved.state == Document::State::MISSING || saved.state == Document::State::UNREADABLE)
        problem = printable(saved.problem);
    else if (saved.state == Document::State::DAMAGED)
        problem = describe(saved.damage);
    else if (!sameTree(expected, *saved.root))
        problem = "it holds something else than was to be saved";
    else
        return true;
    complainAboutSaving(problem, ", then look at the file before trying again");
    return false;
}

void StoreFile::complainAboutSaving(const QString& problem, const QString& advice) const
{
    complain(path(), QString("saving failed: %1; check the permissions of the file and its directory and "
                             "the free space (\"df %2\")%3")
                         .arg(problem, printable(dir_), advice));
}

bool Store::refuse(const QString& problem) const
{
    complain(file_.path(), "nothing was changed: " + problem);
    return false;
}

void Store::load()
{
    std::unique_ptr<TVNC_XMLNode> fileRoot = readDocument(file_.path()).root;
    renumbered_ = countRenumbered(fileRoot.get());
    loadSetting();
    compareWithFile(std::move(fileRoot));
}

QStringList Store::remarks() const
{
    if (renumbered_ == 0)
        return {};
    return {QString("numbers that stand otherwise in the file, and are given anew by loading: %1")
                .arg(renumbered_)};
}

void Store::writeRemarks(JsonWriter& json) const
{
    json.member("renumbered", renumbered_);
}
