#pragma once

#include <js/Class.h>
#include <jsapi.h>

#include <QString>
#include <cstdint>
#include <functional>

#include "plugins/javascript/engine.h"

namespace Tamrix::JavaScriptPlugin {

/// What an object consists of: elements of an array or a Set, entries of a Map, properties of any
/// other object, in their order. Runs no code of the script but that of a proxy. Throws
/// ScriptErrorSet.
class ObjectParts {
public:
    /// Of a Map or Set, those in front of the one numbered `end` can be read.
    explicit ObjectParts(JS::HandleObject object, std::size_t end = SIZE_MAX);

    js::ESClass kind() const { return m_kind; }
    int count() const { return static_cast<int>(m_count); }

    /// Reads the one of this number. `write` writes keys of a Map.
    void read(int number, const std::function<QString(JS::HandleValue)>& write);

    // Of the one that was read.
    /// As it stands in paths of a debugger.
    const QString& name() const { return m_name; }
    /// What stands in front of it where the whole is written.
    const QString& label() const { return m_label; }
    /// The name of a property; null for other parts.
    const QString& property() const { return m_property; }
    /// Of a property with a getter "[Getter]".
    JS::HandleValue value() const { return JS::HandleValue::fromMarkedLocation(m_value.address()); }
    bool hasGetter() const { return m_hasGetter; }

private:
    void nameEntry(int number, JS::HandleValue key, const QString& text);
    void readProperty(jsid key);

    js::ESClass m_kind = js::ESClass::Other;
    JS::PersistentRootedObject m_object;
    std::uint32_t m_count = 0;
    /// Of a Map keys and values in turn, of a Set its elements.
    JS::PersistentRootedVector<JS::Value> m_entries;
    JS::PersistentRootedIdVector m_keys;
    JS::PersistentRootedValue m_value;
    QString m_name;
    QString m_label;
    QString m_property;
    bool m_hasGetter = false;
};

}  // namespace Tamrix::JavaScriptPlugin
