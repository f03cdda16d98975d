#ifndef TLVLIB_BROWSER_USEDDIRECTORY_H
#define TLVLIB_BROWSER_USEDDIRECTORY_H

#include <QtCore/QLockFile>
#include <QtCore/QString>

#include <memory>

namespace Tlv {

/// Makes a directory, for its owner alone, where it is missing; one that is there keeps its permissions.
/// False when it cannot be written then.
bool makeDirectory(const QString& path);

/// A directory that this process holds against others.
class UsedDirectory
{
public:
    /// @param dir ends in "/"
    /// @return who holds the directory; empty when it is ours from now on
    QString hold(const QString& dir);

private:
    std::unique_ptr<QLockFile> lock_;
};

} // namespace Tlv

#endif
