#include "plugins/javascript/javascriptinterpreter.h"

#include <js/CompilationAndEvaluation.h>
#include <js/ErrorReport.h>
#include <js/Modules.h>
#include <js/ScriptPrivate.h>
#include <js/friend/ErrorMessages.h>
#include <jsfriendapi.h>

#include <QRegularExpression>
#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "plugins/javascript/javascriptsteps.h"
#include "plugins/javascript/jobqueue.h"
#include "plugins/javascript/nativefunctions.h"
#include "plugins/javascript/promises.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

/// Stands for the file of code that has none.
const QString noFile = QStringLiteral("<init script>");

/// What the compiler says of a script that is a module.
constexpr unsigned moduleErrors[] = {JSMSG_IMPORT_DECL_AT_TOP_LEVEL, JSMSG_EXPORT_DECL_AT_TOP_LEVEL,
                                     JSMSG_IMPORT_META_OUTSIDE_MODULE,
                                     JSMSG_AWAIT_OUTSIDE_ASYNC_OR_MODULE};

bool isModuleError() {
    ValueRoot exception;
    if (!JS_GetPendingException(engineContext(), &exception) || !exception.isObject())
        return false;
    const JSErrorReport* const report =
        JS_ErrorFromException(engineContext(), ObjectRoot(exception));
    return report && std::find(std::begin(moduleErrors), std::end(moduleErrors),
                               report->errorNumber) != std::end(moduleErrors);
}

void refuseGenerator(const QString& name, JS::HandleValue result) {
    const char* const kind = result.isObject() ? JS::GetClass(&result.toObject())->name : "";
    if (std::strcmp(kind, "Generator") == 0 || std::strcmp(kind, "AsyncGenerator") == 0)
        throwBuiltIn(JSEXN_TYPEERR,
                     (name.isEmpty() ? QStringLiteral("The function") : name + "()") +
                         " is a generator and nothing of it has run: take its '*' away");
}

}  // namespace

JavaScriptInterpreter::JavaScriptInterpreter(RunnerInterface* runner)
    : LanguageInterpreter(runner, JavaScript) {
    Modules::install();
    m_scriptModule.init(engineContext());
    m_debugger = std::make_unique<JavaScriptDebugger>(*this);
    try {
        enterNewRealm();
        begin(m_context, *m_debugger, std::make_unique<JavaScriptSteps>(*this));
    } catch (const ScriptErrorSet&) {
        const QString text = takeScriptError().message;
        leaveActive();
        enterActiveRealm();
        throw std::runtime_error("The functions of the test system can't be made known: " +
                                 text.toStdString());
    }
}

JavaScriptInterpreter::~JavaScriptInterpreter() {
    end();
    m_failures.clear();
    Engine::self().jobs().clear();
    leaveActive();
    enterActiveRealm();
    m_realm.reset();
}

void JavaScriptInterpreter::enterNewRealm() {
    std::unique_ptr<ScriptRealm> old = std::move(m_realm);
    m_realm = std::make_unique<ScriptRealm>();
    enterActiveRealm();
    m_debugger->realmChanged();
}

void JavaScriptInterpreter::enterActiveRealm() {
    static bool s_isInside = false;
    if (s_isInside)
        JS::LeaveRealm(engineContext(), nullptr);
    JavaScriptInterpreter* const interpreter = active();
    s_isInside = interpreter && interpreter->m_realm;
    if (s_isInside)
        JS::EnterRealm(engineContext(), interpreter->m_realm->global());
}

// Names for scripts

void JavaScriptInterpreter::addNativeType(const QString& name, void* typeId,
                                          const NativeScriptType& type) {
    defineProperty(m_realm->global(), name, JS::ObjectValue(*makeNativeClass(name, typeId, type)),
                   0);
}

