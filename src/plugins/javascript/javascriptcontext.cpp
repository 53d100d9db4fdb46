#include "plugins/javascript/javascriptcontext.h"

#include <js/Array.h>

#include "interpreter/bridge/debugger.h"
#include "plugins/javascript/debuggerrealm.h"
#include "plugins/javascript/errors.h"
#include "plugins/javascript/javascriptdebugger.h"
#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/javascriptvariables.h"
#include "plugins/javascript/nativefunctions.h"
#include "plugins/javascript/scriptrealm.h"

namespace Tamrix::JavaScriptPlugin {

// Values

JS::Value JavaScriptContext::makeValue(const ScriptArgument::List& values) {
    JS::RootedValueVector elements(engineContext());
    for (const SharedPtr<ScriptArgument>& value : values)
        checked(elements.append(valueOf(value)));
    return JS::ObjectValue(*checked(JS::NewArrayObject(engineContext(), elements)));
}

JS::Value JavaScriptContext::makeValue(const ScriptArgument::Map& values) {
    JS::RootedObject object(engineContext(), checked(JS_NewPlainObject(engineContext())));
    for (const auto& [name, value] : values)
        defineProperty(object, name, valueOf(value));
    return JS::ObjectValue(*object);
}

JS::Value JavaScriptContext::makeValue(const SharedPtr<NativeScriptObject>& object) {
    return m_interpreter.nativeValue(object);
}

JS::Value JavaScriptContext::makeValue(const SharedPtr<ApplicationContext>& application) {
    // One object for each application, so that `===` tells whether two are the same.
    JS::PersistentRootedObject& known = m_interpreter.realm().contextObject(application->id);
    if (!known) {
        JS::RootedObject prototype(engineContext(),
                                   m_interpreter.realm().applicationContextPrototype());
        known = makeHostObject(application, prototype);
    }
    return JS::ObjectValue(*known);
}

// Registration

JSObject* JavaScriptContext::holderOf(const QString& owner) {
    ScriptRealm& realm = m_interpreter.realm();
    return owner.isEmpty() ? realm.global() : realm.nameSpace(owner);
}

void JavaScriptContext::define(const NativeFunction& function) {
    const QString& owner = function.signature().owner;
    JS::RootedObject holder(engineContext(), holderOf(owner));
    defineProperty(holder, function.signature().name, JS::ObjectValue(*makeFunction(function)),
                   owner.isEmpty() ? 0 : JSPROP_ENUMERATE);
}

void JavaScriptContext::defineMember(const NativeFunction& function) {
    if (function.signature().owner != QLatin1String("ApplicationContext")) {
        LanguageContext::defineMember(function);
        return;
    }
    JS::RootedObject prototype(engineContext(),
                               m_interpreter.realm().applicationContextPrototype());
    defineProperty(prototype, function.signature().name,
                   JS::ObjectValue(*makeMemberFunction(function)), 0);
}

void JavaScriptContext::defineConstant(const QString& owner, const QString& name, int value) {
    JS::RootedObject holder(engineContext(), holderOf(owner));
    defineProperty(holder, name, JS::Int32Value(value), 0);
}

// Positions

bool JavaScriptContext::lineInfoOfFrame(LineInfo& position, int ancestorLevel) const {
    JSContext* const context = engineContext();
    JS::AutoFilename file;
    unsigned line = 0;
    if (ancestorLevel == 0 && JS::DescribeScriptedCaller(context, &file, &line) && file.get()) {
        const LineInfo place = placeOfCode(QString::fromUtf8(file.get()), static_cast<int>(line));
        if (place.isValid()) {
            position = place;
            return true;
        }
    }
    const std::vector<LineInfo> lines = runningLines();
    if (ancestorLevel >= static_cast<int>(lines.size()))
        return false;
    position = lines[static_cast<std::size_t>(ancestorLevel)];
    return true;
}

// The language's own judgement

QString JavaScriptContext::explainArgument(const char* /*parameter*/) {
    QStringList lines;
    JavaScriptValueTexts texts;
    try {
        for (const DebuggerRealm::Variable& each : DebuggerRealm::self().explainCaller())
            lines += lines.isEmpty() ? each.name : each.name + ": " + texts.textOf(each.value);
    } catch (const ScriptErrorSet&) {
        if (isEndOfScript())
            throw;
        clearException();
    }
    return lines.join('\n');
}

bool JavaScriptContext::valuesEqual(SharedPtr<ScriptArgument> left,
                                    SharedPtr<ScriptArgument> right) {
    return areEqual(valueOf(left), valueOf(right));
}

std::pair<QString, QString> JavaScriptContext::evaluateForException(
    SharedPtr<ScriptArgument> code) {
    return attemptException(
        *code, {[&](const QString& text) { return m_interpreter.syntaxError(text); },
                [](const QString& text) {
                    DebuggerRealm::self().evaluateInCaller(text, "<test.exception>");
                },
                [&] { static_cast<const JavaScriptArgument*>(code.get())->called({}); }});
}

bool JavaScriptContext::evaluateCondition(const QString& expression, QString* error) {
    return attemptCondition(
        [&] {
            JS::RootedValue value(engineContext(),
                                  DebuggerRealm::self().evaluateInCaller(
                                      '(' + expression.trimmed() + "\n)", "<waitFor>"));
            return JavaScriptArgument(value).toBool();
        },
        error);
}

}  // namespace Tamrix::JavaScriptPlugin
