#ifndef TOOLS_TLVCTL_COMMANDLINE_LOGFILE_H
#define TOOLS_TLVCTL_COMMANDLINE_LOGFILE_H

#include <QtCore/QString>

/// Where the library writes its log.
QString logFilePath();

/// Reads a log level, a number from 0 to 3. False when it is none.
bool parseLogLevel(const QString& text, int& level);

/**
 * Sets what the library logs into its file, and complains when that file cannot be written. The system log is
 * left to the programs of the device: a list of fonts alone would be a thousand lines in it.
 */
void setLogLevel(int level);

#endif