QString JavaScriptInterpreter::addToSearchPath(const QFileInfo& directory) {
    m_searchPath.append(directory.absoluteFilePath());
    m_realm->modules().folders().append(directory.absoluteFilePath());
    return {};
}

void JavaScriptInterpreter::publishFunctions(const QStringList& names) {
    for (const QString& name : names) {
        if (!hasProperty(m_realm->global(), toKey(name)))
            defineProperty(m_realm->global(), name, JS::ObjectValue(*makeApplicationFunction(name)),
                           0);
    }
}

// Scripts

void JavaScriptInterpreter::startScript(const QString& path, const QStringList& arguments,
                                        const QStringList& folders) {
    m_failures.clear();
    m_scriptModule = nullptr;
    Engine::self().jobs().clear();
    try {
        if (m_hasRunScript) {
            enterNewRealm();
            registerFunctions();
            for (const QString& text : initScripts())
                attempt([&] { runText(text, QString(), Exports::BecomeGlobals); });
            m_hasRunScript = false;
        }
        m_realm->modules().folders() = folders + m_searchPath;
        ValueRoots texts;
        for (const QString& text : QStringList(path) + arguments)
            texts.add(toJsText(text));
        const ObjectRoot library(propertyOf(m_realm->global(), "tamrix"));
        defineProperty(library, QStringLiteral("argv"), JS::ObjectValue(*newArray(texts)));
    } catch (const ScriptErrorSet&) {
        qWarning("The script can't be started: %s",
                 takeScriptError().message.toLocal8Bit().constData());
    }
}

JSObject* JavaScriptInterpreter::compile(const QString& text, const QString& file,
                                         JS::MutableHandleScript script) {
    m_debugger->noticeFile(file);
    Source source(text, file);
    // As modules are: a slip in a name is an error, and no new variable or property.
    source.options.setForceStrictMode();
    script.set(JS::Compile(engineContext(), source.options, source.text));
    if (script) {
        const ValueRoot path(toJsText(file));
        JS::SetScriptPrivate(script, path);
        return nullptr;
    }
    checked(isModuleError());
    clearException();
    return m_realm->modules().compile(text, file);
}

QString JavaScriptInterpreter::syntaxError(const QString& text) {
    const std::optional<ScriptError> error = attempt([&] {
        Root<JSScript*> script;
        compile(text, QStringLiteral("<code>"), &script);
    });
    return error ? error->message : QString();
}

bool JavaScriptInterpreter::checkSyntax(const QString& text, const QString& fileName) {
    clearError();
    return runCode(true, [&] {
        Root<JSScript*> script;
        compile(text, Debugger::sanitizedFilePath(fileName), &script);
    });
}

void JavaScriptInterpreter::runText(const QString& text, const QString& fileName, Exports exports) {
    JSContext* const engine = engineContext();
    Root<JSScript*> script;
    const ObjectRoot module(compile(
        text, fileName.isEmpty() ? noFile : Debugger::sanitizedFilePath(fileName), &script));
    if (module) {
        // The functions of a script that ends early are there, too.
        if (exports == Exports::StayInModule && !fileName.isEmpty())
            m_scriptModule = module;
        m_realm->modules().run(module);
    } else {
        ValueRoot ignored;
        checked(JS_ExecuteScript(engine, script, &ignored));
    }
    throwUnhandledRejection();
    if (module && exports == Exports::BecomeGlobals) {
        const ObjectRoot names(checked(JS::GetModuleNamespace(engine, module)));
        checked(JS_AssignObject(engine, m_realm->global(), names));
    }
}

bool JavaScriptInterpreter::runScript(const QString& text, const QString& fileName) {
    m_hasRunScript = m_hasRunScript || !fileName.isEmpty();
    return runCode(!fileName.isEmpty(), [&] { runText(text, fileName, Exports::StayInModule); });
}

