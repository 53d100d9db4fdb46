#include "dap/session/language.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>

namespace Tamrix::Dap {

namespace {

struct Language {
    const char* suffix;
    const char* trueWord;
    const char* falseWord;
    /// Sets the switch "%1" of the run to the word "%2".
    const char* setSwitch;
    /// Turns a value into one of the two words; "%1" stands for it. Null where the debugger's text
    /// of a value has to tell.
    const char* truth;
    /// Where a function begins whose body is indented further; its name is the first group. Null
    /// for languages whose bodies are found otherwise.
    const char* function;
};

constexpr const char* featureSuffix = "feature";
/// Of the language whose code is commands.
constexpr const char* commandSuffix = "tcl";
constexpr const char* assignment = "testSettings.%1 = %2";

constexpr Language languages[] = {
    {"js", "true", "false", assignment, "Boolean(%1)",
     "^\\s*(?:export\\s+)?(?:default\\s+)?(?:async\\s+)?function\\s*\\*?\\s*(\\w+)"},
    {"pl", "1", "0", "testSettings->%1(%2)", "(%1) ? 1 : 0", "^\\s*sub\\s+(?:\\w+::)*(\\w+)"},
    {"py", "True", "False", assignment, "bool(%1)", "^\\s*(?:async\\s+)?def\\s+(\\w+)"},
    {"rb", "true", "false", assignment, "!!(%1)", "^\\s*def\\s+(?:self\\.)?(\\w+[?!=]?)"},
    {commandSuffix, "1", "0", "testSettings configure -%1 %2", "expr {bool(%1)}",
     "^\\s*proc\\s+(?:::)?(\\S+)"},
};
constexpr Language otherLanguage = {"", "true", "false", assignment, nullptr, nullptr};

/// Where the scripts of a feature file are, relative to its folder.
constexpr const char* stepFolders[] = {".", "steps", "../shared/steps"};

bool isFeature(const QString& file) {
    return QFileInfo(file).suffix() == QLatin1String(featureSuffix);
}

/// Null when the suffix is none of a known language.
const Language* languageOfScript(const QString& file) {
    const QString suffix = QFileInfo(file).suffix();
    for (const Language& language : languages) {
        if (suffix == QLatin1String(language.suffix))
            return &language;
    }
    return nullptr;
}

/// The language of the code that can be evaluated where the script stands in this file: at a step
/// that of the scripts which run it.
const Language& languageOf(const QString& file) {
    if (const Language* const language = languageOfScript(file))
        return *language;
    if (isFeature(file)) {
        for (const char* const folder : stepFolders) {
            const QDir directory(
                QDir::cleanPath(QFileInfo(file).dir().filePath(QLatin1String(folder))));
            for (const QString& name : directory.entryList(QDir::Files, QDir::Name)) {
                if (const Language* const language = languageOfScript(name))
                    return *language;
            }
        }
    }
    return otherLanguage;
}

/// The texts of values that do not hold in the languages of scripts.
bool isFalseText(const QString& text) {
    static const QStringList s_texts = {"",     "false", "False", "0",         "0.0",
                                        "null", "None",  "nil",   "undefined", "''",
                                        "\"\"", "()",    "[]",    "{}",        "NaN"};
    return s_texts.contains(text);
}

/// Sources are read up to this size.
constexpr qint64 longestSource = 4 * 1024 * 1024;

/// `$name`, or a command in brackets, as the value of a word.
QString wordOf(const QString& expression) {
    return expression.startsWith('[') ? expression : '$' + expression;
}

int indentOf(const QString& line) {
    int indent = 0;
    while (indent < line.size() && line[indent].isSpace())
        ++indent;
    return indent;
}

}  // namespace

QString switchCode(const QString& file, const char* setting, bool on) {
    const Language& language = languageOf(file);
    return QString::fromLatin1(language.setSwitch)
        .arg(QLatin1String(setting), QLatin1String(on ? language.trueWord : language.falseWord));
}

Outcome<bool> conditionHolds(Debuggee& debuggee, const QString& file, const QString& condition) {
    const Language& language = languageOf(file);
    const QString code =
        language.truth ? QString::fromLatin1(language.truth).arg(condition) : condition;
    const Outcome<QString> text = debuggee.evaluate(code);
    if (!text)
        return fail(text.error());
    if (language.truth && *text != QLatin1String(language.trueWord) &&
        *text != QLatin1String(language.falseWord))
        return fail(FailureKind::BadArgument, *text);
    return !isFalseText(*text);
}

QString memberExpression(const QString& file, const QString& value, const QString& name) {
    if (languageOf(file).suffix == commandSuffix) {
        static const QRegularExpression key(QStringLiteral("^\\[(\\w+)\\]$"));
        bool isNumber = false;
        name.toInt(&isNumber);
        if (isNumber)
            return QStringLiteral("[lindex %1 %2]").arg(wordOf(value), name);
        const QRegularExpressionMatch match = key.match(name);
        return match.hasMatch()
                   ? QStringLiteral("[dict get %1 %2]").arg(wordOf(value), match.captured(1))
                   : QString();
    }
    static const QRegularExpression identifier(QStringLiteral("^[^\\W\\d]\\w*$"),
                                               QRegularExpression::UseUnicodePropertiesOption);
    // An index, or the key of an entry as it stands in code.
    static const QRegularExpression index(QStringLiteral("^(?:-?\\d+|'.*'|\".*\")$"));
    if (name.startsWith('[') && name.endsWith(']'))
        return value + name;
    if (index.match(name).hasMatch())
        return QStringLiteral("%1[%2]").arg(value, name);
    if (identifier.match(name).hasMatch())
        return QStringLiteral("%1.%2").arg(value, name);
    return {};
}

QString assignmentCode(const QString& file, const QString& expression, const QString& value) {
    if (languageOf(file).suffix != commandSuffix)
        return QStringLiteral("%1 = %2").arg(expression, value);
    return expression.startsWith('[') ? QString()
                                      : QStringLiteral("set %1 %2").arg(expression, value);
}

bool membersHaveExpressions(const QString& type) {
    // Elements without an order are counted in listings only, entries of a Map are got by a call.
    static const QStringList s_types = {"set", "frozenset", "Map", "Set"};
    return !s_types.contains(type);
}

QString functionAt(const ScriptPlace& place) {
    const QString fileName = QFileInfo(place.file).fileName();
    const Language& language = languageOf(place.file);
    QFile file(place.file);
    const bool isStep = isFeature(place.file);
    if ((!language.function && !isStep) || file.size() > longestSource ||
        !file.open(QIODevice::ReadOnly))
        return fileName;
    const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
    if (place.line < 1 || place.line > lines.size())
        return fileName;
    if (isStep)
        return lines[place.line - 1].trimmed();
    // Outwards: each line above that is indented less than those below it is around them.
    const QRegularExpression function(QString::fromLatin1(language.function));
    int indent = indentOf(lines[place.line - 1]);
    for (int index = place.line - 2; index >= 0 && indent > 0; --index) {
        const QString& line = lines[index];
        if (indentOf(line) == line.size() || indentOf(line) >= indent)
            continue;
        indent = indentOf(line);
        const QRegularExpressionMatch match = function.match(line);
        if (match.hasMatch())
            return match.captured(1);
    }
    return fileName;
}

}  // namespace Tamrix::Dap
