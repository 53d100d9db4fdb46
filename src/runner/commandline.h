#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace Tamrix {

/// A report that was asked for as FORMAT:PATH.
struct ReportTarget {
    QString format;
    /// Absolute.
    QString path;
};

/// What the program was asked to do. Plain data.
struct CommandLine {
    enum class Command {
        Show,   ///< print `text`
        Run,    ///< run `cases` (all for none) of `suite`
        List,   ///< list the cases of `suite`
        Report  ///< make `reports` from `journal`
    };

    Command command = Command::Show;
    /// Wrong usage, in one line that says where to read more; empty when all is well.
    QString error;
    /// Help or version, with a line end.
    QString text;

    QString suite;
    QStringList cases;
    QString journal;
    QList<ReportTarget> reports;
    /// Absolute, empty when none was given.
    QString resultDirectory;
    bool failFast = false;
    bool verbose = false;
    bool quiet = false;
    QStringList scriptArguments;
};

/// Reads the program's arguments, the first of which is its own name. Needs a QCoreApplication.
CommandLine parseCommandLine(const QStringList& arguments);

}  // namespace Tamrix
