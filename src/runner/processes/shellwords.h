#pragma once

#include <QString>
#include <QStringList>

#include "base/outcome.h"

namespace Tamrix {

/// Splits a command line into its words as a shell does: blanks separate words, '...' keeps
/// everything, "..." keeps everything but that a backslash takes a quote or a backslash as it is,
/// and outside of quotes a backslash takes the next character as it is. Nothing is expanded. An
/// unfinished quote is a failure. By hand, since QProcess::splitCommand knows neither '...' nor
/// backslashes and takes an unfinished quote without a word.
Outcome<QStringList> splitShellWords(const QString& text);

/// The word as splitShellWords() takes it: quoted where that is needed.
QString quotedShellWord(const QString& word);
/// A command line of these words.
QString quotedShellWords(const QStringList& words);

}  // namespace Tamrix
