#ifndef TOOLS_TLVCTL_COMMANDLINE_TEXT_H
#define TOOLS_TLVCTL_COMMANDLINE_TEXT_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>

/**
 * @file
 * Texts of others (stored ones, file names, arguments) made fit for a terminal. None of them may move the
 * cursor, change the direction of writing or pretend to be a line of its own.
 */

/**
 * The text with everything invisible escaped: "\n", "\r", "\t", "\x1B" for other control characters,
 * "\u{202E}" for format characters, line separators and what is no character at all, and "\\" for a
 * backslash itself.
 */
QString printable(const QString& text);

/// Whether a text is shown as it is, with nothing in it that had to be escaped but backslashes.
bool isPrintable(const QString& text);

/// The printable text in quotation marks; one in the text becomes "\"".
QString quoted(const QString& text);

/// Bytes as text where they are UTF-8, and nothing where they are not.
std::optional<QString> utf8Text(const QByteArray& bytes);

/// Bytes fit for a terminal; those that are no UTF-8 as "base64:" and their base64.
QString printableBytes(const QByteArray& bytes);

/**
 * The text as a string of JSON, in UTF-8, with its quotation marks. What printable() escapes is escaped here
 * too, in the way of JSON. Half a surrogate pair, which JSON cannot carry, becomes U+FFFD.
 */
QByteArray jsonString(const QString& text);

#endif
