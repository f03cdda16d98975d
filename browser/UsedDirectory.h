#ifndef TLVLIB_BROWSER_USEDDIRECTORY_H
#define TLVLIB_BROWSER_USEDDIRECTORY_H

#include <QtCore/QLockFile>
#include <QtCore/QString>

#include <memory>

namespace Tlv {

/// A directory that this process holds against others.
class UsedDirectory
{
public:
    /// Makes a directory, for its owner alone, where it is missing. False when it cannot be written then.
    static bool make(const QString& path);

    /// @return who holds the directory; empty when it is ours from now on
    QString hold(const QString& dir);

private:
    std::unique_ptr<QLockFile> lock_;
};

} // namespace Tlv

#endif
