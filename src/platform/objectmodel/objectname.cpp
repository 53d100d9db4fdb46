#include "platform/objectmodel/objectname.h"

#include "wire/textmatch.h"

namespace Tamrix {

namespace {

QString quoted(QString text) {
    text.replace('\\', QLatin1String("\\\\")).replace('\'', QLatin1String("\\'"));
    return '\'' + text + '\'';
}

}  // namespace

ObjectName::ObjectName(const QString& realName) {
    parseNameByProperties(realName, &m_properties);
}

ObjectName::ObjectName(const QMap<QString, PropertyValue>& properties) : m_properties(properties) {}

void ObjectName::setProperty(const QString& name, const QString& value) {
    setProperty(name, PropertyValue(value, PropertyValue::Plain, false));
}

void ObjectName::setProperty(const QString& name, const PropertyValue& value) {
    m_properties.insert(name, value);
}

QString ObjectName::qualifiedName() const {
    QString name = QStringLiteral("{");
    for (auto it = m_properties.cbegin(); it != m_properties.cend(); ++it) {
        if (it != m_properties.cbegin())
            name += ' ';
        const PropertyValue& value = it.value();
        const bool nested = value.isRealName() && isMultiPropertyName(value.text());
        name += it.key() + Wire::modeMarker(value.modifiers()) + '=' +
                (nested ? value.text() : quoted(value.text()));
    }
    return name + '}';
}

bool isMultiPropertyName(const QString& text) {
    return text.startsWith('{') && text.endsWith('}');
}

}  // namespace Tamrix
