#ifndef TOOLS_TLVCTL_FILES_CHECK_H
#define TOOLS_TLVCTL_FILES_CHECK_H

#include <QtCore/QString>

#include <vector>

struct Finding
{
    QString text; ///< fit for a terminal
};

/// What was found in one file.
struct FileReport
{
    QString path;
    std::vector<Finding> findings;
};

/// Checks all files of a settings directory, whose path has a "/" at its end.
std::vector<FileReport> checkDirectory(const QString& dir, bool isRepairing);

#endif
