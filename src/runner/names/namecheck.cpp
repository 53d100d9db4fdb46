#include "runner/names/namecheck.h"

#include <QHash>

#include "interpreter/bridge/librarynames.h"
#include "platform/objectmodel/nearmisstext.h"
#include "platform/objectmodel/scriptedobjectmap.h"

namespace Tamrix {

namespace {

/// How many properties a name has, those of names nested in it included.
int propertyCount(const ObjectName& name) {
    int count = 0;
    for (const PropertyValue& value : name.properties()) {
        ++count;
        if (value.isRealName() && isMultiPropertyName(value.text()))
            count += propertyCount(ObjectName(value.text()));
    }
    return count;
}

/// Checks one name after the other.
class NameChecker {
public:
    NameChecker(Access& access, ObjectMap& map)
        : m_access(access), m_script(dynamic_cast<ScriptedObjectMap*>(&map)), m_map(map) {}

    Outcome<> check(const QString& key) {
        ++m_check.names;
        if (m_script && m_libraryNames.contains(variableOfKey(key)))
            find(key, QStringLiteral("hides what '%1' means in scripts that import all names")
                          .arg(variableOfKey(key)));
        // 1. What it stands for.
        const Outcome<ObjectName> name = m_map.resolve(key);
        if (!name) {
            find(key, name.error().text);
            return {};
        }
        // 2. How many objects it finds.
        const Outcome<SharedPtr<Object>> object = m_access.findObject(*name);
        if (!object && object.error().kind == FailureKind::NotFound)
            return findMisses(key, *name);
        if (!object)
            return fail(object.error());
        const Outcome<NameMatches> matches = m_access.matchesOf(*name);
        if (!matches)
            return fail(matches.error());
        const bool saysWhich = name->properties().contains(QStringLiteral("occurrence"));
        if (matches->count > 1 && !saysWhich) {
            find(key, QStringLiteral("finds %1 objects; the first is meant").arg(matches->count));
            return {};
        }
        ++m_check.unique;
        // 3. Whether it could be better.
        noteObject(key, *object);
        return findShorterForm(key, *name, *object);
    }

    NameCheck result() const { return m_check; }

private:
    void find(const QString& key, const QString& text) {
        m_check.findings.append(QStringLiteral("%1  %2").arg(key, text));
    }
    void hint(const QString& key, const QString& text) {
        find(key, text);
        ++m_check.hints;
    }

    Outcome<> findMisses(const QString& key, const ObjectName& name) {
        const Outcome<QList<NearMiss>> misses = m_access.nearMissesOf(name);
        if (!misses)
            return fail(misses.error());
        QString text = QStringLiteral("finds nothing");
        if (!misses->isEmpty())
            text += QStringLiteral(". Nearest: %1: %2")
                        .arg(misses->first().object, differenceText(misses->first()));
        find(key, text);
        return {};
    }

    void noteObject(const QString& key, const SharedPtr<Object>& object) {
        const QString other = m_keys.value(object->handle());
        if (other.isEmpty())
            m_keys.insert(object->handle(), key);
        else
            hint(key, QStringLiteral("finds the same object as %1").arg(other));
    }

    Outcome<> findShorterForm(const QString& key, const ObjectName& name,
                              const SharedPtr<Object>& object) {
        const Outcome<QList<CheckedName>> names = m_access.namesOf(object);
        if (!names)
            return fail(names.error());
        // The best one that says less.
        for (const CheckedName& each : *names) {
            if (each.count == 1 && propertyCount(ObjectName(each.name)) < propertyCount(name)) {
                hint(key, QStringLiteral("has a shorter form: %1").arg(each.name));
                break;
            }
        }
        return {};
    }

    Access& m_access;
    ScriptedObjectMap* m_script;
    ObjectMap& m_map;
    const QStringList m_libraryNames = libraryNames();
    /// By handle of the object that was found.
    QHash<quint64, QString> m_keys;
    NameCheck m_check;
};

}  // namespace

Outcome<NameCheck> checkNames(Access& access, ObjectMap& map) {
    const Outcome<QStringList> keys = map.symbolicNames();
    if (!keys)
        return fail(keys.error());
    NameChecker checker(access, map);
    for (const QString& key : *keys) {
        if (const Outcome<> checked = checker.check(key); !checked)
            return fail(checked.error());
    }
    return checker.result();
}

}  // namespace Tamrix
