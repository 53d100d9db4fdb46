#include "interpreter/names/genericscriptedobjectmap.h"

#include <QFileInfo>
#include <QHash>
#include <QPair>
#include <QRegularExpression>
#include <QSet>
#include <algorithm>
#include <cstdio>
#include <limits>
#include <utility>

#include "base/utf8file.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/librarynames.h"
#include "interpreter/names/objectmaptool.h"
#include "platform/objectmodel/nameresolver.h"

namespace Tamrix {

namespace {

/// The files whose time stamps say whether the names may have changed.
const QStringList scriptPatterns = {QStringLiteral("*.js"), QStringLiteral("*.pl"),
                                    QStringLiteral("*.pm"), QStringLiteral("*.py"),
                                    QStringLiteral("*.rb"), QStringLiteral("*.tcl")};

/// The error that a script has raised, with its place.
QString scriptErrorText(const Interpreter& interpreter, const QString& path) {
    const QString file = interpreter.errorFile(path);
    return interpreter.errorLine() > 0
               ? QStringLiteral("%1, line %2: %3")
                     .arg(file, QString::number(interpreter.errorLine()),
                          interpreter.errorMessage())
               : QStringLiteral("%1: %2").arg(file, interpreter.errorMessage());
}

/// Whether it needs no look at the whole name to know that a property may be called so.
bool isPlainProperty(const QString& name) {
    const auto isPlain = [](QChar character) {
        return character.unicode() < 128 && (character.isLetterOrNumber() || character == '_');
    };
    return !name.isEmpty() && name != QLatin1String("occurrence") &&
           std::all_of(name.begin(), name.end(), isPlain);
}

/// Makes names of the maps of a script.
class NameMaker {
public:
    /// Invalid for an empty map. Fails with what is wrong with it. Throws NestingError.
    Outcome<ObjectName> nameOf(const SharedPtr<ScriptArgument>& value) {
        QMap<QString, PropertyValue> properties;
        bool isPlain = true;
        for (const auto& [property, part] : value->toMap()) {
            isPlain = isPlain && isPlainProperty(property);
            if (!part->isMap()) {
                if (!part->isString() && !part->isNumber() && !part->isBool())
                    return fail(FailureKind::BadArgument, kindFault(property, *part));
            } else if (const QString nested = part->toRealName(); !m_good.contains(nested)) {
                // The same names are nested in many.
                const Outcome<ObjectName> name = nameOf(part);
                if (!name)
                    return fail(name.error());
                if (!name->isValid()) {
                    return fail(FailureKind::BadArgument,
                                QStringLiteral("the property '%1' is empty").arg(property));
                }
                m_good.insert(nested);
            }
            properties.insert(property, part->toPropertyValue());
        }
        return isPlain ? ObjectName(properties) : checked(ObjectName(properties));
    }

private:
    static QString kindFault(const QString& property, const ScriptArgument& value) {
        return QStringLiteral("the property '%1' is neither a text, a number nor a name but a %2")
            .arg(property, value.typeName());
    }

    /// The marker of a pattern in a property's name becomes what it stands for.
    static Outcome<ObjectName> checked(const ObjectName& written) {
        QMap<QString, PropertyValue> properties;
        QString fault;
        if (parseNameByProperties(written.qualifiedName(), &properties, &fault))
            fault = nameFault(ObjectName(properties));
        if (!fault.isEmpty())
            return fail(FailureKind::BadArgument, fault);
        return ObjectName(properties);
    }

    /// Real names of maps that are names.
    QSet<QString> m_good;
};

/// Puts the keys of names in the place of those names in others.
class Simplifier {
public:
    explicit Simplifier(const QMap<QString, QString>& realNames) {
        // Of several keys with one name the first counts.
        for (auto it = realNames.cbegin(); it != realNames.cend(); ++it) {
            if (!m_keys.contains(it.value()))
                m_keys.insert(it.value(), it.key());
        }
    }

