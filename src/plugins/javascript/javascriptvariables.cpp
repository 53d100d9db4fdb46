#include "plugins/javascript/javascriptvariables.h"

#include <js/Object.h>
#include <js/Proxy.h>
#include <jsfriendapi.h>

#include <memory>

#include "interpreter/language/valuepath.h"
#include "plugins/javascript/hostobjects.h"
#include "plugins/javascript/javascriptargument.h"
#include "plugins/javascript/javascriptdebugger.h"
#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/objectparts.h"
#include "plugins/javascript/objectproxy.h"
#include "plugins/javascript/values.h"
#include "plugins/javascript/valuetext.h"

namespace Tamrix::JavaScriptPlugin {

// Texts

JavaScriptValueTexts::Parts JavaScriptValueTexts::partsOf(const Value& value, int end, int depth) {
    const JS::HandleValue own = valueOf(value);
    // Looking into a proxy of the script would run code of it.
    if (!own.isObject() || js::IsProxy(&own.toObject()) || JS::IsCallable(&own.toObject()))
        return {};
    const JS::RootedObject object(engineContext(), &own.toObject());
    const auto parts = std::make_shared<ObjectParts>(object, static_cast<std::size_t>(end));
    const auto write = [this, depth](JS::HandleValue key) {
        return cut(text(argumentOf(key), depth + 1));
    };
    return {parts->count(), [parts, write](int number) {
                parts->read(number, write);
                return Part{parts->name(), argumentOf(parts->value()), parts->label()};
            }};
}

QString JavaScriptValueTexts::textOf(JS::HandleValue value) {
    return textOf(argumentOf(value));
}

QString JavaScriptValueTexts::text(const Value& own, int depth) {
    const JS::HandleValue value = valueOf(own);
    if (value.isString()) {
        const QString text = fromJsString(value.toString());
        // With one more character where there are more, so that it shows.
        return quoted(text.left(longest + (text.size() > longest ? 1 : 0)));
    }
    if (!value.isObject())
        return Tamrix::JavaScriptPlugin::textOf(value) + (value.isBigInt() ? "n" : "");
    JS::RootedObject object(engineContext(), &value.toObject());
    return objectText(own, object, depth);
}

QString JavaScriptValueTexts::objectText(const Value& own, JS::HandleObject object, int depth) {
    const JS::HandleValue value = valueOf(own);
    if (isApplicationObject(object) || heldBy<ApplicationContext>(object))
        return Tamrix::JavaScriptPlugin::textOf(value);
    if (js::IsProxy(object))
        return QStringLiteral("[Proxy]");
    if (JS::IsCallable(object))
        return functionText(object);
    js::ESClass kind = js::ESClass::Other;
    checked(JS::GetBuiltinClass(engineContext(), object, &kind));
    if (kind == js::ESClass::Error)
        return errorText(object);
    if (kind == js::ESClass::Date)
        return Tamrix::JavaScriptPlugin::textOf(value);
    const QString inner = partsText(own, depth);
    if (kind == js::ESClass::Array)
        return '[' + inner + ']';
    QString name = isPlainObject(object) ? QString() : classNameOf(object);
    if (kind == js::ESClass::Map || kind == js::ESClass::Set)
        name += QStringLiteral("(%1)").arg(partsOf(own, 0).count);
    return (name.isEmpty() ? QString() : name + ' ') + '{' + inner + '}';
}

// Variables

JavaScriptVariables::JavaScriptVariables(JavaScriptDebugger& debugger)
    : LanguageVariables(debugger, std::make_unique<JavaScriptValueTexts>()), m_debugger(debugger) {}

std::vector<LanguageVariables::Member> JavaScriptVariables::variablesOf(int level) {
    std::vector<Member> members;
    const std::optional<ScriptFrame> frame = codeFrame(level);
    if (!frame)
        return members;
    for (DebuggerRealm::Variable& variable : m_debugger.variablesOf(*frame))
        members.push_back({pathPart(variable.name), argumentOf(variable.value)});
    return members;
}

}  // namespace Tamrix::JavaScriptPlugin
