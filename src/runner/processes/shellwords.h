#pragma once

#include <QString>
#include <QStringList>

namespace Tamrix {

/// Splits a command line into its words as a shell does: blanks part words, '...' keeps everything,
/// "..." keeps everything but that a backslash takes a quote or a backslash as it is, and outside
/// of quotes a backslash takes the next character as it is. Nothing is expanded. On an unfinished
/// quote the list is empty and `*error` is set; else it is left empty.
QStringList splitShellWords(const QString& text, QString* error);

/// The word as splitShellWords() takes it: quoted where that is needed.
QString quotedShellWord(const QString& word);

}  // namespace Tamrix
