#ifndef TOOLS_TLVCTL_THUMBNAILS_PNG_H
#define TOOLS_TLVCTL_THUMBNAILS_PNG_H

#include <QtCore/QString>

/// Why a file is no whole PNG, to follow its name; empty when it is one. Every chunk's checksum is compared.
QString problemWithPng(const QString& path);

#endif
