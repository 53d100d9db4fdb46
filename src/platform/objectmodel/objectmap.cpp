#include "platform/objectmodel/objectmap.h"

#include <QDateTime>
#include <QFileInfo>
#include <vector>

#include "base/utf8file.h"
#include "platform/objectmodel/inspector.h"

namespace Tamrix {

namespace {

/// How many references one name may have, whatever they refer to: names that double with each
/// reference would grow without end.
constexpr int maximalReferences = 1000;

/// Properties whose values are texts, and never the name of another object.
constexpr const char* textProperties[] = {"text",        "name",    "objectName",
                                          "type",        "title",   "windowTitle",
                                          "placeholder", "toolTip", "occurrence"};

bool isSymbolicName(const QString& text) {
    return text.startsWith(':');
}

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

/// Replaces symbolic names by what they stand for.
class Resolver {
public:
    explicit Resolver(const QMap<QString, ObjectName>& names) : m_names(names) {}

    /// Invalid on failure.
    ObjectName resolve(const QString& name) {
        if (isSymbolicName(name))
            return resolveSymbolic(name, 0);
        QMap<QString, PropertyValue> properties;
        if (!isMultiPropertyName(name.trimmed())) {
            return fail(QStringLiteral("'%1' is neither a symbolic name, such as :Save, nor a real "
                                       "name, such as {type='QPushButton' text='Save'}")
                            .arg(name));
        }
        QString error;
        if (!parseNameByProperties(name, &properties, &error))
            return fail(QStringLiteral("The name %1 is malformed: %2").arg(name, error));
        return resolveProperties(properties, 0);
    }

    QString errorText() const { return m_errorText; }

private:
    ObjectName fail(const QString& text) {
        if (m_errorText.isEmpty())
            m_errorText = text;
        return {};
    }

    ObjectName resolveSymbolic(const QString& name, int depth) {
        const auto entry = m_names.constFind(name);
        if (entry == m_names.cend()) {
            return fail(
                m_path.isEmpty()
                    ? QStringLiteral("The object map has no name '%1'").arg(name)
                    : QStringLiteral("The object map has no name '%1', which '%2' refers to")
                          .arg(name, m_path.last()));
        }
        if (m_path.contains(name)) {
            return fail(QStringLiteral("The symbolic name '%1' refers to itself: %2")
                            .arg(name, (m_path + QStringList(name)).join(QLatin1String(" -> "))));
        }
        if (++m_references > maximalReferences) {
            return fail(QStringLiteral("The symbolic name '%1' has more than %2 references")
                            .arg(m_path.value(0, name), QString::number(maximalReferences)));
        }
        m_path.append(name);
        const ObjectName resolved = resolveProperties(entry->properties(), depth);
        m_path.removeLast();
        return resolved;
    }

    ObjectName resolveProperties(QMap<QString, PropertyValue> properties, int depth) {
        if (depth >= maximalNameDepth)
            return fail(QStringLiteral("Names are nested deeper than %1").arg(maximalNameDepth));
        for (auto it = properties.begin(); it != properties.end(); ++it) {
            const QString text = it->text();
            ObjectName resolved;
            if (it->isRealName() && isMultiPropertyName(text))
                resolved = resolveProperties(ObjectName(text).properties(), depth + 1);
            else if (isReference(it.key(), *it))
                resolved = resolveSymbolic(text, depth + 1);
            else
                continue;
            if (!resolved.isValid())
                return {};
            *it = PropertyValue(resolved.qualifiedName(), PropertyValue::Plain, true);
        }
        return ObjectName(properties);
    }

    static bool isReference(const QString& property, const PropertyValue& value) {
        return isSymbolicName(value.text()) && value.modifiers() == PropertyValue::Plain &&
               !isTextProperty(property);
    }

    const QMap<QString, ObjectName>& m_names;
    /// The symbolic names that are being replaced.
    QStringList m_path;
    int m_references = 0;
    QString m_errorText;
};

/// The entries of a file, with the faults of their lines.
struct ParsedMap {
    struct Fault {
        int line;
        QString text;
    };

