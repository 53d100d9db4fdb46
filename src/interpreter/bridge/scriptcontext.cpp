#include "interpreter/bridge/scriptcontext.h"

#include <QtGlobal>
#include <limits>

#include "base/wholetext.h"
#include "interpreter/bridge/debugger.h"
#include "interpreter/bridge/execution.h"
#include "interpreter/bridge/interpreter.h"

namespace Tamrix {

namespace {

/// The tables of all functions that scripts call by name. They live for the process.
struct FunctionTables {
    QMap<QString, ScriptContext::Function> globalFunctions;
    QMap<QString, ScriptContext::Function> staticMemberFunctions;
    QMap<QString, ScriptContext::Function> memberFunctions;
    QMap<QString, int> constants;
    QMap<QString, ScriptContext::FunctionDescription> descriptions;
};

FunctionTables& tables() {
    static FunctionTables s_instance;
    return s_instance;
}

QString memberKey(const QString& className, const QString& name) {
    return className + QLatin1String("::") + name;
}

}  // namespace

ScriptContext* ScriptContext::s_current = nullptr;
const SharedPtr<ScriptArgument> ScriptContext::s_noArgument;

ScriptContext::~ScriptContext() {
    clearArguments();
}

// Errors

void ScriptContext::setError(const QString& message, ErrorType type) {
    m_state |= ErrorStored;
    m_errorMessage = message;
    m_errorType = type;
    m_isSkip = false;
    m_errorFrame = DebuggerFrame();
}

void ScriptContext::setError(const QString& message, const DebuggerFrame& frame) {
    setError(message, GeneralError);
    m_errorFrame = frame;
}

void ScriptContext::clearStoredError() {
    ScriptContext::setError({});
    m_state &= ~ErrorStored;
}

// Results

SharedPtr<ScriptArgument> ScriptContext::create(const PlainResult& result) {
    switch (result.kind) {
        case PlainResult::Bool:
            return createBool(result.value != 0);
        case PlainResult::Integer:
            return createInt64(result.value);
        case PlainResult::None:
        case PlainResult::Null:
            break;
    }
    return createNull();
}

// Arguments and the current context

void ScriptContext::setArguments(const std::vector<SharedPtr<ScriptArgument>>& arguments) {
    m_arguments = arguments;
}

void ScriptContext::clearArguments() {
    m_arguments.clear();
}

// Tables

void ScriptContext::addGlobalFunction(const QString& name, Function function) {
    tables().globalFunctions.insert(name, function);
}

void ScriptContext::addStaticMemberFunction(const QString& className, const QString& name,
                                            Function function) {
    tables().staticMemberFunctions.insert(memberKey(className, name), function);
}

void ScriptContext::addMemberFunction(const QString& className, const QString& name,
                                      Function function) {
    tables().memberFunctions.insert(memberKey(className, name), function);
}

void ScriptContext::addConstant(const QString& name, int value) {
    tables().constants.insert(name, value);
}

bool ScriptContext::hasGlobalFunction(const QString& name) {
    return tables().globalFunctions.contains(name);
}

bool ScriptContext::hasConstant(const QString& name) {
    return tables().constants.contains(name);
}

int ScriptContext::constantValue(const QString& name) {
    return tables().constants.value(name);
}

ScriptContext::FunctionDescription ScriptContext::functionDescription(const QString& key) {
    return tables().descriptions.value(key);
}

void ScriptContext::describeFunction(const QString& key, const FunctionDescription& description) {
    tables().descriptions.insert(key, description);
}

// Calls

int ScriptContext::call(Function function) {
    return execute(function) ? 1 : 0;
}

int ScriptContext::tryGlobalCall(const QString& name) {
    const Function function = tables().globalFunctions.value(name);
    return function ? call(function) : 2;
}

int ScriptContext::tryCall(const QString& className, const QString& name) {
    const QString key = memberKey(className, name);
    // A static member function goes first and is called without further checks.
    if (const Function function = tables().staticMemberFunctions.value(key))
        return call(function);
    const Function function = tables().memberFunctions.value(key);
    if (!function)
        return 2;
    // A member function sees the object as its first argument.
    if (argumentCount() == 0) {
        setError("Missing object reference in " + name + " call");
        return 1;
    }
    return call(function);
}

bool ScriptContext::execute(Function function) {
    const Execution execution(*this);
    clearError();
    function(this);
    return hasError();
}

bool ScriptContext::execute(bool (*function)(ScriptContext*)) {
    const Execution execution(*this);
    clearError();
    return function(this);
}

bool ScriptContext::execute(bool (*function)(SharedPtr<NativeScriptObject>, ScriptContext*),
                            SharedPtr<NativeScriptObject> object) {
    const Execution execution(*this);
    clearError();
    return function(std::move(object), this);
}

SharedPtr<NativeScriptObject> ScriptContext::execute(
    SharedPtr<NativeScriptObject> (*function)(ScriptContext*)) {
    const Execution execution(*this);
    clearError();
    return function(this);
}

// Values and results

SharedPtr<ScriptArgument> ScriptContext::createBytes(const QByteArray& value) {
    return createString(wholeUtf8(value));
}

void ScriptContext::setListResult(const QStringList& values) {
    std::vector<SharedPtr<ScriptArgument>> list;
    list.reserve(values.size());
    for (const QString& value : values)
        list.push_back(createString(value));
    setResult(createList(list));
}

void ScriptContext::setObjectListResult(const ObjectList& objects) {
    std::vector<SharedPtr<ScriptArgument>> list;
    list.reserve(objects.size());
    for (const SharedPtr<Object>& object : objects)
        list.push_back(createObject(object));
    setResult(createList(list));
}

void ScriptContext::setMapResult(const QMap<QString, QVariant>& values) {
    std::map<QString, SharedPtr<ScriptArgument>> map;
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        map.emplace(it.key(), createString(it.value().toString()));
    setResult(createMap(map));
}

void ScriptContext::setStackTraceResult(const std::vector<ScriptLocation>& trace) {
    std::vector<SharedPtr<ScriptArgument>> list;
    list.reserve(trace.size());
    for (const ScriptLocation& location : trace)
        list.push_back(createLocation(location));
    setResult(createList(list));
}

// Positions

LineInfo ScriptContext::lineInfo() const {
    LineInfo position;
    lineInfoOfFrame(position, 0);
    return position;
}

LineInfo ScriptContext::lineInfoForResult() const {
    return m_fixatedResultContexts.empty() ? lineInfo() : m_fixatedResultContexts.back();
}

std::vector<LineInfo> ScriptContext::callStackForResult(bool wantFullStack) const {
    if (!m_fixatedResultContexts.empty())
        return {m_fixatedResultContexts.back()};
    if (wantFullStack && Debugger::self())
        return Debugger::self()->callStack();
    return {lineInfo()};
}

void ScriptContext::fixateResultContext() {
    if (argumentCount() > 1) {
        setError("test::fixateResultContext takes 0 or 1 argument");
        return;
    }
    long long level = 1;
    if (argumentCount() == 1) {
        const SharedPtr<ScriptArgument> frames = argument(0);
        level = frames->isNumber() ? frames->toInt() : -1;
        if (level < 0) {
            setError("test::fixateResultContext takes a non-negative number");
            return;
        }
    }
    LineInfo position;
    // No call chain is deeper than an int can count.
    if (level > std::numeric_limits<int>::max() ||
        !lineInfoOfFrame(position, static_cast<int>(level))) {
        setError("test::fixateResultContext: invalid ancestor stack frame number");
        return;
    }
    m_fixatedResultContexts.push_back(position);
    setNullResult();
}

void ScriptContext::restoreResultContext() {
    if (argumentCount() > 0) {
        setError("test::restoreResultContext takes no arguments");
        return;
    }
    if (m_fixatedResultContexts.empty()) {
        setError("test::restoreResultContext: there are no fixated result contexts");
        return;
    }
    m_fixatedResultContexts.pop_back();
    setNullResult();
}

QString ScriptContext::scriptName(const QString& name) const {
    return name;
}

QString ScriptContext::explainArgument(const char*) {
    return {};
}

Gherkin::ScriptActions* ScriptContext::gherkinScriptActions(const QString&) {
    return nullptr;
}

}  // namespace Tamrix
