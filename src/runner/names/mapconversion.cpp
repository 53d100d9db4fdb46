#include "runner/names/mapconversion.h"

#include <QFileInfo>
#include <QSet>
#include <QStringList>
#include <algorithm>
#include <memory>
#include <utility>
#include <variant>
#include <vector>

#include "base/overloaded.h"
#include "base/utf8file.h"
#include "interpreter/names/genericscriptedobjectmap.h"
#include "interpreter/names/objectmaps.h"
#include "interpreter/names/objectmaptool.h"
#include "platform/objectmodel/nameresolver.h"
#include "platform/objectmodel/serializedmap.h"

namespace Tamrix {

namespace {

using Names = QMap<QString, ObjectName>;

struct Comment {
    QString text;
};
struct EmptyLine {};
struct Entry {
    QString key;
};
/// A map as people see it.
using Layout = std::vector<std::variant<Comment, EmptyLine, Entry>>;

const ScriptedObjectMap* scriptOf(const ObjectMap& map) {
    return dynamic_cast<const ScriptedObjectMap*>(&map);
}

QString commentMark(const ObjectMap& map) {
    const ScriptedObjectMap* const script = scriptOf(map);
    return script ? script->notation().comment : QStringLiteral("# ");
}

/// Key by line, from 1.
QMap<int, QString> entryLines(const ObjectMap& map, const QString& text) {
    QMap<int, QString> keys;
    const ScriptedObjectMap* const script = scriptOf(map);
    const QMap<QString, int> lines =
        script ? definitionLines(script->notation(), text) : parseMap(text).lines;
    for (auto it = lines.cbegin(); it != lines.cend(); ++it)
        keys.insert(it.value(), script ? keyOfVariable(it.key()) : it.key());
    return keys;
}

Layout layoutOf(const ObjectMap& map, const QString& text, const Names& names) {
    const QMap<int, QString> keys = entryLines(map, text);
    const QString mark = commentMark(map).trimmed();
    Layout layout;
    QSet<QString> seen;
    int number = 0;
    for (const QString& line : text.split('\n')) {
        const QString key = keys.value(++number);
        const QString trimmed = line.trimmed();
        if (names.contains(key)) {
            layout.emplace_back(Entry{key});
            seen.insert(key);
        } else if (trimmed.startsWith(mark)) {
            layout.emplace_back(Comment{trimmed.mid(mark.size()).trimmed()});
        } else if (trimmed.isEmpty() && !layout.empty() &&
                   !std::holds_alternative<EmptyLine>(layout.back())) {
            layout.emplace_back(EmptyLine());
        }
    }
    // What a script has made in another way than by a statement of its own.
    for (const QString& key : names.keys()) {
        if (!seen.contains(key))
            layout.emplace_back(Entry{key});
    }
    while (!layout.empty() && std::holds_alternative<EmptyLine>(layout.back()))
        layout.pop_back();
    return layout;
}

/// The new keys, by the old ones.
QMap<QString, QString> newKeys(const Layout& layout, const ObjectMap& target) {
    QMap<QString, QString> keys;
    QSet<QString> taken;
    const ScriptedObjectMap* const script = scriptOf(target);
    const auto isEntry = [](const auto& item) { return std::holds_alternative<Entry>(item); };
    // Names that can stay come first: no other one gets them.
    for (const bool staying : {true, false}) {
        for (const auto& item : layout) {
            if (!isEntry(item))
                continue;
            const QString key = std::get<Entry>(item).key;
            const QString wanted =
                script ? keyOfVariable(variableOfText(script->notation(), variableOfKey(key)))
                       : key;
            if ((wanted == key) != staying)
                continue;
            QString free = wanted;
            for (int number = 2; taken.contains(free); ++number)
                free = wanted + '_' + QString::number(number);
            taken.insert(free);
            keys.insert(key, free);
        }
    }
    return keys;
}

ObjectName withKeys(const ObjectName& name, const QMap<QString, QString>& keys) {
    QMap<QString, PropertyValue> properties = name.properties();
    for (auto it = properties.begin(); it != properties.end(); ++it) {
        if (isReferenceToName(it.key(), *it)) {
            *it = PropertyValue(keys.value(it->text(), it->text()), PropertyValue::Plain, false);
        } else if (it->isRealName() && isMultiPropertyName(it->text())) {
            *it = PropertyValue(withKeys(ObjectName(it->text()), keys).qualifiedName(),
                                PropertyValue::Plain, true);
        }
    }
    return ObjectName(properties);
}

/// Writes items of a layout in the form of the target.
class Writer {
public:
    Writer(const ObjectMap& target, Names names, QMap<QString, QString> keys)
        : m_script(scriptOf(target)),
          m_mark(commentMark(target)),
          m_names(std::move(names)),
          m_keys(std::move(keys)) {}