    QMap<QString, ObjectName> names;
    QMap<QString, int> lines;
    std::vector<Fault> faults;
};

/// Adds the entry of one line; returns what is wrong with it.
QString addEntry(const QString& line, int lineNumber, ParsedMap* map) {
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

ParsedMap parseMap(const QString& text) {
    ParsedMap map;
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

/// Names that can't be resolved, as faults of their lines.
void findUnresolved(ParsedMap* map) {
    for (auto it = map->lines.cbegin(); it != map->lines.cend(); ++it) {
        Resolver resolver(map->names);
        if (!resolver.resolve(it.key()).isValid())
            map->faults.push_back({it.value(), resolver.errorText()});
    }
}

/// A symbolic name for people: text or name, and type. A name of the map gets a number behind it.
QString newSymbolicName(const ObjectName& name, const QMap<QString, ObjectName>& known) {
    const auto properties = name.properties();
    QString label;
    for (const char* const property : {"text", "name", "objectName", "title"}) {
        if (label.isEmpty())
            label = properties.value(QLatin1String(property)).text();
    }
    const QString type = properties.value(QStringLiteral("type")).text();
    if (!label.isEmpty() && !type.isEmpty())
        label += '_';
    label += type;
    const QString base = ':' + (label.isEmpty() ? QStringLiteral("Object") : label);
    QString symbolic = base;
    for (int number = 2; known.contains(symbolic); ++number)
        symbolic = base + '_' + QString::number(number);
    return symbolic;
}

/// Tells two states of a file apart; empty when there is none.
QString stampOf(const QString& path) {
    const QFileInfo file(path);
    return file.exists() ? QStringLiteral("%1 %2").arg(
                               QString::number(file.lastModified().toMSecsSinceEpoch()),
                               QString::number(file.size()))
                         : QString();
}

}  // namespace

ObjectMap* ObjectMap::self() {
    static ObjectMap s_map;
    return &s_map;
}

Outcome<ObjectName> ObjectMap::resolve(const QString& name) const {
    Resolver resolver(m_names);
    const ObjectName resolved = resolver.resolve(name);
    if (!resolved.isValid())
        return fail(FailureKind::BadArgument, resolver.errorText());
    return resolved;
}

ObjectName ObjectMap::objectName(const QString& name) {
    return Inspector::self()->take(resolve(name));
}

QString ObjectMap::realName(const QString& name) {
    const ObjectName resolved = objectName(name);
    return resolved.isValid() ? resolved.qualifiedName() : QString();
}

QString ObjectMap::realName(SharedPtr<Object> object) {
    return object ? object->realName() : QString();
}

QString ObjectMap::symbolicName(const QString& name, bool createIfMissing) {
    const ObjectName wanted = objectName(name);
    if (!wanted.isValid())
        return {};
    if (isSymbolicName(name))
        return name;
    const QString realName = wanted.qualifiedName();
    for (auto it = m_names.cbegin(); it != m_names.cend(); ++it) {
        if (Resolver(m_names).resolve(it.key()).qualifiedName() == realName)
            return it.key();
    }
    if (!createIfMissing)
        return {};
    const QString symbolic = newSymbolicName(wanted, m_names);
    m_names.insert(symbolic, wanted);
    m_madeNames.append(symbolic);
    return symbolic;
}

QString ObjectMap::symbolicName(SharedPtr<Object> object, bool createIfMissing) {
    return object ? symbolicName(object->realName(), createIfMissing) : QString();
}

Outcome<> ObjectMap::load(const QString& path) {
    clear();
    // In front of the reading: what is written meanwhile counts as a change.
    m_fileStamp = stampOf(path);
    const Outcome<Utf8Text> content = readUtf8File(path);
    if (!content) {
        return fail(FailureKind::Failed, QStringLiteral("The object map '%1' can't be read: %2")
                                             .arg(path, content.error().text));
    }
    ParsedMap map = parseMap(content->text);
    if (content->faultyLine > 0)
        map.faults.push_back({content->faultyLine, QStringLiteral("no UTF-8 text")});
    // References are of use only when every name they may mean was read.
    if (map.faults.empty())
        findUnresolved(&map);
    if (map.faults.empty()) {
        m_names = map.names;
        return {};
    }
    QStringList lines;
    for (const auto& fault : map.faults)
        lines.append(QStringLiteral("%1, line %2: ").arg(path, QString::number(fault.line)) +
                     fault.text);
    return fail(FailureKind::Failed, lines.join('\n'));
}

Outcome<> ObjectMap::loadIfChanged(const QString& path) {
    const QString stamp = stampOf(path);
    if (stamp == m_fileStamp)
        return {};
    // A faulty file is not read once more before it has changed again.
    m_fileStamp = stamp;
    ObjectMap changed;
    if (const Outcome<> loaded = changed.load(path); !loaded)
        return loaded;
    for (const QString& name : qAsConst(m_madeNames)) {
        if (!changed.m_names.contains(name)) {
            changed.m_names.insert(name, m_names.value(name));
            changed.m_madeNames.append(name);
        }
    }
    *this = changed;
    return {};
}

void ObjectMap::clear() {
    *this = ObjectMap();
}

QMap<QString, ObjectName> ObjectMap::parseSerializedMap(const QString& text, QString* error) {
    const ParsedMap map = parseMap(text);
    if (error) {
        QStringList lines;
        for (const auto& fault : map.faults)
            lines.append(QStringLiteral("line %1: ").arg(fault.line) + fault.text);
        *error = lines.join('\n');
    }
    return map.names;
}

QString ObjectMap::escapeForSerialize(const QString& text) {
    QString escaped = text;
    escaped.replace('\\', QLatin1String("\\\\"))
        .replace('\t', QLatin1String("\\t"))
        .replace('\n', QLatin1String("\\n"));
    return escaped;
}

bool isTextProperty(const QString& property) {
    const auto isThis = [&](const char* each) { return property == QLatin1String(each); };
    return std::any_of(std::begin(textProperties), std::end(textProperties), isThis);
}

}  // namespace Tamrix
