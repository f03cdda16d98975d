#ifndef TLVLIB_BROWSER_DAMAGECHECK_H
#define TLVLIB_BROWSER_DAMAGECHECK_H

#include <QtCore/QString>

namespace Tlv {

/// What is wrong with a settings document or a "cookie.ini", and what a load will make of it, as a sentence.
/// Empty when the file is sound or missing.
QString damageOf(const QString& path);

/// What has become of an attempt to keep a copy of a file.
struct Copy
{
    QString path;  ///< empty when there is none
    QString error; ///< empty when there is one
};

/// Copies a damaged file to its name + ".damaged", or ".damaged-2" and so on where that is another file.
/// Behind ".damaged-9" the last one is replaced. The copy is on the disk when this returns.
Copy keepCopy(const QString& path);

} // namespace Tlv

#endif
