// "tamrixrunner compare": two files, as a script compares them.

#include <QMap>
#include <algorithm>

#include "base/textescape.h"
#include "comparison/filecomparison.h"
#include "runner/commands/command.h"
#include "runner/processes/terminal.h"

namespace Tamrix {

namespace {

enum class Comparison { Text, Json, Xml };

struct CompareSettings {
    Comparison comparison = Comparison::Text;
    QString expected;
    QString actual;
    /// NAME=VALUE each, as given.
    QStringList options;
};

Outcome<> readArguments(const CommandArguments& arguments, CompareSettings& settings) {
    static const QMap<QString, Comparison> kinds = {
        {"text", Comparison::Text}, {"json", Comparison::Json}, {"xml", Comparison::Xml}};
    const QString& name = arguments.own.at(0);
    const auto kind = kinds.constFind(name);
    if (kind == kinds.constEnd())
        return wrongUsage(QStringLiteral("compare takes text, json or xml, not '%1'").arg(name));
    settings.comparison = *kind;
    settings.expected = arguments.own.at(1);
    settings.actual = arguments.own.at(2);
    return {};
}

Outcome<> readFlag(const QString& name, const QString& value, bool* out) {
    if (value != QLatin1String("true") && value != QLatin1String("false"))
        return wrongUsage(
            QStringLiteral("option %1 takes true or false, not '%2'").arg(name, value));
    *out = value == QLatin1String("true");
    return {};
}

Outcome<> readXmlOption(const QString& name, const QString& value, XmlCompareOptions* options) {
    const std::vector<XmlOptionDescription>& table = xmlCompareOptionDescriptions();
    const auto found = std::find_if(
        table.begin(), table.end(),
        [&name](const XmlOptionDescription& description) { return description.name == name; });
    if (found == table.end()) {
        QStringList names;
        for (const XmlOptionDescription& description : table)
            names.append(description.name);
        return wrongUsage(QStringLiteral("unknown option '%1'; xml has %2")
                              .arg(name, names.join(QLatin1String(", "))));
    }
    if (found->flag)
        return readFlag(name, value, &(options->*found->flag));
    if (found->whitespace) {
        WhitespaceHandling& handling = options->*found->whitespace;
        if (!readWhitespaceHandling(value, &handling.normalize, &handling.trim)) {
            return wrongUsage(
                QStringLiteral("option %1 takes preserve, normalize or trim, not '%2'")
                    .arg(name, value));
        }
        return {};
    }
    const QStringList words = value.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString& word : words)
        (options->*found->names).insert(word.toStdString());
    return {};
}

/// All options of a comparison at the terminal.
struct ComparisonOptions {
    bool strictLineEndings = false;
    XmlCompareOptions xml;
};

Outcome<> readComparisonOption(const QString& text, Comparison comparison,
                               ComparisonOptions* options) {
    const int equals = text.indexOf(QLatin1Char('='));
    if (equals <= 0)
        return wrongUsage(QStringLiteral("--option takes NAME=VALUE, not '%1'").arg(text));
    const QString name = text.left(equals);
    const QString value = text.mid(equals + 1);
    switch (comparison) {
        case Comparison::Xml:
            return readXmlOption(name, value, &options->xml);
        case Comparison::Text:
            if (name == strictLineEndingsOption)
                return readFlag(name, value, &options->strictLineEndings);
            return wrongUsage(QStringLiteral("unknown option '%1'; text has %2")
                                  .arg(name, strictLineEndingsOption));
        case Comparison::Json:
            break;
    }
    return wrongUsage(QStringLiteral("unknown option '%1'; json has none").arg(name));
}

FileComparison compare(const CompareSettings& settings, const ComparisonOptions& options) {
    switch (settings.comparison) {
        case Comparison::Json:
            return compareJsonFiles(settings.expected, settings.actual);
        case Comparison::Xml:
            return compareXmlFiles(settings.expected, settings.actual, options.xml);
        case Comparison::Text:
            break;
    }
    return compareTextFiles(settings.expected, settings.actual, options.strictLineEndings);
}

int compareFiles(const CompareSettings& settings) {
    ComparisonOptions options;
    for (const QString& option : settings.options) {
        const Outcome<> read = readComparisonOption(option, settings.comparison, &options);
        if (!read)
            return failWith(read.error().text);
    }
    const FileComparison comparison = compare(settings, options);
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

}  // namespace

Command compareCommand() {
    return makeCommand<CompareSettings>(
        {{"compare", "text|json|xml EXPECTED ACTUAL",
          "Compares two files as a script would and prints what differs.", 3, 3},
         {{"option", "NAME=VALUE",
           "An option of the comparison: true or false, a word, or names with commas between; may "
           "be given several times.",
           nullptr, allTo(&CompareSettings::options)}},
         {},
         readArguments,
         compareFiles});
}

}  // namespace Tamrix
