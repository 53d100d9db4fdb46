#pragma once

#include <QMap>
#include <QString>

#include "base/export.h"

namespace Tamrix {

/// The wanted value of one property in an object's name.
class TAMRIX_EXPORT PropertyValue {
public:
    PropertyValue() = default;
    /// `modifiers` tells how the text is compared (0: as it stands). `isRealName` says that the
    /// text is itself a real name, that of another object.
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
    explicit ObjectName(const QMap<QString, PropertyValue>& properties);

    QMap<QString, PropertyValue> properties() const { return m_properties; }
    void setProperty(const QString& name, const QString& value);

    /// The real name: {name='value' name2='value2'}, properties in key order, one blank between
    /// them, "'" and "\" in values escaped by "\". A value that is a real name in braces stands
    /// unquoted.
    QString qualifiedName() const;

private:
    QMap<QString, PropertyValue> m_properties;
};

/// Whether the text has the form of a real name: it starts with "{" and ends with "}".
TAMRIX_EXPORT bool isMultiPropertyName(const QString& text);

}  // namespace Tamrix
