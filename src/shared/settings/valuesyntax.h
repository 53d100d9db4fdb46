#pragma once

#include <QString>
#include <QStringList>

namespace Tamrix {

// How values stand in a settings file: strings in double quotes with backslash escapes, lists of
// them, and references to environment variables.

/// The text in double quotes, with backslash, double quote, newline, carriage return and tab
/// escaped and everything else as it is.
QString quoteString(const QString& text);

/// Appends the quoted strings of `raw` to `list`. What stands between strings is passed over. False
/// for an unknown escape or a string without an end, with a Qt warning that names `file`; `list`
/// then has the strings before it.
bool unquoteStringList(const QString& raw, QStringList* list, const QString& file);

/// Replaces `text` by the one quoted string in it. False, with a Qt warning that names `file` and
/// `text` unchanged, when there is not exactly one.
bool unquoteString(QString& text, const QString& file);

/// Replaces "$(NAME)" by the environment's value and "$$" by "$". A variable that is unset or empty
/// stays as it stands. References in an inserted value are replaced in their turn.
void expandEnvironmentVariables(QString& text);

}  // namespace Tamrix
