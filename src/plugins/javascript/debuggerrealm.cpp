#include "plugins/javascript/debuggerrealm.h"

#include "interpreter/language/prelude.h"
#include "interpreter/language/valuepath.h"
#include "plugins/javascript/errors.h"
#include "plugins/javascript/javascriptargument.h"
#include "plugins/javascript/javascriptdebugger.h"
#include "plugins/javascript/nativefunctions.h"
#include "plugins/javascript/scriptrealm.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

JS::Value currentGlobal() {
    return JS::ObjectValue(*JS::CurrentGlobalOrNull(engineContext()));
}

/// A value of the debugger's realm as one of the script's.
JS::Value taken(const JS::Value& value) {
    ValueRoot own(value);
    if (own.isObject() && js::IsWrapper(&own.toObject()))
        own.setObject(*js::UncheckedUnwrap(&own.toObject()));
    checked(JS_WrapValue(engineContext(), &own));
    return own;
}

/// The elements of a list of the debugger's realm.
class Elements : public ValueRoots {
public:
    explicit Elements(const JS::Value& list) {
        const ObjectRoot array(list);
        const JSAutoRealm inside(engineContext(), array);
        elementsOf(array, this);
    }
    QString text(std::size_t index) const { return fromJsText((*this)[index]); }
};

/// What code that was run has come to.
JS::Value completed(const JS::Value& completion) {
    const Elements parts(completion);
    const QString kind = parts.text(0);
    // What nothing catches leaves nothing pending.
    checked(kind != QLatin1String("ended"));
    const ValueRoot value(taken(parts[1]));
    if (kind != QLatin1String("thrown"))
        return value;
    const ObjectRoot stack(taken(parts[2]));
    JS::SetPendingExceptionStack(engineContext(),
                                 JS::ExceptionStack(engineContext(), value, stack));
    throw ScriptErrorSet();
}

/// Of names and values in turns.
std::vector<ValueTexts::Part> partsIn(const JS::Value& list) {
    const Elements parts(list);
    std::vector<ValueTexts::Part> found;
    for (std::size_t index = 0; index + 1 < parts.length(); index += 2)
        found.push_back({parts.text(index), argumentOf(taken(parts[index + 1]))});
    return found;
}

// What the debugger tells

void tellLine(const JS::CallArgs& arguments) {
    const QString file = fileFromEngine(fromJsText(arguments[0]));
    if (JavaScriptDebugger* const listener = DebuggerRealm::self().listener()) {
        const JSAutoRealm inside(engineContext(), DebuggerRealm::self().watched());
        listener->reached(file, arguments[1].toInt32());
    }
}

void tellError(const JS::CallArgs& arguments) {
    if (JavaScriptDebugger* const listener = DebuggerRealm::self().listener()) {
        const JSAutoRealm inside(engineContext(), DebuggerRealm::self().watched());
        listener->errorThrown(ValueRoot(taken(arguments.get(0))));
    }
}

JS::Value tellIsLibraryFunction(const JS::CallArgs& arguments) {
    const ObjectRoot object(arguments.get(0));
    return JS::BooleanValue(object && isLibraryFunction(js::UncheckedUnwrap(object)));
}

constexpr JSFunctionSpec functions[] = {
    JS_FN("tellLine", native<tellLine>, 2, 0), JS_FN("tellError", native<tellError>, 1, 0),
    JS_FN("isLibraryFunction", native<tellIsLibraryFunction>, 1, 0), JS_FS_END};

}  // namespace

DebuggerRealm& DebuggerRealm::self() {
    // Never destroyed, as the engine.
    static auto* const s_instance = new DebuggerRealm;
    return *s_instance;
}

DebuggerRealm::DebuggerRealm()
    : m_global(engineContext(), newGlobal()), m_watched(engineContext()) {
    const JSAutoRealm inside(engineContext(), m_global);
    checked(JS_DefineDebuggerObject(engineContext(), m_global) &&
            JS_InitReflectParse(engineContext(), m_global) &&
            JS_DefineFunctions(engineContext(), m_global, functions));
    evaluateOwn(QString::fromUtf8(preludeSource("javascript/debugger.js")), "<tamrix debugger>");
}

JS::Value DebuggerRealm::call(const char* function, const ValueRoots& given) {
    JSContext* const context = engineContext();
    ValueRoot result;
    ValueRoot value;
    ValueRoots arguments;
    const JSAutoRealm inside(context, m_global);
    for (const JS::Value& each : given) {
        value = each;
        checked(JS_WrapValue(context, &value));
        arguments.add(value);
    }
    checked(JS_CallFunctionName(context, m_global, function, arguments, &result));
    return result;
}

// Watching

void DebuggerRealm::watch(JS::HandleObject global, JavaScriptDebugger& listener) {
    m_listener = &listener;
    m_watched = global;
    call("watch", ValueRoots().add(JS::ObjectValue(*global)));
}

void DebuggerRealm::unwatch() {
    m_listener = nullptr;
    m_watched = nullptr;
    call("unwatch");
}

void DebuggerRealm::setStepping(bool isStepping) {
    call("setStepping", ValueRoots().add(JS::BooleanValue(isStepping)));
}

void DebuggerRealm::setBreakLines(const QString& file, const std::vector<int>& lines) {
    ValueRoots numbers;
    for (const int line : lines)
        numbers.add(JS::Int32Value(line));
    // A list of its own: it looks at it where no code of the script may run.
    const JSAutoRealm inside(engineContext(), m_global);
    call("setBreakLines", ValueRoots().add(toJsText(fileForEngine(file))).add(newArray(numbers)));
}

void DebuggerRealm::setSilent(bool isSilent) {
    call("setSilent", ValueRoots().add(JS::BooleanValue(isSilent)));
}

// Looking

std::vector<ScriptFrame> DebuggerRealm::frames() {
    const Elements parts(call("frames"));
    std::vector<ScriptFrame> found;
    for (std::size_t index = 0; index + 3 < parts.length(); index += 4) {
        // As the engine names it: code of an `eval` has a name of its own.
        const QString file = fileFromEngine(parts.text(index + 1));
        const LineInfo place = placeOfCode(file, static_cast<int>(parts[index + 2].toNumber()));
        const int column = static_cast<int>(parts[index + 3].toNumber());
        if (place.isValid())
            found.push_back({FrameHandle(parts[index]), place.fileName(), place.lineNumber(),
                             place.fileName() == file ? column : -1, -1});
    }
    return found;
}

std::vector<ValueTexts::Part> DebuggerRealm::variables(const FrameHandle& frame) {
    std::vector<ValueTexts::Part> found =
        partsIn(call("variables", ValueRoots().add(JS::ObjectOrNullValue(frame))));
    for (ValueTexts::Part& each : found)
        each.name = pathPart(each.name);
    return found;
}

JS::Value DebuggerRealm::evaluate(const FrameHandle& frame, const QString& code) {
    return completed(call("evaluate", ValueRoots()
                                          .add(JS::ObjectOrNullValue(frame))
                                          .add(currentGlobal())
                                          .add(toJsText(code))
                                          .add(toJsText(QStringLiteral("<debugger>")))));
}

JS::Value DebuggerRealm::evaluateInCaller(const QString& code, const char* file) {
    return completed(call("evaluateInCaller", ValueRoots()
                                                  .add(currentGlobal())
                                                  .add(toJsText(code))
                                                  .add(toJsText(QString::fromLatin1(file)))));
}

std::vector<ValueTexts::Part> DebuggerRealm::explainCaller() {
    return partsIn(call("explainCaller", ValueRoots().add(currentGlobal())));
}

}  // namespace Tamrix::JavaScriptPlugin
