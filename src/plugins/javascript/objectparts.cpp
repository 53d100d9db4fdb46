#include "plugins/javascript/objectparts.h"

#include <js/Array.h>
#include <js/MapAndSet.h>
#include <js/Object.h>
#include <js/Proxy.h>
#include <jsfriendapi.h>

#include <algorithm>

#include "interpreter/language/valuepath.h"
#include "plugins/javascript/values.h"

namespace Tamrix::JavaScriptPlugin {

ObjectParts::ObjectParts(JS::HandleObject object, std::size_t end)
    : m_object(engineContext(), object),
      m_entries(engineContext()),
      m_keys(engineContext()),
      m_value(engineContext()) {
    JSContext* const context = engineContext();
    checked(JS::GetBuiltinClass(context, object, &m_kind));
    const bool isProxy = js::IsProxy(object);
    if (m_kind == js::ESClass::Array) {
        checked(JS::GetArrayLength(context, object, &m_count));
    } else if (m_kind == js::ESClass::Map && !isProxy) {
        m_count = JS::MapSize(context, object);
        entriesOf(object, &m_entries, 2 * std::min<std::size_t>(end, m_count));
    } else if (m_kind == js::ESClass::Set && !isProxy) {
        m_count = JS::SetSize(context, object);
        entriesOf(object, &m_entries, end);
    } else {
        m_kind = js::ESClass::Object;
        checked(js::GetPropertyKeys(context, object, JSITER_OWNONLY, &m_keys));
        m_count = static_cast<std::uint32_t>(m_keys.length());
    }
}

void ObjectParts::read(int number, const std::function<QString(JS::HandleValue)>& write) {
    JSContext* const context = engineContext();
    const auto index = static_cast<std::size_t>(number);
    m_name = QString::number(number);
    switch (m_kind) {
        case js::ESClass::Array: {
            JS::RootedId key(context, JS::PropertyKey::Int(number));
            m_value = dataPropertyOf(m_object, key);
            break;
        }
        case js::ESClass::Map: {
            JS::RootedValue key(context, m_entries[2 * index]);
            m_value = m_entries[2 * index + 1];
            nameEntry(number, key, write(key));
            break;
        }
        case js::ESClass::Set:
            m_value = m_entries[index];
            break;
        default:
            readProperty(m_keys[index]);
    }
}

void ObjectParts::nameEntry(int number, JS::HandleValue key, const QString& text) {
    // Objects that look alike are keys of their own.
    const QString name =
        key.isObject() ? QStringLiteral("%1: %2").arg(QString::number(number), text) : text;
    m_name = '[' + pathPart(name, QByteArrayLiteral("[]")) + ']';
    m_label = text + " => ";
}

void ObjectParts::readProperty(jsid key) {
    JS::RootedId id(engineContext(), key);
    m_value = dataPropertyOf(m_object, id, &m_hasGetter);
    if (m_hasGetter)
        m_value = toJsText(QStringLiteral("[Getter]"));
    m_property = fromKey(key);
    m_name = pathPart(m_property);
    m_label = m_property + ": ";
}

}  // namespace Tamrix::JavaScriptPlugin
