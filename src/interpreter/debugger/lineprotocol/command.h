#pragma once

#include <QString>
#include <QStringList>
#include <functional>

#include "interpreter/bridge/debugger.h"
#include "interpreter/debugger/lineprotocol/protocoloutput.h"

namespace Tamrix {

/// One command as it was read, with what it acts upon and where its answer goes.
struct CommandCall {
    Debugger& debugger;
    const ProtocolOutput& output;
    /// The whole line.
    QString line;
    /// The words behind the first one, escapes and all.
    QStringList arguments;
    /// Called before the process ends.
    const std::function<void()>& aboutToQuit;
};

enum class CommandEffect {
    Stays,   ///< the script goes on standing still
    Resumes  ///< the script goes on
};

using CommandFunction = CommandEffect (*)(const CommandCall& call);

/// A command under its names.
struct CommandEntry {
    static constexpr int maximalNames = 3;
    /// Null behind the last one.
    const char* names[maximalNames];
    CommandFunction perform;
};

/// Performs the command of a line: the first word selects it, compared exactly. An empty line is
/// none and does nothing.
CommandEffect performCommand(const CommandCall& call);
/// The words of a line. A blank behind a backslash belongs to its word.
QStringList commandWords(const QString& line);

/// Ends the process with exit code 0, as the end of the input does.
[[noreturn]] void endProcess(const std::function<void()>& aboutToQuit);

}  // namespace Tamrix
