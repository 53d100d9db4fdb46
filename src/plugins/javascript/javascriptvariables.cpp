#include "plugins/javascript/javascriptvariables.h"

#include <js/Array.h>
#include <js/Exception.h>
#include <js/MapAndSet.h>
#include <js/Object.h>
#include <js/Proxy.h>
#include <jsfriendapi.h>

#include <algorithm>
#include <cstdint>

#include "interpreter/language/valuepath.h"
#include "plugins/javascript/hostobjects.h"
#include "plugins/javascript/javascriptargument.h"
#include "plugins/javascript/javascriptdebugger.h"
#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/objectproxy.h"
#include "plugins/javascript/values.h"
#include "plugins/javascript/valuetext.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

/// What a value consists of.
enum class Shape { Plain, List, Map, Set, Properties };

Shape shapeOf(JS::HandleValue value) {
    if (!value.isObject())
        return Shape::Plain;
    JS::RootedObject object(engineContext(), &value.toObject());
    // Looking into a proxy of the script would run code of it.
    if (js::IsProxy(object) || JS::IsCallable(object))
        return Shape::Plain;
    js::ESClass kind = js::ESClass::Other;
    checked(JS::GetBuiltinClass(engineContext(), object, &kind));
    switch (kind) {
        case js::ESClass::Array:
            return Shape::List;
        case js::ESClass::Map:
            return Shape::Map;
        case js::ESClass::Set:
            return Shape::Set;
        default:
            return Shape::Properties;
    }
}

/// The members of a value, in their order. Only on the stack.
class MemberReader {
public:
    /// Of a collection at least the first `most` can be read.
    MemberReader(JS::HandleValue value, std::size_t most) : m_shape(shapeOf(value)) {
        if (m_shape == Shape::Plain)
            return;
        m_object = &value.toObject();
        switch (m_shape) {
            case Shape::List:
                checked(JS::GetArrayLength(m_context, m_object, &m_count));
                break;
            case Shape::Map:
                m_count = JS::MapSize(m_context, m_object);
                entriesOf(m_object, &m_entries, 2 * most);
                break;
            case Shape::Set:
                m_count = JS::SetSize(m_context, m_object);
                entriesOf(m_object, &m_entries, most);
                break;
            default:
                checked(js::GetPropertyKeys(m_context, m_object, JSITER_OWNONLY, &m_keys));
                m_count = static_cast<std::uint32_t>(m_keys.length());
        }
    }

    int count() const { return static_cast<int>(m_count); }

    void read(int index) {
        const auto number = static_cast<std::size_t>(index);
        m_name = QString::number(index);
        switch (m_shape) {
            case Shape::List:
                m_key = JS::PropertyKey::Int(index);
                m_value = dataPropertyOf(m_object, m_key);
                break;
            case Shape::Map:
                readEntry(index, m_entries[2 * number]);
                m_value = m_entries[2 * number + 1];
                break;
            case Shape::Set:
                m_value = m_entries[number];
                break;
            default:
                m_key = m_keys[number];
                readProperty();
        }
    }
    // Of the one that was read.
    /// As it stands in paths.
    const QString& name() const { return m_name; }
    /// What stands in front of it where the whole is written.
    const QString& label() const { return m_label; }
    JS::HandleValue value() const { return m_value; }

private:
    void readEntry(int index, JS::HandleValue key) {
        const QString text = JavaScriptValueTexts().textOf(key);
        m_label = text + " => ";
        // Objects that look alike are keys of their own.
        m_name =
            '[' +
            pathPart(
                key.isObject() ? QStringLiteral("%1: %2").arg(QString::number(index), text) : text,
                QByteArrayLiteral("[]")) +
            ']';
    }
    void readProperty() {
        bool hasGetter = false;
        m_value = dataPropertyOf(m_object, m_key, &hasGetter);
        if (hasGetter)
            m_value = toJsText(QStringLiteral("[Getter]"));
        m_name = pathPart(fromKey(m_key));
        m_label = fromKey(m_key) + ": ";
    }

