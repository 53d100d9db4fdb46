#pragma once

#include <QMap>
#include <QString>

#include "base/export.h"

namespace Tamrix {

/// The wanted value of one property in an object's name.
class TAMRIX_EXPORT PropertyValue {
public:
    PropertyValue() = default;
    /// How the text is compared.
    enum Modifier {
        Plain = 0,     ///< as it stands: name='text'
        Wildcard = 1,  ///< "*" any characters, "?" any one, "[a-z]" one of a set: name*='tex*'
        Pattern = 2    ///< a regular expression that matches anywhere: name~='^te.t$'
    };

    /// `modifiers` is a Modifier. `isRealName` says that the text is itself a real name, that of
    /// another object.
    PropertyValue(const QString& text, int modifiers, bool isRealName)
        : m_text(text), m_modifiers(modifiers), m_isRealName(isRealName) {}

    QString text() const { return m_text; }
    int modifiers() const { return m_modifiers; }
    bool isRealName() const { return m_isRealName; }

private:
    QString m_text;
    int m_modifiers = 0;
    bool m_isRealName = false;
};

/// An object's name as a set of properties that the object must have.
class TAMRIX_EXPORT ObjectName {
public:
    ObjectName() = default;
    /// A malformed name gives an invalid one.
    explicit ObjectName(const QString& realName);
    explicit ObjectName(const QMap<QString, PropertyValue>& properties);

    /// Whether it has a property at all.
    bool isValid() const { return !m_properties.isEmpty(); }
    QMap<QString, PropertyValue> properties() const { return m_properties; }
    void setProperty(const QString& name, const QString& value);
    void setProperty(const QString& name, const PropertyValue& value);

    /// The real name: {name='value' name2='value2'}, properties in key order, one blank between
    /// them, "'" and "\" in values escaped by "\", the modifiers' "*" and "~" before "=". A value
    /// that is a real name in braces stands unquoted.
    QString qualifiedName() const;

private:
    QMap<QString, PropertyValue> m_properties;
};

/// Whether the text has the form of a real name: it starts with "{" and ends with "}".
TAMRIX_EXPORT bool isMultiPropertyName(const QString& text);

/// Reads a real name. False when it is malformed; `*error`, when given, then says what is wrong and
/// at which character, counted from 1. A name needs at least one property. A "\" in a value before
/// any character but "'" and "\" stands for itself. Names nested deeper than maximalNameDepth are
/// malformed.
TAMRIX_EXPORT bool parseNameByProperties(const QString& realName,
                                         QMap<QString, PropertyValue>* properties,
                                         QString* error = nullptr);

/// What no application could look for: a malformed wildcard or regular expression, an occurrence
/// that is no number from 1. Empty for a good name.
TAMRIX_EXPORT QString nameFault(const ObjectName& name);

/// How deep real names may be nested in each other.
inline constexpr int maximalNameDepth = 16;

}  // namespace Tamrix
