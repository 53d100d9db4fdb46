#include "platform/objectmodel/scriptnotation.h"

#include <QRegularExpression>
#include <algorithm>
#include <string>

#include "platform/objectmodel/mapfile.h"
#include "platform/objectmodel/nameresolver.h"

namespace Tamrix {

namespace {

/// A statement that is longer stands on several lines.
constexpr int longestLine = 100;
/// What lines of a name on several lines are set in by.
const QString indentStep = QStringLiteral("    ");

/// How many words of what an object shows go into its variable.
constexpr int mostWords = 4;
constexpr int longestWord = 20;

/// What an object shows, the first that it has: properties of its name.
constexpr const char* shownProperties[] = {"text", "title",      "windowTitle", "placeholder",
                                           "name", "objectName", "toolTip"};

/// Letters without their accents, digits; everything else separates words.
QStringList asciiWords(const QString& text) {
    static const QRegularExpression s_mark(QStringLiteral("[\\p{Mn}&']"));
    static const QRegularExpression s_other(QStringLiteral("[^A-Za-z0-9]+"));
    QString plain = text.normalized(QString::NormalizationForm_KD).remove(s_mark);
    return plain.replace(s_other, QStringLiteral(" ")).split(' ', Qt::SkipEmptyParts);
}

/// What kind of thing the object is for a person: "button" for QPushButton.
QString kindWord(const QString& type) {
    static const QRegularExpression s_lastWord(QStringLiteral("[A-Z]?[a-z0-9]+$"));
    return s_lastWord.match(type).captured().toLower();
}

QString markedProperty(const QString& property, int modifiers) {
    switch (modifiers) {
        case PropertyValue::Wildcard:
            return property + QLatin1Char('*');
        case PropertyValue::Pattern:
            return property + QLatin1Char('~');
        default:
            return property;
    }
}

QString writtenValue(const ScriptNotation& notation, const QString& property,
                     const PropertyValue& value) {
    if (value.isRealName() && isMultiPropertyName(value.text()))
        return writtenName(notation, ObjectName(value.text()));
    if (isReferenceToName(property, value))
        return notation.reference.arg(variableOfKey(value.text()));
    return notation.literal(value.text());
}

/// The properties in the order in which people read them: what it is, what it shows, where it is.
QStringList orderedProperties(const ObjectName& name) {
    QStringList first;
    QStringList last;
    const auto properties = name.properties();
    for (auto it = properties.cbegin(); it != properties.cend(); ++it) {
        const bool isPlace = it->isRealName() || isReferenceToName(it.key(), *it);
        if (it.key() == QLatin1String("type"))
            first.prepend(it.key());
        else
            (isPlace ? last : first).append(it.key());
    }
    return first + last;
}

/// The line that begins the module of a map's variables, as far as it may not be written otherwise:
/// "module Names", "package names". Empty in languages where the file is the module.
QString moduleLine(const ScriptNotation& notation) {
    for (const QString& line : notation.heading.split('\n')) {
        static const QRegularExpression s_end(QStringLiteral("[;{].*"));
        if (!line.startsWith(notation.comment.trimmed()))
            return QString(line).remove(s_end).simplified();
    }
    return {};
}

bool isSetIn(const QString& line) {
    return !line.isEmpty() && line.at(0).isSpace();
}

/// Whether the last block that a script ends is the module.
bool isModuleLast(const ScriptNotation& notation, const QString& script) {
    const QString begin = moduleLine(notation);
    if (begin.isEmpty() || notation.indent.isEmpty())
        return true;
    QString last;
    for (const QString& line : script.split('\n')) {
        const bool isOther = isSetIn(line) || line.startsWith(notation.comment.trimmed()) ||
                             line.trimmed() == notation.ending.trimmed();
        if (!isOther && !line.isEmpty())
            last = line.simplified();
    }
    return last.startsWith(begin);
}

}  // namespace

QString keyOfVariable(const QString& variable) {
    return QLatin1Char(':') + variable;
}

QString variableOfKey(const QString& key) {
    return key.mid(1);
}

bool isPlainIdentifier(const QString& text) {
    const auto isOfName = [](QChar character) {
        return character.unicode() < 0x80 && (character.isLetterOrNumber() || character == '_');
    };
    return !text.isEmpty() && !text.at(0).isDigit() &&
           std::all_of(text.cbegin(), text.cend(), isOfName);
}

bool isVariable(const ScriptNotation& notation, const QString& name) {
    if (!isPlainIdentifier(name))
        return false;
    const bool isSpelt = notation.words != ScriptNotation::Words::Capitals || name.at(0).isUpper();
    const std::string reserved = ' ' + std::string(notation.reserved) + ' ';
    return isSpelt && reserved.find(' ' + name.toStdString() + ' ') == std::string::npos;
}

QString writtenName(const ScriptNotation& notation, const ObjectName& name, const QString& indent) {
    const auto properties = name.properties();
    QStringList parts;
    for (const QString& property : orderedProperties(name)) {
        const PropertyValue value = properties.value(property);
        const QString written = markedProperty(property, value.modifiers());
        const bool isBare = notation.hasBareProperties && isPlainIdentifier(written);
        parts.append((isBare ? written : notation.literal(written)) + notation.afterPropertyName +
                     writtenValue(notation, property, value));
    }
    if (indent.isNull())
        return notation.open + parts.join(notation.betweenProperties) + notation.close;
    const QString lineEnd = notation.continuation + QLatin1Char('\n');
    const QString separator = notation.betweenProperties.trimmed() + lineEnd + indent;
    return notation.open.trimmed() + lineEnd + indent + parts.join(separator) + lineEnd +
           notation.close.trimmed();
}

QString writtenEntry(const ScriptNotation& notation, const QString& key, const ObjectName& name) {
    const QString line = notation.statement.arg(variableOfKey(key), writtenName(notation, name));
    return line.size() <= longestLine
               ? line
               : notation.statement.arg(
                     variableOfKey(key),
                     writtenName(notation, name,
                                 notation.indent.isEmpty() ? indentStep : notation.indent));
}

QString indentedLines(const ScriptNotation& notation, const QString& lines) {
    QStringList indented;
    for (const QString& line : lines.split('\n'))
        indented.append(line.isEmpty() ? line : notation.indent + line);
    return indented.join('\n');
}

bool hasModule(const ScriptNotation& notation, const QString& script) {
    const QString begin = moduleLine(notation);
    const QStringList lines = script.split('\n');
    return begin.isEmpty() || std::any_of(lines.begin(), lines.end(), [&](const QString& line) {
               return line.simplified().startsWith(begin);
           });
}

bool isInModule(const ScriptNotation& notation, const QString& script, const QString& variable) {
    const int line = definitionLines(notation, script).value(variable);
    // Where the module is a block, what stands in it is set in.
    return notation.indent.isEmpty() || line == 0 || isSetIn(script.split('\n').at(line - 1));
}

QByteArray withWrittenEntry(const ScriptNotation& notation, const QByteArray& content,
                            const QString& entry) {
    const QByteArray ending = notation.ending.trimmed().toUtf8();
    const QByteArray written = content.trimmed();
    const int start = content.lastIndexOf(ending);
    const QString script = QString::fromUtf8(content);
    const bool hasEnding = !ending.isEmpty() && written.endsWith(ending) &&
                           (start == 0 || content.at(start - 1) == '\n') &&
                           isModuleLast(notation, script);
    if (hasEnding)
        return withEntry(content.left(start), indentedLines(notation, entry)) + content.mid(start);
    const bool isBlock = !notation.indent.isEmpty() && !moduleLine(notation).isEmpty();
    if (isBlock && hasModule(notation, script))
        return withEntry(content, moduleLine(notation) + '\n' + indentedLines(notation, entry) +
                                      '\n' + notation.ending.trimmed());
    return withEntry(content, entry);
}

QMap<QString, int> definitionLines(const ScriptNotation& notation, const QString& script) {
    // The statement up to its value, "our $%1 = ", with any blanks between its words.
    const QString start = notation.statement.section(QLatin1String("%2"), 0, 0).simplified();
    QStringList words;
    for (const QString& word : start.split(' '))
        words.append(QRegularExpression::escape(word));
    QString pattern = QStringLiteral("^\\s*") + words.join(QStringLiteral("\\s*"));
    pattern.replace(QRegularExpression::escape(QStringLiteral("%1")),
                    QStringLiteral("([A-Za-z_][A-Za-z0-9_]*)"));
    const QRegularExpression definition(pattern);
    QMap<QString, int> lines;
    int number = 0;
    for (const QString& line : script.split('\n')) {
        ++number;
        const QRegularExpressionMatch match = definition.match(line);
        if (match.hasMatch())
            lines.insert(match.captured(1), number);
    }
    return lines;
}

QString variableOfText(const ScriptNotation& notation, const QString& text) {
    static const QRegularExpression s_other(QStringLiteral("[^A-Za-z0-9_]+"));
    // A text that is one already stays.
    if (isVariable(notation, text) && !text.startsWith('_'))
        return text;
    QString variable = QString(text.normalized(QString::NormalizationForm_KD))
                           .remove(QRegularExpression(QStringLiteral("[\\p{Mn}&']")))
                           .replace(s_other, QStringLiteral("_"));
    while (variable.startsWith('_'))
        variable.remove(0, 1);
    while (variable.endsWith('_'))
        variable.chop(1);
    if (notation.words == ScriptNotation::Words::Capitals)
        variable = variable.toUpper();
    if (isVariable(notation, variable))
        return variable;
    return joinedWords(notation, {QStringLiteral("name")}) +
           (variable.isEmpty() ? QString() : QLatin1Char('_') + variable);
}

QStringList wordsOfObject(const ObjectName& name) {
    const auto properties = name.properties();
    QStringList words;
    for (const char* const property : shownProperties) {
        if (words.isEmpty())
            words = asciiWords(properties.value(QLatin1String(property)).text()).mid(0, mostWords);
    }
    for (QString& word : words)
        word = word.left(longestWord).toLower();
    const QString kind = kindWord(properties.value(QStringLiteral("type")).text());
    // A variable starts with a letter.
    const bool startsWithDigit = !words.isEmpty() && words.first().at(0).isDigit();
    if (startsWithDigit || (words.isEmpty() && kind.isEmpty()))
        words.prepend(kind.isEmpty() ? QStringLiteral("object") : kind);
    else if (!kind.isEmpty() && (words.isEmpty() || words.last() != kind))
        words.append(kind);
    return words;
}

QString joinedWords(const ScriptNotation& notation, const QStringList& words) {
    if (notation.words == ScriptNotation::Words::Underscores)
        return words.join('_');
    if (notation.words == ScriptNotation::Words::Capitals)
        return words.join('_').toUpper();
    QString joined;
    for (const QString& word : words)
        joined += joined.isEmpty() ? word : word.left(1).toUpper() + word.mid(1);
    return joined;
}

}  // namespace Tamrix
