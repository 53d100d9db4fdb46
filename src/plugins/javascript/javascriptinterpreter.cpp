#include "plugins/javascript/javascriptinterpreter.h"

#include <QRegularExpression>
#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "plugins/javascript/javascriptsteps.h"
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
    JS_GetPendingException(engineContext(), &exception);
    const JSErrorReport* const report = reportOf(exception);
    return report && std::find(std::begin(moduleErrors), std::end(moduleErrors),
                               report->errorNumber) != std::end(moduleErrors);
}

void refuseGenerator(const QString& name, JS::HandleValue result) {
    const char* const kind = result.isObject() ? JS::GetClass(&result.toObject())->name : "";
    if (std::strcmp(kind, "Generator") == 0 || std::strcmp(kind, "AsyncGenerator") == 0)
        throwBuiltIn(JSProto_TypeError,
                     (name.isEmpty() ? QStringLiteral("The function") : name + "()") +
                         " is a generator and nothing of it has run: take its '*' away");
}

}  // namespace

JavaScriptInterpreter::JavaScriptInterpreter(RunnerInterface* runner)
    : LanguageInterpreter(runner, JavaScript) {
    Modules::install();
    stopWaiting();
    try {
        enterNewRealm();
        begin(m_context, m_debugger, makeStepLanguage(*this));
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
    stopWaiting();
    leaveActive();
    enterActiveRealm();
    m_realm.reset();
}

void JavaScriptInterpreter::enterNewRealm() {
    std::unique_ptr<ScriptRealm> old = std::move(m_realm);
    m_realm = std::make_unique<ScriptRealm>();
    enterActiveRealm();
    m_context.defineStepMembers();
    m_debugger.realmChanged();
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
    defineProperty(m_realm->global(), name, makeNativeClass(name, typeId, type), 0);
}

QString JavaScriptInterpreter::addToSearchPath(const QFileInfo& directory) {
    m_searchPath.append(directory.absoluteFilePath());
    m_realm->modules().folders().append(directory.absoluteFilePath());
    return {};
}

void JavaScriptInterpreter::publishFunctions(const QStringList& names) {
    for (const QString& name : names) {
        if (!hasProperty(m_realm->global(), toKey(name)))
            defineProperty(m_realm->global(), name, makeApplicationFunction(name), 0);
    }
}

// Scripts

void JavaScriptInterpreter::startScript(const QString& path, const QStringList& arguments,
                                        const QStringList& folders) {
    m_failures.clear();
    m_scriptModule = nullptr;
    stopWaiting();
    if (hasStarted()) {
        enterNewRealm();
        registerFunctions();
        for (const QString& text : initScripts())
            attempt([&] { runText(text, QString(), Exports::BecomeGlobals); });
    }
    m_realm->modules().folders() = folders + m_searchPath;
    const ObjectRoot library(propertyOf(m_realm->global(), "tamrix"));
    defineProperty(library, QStringLiteral("argv"), newArray(QStringList(path) + arguments));
}

JavaScriptInterpreter::Code JavaScriptInterpreter::compile(const QString& text,
                                                           const QString& fileName) {
    const QString file = fileName.isEmpty() ? noFile : Debugger::sanitizedFilePath(fileName);
    m_debugger.sourceIdOf(file);
    Source source(text, file);
    // As modules are: a slip in a name is an error, and no new variable or property.
    source.options.setForceStrictMode();
    Code code;
    code.script = JS::Compile(engineContext(), source.options, source.text);
    if (code.script) {
        JS::SetScriptPrivate(code.script, ValueRoot(toJsText(file)));
        return code;
    }
    checked(isModuleError());
    clearException();
    code.module = m_realm->modules().compile(text, file);
    return code;
}

void JavaScriptInterpreter::runText(const QString& text, const QString& fileName, Exports exports) {
    const Code code = compile(text, fileName);
    // The functions of a script that ends early are there, too.
    if (code.module && exports == Exports::StayInModule && !fileName.isEmpty())
        m_scriptModule = code.module;
    if (code.module)
        m_realm->modules().run(code.module);
    else
        checked(JS_ExecuteScript(engineContext(), code.script));
    throwUnhandledRejection();
    if (code.module && exports == Exports::BecomeGlobals) {
        const ObjectRoot names(checked(JS::GetModuleNamespace(engineContext(), code.module)));
        checked(JS_AssignObject(engineContext(), m_realm->global(), names));
    }
}

SharedPtr<ScriptArgument> JavaScriptInterpreter::scriptFunction(const QString& name) {
    static const QRegularExpression s_name(QStringLiteral("^[A-Za-z_$][\\w$]*$"));
    if (!s_name.match(name).hasMatch())
        return {};
    ValueRoot function;
    // A name may have no value yet.
    attempt([&] {
        // What a module keeps for itself is found as well as what it exports.
        if (m_scriptModule) {
            const ObjectRoot names(
                checked(JS::GetModuleEnvironment(engineContext(), m_scriptModule)));
            function = propertyOf(names, toKey(name));
        }
        if (!function.isObject())
            function = evaluateOwn(QStringLiteral("typeof %1 === 'function' ? %1 : null").arg(name),
                                   "<tamrix>");
    });
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
    attempt([&] {
        const ObjectRoot names(checked(JS::GetModuleNamespace(engineContext(), m_scriptModule)));
        JS::PersistentRootedIdVector keys(engineContext());
        checked(js::GetPropertyKeys(engineContext(), names, JSITER_OWNONLY | JSITER_HIDDEN, &keys));
        // A name has no value before the script has come to it.
        for (const jsid& key : keys)
            attempt([&] { variables[fromKey(key)] = argumentOf(propertyOf(names, key)); });
    });
    return variables;
}

LanguageInterpreter::CallEnd JavaScriptInterpreter::call(const SharedPtr<ScriptArgument>& function,
                                                         const CallArguments& arguments,
                                                         const QString& name, bool isCallback) {
    return runCall(isCallback, [&] {
        ArgumentValues values(arguments.positional);
        if (!arguments.named.empty())
            values.add(objectOf(arguments.named));
        ValueRoot result(resultOf(valueOf(function), values));
        refuseGenerator(name, result);
        settled(&result);
        if (!isCallback)
            throwUnhandledRejection();
    });
}

QString JavaScriptInterpreter::evaluateAtStop(const ScriptFrame* frame, const QString& code) {
    const ValueRoot value(JavaScriptDebugger::evaluate(frame, code));
    if (value.isUndefined())
        return {};
    return value.isString() ? quoted(fromJsText(value)) : textOf(value);
}

}  // namespace Tamrix::JavaScriptPlugin