    JSContext* m_context = engineContext();
    Shape m_shape;
    JS::RootedObject m_object{m_context};
    std::uint32_t m_count = 0;
    JS::RootedValueVector m_entries{m_context};
    JS::RootedIdVector m_keys{m_context};
    JS::RootedId m_key{m_context};
    JS::RootedValue m_value{m_context};
    QString m_name;
    QString m_label;
};

}  // namespace

// Texts

QString JavaScriptValueTexts::textOf(JS::HandleValue value, int depth) {
    if (value.isString()) {
        JSLinearString* const text =
            checked(JS_EnsureLinearString(engineContext(), value.toString()));
        const bool isLong = JS::GetLinearStringLength(text) > longest;
        return cut(quoted(fromJsString(value.toString()).left(longest + (isLong ? 1 : 0))));
    }
    if (!value.isObject())
        return value.isBigInt() ? cut(Tamrix::JavaScriptPlugin::textOf(value)) + 'n'
                                : Tamrix::JavaScriptPlugin::textOf(value);
    JS::RootedObject object(engineContext(), &value.toObject());
    return cut(objectText(object, depth));
}

QString JavaScriptValueTexts::objectText(JS::HandleObject object, int depth) {
    JSContext* const context = engineContext();
    JS::RootedValue value(context, JS::ObjectValue(*object));
    if (isApplicationObject(object) || heldBy<ApplicationContext>(object))
        return Tamrix::JavaScriptPlugin::textOf(value);
    if (js::IsProxy(object))
        return QStringLiteral("[Proxy]");
    if (JS::IsCallable(object))
        return functionText(object);
    js::ESClass kind = js::ESClass::Other;
    checked(JS::GetBuiltinClass(context, object, &kind));
    if (kind == js::ESClass::Error)
        return errorText(object);
    if (kind == js::ESClass::Date)
        return Tamrix::JavaScriptPlugin::textOf(value);

    MemberReader members(value, longest);
    int next = 0;
    const QString inner = itemsText(depth, members.count(), [&] {
        members.read(next++);
        return members.label() + textOf(members.value(), depth + 1);
    });
    if (kind == js::ESClass::Array)
        return '[' + inner + ']';
    QString name = isPlainObject(object) ? QString() : classNameOf(object);
    if (kind == js::ESClass::Map || kind == js::ESClass::Set)
        name += QStringLiteral("(%1)").arg(members.count());
    return (name.isEmpty() ? QString() : name + ' ') + '{' + inner + '}';
}

// Variables

JavaScriptVariables::JavaScriptVariables(JavaScriptDebugger& debugger)
    : LanguageVariables(debugger), m_debugger(debugger) {}

std::vector<LanguageVariables::Member> JavaScriptVariables::variablesOf(int level) {
    std::vector<Member> members;
    const std::optional<ScriptFrame> frame = codeFrame(level);
    if (!frame)
        return members;
    for (DebuggerRealm::Variable& variable : m_debugger.variablesOf(*frame)) {
        if (!m_debugger.interpreter()->isSelfDefinedVariableName(variable.name))
            members.push_back({pathPart(variable.name), argumentOf(variable.value)});
    }
    return members;
}

LanguageVariables::Members JavaScriptVariables::membersOf(const Value& value, int first,
                                                          int limit) {
    MemberReader reader(valueOf(value), static_cast<std::size_t>(first + limit));
    Members members;
    members.count = reader.count();
    for (int index = first; index < std::min(first + limit, reader.count()); ++index) {
        reader.read(index);
        members.page.push_back({reader.name(), argumentOf(reader.value())});
    }
    return members;
}

QString JavaScriptVariables::textOf(const Value& value) {
    return m_texts.textOf(valueOf(value));
}

}  // namespace Tamrix::JavaScriptPlugin
