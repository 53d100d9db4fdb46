#include "platform/objectmodel/serializedmap.h"

#include <QStringList>

#include "base/utf8file.h"
#include "platform/objectmodel/nameresolver.h"

namespace Tamrix {

namespace {

QString unescape(const QString& text) {
    QString result;
    for (int index = 0; index < text.size(); ++index) {
        const QChar next = index + 1 < text.size() ? text[index + 1] : QChar();
        if (text[index] != '\\' || (next != '\\' && next != 't' && next != 'n')) {
            result += text[index];
            continue;
        }
        result += next == 't' ? QLatin1Char('\t') : next == 'n' ? QLatin1Char('\n') : next;
        ++index;
    }
    return result;
}

/// Adds the entry of one line; returns what is wrong with it.
QString addEntry(const QString& line, int lineNumber, SerializedMap* map) {
    const int tab = line.indexOf('\t');
    if (tab < 0)
        return QStringLiteral("there is no tab between symbolic and real name");
    const QString name = unescape(line.left(tab));
    if (!isSymbolicName(name) || name.size() == 1)
        return QStringLiteral("the symbolic name '%1' does not start with ':'").arg(name);
    if (map->names.contains(name)) {
        return QStringLiteral("the symbolic name '%1' stands in line %2 already")
            .arg(name, QString::number(map->lines.value(name)));
    }
    QMap<QString, PropertyValue> properties;
    QString error;
    if (!parseNameByProperties(unescape(line.mid(tab + 1)), &properties, &error))
        return QStringLiteral("the real name of '%1' is malformed: %2").arg(name, error);
    map->names.insert(name, ObjectName(properties));
    map->lines.insert(name, lineNumber);
    return {};
}

/// Names that can't be resolved, as faults of their lines.
void findUnresolved(SerializedMap* map) {
    for (auto it = map->lines.cbegin(); it != map->lines.cend(); ++it) {
        if (const Outcome<ObjectName> resolved = resolveName(map->names, it.key()); !resolved)
            map->faults.push_back({it.value(), resolved.error().text});
    }
}

}  // namespace

SerializedMap parseMap(const QString& text) {
    SerializedMap map;
    int lineNumber = 0;
    for (QString line : text.split('\n')) {
        ++lineNumber;
        if (line.endsWith('\r'))
            line.chop(1);
        if (line.trimmed().isEmpty() || line.startsWith('#'))
            continue;
        const QString fault = addEntry(line, lineNumber, &map);
        if (!fault.isEmpty())
            map.faults.push_back({lineNumber, fault});
    }
    return map;
}

Outcome<QMap<QString, ObjectName>> readMapFile(const QString& path) {
    const Outcome<Utf8Text> content = readUtf8File(path);
    if (!content) {
        return fail(FailureKind::Failed, QStringLiteral("The object map '%1' can't be read: %2")
                                             .arg(path, content.error().text));
    }
    SerializedMap map = parseMap(content->text);
    if (content->faultyLine > 0)
        map.faults.push_back({content->faultyLine, QStringLiteral("no UTF-8 text")});
    // References are of use only when every name they may mean was read.
    if (map.faults.empty())
        findUnresolved(&map);
    if (map.faults.empty())
        return map.names;
    QStringList lines;
    for (const auto& fault : map.faults)
        lines.append(QStringLiteral("%1, line %2: ").arg(path, QString::number(fault.line)) +
                     fault.text);
    return fail(FailureKind::Failed, lines.join('\n'));
}

}  // namespace Tamrix
