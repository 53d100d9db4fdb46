#include "runner/commands/commandline.h"

#include <json/json.h>

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QRegularExpression>
#include <algorithm>
#include <stdexcept>

#include "platform/testresult/reportfactory.h"

namespace Tamrix {

namespace {

const QLatin1String programName("tamrixrunner");

const QLatin1String annotateOption("annotate");
const QLatin1String asOption("as");
const QLatin1String bestOption("best");
const QLatin1String displayOption("aut-display");
const QLatin1String failFastOption("fail-fast");
const QLatin1String helpOption("help");
const QLatin1String jsonOption("json");
const QLatin1String limitOption("limit");
const QLatin1String nameOption("name");
const QLatin1String noActionsOption("no-actions");
const QLatin1String optionsOption("options");
const QLatin1String optionOption("option");
const QLatin1String quietOption("quiet");
const QLatin1String regionOption("region");
const QLatin1String reportOption("report");
const QLatin1String resultDirectoryOption("result-dir");
const QLatin1String screenshotOption("screenshot");
const QLatin1String sheetOption("sheet");
const QLatin1String toOption("to");
const QLatin1String verboseOption("verbose");
const QLatin1String waitOption("wait");
const QLatin1String xmlOption("xml");

/// Where reports can be asked for, and with which words.
const char* const reportValueName = "FORMAT:PATH";

using Values = const QCommandLineParser&;

/// One command: what it is called with, and how its values get into a CommandLine. `read` returns
/// an error text.
struct CommandDescription {
    CommandLine::Command command;
    const char* name;
    const char* syntax;
    const char* summary;
    QList<QCommandLineOption> options;
    int minimalArguments;
    /// -1 for any number.
    int maximalArguments;
    bool takesScriptArguments;
    /// Everything from the first positional argument on belongs to a program.
    bool startsProgram;
    QString (*read)(Values values, CommandLine& line);
};

bool isStandardOutput(const QString& report) {
    ReportDescription description;
    return parseReportDescription(report, &description).isEmpty() &&
           (description.path.isEmpty() || description.path == QLatin1String("-"));
}

/// Adds reports. Two must not write the same file.
QString addReports(const QStringList& reports, CommandLine& line) {
    for (const QString& report : reports) {
        ReportDescription description;
        const QString problem = parseReportDescription(report, &description);
        if (!problem.isEmpty())
            return problem;
        for (const QString& other : qAsConst(line.reports)) {
            ReportDescription otherDescription;
            parseReportDescription(other, &otherDescription);
            if (isSameFile(description.path, otherDescription.path)) {
                return QStringLiteral("the reports '%1' and '%2' have the same path")
                    .arg(other, report);
            }
        }
        line.reports.append(report);
    }
    return {};
}

QString readDisplay(Values values, CommandLine& line) {
    static const QRegularExpression number(QStringLiteral("\\A:[0-9]+(\\.[0-9]+)?\\z"));
    line.display =
        values.isSet(displayOption) ? values.value(displayOption) : QStringLiteral("inherit");
    if (line.display == QLatin1String("auto") || line.display == QLatin1String("inherit") ||
        number.match(line.display).hasMatch())
        return {};
    return QStringLiteral("--aut-display takes auto, inherit or :N, not '%1'").arg(line.display);
}

QString readInspect(Values values, CommandLine& line) {
    line.program = values.positionalArguments();
    if (values.isSet(jsonOption) && values.isSet(xmlOption))
        return QStringLiteral("--json and --xml exclude each other");
    line.treeFormat = values.isSet(jsonOption)  ? CommandLine::TreeFormat::Json
                      : values.isSet(xmlOption) ? CommandLine::TreeFormat::Xml
                                                : CommandLine::TreeFormat::Text;
    line.screenshotFile = values.value(screenshotOption);
    if (values.isSet(waitOption)) {
        bool isNumber = false;
        line.waitSeconds = values.value(waitOption).toDouble(&isNumber);
        if (!isNumber || !(line.waitSeconds >= 0 && line.waitSeconds <= 3600))
            return QStringLiteral("--wait takes a number of seconds, not '%1'")
                .arg(values.value(waitOption));
    }
    return readDisplay(values, line);
}

QString readData(Values values, CommandLine& line) {
    using Format = CommandLine::TableFormat;
    static const QMap<QString, Format> formats = {
        {"table", Format::Table}, {"csv", Format::Csv}, {"json", Format::Json}};
    line.dataFile = values.positionalArguments().constFirst();
    line.sheet = values.value(sheetOption);
    const QString format = values.isSet(asOption) ? values.value(asOption) : "table";
    if (!formats.contains(format))
        return QStringLiteral("--as takes table, csv or json, not '%1'").arg(format);
    line.tableFormat = formats.value(format);
    return {};
}

QString readAttachable(Values values, CommandLine& line) {
    line.program = values.positionalArguments();
    line.applicationName = values.value(nameOption);
    return line.applicationName.isEmpty() ? QStringLiteral("attachable needs --name NAME")
                                          : QString();
}

/// Reads the options and the region of a search. Returns an error text.
QString readSearch(Values values, CommandLine& line) {
    try {
        const auto options =
            Vision::ImageLookupOptions::fromDescription(values.value(optionsOption));
        // The form of JSON has ranges.
        line.searchOptions = Vision::ImageLookupOptions::fromJson(options.toJson());
    } catch (const std::runtime_error& error) {
        return QStringLiteral("--options '%1': %2")
            .arg(values.value(optionsOption), QString::fromUtf8(error.what()));
    }
    if (line.searchOptions.getMinScaleFactor() > line.searchOptions.getMaxScaleFactor())
        return QStringLiteral("--options '%1': minScale is above maxScale")
            .arg(values.value(optionsOption));
    try {
        line.searchRegion = Vision::SearchRegion(values.value(regionOption));
    } catch (const std::runtime_error& error) {
        return QStringLiteral("--region '%1': %2")
            .arg(values.value(regionOption), QString::fromUtf8(error.what()));
    }
    return {};
}

QString readFindImage(Values values, CommandLine& line) {
    line.haystack = values.positionalArguments().constFirst();
    line.needles = values.positionalArguments().mid(1);
    line.wantsBest = values.isSet(bestOption);
    line.printsJson = values.isSet(jsonOption);
    if (values.isSet(limitOption)) {
        bool isNumber = false;
        line.occurrenceLimit = values.value(limitOption).toInt(&isNumber);
        if (!isNumber || line.occurrenceLimit < 1)
            return QStringLiteral("--limit takes a number from 1 on, not '%1'")
                .arg(values.value(limitOption));
    }
    line.annotatedFile = values.value(annotateOption);
    if (values.isSet(annotateOption) && line.annotatedFile.isEmpty())
        return QStringLiteral("--annotate needs a file");
    if (!line.annotatedFile.isEmpty()) {
        for (const QString& picture : values.positionalArguments()) {
            if (isSameFile(picture, line.annotatedFile))
                return QStringLiteral("--annotate %1 would write over '%2'")
                    .arg(line.annotatedFile, picture);
        }
    }
    return readSearch(values, line);
}

QString readCompare(Values values, CommandLine& line) {
    using Comparison = CommandLine::Comparison;
    static const QMap<QString, Comparison> kinds = {
        {"text", Comparison::Text}, {"json", Comparison::Json}, {"xml", Comparison::Xml}};
    const QStringList arguments = values.positionalArguments();
    const auto kind = kinds.constFind(arguments.at(0));
    if (kind == kinds.constEnd())
        return QStringLiteral("compare takes text, json or xml, not '%1'").arg(arguments.at(0));
    line.comparison = *kind;
    line.expected = arguments.at(1);
    line.actual = arguments.at(2);
    line.comparisonOptions = values.values(optionOption);
    return {};
}

QString readRun(Values values, CommandLine& line) {
    line.suite = values.positionalArguments().constFirst();
    line.cases = values.positionalArguments().mid(1);
    line.failFast = values.isSet(failFastOption);
    line.recordsActions = !values.isSet(noActionsOption);
    line.verbose = values.isSet(verboseOption);
    line.quiet = values.isSet(quietOption);
    if (line.verbose && line.quiet)
        return QStringLiteral("--verbose and --quiet exclude each other");
    if (values.isSet(resultDirectoryOption)) {
        const QString directory = values.value(resultDirectoryOption);
        if (directory.isEmpty())
            return QStringLiteral("--result-dir needs a folder");
        line.resultDirectory = QDir::cleanPath(QDir::current().absoluteFilePath(directory));
        line.reports.append(QStringLiteral("json:%1/journal.jsonl").arg(line.resultDirectory));
    }
    const QString displayProblem = readDisplay(values, line);
    if (!displayProblem.isEmpty())
        return displayProblem;
    const QStringList reports = values.values(reportOption);
    for (const QString& report : reports) {
        if (isStandardOutput(report)) {
            return QStringLiteral(
                       "the console report always goes to standard output; '%1' would "
                       "write it twice")
                .arg(report);
        }
    }
    return addReports(reports, line);
}

QString readList(Values values, CommandLine& line) {
    line.suite = values.positionalArguments().constFirst();
    return {};
}

QString readReport(Values values, CommandLine& line) {
    line.journal = values.positionalArguments().constFirst();
    if (!values.isSet(toOption))
        return QStringLiteral("report needs at least one --to FORMAT:PATH");
    return addReports(values.values(toOption), line);
}

QCommandLineOption displayDescription() {
    return {displayOption,
            "Where applications appear: auto (a display and session bus of its own), inherit (the "
            "default) or :N.",
            "auto|inherit|:N"};
}

const QList<CommandDescription>& commands() {
    static const QList<CommandDescription> table = {
        {CommandLine::Command::Run,
         "run",
         "SUITE [CASE...]",
         "Runs the suite's test cases, or the named ones, in the suite's order.",
         {{reportOption,
           "Writes a report of the run: html (a folder), json (the journal), junit (JUnit XML) or "
           "console; may be given several times.",
           reportValueName},
          {resultDirectoryOption,
           "Keeps attachments and the run's journal (journal.jsonl) in this folder.", "DIR"},
          displayDescription(),
          {failFastOption, "Ends the run behind the first test case that fails."},
          {noActionsOption, "Leaves clicks, typing, waits and the like out of the reports."},
          {verboseOption, "Shows every result and action, not only the failures."},
          {quietOption, "Shows failures and the summary only."}},
         1,
         -1,
         true,
         false,
         readRun},
        {CommandLine::Command::List,
         "list",
         "SUITE",
         "Lists the suite's test cases in the order in which they run, one a line.",
         {},
         1,
         1,
         false,
         false,
         readList},
        {CommandLine::Command::Report,
         "report",
         "JOURNAL --to FORMAT:PATH",
         "Makes reports from the journal of a run, also of one that was killed.",
         {{toOption,
           "The report: html (a folder), json (the journal), junit (JUnit XML) or console; may be "
           "given several times.",
           reportValueName}},
         1,
         1,
         false,
         false,
         readReport},
        {CommandLine::Command::Inspect,
         "inspect",
         "PROGRAM [ARGUMENT...]",
         "Starts a program and prints its objects with the names that find them.",
         {displayDescription(),
          {jsonOption, "Prints JSON."},
          {xmlOption, "Prints XML, in the form of coverage files."},
          {screenshotOption, "Stores a picture of the screen in this file.", "FILE"},
          {waitOption, "Waits so long before it looks; 1 unless given.", "SECONDS"}},
         1,
         -1,
         false,
         true,
         readInspect},
        {CommandLine::Command::Compare,
         "compare",
         "text|json|xml EXPECTED ACTUAL",
         "Compares two files as a script would and prints what differs.",
         {{optionOption,
           "An option of the comparison: true or false, a word, or names with commas between; may "
           "be given several times.",
           "NAME=VALUE"}},
         3,
         3,
         false,
         false,
         readCompare},
        {CommandLine::Command::Attachable,
         "attachable",
         "--name NAME PROGRAM [ARGUMENT...]",
         "Starts a program to which runs can attach by its name, and keeps it until it ends.",
         {{nameOption, "The name for attachToApplication().", "NAME"}},
         1,
         -1,
         false,
         true,
         readAttachable},
        {CommandLine::Command::FindImage,
         "find-image",
         "HAYSTACK NEEDLE...",
         "Finds pictures in a screenshot, as scripts do, and prints the places.",
         {{optionsOption,
           "How to search: \"tolerant: true, threshold: 97, multiscale: true, minScale: 80, "
           "maxScale: 120\", or some of it.",
           "OPTIONS"},
          {regionOption, "Where to search; several rectangles are separated by commas.",
           "LEFTxTOPxWIDTHxHEIGHT"},
          {limitOption, "Prints so many occurrences at most; 100 unless given.", "N"},
          {bestOption, "Finds the most similar places and the settings that find them."},
          {jsonOption, "Prints JSON."},
          {annotateOption, "Stores the screenshot with frames around what was found.", "FILE"}},
         2,
         -1,
         false,
         false,
         readFindImage},
        {CommandLine::Command::Data,
         "data",
         "FILE",
         "Prints the table of a test data file as scripts see it.",
         {{sheetOption, "The sheet of a spreadsheet; the first one unless given.", "NAME"},
          {asOption, "How: table (the default), csv or json.", "table|csv|json"}},
         1,
         1,
         false,
         false,
         readData},
    };
    return table;
}

const CommandDescription* findCommand(const QString& name) {
    for (const CommandDescription& command : commands()) {
        if (name == QLatin1String(command.name))
            return &command;
    }
    return nullptr;
}

QString fullSyntax(const CommandDescription& command) {
    QString syntax = QLatin1String(command.name) + QLatin1Char(' ') + QLatin1String(command.syntax);
    if (command.takesScriptArguments)
        syntax += QLatin1String(" [-- ARGUMENT...]");
    return syntax;
}

QString generalHelp() {
    QString text = QStringLiteral("Usage: %1 COMMAND [options]\n\nCommands:\n").arg(programName);
    int width = 0;
    for (const CommandDescription& command : commands())
        width = std::max(width, static_cast<int>(fullSyntax(command).size()));
    for (const CommandDescription& command : commands()) {
        text += QStringLiteral("  %1  %2\n")
                    .arg(fullSyntax(command).leftJustified(width), QLatin1String(command.summary));
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

QString commandHelp(const CommandDescription& command, const QCommandLineParser& parser) {
    QString text = parser.helpText();
    // The parser names the program as it was started and knows nothing of what stands behind "--".
    text.remove(0, text.indexOf(QLatin1Char('\n')));
    text.prepend(QStringLiteral("Usage: %1 %2").arg(programName, fullSyntax(command)));
    return text;
}

CommandLine wrongUsage(const QString& text, const CommandDescription* command = nullptr) {
    CommandLine line;
    const QString about = command ? QLatin1Char(' ') + QLatin1String(command->name) : QString();
    line.error = QStringLiteral("%1 (see %2%3 --help)").arg(text, programName, about);
    return line;
}

CommandLine shownText(const QString& text) {
    CommandLine line;
    line.text = text;
    return line;
}

CommandLine parseCommand(const CommandDescription& command, const QStringList& arguments,
                         const QStringList& scriptArguments, bool hasScriptArguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QLatin1String(command.summary));
    parser.addOption({helpOption, QStringLiteral("Tells the options of the command.")});
    parser.addOptions(command.options);
    if (command.startsProgram)
        parser.setOptionsAfterPositionalArgumentsMode(
            QCommandLineParser::ParseAsPositionalArguments);

    if (!parser.parse(arguments)) {
        QString problem = parser.errorText();
        if (problem.endsWith(QLatin1Char('.')))
            problem.chop(1);
        return wrongUsage(problem, &command);
    }
    if (parser.isSet(helpOption))
        return shownText(commandHelp(command, parser));
    const QStringList positional = parser.positionalArguments();
    if (positional.size() < command.minimalArguments) {
        return wrongUsage(QStringLiteral("%1 needs %2")
                              .arg(QLatin1String(command.name), QLatin1String(command.syntax)),
                          &command);
    }
    if (command.maximalArguments >= 0 && positional.size() > command.maximalArguments) {
        return wrongUsage(
            QStringLiteral("unexpected argument '%1'").arg(positional.at(command.maximalArguments)),
            &command);
    }
    if (hasScriptArguments && !command.takesScriptArguments) {
        return wrongUsage(
            QStringLiteral("%1 takes no script arguments").arg(QLatin1String(command.name)),
            &command);
    }

    CommandLine line;
    line.command = command.command;
    line.scriptArguments = scriptArguments;
    const QString problem = command.read(parser, line);
    return problem.isEmpty() ? line : wrongUsage(problem, &command);
}

/// The path without links and "..", as far as it exists.
QString resolvedPath(const QString& path) {
    const QFileInfo info(path);
    if (info.exists())
        return info.canonicalFilePath();
    const QString folder = QDir(info.absolutePath()).canonicalPath();
    return folder.isEmpty() ? QDir::cleanPath(info.absoluteFilePath())
                            : QDir(folder).filePath(info.fileName());
}

}  // namespace

bool isSameFile(const QString& left, const QString& right) {
    return resolvedPath(left) == resolvedPath(right);
}

CommandLine parseCommandLine(const QStringList& arguments) {
    if (arguments.size() < 2)
        return wrongUsage(QStringLiteral("no command given"));
    const QString& name = arguments.at(1);
    if (name == QLatin1String("--help") || name == QLatin1String("-h"))
        return shownText(generalHelp());
    if (name == QLatin1String("--version"))
        return shownText(
            QStringLiteral("%1 %2\n").arg(programName, QStringLiteral(TAMRIX_VERSION)));
    const CommandDescription* command = findCommand(name);
    if (!command) {
        return wrongUsage(
            name.startsWith(QLatin1Char('-'))
                ? QStringLiteral("Unknown option '%1' in front of the command").arg(name)
                : QStringLiteral("unknown command '%1'").arg(name));
    }
    QStringList own = arguments;
    own.removeAt(1);
    // A program gets its "--" like everything else behind its name.
    const int separator = command->startsProgram ? -1 : own.indexOf(QStringLiteral("--"));
    if (separator < 0)
        return parseCommand(*command, own, {}, false);
    // Everything behind the first "--" belongs to the scripts, options or not.
    return parseCommand(*command, own.mid(0, separator), own.mid(separator + 1), true);
}

}  // namespace Tamrix
