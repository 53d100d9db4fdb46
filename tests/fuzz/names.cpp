// Names of objects: one real name, or, when the first byte is "#", a map of names, and when it is
// "!", a script that makes names.

#include <QString>

#include "base/wholetext.h"
#include "fuzz/fuzztarget.h"
#include "fuzz/quietqt.h"
#include "platform/objectmodel/mapfile.h"
#include "platform/objectmodel/objectmap.h"
#include "platform/objectmodel/objectname.h"
#include "platform/objectmodel/scriptnotation.h"

using namespace Tamrix;

namespace {

void checkName(const QString& text) {
    QMap<QString, PropertyValue> properties;
    QString error;
    if (!parseNameByProperties(text, &properties, &error)) {
        fuzzRequire(!error.isEmpty() && properties.isEmpty(), "a malformed name has a reason");
        return;
    }
    const QString written = ObjectName(properties).qualifiedName();
    fuzzRequire(isMultiPropertyName(written), "a real name looks like one");
    fuzzRequire(ObjectName(written).qualifiedName() == written, "a name is read as it is written");
}

void checkMap(const QString& text) {
    QString error;
    const QMap<QString, ObjectName> names = ObjectMap::parseSerializedMap(text, &error);
    for (auto entry = names.begin(); entry != names.end(); ++entry) {
        const QString line = ObjectMap::escapeForSerialize(entry.key()) + '\t' +
                             ObjectMap::escapeForSerialize(entry->qualifiedName()) + '\n';
        const QMap<QString, ObjectName> again = ObjectMap::parseSerializedMap(line, &error);
        fuzzRequire(again.size() == 1 && again.firstKey() == entry.key() &&
                        again.first().qualifiedName() == entry->qualifiedName(),
                    "an entry is read as it is written");
    }
}

/// A new line is an entry, whatever stands in front of it, which stays what it was.
void checkNewEntry(const QByteArray& content) {
    const QString line = QStringLiteral(":fresh entry\t{a='1'}");
    const auto before = ObjectMap::parseSerializedMap(wholeUtf8(content));
    const auto after = ObjectMap::parseSerializedMap(wholeUtf8(withEntry(content, line)));
    fuzzRequire(after.contains(":fresh entry"), "an entry behind others is read");
    for (auto entry = before.begin(); entry != before.end(); ++entry) {
        fuzzRequire(after.value(entry.key()).qualifiedName() == entry->qualifiedName(),
                    "a new entry changes no other one");
    }
}

/// Like Python's.
ScriptNotation notation() {
    ScriptNotation notation;
    notation.literal = [](const QString& text) { return QString(text).replace('\n', ' '); };
    notation.reserved = "if else";
    return notation;
}

void checkScript(const QString& text) {
    const ScriptNotation ours = notation();
    const int count = text.count('\n') + 1;
    const auto lines = definitionLines(ours, text);
    for (const int line : lines)
        fuzzRequire(line > 0 && line <= count, "a name is made in a line of the script");
    const QString variable = variableOfText(ours, text);
    fuzzRequire(isVariable(ours, variable), "any text has a variable");
    ObjectName name;
    name.setProperty("text", text);
    fuzzRequire(isVariable(ours, newVariable(ours, name, [](const QString&) { return true; })),
                "any object has a variable");
    const QString entry = writtenEntry(ours, keyOfVariable("fresh"), name);
    fuzzRequire(definitionLines(ours, entry).value("fresh") == 1, "an entry is found again");
}

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    Fuzz::silenceQt();
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const QString text = wholeUtf8(bytes);
    if (bytes.startsWith('#')) {
        checkMap(text);
        checkNewEntry(bytes);
    } else if (bytes.startsWith('!')) {
        checkScript(text);
    } else {
        checkName(text);
    }
    return 0;
}
