#include "runner/commands/comparecommand.h"

#include <algorithm>

#include "base/textescape.h"
#include "comparison/filecomparison.h"
#include "runner/commands/commands.h"
#include "runner/processes/terminal.h"

namespace Tamrix {

namespace {

/// Returns an error text.
QString readFlag(const QString& name, const QString& value, bool* out) {
    if (value != QLatin1String("true") && value != QLatin1String("false"))
        return QStringLiteral("option %1 takes true or false, not '%2'").arg(name, value);
    *out = value == QLatin1String("true");
    return {};
}

QString readXmlOption(const QString& name, const QString& value, XmlCompareOptions* options) {
    const std::vector<XmlOptionDescription>& table = xmlCompareOptionDescriptions();
    const auto found = std::find_if(
        table.begin(), table.end(),
        [&name](const XmlOptionDescription& description) { return description.name == name; });
    if (found == table.end()) {
        QStringList names;
        for (const XmlOptionDescription& description : table)
            names.append(description.name);
        return QStringLiteral("unknown option '%1'; xml has %2")
            .arg(name, names.join(QLatin1String(", ")));
    }
    if (found->flag)
        return readFlag(name, value, &(options->*found->flag));
    if (found->whitespace) {
        WhitespaceHandling& handling = options->*found->whitespace;
        if (!readWhitespaceHandling(value, &handling.normalize, &handling.trim))
            return QStringLiteral("option %1 takes preserve, normalize or trim, not '%2'")
                .arg(name, value);
        return {};
    }
    const QStringList words = value.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString& word : words)
        (options->*found->names).insert(word.toStdString());
    return {};
}

/// All options of a comparison at the terminal.
struct Options {
    bool strictLineEndings = false;
    XmlCompareOptions xml;
};

QString readOption(const QString& text, CommandLine::Comparison comparison, Options* options) {
    const int equals = text.indexOf(QLatin1Char('='));
    if (equals <= 0)
        return QStringLiteral("--option takes NAME=VALUE, not '%1'").arg(text);
    const QString name = text.left(equals);
    const QString value = text.mid(equals + 1);
    switch (comparison) {
        case CommandLine::Comparison::Xml:
            return readXmlOption(name, value, &options->xml);
        case CommandLine::Comparison::Text:
            if (name == strictLineEndingsOption)
                return readFlag(name, value, &options->strictLineEndings);
            return QStringLiteral("unknown option '%1'; text has %2")
                .arg(name, strictLineEndingsOption);
        case CommandLine::Comparison::Json:
            break;
    }
    return QStringLiteral("unknown option '%1'; json has none").arg(name);
}

FileComparison compare(const CommandLine& line, const Options& options) {
    switch (line.comparison) {
        case CommandLine::Comparison::Json:
            return compareJsonFiles(line.expected, line.actual);
        case CommandLine::Comparison::Xml:
            return compareXmlFiles(line.expected, line.actual, options.xml);
        case CommandLine::Comparison::Text:
            break;
    }
    return compareTextFiles(line.expected, line.actual, options.strictLineEndings);
}

}  // namespace

int compareFiles(const CommandLine& commandLine) {
    Options options;
    for (const QString& option : commandLine.comparisonOptions) {
        const QString problem = readOption(option, commandLine.comparison, &options);
        if (!problem.isEmpty())
            return failWith(problem);
    }
    const FileComparison comparison = compare(commandLine, options);
    if (!comparison.error.isEmpty())
        return failWith(comparison.error);
    for (const QString& file : comparison.invalidFiles)
        tell(file);
    QByteArray text = escapedForTerminal(comparison.detail).toLocal8Bit();
    if (!text.endsWith('\n'))
        text += '\n';
    if (!writeBytes(stdout, text))
        return failWith(QStringLiteral("standard output can't be written"));
    return comparison.equal ? ExitSuccess : ExitFailure;
}

}  // namespace Tamrix
