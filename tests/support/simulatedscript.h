#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <vector>

#include "dap/program/program.h"

namespace Tamrix::Test {

/// A script as the line protocol shows it: the lines that it reaches in their order, with those
/// that called it. Stops, steps and break points are those of the debugger; what is evaluated and
/// listed is told beforehand.
class SimulatedScript {
public:
    struct Line {
        QString file;
        int number = 0;
        /// "FILE: LINE" of the callers, the innermost first.
        QStringList callers = {};
        /// Entries of the journal that come before it.
        QByteArray journal = {};
        /// What the script writes to its standard output before it.
        QByteArray output = {};
        /// A stop that comes instead of the line's own, behind the prefix.
        QByteArray stop = {};
    };
    std::vector<Line> lines;
    /// Files that are not loaded before the script reaches them.
    std::set<QString> lateFiles;
    /// With what the text of code that fails begins.
    static constexpr const char* errorPrefix = "NameError: ";
    /// What "eval" gives for code; the text of the code itself for other code.
    std::function<QString(const QString& code, int line)> evaluate;
    /// What "print variables" gives for a path.
    std::map<QString, QByteArray> listings;
    /// The state of the search at which it stands, and why a new one is refused, if it is.
    QByteArray searchState;
    QByteArray searchStateError;
    int exitCode = 0;

    // What happened.
    std::vector<Dap::ProgramStart> starts;
    QStringList commands;
    QList<int> signalNumbers;

    /// Starts it anew for each program. Must outlive them.
    Dap::ProgramStarter starter();
};

}  // namespace Tamrix::Test
