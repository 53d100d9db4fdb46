#pragma once

#include <QString>
#include <QStringList>
#include <functional>

#include "base/outcome.h"
#include "runner/applications/launcher.h"

namespace Tamrix {

/// What is to be recorded, and where to.
struct RecordingSettings {
    /// A program and its arguments.
    QStringList program;
    /// "inherit", "auto" or ":N".
    QString display;
    /// The way into the program. Not null.
    const Launcher* launcher = &Launcher::standard();
    /// The folder of the suite and the name of the case that is made; empty for none.
    QString suite;
    QString caseName;
    /// "python".
    QString language;
    /// The keys that switch between acting and verifying: "Ctrl+F12".
    QString verifyKeys;
};

/// Starts the program and writes a script of what a person does in it, to a file where one is
/// wanted and to `tell`, until the program ends or the user interrupts. Fails when that can't be
/// done, and when the script could not be written to its end. Nothing of the program is left.
Outcome<> record(const RecordingSettings& settings,
                 const std::function<void(const QString& text)>& tell);

}  // namespace Tamrix