SharedPtr<ScriptArgument> JavaScriptInterpreter::scriptFunction(const QString& name) {
    static const QRegularExpression s_name(QStringLiteral("^[A-Za-z_$][\\w$]*$"));
    if (!s_name.match(name).hasMatch())
        return {};
    ValueRoot function;
    try {
        // What a module keeps for itself is found as well as what it exports.
        if (m_scriptModule) {
            const ObjectRoot names(
                checked(JS::GetModuleEnvironment(engineContext(), m_scriptModule)));
            const IdRoot key(toKey(name));
            function = hasProperty(names, key) ? propertyOf(names, key) : JS::UndefinedValue();
        }
        if (!function.isObject())
            function = evaluateOwn(QStringLiteral("typeof %1 === 'function' ? %1 : null").arg(name),
                                   "<tamrix>");
    } catch (const ScriptErrorSet&) {
        // A name that has no value yet.
        clearException();
    }
    return isFunction(function) ? argumentOf(function) : SharedPtr<ScriptArgument>();
}

SharedPtr<ScriptArgument> JavaScriptInterpreter::libraryFunction(const QString& name) {
    const ValueRoot function(propertyOf(m_realm->global(), name.toUtf8().constData()));
    return isFunction(function) ? argumentOf(function) : SharedPtr<ScriptArgument>();
}

ScriptArgument::Map JavaScriptInterpreter::exportedVariables() {
    ScriptArgument::Map variables;
    if (!m_scriptModule)
        return variables;
    const ObjectRoot names(JS::GetModuleNamespace(engineContext(), m_scriptModule));
    IdRoots keys;
    if (!names ||
        !js::GetPropertyKeys(engineContext(), names, JSITER_OWNONLY | JSITER_HIDDEN, &keys))
        clearException();
    for (const jsid& key : keys) {
        try {
            variables[fromKey(key)] = argumentOf(propertyOf(names, key));
        } catch (const ScriptErrorSet&) {
            // A name has no value before the script has come to it.
            clearException();
        }
    }
    return variables;
}

bool JavaScriptInterpreter::refuseScript(const LineInfo& place, const QString& message) {
    ScriptError error;
    error.message = message;
    error.callStack = {place};
    return failWith(error);
}

LanguageInterpreter::CallEnd JavaScriptInterpreter::call(const SharedPtr<ScriptArgument>& function,
                                                         const CallArguments& arguments,
                                                         const QString& name, bool isCallback) {
    m_hasRunScript = true;
    const CallEnd end = runCall(isCallback, [&] {
        ArgumentValues values(arguments.positional);
        if (!arguments.named.empty())
            values.add(objectOf(arguments.named));
        ValueRoot result(resultOf(valueOf(function), values));
        refuseGenerator(name, result);
        settled(&result);
        if (!isCallback)
            throwUnhandledRejection();
    });
    // A call that was refused has come to no line.
    const bool isRefused = end != CallEnd::Succeeded && errorCallStack().empty();
    if (const LineInfo place = placeOf(function); isRefused && !isCallback && place.isValid()) {
        setErrorFile(place.fileName());
        setErrorLine(place.lineNumber());
        setErrorCallStack({place});
    }
    return end;
}

LineInfo JavaScriptInterpreter::placeOf(const SharedPtr<ScriptArgument>& function) {
    return placeOfFunction(valueOf(function));
}

QString JavaScriptInterpreter::evaluateAtStop(const ScriptFrame* frame, const QString& code) {
    const ValueRoot value(m_debugger->evaluate(frame, code));
    if (value.isUndefined())
        return {};
    return value.isString() ? quoted(fromJsText(value)) : textOf(value);
}

TimeLimit::Expired JavaScriptInterpreter::endOfEvaluation() {
    return [] { Engine::self().requestEnd(Engine::End::TimeLimit); };
}

void JavaScriptInterpreter::forgetEndOfEvaluation() {
    Engine::self().forgetRequest(Engine::End::TimeLimit);
}

}  // namespace Tamrix::JavaScriptPlugin