    void add(const Entry& entry) {
        if (m_written.contains(entry.key))
            return;
        m_written.insert(entry.key);
        const ObjectName name = m_names.value(entry.key);
        // A variable stands in front of those that use it.
        if (m_script) {
            for (const QString& reference : referencesOf(name)) {
                if (m_names.contains(reference))
                    add(Entry{reference});
            }
        }
        const QString key = m_keys.value(entry.key);
        const ObjectName renamed = withKeys(name, m_keys);
        addLine(m_script ? writtenEntry(m_script->notation(), key, renamed)
                         : ObjectMap::serialized({{key, renamed.qualifiedName()}}));
    }
    void add(const Comment& comment) { addLine((m_mark + comment.text).trimmed()); }
    void add(const EmptyLine&) { addLine(QString()); }

    QByteArray content() const {
        if (!m_script)
            return m_text.toUtf8();
        const ScriptNotation& notation = m_script->notation();
        // A map that was converted before has the heading's comments among its own.
        const QString known = leadingComments(notation.heading);
        const QString text = m_text.startsWith(known) ? m_text.mid(known.size()) : m_text;
        return (notation.heading + indentedLines(notation, text) + notation.ending).toUtf8();
    }

private:
    QString leadingComments(const QString& text) const {
        QString comments;
        for (const QString& line : text.split('\n')) {
            if (!line.startsWith(m_mark))
                break;
            comments += line + QLatin1Char('\n');
        }
        return comments;
    }
    void addLine(const QString& line) { m_text += line + QLatin1Char('\n'); }

    const ScriptedObjectMap* m_script;
    QString m_mark;
    Names m_names;
    QMap<QString, QString> m_keys;
    QSet<QString> m_written;
    QString m_text;
};

/// A name that the map refers to and has not, or the like; empty when all is well.
QString resolvingFault(const Names& names) {
    for (const QString& key : names.keys()) {
        if (const Outcome<ObjectName> resolved = resolveName(names, key); !resolved)
            return resolved.error().text;
    }
    return {};
}

/// What is wrong with a script that was written: it must mean the same.
QString scriptFault(const QString& path, const QByteArray& content, const Names& names,
                    const QMap<QString, QString>& keys) {
    const Outcome<Names> written =
        runObjectMapTool(path, content, GenericScriptedObjectMap::toolTimeout);
    if (!written)
        return written.error().text;
    for (auto it = keys.cbegin(); it != keys.cend(); ++it) {
        const Outcome<ObjectName> before = resolveName(names, it.key());
        const Outcome<ObjectName> after = resolveName(*written, it.value());
        if (!after)
            return after.error().text;
        if (!before || before->qualifiedName() != after->qualifiedName())
            return QStringLiteral("'%1' would stand for %2")
                .arg(it.value(), after->qualifiedName());
    }
    return {};
}

}  // namespace

Outcome<ConvertedMap> convertMap(const QString& from, const QString& to) {
    // 1. What there is.
    if (!QFileInfo::exists(from)) {
        return fail(FailureKind::NotFound, QStringLiteral("There is no object map '%1'").arg(from));
    }
    const Outcome<std::unique_ptr<ObjectMap>> source = openObjectMap(from);
    if (!source)
        return fail(source.error());
    const Outcome<std::unique_ptr<ObjectMap>> target = openObjectMap(to);
    if (!target)
        return fail(target.error());
    const Outcome<Names> names = (*source)->names();
    if (!names)
        return fail(names.error());
    const Outcome<Utf8Text> text = readUtf8File(from);
    if (!text) {
        return fail(
            FailureKind::Failed,
            QStringLiteral("The object map '%1' can't be read: %2").arg(from, text.error().text));
    }
    const Layout layout = layoutOf(**source, text->text, *names);
    // 2. The names that it gets.
    const QMap<QString, QString> keys = newKeys(layout, **target);
    ConvertedMap converted;
    for (auto it = keys.cbegin(); it != keys.cend(); ++it) {
        if (it.key() != it.value())
            converted.renamed.append({it.key(), it.value()});
    }
    // 3. Its text.
    Writer writer(**target, *names, keys);
    for (const auto& item : layout)
        std::visit([&writer](const auto& each) { writer.add(each); }, item);
    converted.content = writer.content();
    // 4. It means what it did.
    QString fault = resolvingFault(*names);
    if (fault.isEmpty() && scriptOf(**target))
        fault = scriptFault(to, converted.content, *names, keys);
    if (!fault.isEmpty()) {
        return fail(FailureKind::Refused,
                    QStringLiteral("'%1' can't be written as '%2': %3").arg(from, to, fault));
    }
    return converted;
}

}  // namespace Tamrix
