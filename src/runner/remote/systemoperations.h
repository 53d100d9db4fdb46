#pragma once

#include <QString>
#include <QVariant>

#include "runner/remote/system.h"

namespace Tamrix {

// What is the same for all systems, made of what each of them can do.

enum class Recursion { No, Yes };

Outcome<bool> pathExists(System& system, const QString& path);
/// Makes a folder; with recursion those in front of it, too, and what is there already is no
/// failure then.
Outcome<> createPath(System& system, const QString& path, Recursion recursion);
/// Removes a file, a link or a folder, which must be empty unless with recursion.
Outcome<> deletePath(System& system, const QString& path, Recursion recursion);
/// Copies a file, a link, or a folder with all that is in it, on the system itself, with rights and
/// times. Refused when there is something under the new name; nothing stays of a copy that failed.
Outcome<> copyPath(System& system, const QString& from, const QString& to);

/// What a name of `pathPropertyNames()` tells of a path.
Outcome<QVariant> pathProperty(System& system, const QString& path, const QString& name);
QStringList pathPropertyNames();

/// Empty for a variable that is not set.
Outcome<QString> environmentVariable(System& system, const QString& name);
/// "Linux", "Darwin"...
Outcome<QString> osName(System& system);

/// The bytes of a text; fails for an encoding that is not known or that lacks a character.
Outcome<QByteArray> encoded(const QString& text, const QString& encoding);
/// The text of what a program wrote; what is no text in that encoding becomes U+FFFD. Fails for an
/// encoding that is not known. Unless line ends are kept, those of other systems become "\n".
enum class LineEnds { AsTheyAre, OfThisSystem };
Outcome<QString> decoded(const QByteArray& bytes, const QString& encoding, LineEnds lineEnds);

}  // namespace Tamrix
