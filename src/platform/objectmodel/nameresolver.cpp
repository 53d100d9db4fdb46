#include "platform/objectmodel/nameresolver.h"

#include "platform/objectmodel/objectmap.h"

namespace Tamrix {

namespace {

/// How many references one name may have, whatever they refer to: names that double with each
/// reference would grow without end.
constexpr int maximalReferences = 1000;

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
            else if (isReferenceToName(it.key(), *it))
                resolved = resolveSymbolic(text, depth + 1);
            else
                continue;
            if (!resolved.isValid())
                return {};
            *it = PropertyValue(resolved.qualifiedName(), PropertyValue::Plain, true);
        }
        return ObjectName(properties);
    }

    const QMap<QString, ObjectName>& m_names;
    /// The symbolic names that are being replaced.
    QStringList m_path;
    int m_references = 0;
    QString m_errorText;
};

}  // namespace

bool isReferenceToName(const QString& property, const PropertyValue& value) {
    return isSymbolicName(value.text()) && !value.isRealName() &&
           value.modifiers() == PropertyValue::Plain && !isTextProperty(property);
}

QStringList referencesOf(const ObjectName& name) {
    QStringList references;
    const auto properties = name.properties();
    for (auto it = properties.cbegin(); it != properties.cend(); ++it) {
        if (isReferenceToName(it.key(), *it))
            references.append(it->text());
        else if (it->isRealName() && isMultiPropertyName(it->text()))
            references += referencesOf(ObjectName(it->text()));
    }
    return references;
}

Outcome<ObjectName> resolveName(const QMap<QString, ObjectName>& names, const QString& name) {
    Resolver resolver(names);
    const ObjectName resolved = resolver.resolve(name);
    if (!resolved.isValid())
        return fail(FailureKind::BadArgument, resolver.errorText());
    return resolved;
}

}  // namespace Tamrix
