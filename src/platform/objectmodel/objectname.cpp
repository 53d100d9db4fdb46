#include "platform/objectmodel/objectname.h"

namespace Tamrix {

namespace {

QString quoted(QString text) {
    text.replace('\\', QLatin1String("\\\\")).replace('\'', QLatin1String("\\'"));
    return '\'' + text + '\'';
}

}  // namespace

ObjectName::ObjectName(const QMap<QString, PropertyValue>& properties) : m_properties(properties) {}

void ObjectName::setProperty(const QString& name, const QString& value) {
    m_properties.insert(name, PropertyValue(value, 0, false));
}

QString ObjectName::qualifiedName() const {
    QString name = QStringLiteral("{");
    for (auto it = m_properties.cbegin(); it != m_properties.cend(); ++it) {
        if (it != m_properties.cbegin())
            name += ' ';
        const PropertyValue& value = it.value();
        const bool nested = value.isRealName() && isMultiPropertyName(value.text());
        name += it.key() + '=' + (nested ? value.text() : quoted(value.text()));
    }
    return name + '}';
}

bool isMultiPropertyName(const QString& text) {
    return text.startsWith('{') && text.endsWith('}');
}

}  // namespace Tamrix
