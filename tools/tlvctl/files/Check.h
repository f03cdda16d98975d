#ifndef TOOLS_TLVCTL_FILES_CHECK_H
#define TOOLS_TLVCTL_FILES_CHECK_H

#include <QtCore/QString>

#include <vector>

/// What became of a finding.
enum class Ending { FOUND, REPAIRED, REMAINS };

struct Finding
{
    QString text; ///< fit for a terminal
    Ending ending = Ending::FOUND;
};

/// What was found in one file, and what a repair has done about it.
struct FileReport
{
    QString path;
    std::vector<Finding> findings;
    int lost = 0;       ///< records
    QString keptAs;     ///< the file as it was before the repair; empty when nothing was changed
    QString rejectedTo; ///< where what could not be read went; empty when there is nothing of that kind
    QString problem;    ///< why the repair itself failed
};

/**
 * Checks all files of a settings directory.
 *
 * @param dir         with a "/" at its end
 * @param isRepairing whether what can be repaired is, after a copy. A finding is then repaired when a second
 *                    check does not find it any more.
 */
std::vector<FileReport> checkDirectory(const QString& dir, bool isRepairing);

/// As a repair would end: it is tried on a copy of the directory, and nothing else is written.
std::vector<FileReport> tryRepair(const QString& dir);

#endif
