#pragma once

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QString>
#include <QStringList>
#include <functional>
#include <utility>
#include <vector>

#include "base/outcome.h"
#include "runner/commands/option.h"

namespace Tamrix {

/// The program's exit codes; a run that a signal ended has 128 and the signal's number.
enum ExitCode {
    ExitSuccess = 0,  ///< every test case ran and nothing failed, or files are equal
    ExitFailure = 1,  ///< a failed verdict, a script error or a difference of files
    ExitUsage = 2     ///< wrong usage, or a file can't be read or written
};

/// What may stand behind a command's own arguments.
enum class CommandTail {
    Nothing,
    ScriptArguments,  ///< behind "--"
    Program           ///< all from the first argument on belongs to a program, options included
};

/// How a command is called, as the help and the messages about wrong usage tell it.
struct CommandSyntax {
    /// No upper limit for the arguments.
    static constexpr int anyNumber = -1;

    const char* name;
    /// "SUITE [CASE...]"
    const char* arguments;
    const char* summary;
    int minimalArguments;
    int maximalArguments;
    CommandTail tail = CommandTail::Nothing;
};

/// What a command was given beside its options. Their number fits the command's syntax.
struct CommandArguments {
    QStringList own;
    QStringList script;
};

/// Does what was asked for and returns the exit code; what goes wrong is told on standard error.
using Action = std::function<int()>;

/// One command of the program, for those who read command lines and make the help.
struct Command {
    CommandSyntax syntax;
    QList<QCommandLineOption> options;
    /// What is to be done; wrong usage is a failure.
    std::function<Outcome<Action>(const QCommandLineParser& parser,
                                  const CommandArguments& arguments)>
        read;
};

/// A command as its file describes it. What the user asks for ends in a `Settings`, whose members
/// start with what is meant when nothing is given.
template <typename Settings>
struct CommandDefinition {
    CommandSyntax syntax;
    /// In the order of the help.
    std::vector<Option<Settings>> options;
    /// Pairs of options of which one may be given.
    std::vector<std::pair<const char*, const char*>> exclusive;
    /// Called behind the options: takes the arguments, and checks what hangs on several values.
    Outcome<> (*readArguments)(const CommandArguments& arguments, Settings& settings);
    int (*run)(const Settings& settings);
};

template <typename Settings>
Command makeCommand(const CommandDefinition<Settings>& definition) {
    Command command;
    command.syntax = definition.syntax;
    for (const Option<Settings>& option : definition.options)
        command.options.append(describedOption(option));
    command.read = [definition](const QCommandLineParser& parser,
                                const CommandArguments& arguments) -> Outcome<Action> {
        for (const auto& [left, right] : definition.exclusive) {
            if (parser.isSet(QLatin1String(left)) && parser.isSet(QLatin1String(right)))
                return exclusionFailure(left, right);
        }
        Settings settings;
        for (const Option<Settings>& option : definition.options) {
            const Outcome<> read = readOption(option, parser, settings);
            if (!read)
                return fail(read.error());
        }
        const Outcome<> read = definition.readArguments(arguments, settings);
        if (!read)
            return fail(read.error());
        return Action([run = definition.run, settings] { return run(settings); });
    };
    return command;
}

/// Tells what went wrong on standard error and returns ExitUsage.
int failWith(const QString& text);

/// Writes a text to standard output. Returns ExitSuccess, or ExitUsage when that can't be done,
/// which is told.
int show(const QString& text);

}  // namespace Tamrix
