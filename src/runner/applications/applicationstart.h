#pragma once

#include <QString>
#include <QStringList>

#include "base/outcome.h"
#include "runner/applications/configuredapplication.h"
#include "runner/processes/childprocess.h"

namespace Tamrix {

/// Where startApplication() looks for programs.
struct ApplicationPlaces {
    /// Empty without a suite.
    QString suiteDirectory;
    /// The suite's config.xml, empty when it has none, and the applications in it.
    QString configFile;
    QList<ConfiguredApplication> configured;
};

/// What is to be started, for which name.
struct ApplicationStart {
    /// The name of the context: that of config.xml, else that of the program's file.
    QString name;
    ProgramStart program;
    /// The machine of the application when that is another one: `program` then stands for it here.
    /// Empty for this machine.
    QString host = {};
    /// -1 for the default.
    int port = -1;
    /// How the agent comes in. Not null.
    const Launcher* launcher = &Launcher::standard();

    /// Program and arguments, quoted as a shell takes them.
    QString commandLine() const;
};

/// Finds out what to start. The text is a program with arguments, in the quotes of a shell; the
/// program is, in this order,
/// 1. the name of an application in the suite's config.xml, whose arguments come first,
/// 2. a path, if it has a "/": from the working directory, then from the suite's folder,
/// 3. the name of a program in PATH.
/// A text that as a whole is one of the first two needs no quotes. A failure says where the program
/// was looked for or why it can't be executed.
Outcome<ApplicationStart> resolveApplication(const QString& text, const ApplicationPlaces& places);

}  // namespace Tamrix
