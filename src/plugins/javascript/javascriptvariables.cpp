#include "plugins/javascript/javascriptvariables.h"

#include <js/Array.h>
#include <js/Exception.h>
#include <js/MapAndSet.h>
#include <js/Object.h>
#include <js/Proxy.h>
#include <jsfriendapi.h>

#include <algorithm>
#include <functional>

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
enum class Shape { Plain, List, Properties };

Shape shapeOf(JS::HandleValue value) {
    if (!value.isObject())
        return Shape::Plain;
    JS::RootedObject object(engineContext(), &value.toObject());
    // Looking into a proxy of the script would run code of it.
    if (js::IsProxy(object) || JS::IsCallable(object))
        return Shape::Plain;
    bool isArray = false;
    checked(JS::IsArrayObject(engineContext(), value, &isArray));
    if (isArray)
        return Shape::List;
    // So does going through these, which the engine does not allow at a stop.
    return isMapObject(object) || isSetObject(object) ? Shape::Plain : Shape::Properties;
}

/// The keys of the object's own properties; of an array its elements alone.
void keysOf(JS::HandleObject object, JS::MutableHandleIdVector keys) {
    checked(js::GetPropertyKeys(engineContext(), object, JSITER_OWNONLY, keys));
}

/// Calls `visit` with the name as it stands in paths and the value of each member from the one
/// numbered `first`, as long as it gives true. Gives the number of all members.
int visitMembers(JS::HandleValue value, int first,
                 const std::function<bool(const QString& name, JS::HandleValue value)>& visit) {
    JSContext* const context = engineContext();
    const Shape shape = shapeOf(value);
    if (shape == Shape::Plain)
        return 0;
    JS::RootedObject object(context, &value.toObject());
    JS::RootedValue member(context);
    bool isWanted = true;
    if (shape == Shape::List) {
        std::uint32_t length = 0;
        checked(JS::GetArrayLength(context, object, &length));
        for (std::uint32_t index = static_cast<std::uint32_t>(first); isWanted && index < length;
             ++index) {
            JS::RootedId key(context, JS::PropertyKey::Int(static_cast<int>(index)));
            member = dataPropertyOf(object, key);
            isWanted = visit(QString::number(index), member);
        }
        return static_cast<int>(length);
    }
    JS::RootedIdVector keys(context);
    keysOf(object, &keys);
    JS::RootedId key(context);
    for (int index = first; isWanted && index < static_cast<int>(keys.length()); ++index) {
        key = keys[static_cast<std::size_t>(index)];
        bool hasGetter = false;
        member = dataPropertyOf(object, key, &hasGetter);
        if (hasGetter)
            member = toJsText(QStringLiteral("[Getter]"));
        isWanted = visit(pathPart(fromKey(key)), member);
    }
    return static_cast<int>(keys.length());
}

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
    if (isApplicationObject(object) || heldBy<SharedPtr<ApplicationContext>>(object))
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
    if (kind == js::ESClass::Map)
        return QStringLiteral("Map(%1)").arg(JS::MapSize(context, object));
    if (kind == js::ESClass::Set)
        return QStringLiteral("Set(%1)").arg(JS::SetSize(context, object));

    // The members that are shown, as texts.
    const Shape shape = shapeOf(value);
    QStringList texts;
    const int count = visitMembers(value, 0, [&](const QString& name, JS::HandleValue member) {
        const QString text = depth + 1 < deepest ? textOf(member, depth + 1) : QString();
        texts.append(shape == Shape::List ? text : textOfPathPart(name) + ": " + text);
        return texts.size() <= longest / 2;
    });
    int next = 0;
    const QString inner = itemsText(depth, count, [&] { return texts.at(next++); });
    if (shape == Shape::List)
        return '[' + inner + ']';
    const QString name = isPlainObject(object) ? QString() : classNameOf(object);
    return (name.isEmpty() ? QString() : name + ' ') + '{' + inner + '}';
}

// Variables

JavaScriptVariables::JavaScriptVariables(JavaScriptDebugger& debugger)
    : LanguageVariables(debugger), m_debugger(debugger) {}

std::vector<LanguageVariables::Member> JavaScriptVariables::variablesOf(int level) {
    std::vector<Member> members;
    for (DebuggerRealm::Variable& variable : m_debugger.variablesOf(level)) {
        if (!m_debugger.interpreter()->isSelfDefinedVariableName(variable.name))
            members.push_back({pathPart(variable.name), argumentOf(variable.value)});
    }
    return members;
}

LanguageVariables::Members JavaScriptVariables::membersOf(const Value& value, int first,
                                                          int limit) {
    Members members;
    members.count =
        visitMembers(valueOf(value), first, [&](const QString& name, JS::HandleValue member) {
            members.page.push_back({name, argumentOf(member)});
            return static_cast<int>(members.page.size()) < limit;
        });
    return members;
}

LanguageVariables::Value JavaScriptVariables::memberNamed(const Value& value, const QString& name) {
    Value found;
    const Shape shape = shapeOf(valueOf(value));
    bool isNumber = false;
    const int number = name.toInt(&isNumber);
    const bool isNumbered = shape == Shape::List;
    if (isNumbered && (!isNumber || number < 0))
        return found;
    visitMembers(valueOf(value), isNumbered ? number : 0,
                 [&](const QString& each, JS::HandleValue member) {
                     if (each != name)
                         return true;
                     found = argumentOf(member);
                     return false;
                 });
    return found;
}

QString JavaScriptVariables::textOf(const Value& value) {
    return m_texts.textOf(valueOf(value));
}

}  // namespace Tamrix::JavaScriptPlugin
