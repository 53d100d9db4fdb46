#include "runner/commands/commandline.h"

#include <QCommandLineParser>
#include <algorithm>

namespace Tamrix {

namespace {

const QLatin1String programName("tamrixrunner");
const QLatin1String helpOption("help");

QString nameOf(const Command& command) {
    return QLatin1String(command.syntax.name);
}

QString fullSyntax(const Command& command) {
    QString syntax = nameOf(command) + QLatin1Char(' ') + QLatin1String(command.syntax.arguments);
    if (command.syntax.tail == CommandTail::ScriptArguments)
        syntax += QLatin1String(" [-- ARGUMENT...]");
    return syntax;
}

QString generalHelp(const std::vector<Command>& commands) {
    QString text = QStringLiteral("Usage: %1 COMMAND [options]\n\nCommands:\n").arg(programName);
    int width = 0;
    for (const Command& command : commands)
        width = std::max(width, static_cast<int>(fullSyntax(command).size()));
    for (const Command& command : commands) {
        text += QStringLiteral("  %1  %2\n")
                    .arg(fullSyntax(command).leftJustified(width),
                         QLatin1String(command.syntax.summary));
    }
    text += QStringLiteral(
                "\n%1 COMMAND --help tells the options of a command.\n"
                "%1 --version tells the version.\n\n"
                "Exit code: 0 every test case ran and nothing failed, or compared files are equal, "
                "1 a\n"
                "failed verdict, a script error or a difference, 2 wrong usage or a file that "
                "can't be\n"
                "read or written, "
                "130 interrupted with Ctrl-C, 143 ended by SIGTERM.\n")
                .arg(programName);
    return text;
}

QString commandHelp(const Command& command, const QCommandLineParser& parser) {
    QString text = parser.helpText();
    // The parser names the program as it was started and knows nothing of what stands behind "--".
    text.remove(0, text.indexOf(QLatin1Char('\n')));
    text.prepend(QStringLiteral("Usage: %1 %2").arg(programName, fullSyntax(command)));
    return text;
}

/// The failure with where to read more: `about` is a command's name, empty for the program.
tl::unexpected<Failure> explained(const QString& text, const QString& about = {}) {
    const QString command = about.isEmpty() ? QString() : QLatin1Char(' ') + about;
    return wrongUsage(QStringLiteral("%1 (see %2%3 --help)").arg(text, programName, command));
}

Action shownText(const QString& text) {
    return [text] { return show(text); };
}

/// Why the number of arguments does not fit the command; empty when it does.
QString countProblem(const CommandSyntax& syntax, const QStringList& arguments) {
    if (arguments.size() < syntax.minimalArguments) {
        return QStringLiteral("%1 needs %2")
            .arg(QLatin1String(syntax.name), QLatin1String(syntax.arguments));
    }
    if (syntax.maximalArguments != CommandSyntax::anyNumber &&
        arguments.size() > syntax.maximalArguments)
        return QStringLiteral("unexpected argument '%1'")
            .arg(arguments.at(syntax.maximalArguments));
    return {};
}

/// The option that stands where another one needs its value, which would take it without a word;
/// empty for none. Only its own form helps to give such a text as a value: --name=--other.
QString optionWithoutValue(const Command& command, const QStringList& arguments) {
    const auto find = [&](const QString& argument) {
        return std::find_if(command.options.begin(), command.options.end(),
                            [&](const QCommandLineOption& option) {
                                return argument == QLatin1String("--") + option.names().first();
                            });
    };
    for (int index = 1; index < arguments.size(); ++index) {
        const auto option = find(arguments.at(index));
        if (option == command.options.end()) {
            // What a program is given is none of ours.
            if (command.syntax.tail == CommandTail::Program &&
                !arguments.at(index).startsWith(QLatin1Char('-')))
                break;
            continue;
        }
        if (option->valueName().isEmpty())
            continue;
        if (find(arguments.value(index + 1)) != command.options.end())
            return arguments.at(index);
        ++index;
    }
    return {};
}

/// `arguments` are those in front of the first "--", and `scriptArguments` those behind it; null
/// without one.
Outcome<Action> parseCommand(const Command& command, const QStringList& arguments,
                             const QStringList* scriptArguments) {
    const QString name = nameOf(command);
    QCommandLineParser parser;
    parser.setApplicationDescription(QLatin1String(command.syntax.summary));
    parser.addOption({helpOption, QStringLiteral("Tells the options of the command.")});
    parser.addOptions(command.options);
    if (command.syntax.tail == CommandTail::Program)
        parser.setOptionsAfterPositionalArgumentsMode(
            QCommandLineParser::ParseAsPositionalArguments);

    if (const QString option = optionWithoutValue(command, arguments); !option.isEmpty())
        return explained(QStringLiteral("Missing value after '%1'").arg(option), name);
    if (!parser.parse(arguments)) {
        QString problem = parser.errorText();
        if (problem.endsWith(QLatin1Char('.')))
            problem.chop(1);
        return explained(problem, name);
    }
    if (parser.isSet(helpOption))
        return shownText(commandHelp(command, parser));
    const QString problem = countProblem(command.syntax, parser.positionalArguments());
    if (!problem.isEmpty())
        return explained(problem, name);
    if (scriptArguments && command.syntax.tail != CommandTail::ScriptArguments)
        return explained(QStringLiteral("%1 takes no script arguments").arg(name), name);

    Outcome<Action> action = command.read(
        parser, {parser.positionalArguments(), scriptArguments ? *scriptArguments : QStringList()});
    return action ? action : explained(action.error().text, name);
}

}  // namespace

Outcome<Action> parseCommandLine(const QStringList& arguments,
                                 const std::vector<Command>& commands) {
    if (arguments.size() < 2)
        return explained(QStringLiteral("no command given"));
    const QString& name = arguments.at(1);
    if (name == QLatin1String("--help") || name == QLatin1String("-h"))
        return shownText(generalHelp(commands));
    if (name == QLatin1String("--version"))
        return shownText(
            QStringLiteral("%1 %2\n").arg(programName, QStringLiteral(TAMRIX_VERSION)));
    const auto command = std::find_if(commands.begin(), commands.end(),
                                      [&](const Command& each) { return nameOf(each) == name; });
    if (command == commands.end()) {
        return explained(
            name.startsWith(QLatin1Char('-'))
                ? QStringLiteral("Unknown option '%1' in front of the command").arg(name)
                : QStringLiteral("unknown command '%1'").arg(name));
    }
    QStringList own = arguments;
    own.removeAt(1);
    // A program gets its "--" like everything else behind its name.
    const int separator =
        command->syntax.tail == CommandTail::Program ? -1 : own.indexOf(QStringLiteral("--"));
    if (separator < 0)
        return parseCommand(*command, own, nullptr);
    // Everything behind the first "--" belongs to the scripts, options or not.
    const QStringList scriptArguments = own.mid(separator + 1);
    return parseCommand(*command, own.mid(0, separator), &scriptArguments);
}

}  // namespace Tamrix