    /// A text that is no real name stays.
    QString simplified(const QString& realName) const {
        QMap<QString, PropertyValue> properties;
        if (!isMultiPropertyName(realName) || !parseNameByProperties(realName, &properties))
            return realName;
        for (auto it = properties.begin(); it != properties.end(); ++it) {
            if (!it->isRealName() || isTextProperty(it.key()))
                continue;
            const QString key = m_keys.value(it->text());
            *it = key.isEmpty() ? PropertyValue(simplified(it->text()), PropertyValue::Plain, true)
                                : PropertyValue(key, PropertyValue::Plain, false);
        }
        return ObjectName(properties).qualifiedName();
    }

private:
    QHash<QString, QString> m_keys;
};

/// Whether the key stands for this name.
bool hasMeaning(const QMap<QString, ObjectName>& names, const QString& key,
                const Outcome<ObjectName>& wanted) {
    const Outcome<ObjectName> meant = resolveName(names, key);
    return meant && wanted && meant->qualifiedName() == wanted->qualifiedName();
}

bool hasWord(const QString& text, const QString& word) {
    const QRegularExpression found(QStringLiteral("\\b%1\\b").arg(word));
    return found.match(text).hasMatch();
}

}  // namespace

GenericScriptedObjectMap::GenericScriptedObjectMap(const QString& path, const QString& suffix,
                                                   ScriptNotation notation)
    : ScriptedObjectMap(path, suffix), m_notation(std::move(notation)) {
    if (m_notation.qualifier.isEmpty())
        m_notation.qualifier = pointQualifier();
}

// Keys

QString GenericScriptedObjectMap::pointQualifier() const {
    return QFileInfo(path()).completeBaseName() + QLatin1Char('.');
}

QString GenericScriptedObjectMap::scriptedNameKey(const ScriptedSymbolicName& name) const {
    const QString text = name.text();
    if (text.startsWith(':'))
        return text;
    for (const QString& qualifier : {m_notation.qualifier, pointQualifier()}) {
        if (text.startsWith(qualifier))
            return keyOfVariable(text.mid(qualifier.size()));
    }
    return {};
}

QString GenericScriptedObjectMap::toSymbolicName(const QString& key) const {
    return m_notation.qualifier + variableOfKey(key);
}

QString GenericScriptedObjectMap::keyOf(const QString& name) const {
    return scriptedNameKey(ScriptedSymbolicName(name));
}

// The cache

Outcome<> GenericScriptedObjectMap::fetchRealNameMapping() {
    const Outcome<QMap<QString, ObjectName>> names =
        runObjectMapTool(path(), QByteArray(), toolTimeout);
    setEntries(names ? *names : QMap<QString, ObjectName>());
    m_cachedMapping.clear();
    if (!names)
        return fail(names.error());
    return {};
}

Outcome<> GenericScriptedObjectMap::update() {
    QDateTime modified = lastScriptModification(scriptPatterns);
    if (!modified.isValid())
        modified = QFileInfo(path()).lastModified();
    if (!QFileInfo::exists(path())) {
        setEntries({});
        m_cachedMapping.clear();
        m_cacheTime = QDateTime();
        m_cacheError = QStringLiteral("There is no file '%1'").arg(path());
        m_isErrorTold = false;
    } else if (modified != m_cacheTime) {
        const Outcome<> fetched = fetchRealNameMapping();
        m_cacheError = fetched ? QString() : fetched.error().text;
        m_cacheTime = modified;
        m_isErrorTold = false;
    }
    if (m_cacheError.isEmpty())
        return {};
    return fail(FailureKind::Failed, m_cacheError);
}

Outcome<QMap<QString, QString>> GenericScriptedObjectMap::getRealNameMapping() {
    if (const Outcome<> updated = update(); !updated)
        return fail(updated.error());
    // Look-ups do without the texts.
    if (m_cachedMapping.isEmpty()) {
        for (auto it = entries().cbegin(); it != entries().cend(); ++it)
            m_cachedMapping.insert(m_cachedMapping.cend(), it.key(), it->qualifiedName());
    }
    return m_cachedMapping;
}

QMap<QString, QString> GenericScriptedObjectMap::getRealNameMappingIgnoreError() {
    const Outcome<QMap<QString, QString>> mapping = getRealNameMapping();
    if (mapping)
        return *mapping;
    std::fprintf(stderr, "Unable to get real name mapping from scripted object map: '%s'\n",
                 qUtf8Printable(mapping.error().text));
    return {};
}

Outcome<> GenericScriptedObjectMap::load(const QString& path) {
    ObjectMap::clear();
    setPath(path);
    m_cacheTime = QDateTime();
    return update();
}

Outcome<> GenericScriptedObjectMap::loadIfChanged(const QString& /*path*/) {
    Outcome<> updated = update();
    if (!updated && std::exchange(m_isErrorTold, true))
        return {};
    return updated;
}

// Questions

QString GenericScriptedObjectMap::toLegacyRepresentation(QString* error) {
    const Outcome<QMap<QString, QString>> mapping = getRealNameMapping();
    if (mapping)
        return serialized(*mapping);
    *error = mapping.error().text;
    return {};
}

QString GenericScriptedObjectMap::getRealName(const ScriptedSymbolicName& name) {
    return getRealNameMappingIgnoreError().value(scriptedNameKey(name));
}

QString GenericScriptedObjectMap::getNestedScriptedRealName(const ScriptedSymbolicName& name) {
    const ObjectName realName(getRealName(name));
    return realName.isValid() ? createScriptedRealName(realName, false, true) : QString();
}

QString GenericScriptedObjectMap::semiQualifiedSymbolicName(const ScriptedSymbolicName& name) {
    return toSymbolicName(scriptedNameKey(name));
}

QString GenericScriptedObjectMap::existingSymbolicName(const ObjectName& name) {
    return symbolicName(name.qualifiedName());
}

QStringList GenericScriptedObjectMap::existingSymbolicNames() {
    return getRealNameMappingIgnoreError().keys();
}

bool GenericScriptedObjectMap::variableNameExists(const ScriptedSymbolicName& name) {
    return getRealNameMappingIgnoreError().contains(scriptedNameKey(name));
}

// In the process of the tool

bool GenericScriptedObjectMap::runScript(const QString& text) {
    Interpreter* const interpreter = Interpreter::self();
    return interpreter->checkSyntax(text, path()) && interpreter->evaluate(text, path());
}

Outcome<QMap<QString, ObjectName>> GenericScriptedObjectMap::getObjectMapping(const QString& text) {
    // 1. The script runs.
    if (!runScript(text))
        return fail(FailureKind::Failed, scriptErrorText(*Interpreter::self(), path()));
    // 2. Its maps are names, but for those that it says are its own.
    QMap<QString, ObjectName> names;
    QMap<QString, QString> faults;
    NameMaker maker;
    for (const auto& [variable, value] : scriptVariables()) {
        if (!value || !value->isMap() || variable.startsWith('_'))
            continue;
        try {
            const Outcome<ObjectName> name = maker.nameOf(value);
            if (!name)
                faults.insert(variable, name.error().text);
            else if (name->isValid())
                names.insert(keyOfVariable(variable), *name);
        } catch (const NestingError& error) {
            faults.insert(variable, QString::fromUtf8(error.what()));
        }
    }
    if (faults.isEmpty())
        return names;
    // 3. What is wrong with them, by line.
    const QMap<QString, int> lines = definitionLines(notation(), text);
    QMap<QPair<int, QString>, QString> faultsByLine;
    for (auto it = faults.cbegin(); it != faults.cend(); ++it) {
        const int line = lines.value(it.key(), std::numeric_limits<int>::max());
        const QString place =
            lines.contains(it.key()) ? QStringLiteral(", line %1").arg(line) : QString();
        faultsByLine.insert(
            {line, it.key()},
            QStringLiteral("%1%2: the variable '%3' is no name of an object (one that is not "
                           "meant to be starts with '_'): %4")
                .arg(path(), place, it.key(), it.value()));
    }
    return fail(FailureKind::BadArgument, QStringList(faultsByLine.values()).join('\n'));
}

Outcome<QMap<QString, QString>> GenericScriptedObjectMap::toRealNameMapping(const QString& text) {
    const Outcome<QMap<QString, ObjectName>> names = getObjectMapping(text);
    if (!names)
        return fail(names.error());
    QMap<QString, QString> realNames;
    for (auto it = names->cbegin(); it != names->cend(); ++it)
        realNames.insert(realNames.cend(), it.key(), it->qualifiedName());
    return realNames;
}

QMap<QString, QString> GenericScriptedObjectMap::toRealNameMapping(
    const ScriptArgument::Map& values) {
    QMap<QString, QString> realNames;
    for (const auto& [key, value] : values)
        realNames.insert(key, value->toRealName());
    return realNames;
}

QMap<QString, QString> GenericScriptedObjectMap::toSimplifiedRealNameMapping(
    const QMap<QString, QString>& realNames) {
    const Simplifier simplifier(realNames);
    QMap<QString, QString> simplified;
    for (auto it = realNames.cbegin(); it != realNames.cend(); ++it)
        simplified.insert(simplified.cend(), it.key(), simplifier.simplified(it.value()));
    return simplified;
}

// New entries

QString GenericScriptedObjectMap::newKey(const ObjectName& name) {
    const Outcome<Utf8Text> script = readUtf8File(path());
    const QString text = script ? script->text : QString();
    // Whatever the script or the library means by a word, they go on to mean it.
    const QStringList taken = libraryNames();
    return keyOfVariable(newVariable(notation(), name, [&](const QString& variable) {
        return !entries().contains(keyOfVariable(variable)) && !taken.contains(variable) &&
               !hasWord(text, variable);
    }));
}

Outcome<QByteArray> GenericScriptedObjectMap::contentWith(const QByteArray& content,
                                                          const QString& key,
                                                          const ObjectName& name) {
    const QString entry = writtenEntry(notation(), key, name);
    QByteArray changed = withWrittenEntry(notation(), content, entry);
    // The script goes on to mean what it did, and has the entry: it may end in whatever way.
    const Outcome<QMap<QString, ObjectName>> names = runObjectMapTool(path(), changed, toolTimeout);
    QString fault;
    if (!names)
        fault = names.error().text;
    else if (!hasMeaning(*names, key, resolve(name.qualifiedName())))
        fault = QStringLiteral("it has no effect behind the end of the script");
    if (!fault.isEmpty()) {
        return fail(
            FailureKind::Refused,
            QStringLiteral("The entry %1 can't be added to '%2': %3").arg(entry, path(), fault));
    }
    return changed;
}

}  // namespace Tamrix
