#ifndef TOOLS_TLVCTL_FILES_CHECK_H
#define TOOLS_TLVCTL_FILES_CHECK_H

#include <QtCore/QString>

#include <vector>

/// What became of a finding.
enum class Ending { FOUND, REPAIRED, REMAINS, LOST };

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

/// Whether what can be repaired is.
enum class Repair {
    NONE,
    TRY, ///< nothing is written, but how it would end is told
    DO,  ///< after a copy of each file that changes
};

/**
 * Checks all files of a settings directory. A finding is repaired when it is not found any more in what the
 * repair has made of the file; the damage for which records are lost ends as lost.
 *
 * @param dir with a "/" at its end
 */
std::vector<FileReport> checkDirectory(const QString& dir, Repair repairing);

#endif
