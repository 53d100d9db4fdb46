#include "plugins/javascript/javascriptinterpreter.h"

#include <js/Array.h>
#include <js/CompilationAndEvaluation.h>
#include <js/CompileOptions.h>
#include <js/ErrorReport.h>
#include <js/Exception.h>
#include <js/Modules.h>
#include <js/Object.h>
#include <js/ScriptPrivate.h>
#include <js/friend/ErrorMessages.h>
#include <jsfriendapi.h>

#include <QRegularExpression>
#include <cstring>
#include <stdexcept>

#include "interpreter/language/stepactions.h"
#include "plugins/javascript/debuggerrealm.h"
#include "plugins/javascript/errors.h"
#include "plugins/javascript/hostobjects.h"
#include "plugins/javascript/javascriptdebugger.h"
#include "plugins/javascript/javascriptsteps.h"
#include "plugins/javascript/jobqueue.h"
#include "plugins/javascript/nativefunctions.h"
#include "plugins/javascript/values.h"
#include "plugins/javascript/valuetext.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

/// Stands for the file of code that has none.
const QString noFile = QStringLiteral("<init script>");

/// What the compiler says of a script that is a module.
constexpr unsigned moduleErrors[] = {JSMSG_IMPORT_DECL_AT_TOP_LEVEL, JSMSG_EXPORT_DECL_AT_TOP_LEVEL,
                                     JSMSG_IMPORT_META_OUTSIDE_MODULE,
                                     JSMSG_AWAIT_OUTSIDE_ASYNC_OR_MODULE};

bool isModuleError(JSContext* context) {
    JS::RootedValue exception(context);
    if (!JS_GetPendingException(context, &exception) || !exception.isObject())
        return false;
    JS::RootedObject error(context, &exception.toObject());
    const JSErrorReport* const report = JS_ErrorFromException(context, error);
    return report && std::find(std::begin(moduleErrors), std::end(moduleErrors),
                               report->errorNumber) != std::end(moduleErrors);
}

void refuseGenerator(const QString& name, JS::HandleValue result) {
    const char* const kind = result.isObject() ? JS::GetClass(&result.toObject())->name : "";
    if (std::strcmp(kind, "Generator") == 0 || std::strcmp(kind, "AsyncGenerator") == 0)
        throwBuiltIn("TypeError",
                     (name.isEmpty() ? QStringLiteral("The function") : name + "()") +
                         " is a generator and nothing of it has run: take its '*' away");
}

}  // namespace

JavaScriptInterpreter::JavaScriptInterpreter(RunnerInterface* runner)
    : LanguageInterpreter(runner, JavaScript) {
    JSContext* const engine = engineContext();
    Modules::install(engine);
    m_scriptModule.init(engine);
    m_debugger = std::make_unique<JavaScriptDebugger>(*this);
    try {
        enterNewRealm();
        begin(m_context, *m_debugger, std::make_unique<JavaScriptSteps>(*this));
    } catch (const ScriptErrorSet&) {
        const QString text = takeErrorText();
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
    JS::RootedObject global(engineContext(), m_realm->global());
    JSObject* const made = makeNativeClass(name, typeId, type);
    defineProperty(global, name, JS::ObjectValue(*made), 0);
}

JS::Value JavaScriptInterpreter::nativeValue(SharedPtr<NativeScriptObject> object) {
    if (!object)
        return JS::NullValue();
    JS::RootedObject prototype(engineContext(), m_realm->nativePrototype(object->typeId()));
    return JS::ObjectValue(*makeHostObject(std::move(object), prototype));
}

QString JavaScriptInterpreter::addToSearchPath(const QFileInfo& directory) {
    m_searchPath.append(directory.absoluteFilePath());
    m_realm->modules().addFolder(directory.absoluteFilePath());
    return {};
}

void JavaScriptInterpreter::publishFunctions(const QStringList& names) {
    JSContext* const engine = engineContext();
    JS::RootedObject global(engine, m_realm->global());
    for (const QString& name : names) {
        bool isTaken = false;
        checked(JS_HasUCProperty(engine, global, reinterpret_cast<const char16_t*>(name.utf16()),
                                 static_cast<std::size_t>(name.size()), &isTaken));
        if (!isTaken)
            defineProperty(global, name, JS::ObjectValue(*makeApplicationFunction(name)), 0);
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
        m_realm->modules().setFolders(folders + m_searchPath);
        JS::RootedObject global(engineContext(), m_realm->global());
        JS::RootedValue own(engineContext(), propertyOf(global, "tamrix"));
        JS::RootedObject library(engineContext(), own.toObjectOrNull());
        ScriptArgument::List texts;
        for (const QString& text : QStringList(path) + arguments)
            texts.push_back(m_context.createString(text));
        defineProperty(library, QStringLiteral("argv"), valueOf(m_context.createList(texts)));
    } catch (const ScriptErrorSet&) {
        qWarning("The script can't be started: %s", takeErrorText().toLocal8Bit().constData());
    }
}

void JavaScriptInterpreter::compile(const QString& text, const QString& file,
                                    JS::MutableHandleScript script,
                                    JS::MutableHandleObject module) {
    JSContext* const engine = engineContext();
    m_debugger->noticeFile(file);
    JS::CompileOptions options(engine);
    const QByteArray name = file.toUtf8();
    options.setFileAndLine(name.constData(), 1);
    // As modules are: a slip in a name is an error, and no new variable or property.
    options.setForceStrictMode();
    JS::SourceText<char16_t> source;
    setSource(text, &source);
    script.set(JS::Compile(engine, options, source));
    if (script) {
        JS::SetScriptPrivate(script, m_realm->modules().fileValue(file));
        return;
    }
    if (!isModuleError(engine))
        throw ScriptErrorSet();
    clearException();
    module.set(m_realm->modules().compile(text, file));
}

QString JavaScriptInterpreter::syntaxError(const QString& text) {
    JS::RootedScript script(engineContext());
    JS::RootedObject module(engineContext());
    try {
        compile(text, QStringLiteral("<code>"), &script, &module);
        return {};
    } catch (const ScriptErrorSet&) {
        return takeErrorText();
    }
}

bool JavaScriptInterpreter::checkSyntax(const QString& text, const QString& fileName) {
    clearError();
    return runCode(true, [&] {
        JS::RootedScript script(engineContext());
        JS::RootedObject module(engineContext());
        compile(text, Debugger::sanitizedFilePath(fileName), &script, &module);
    });
}

void JavaScriptInterpreter::runText(const QString& text, const QString& fileName, Exports exports) {
    JSContext* const engine = engineContext();
    JS::RootedScript script(engine);
    JS::RootedObject module(engine);
    compile(text, fileName.isEmpty() ? noFile : Debugger::sanitizedFilePath(fileName), &script,
            &module);
    JS::RootedValue value(engine);
    if (script) {
        checked(JS_ExecuteScript(engine, script, &value));
        throwUnhandledRejection();
        return;
    }
    // The functions of a script that ends early are there, too.
    if (exports == Exports::StayInModule && !fileName.isEmpty())
        m_scriptModule = module;
    m_realm->modules().run(module);
    throwUnhandledRejection();
    if (exports == Exports::BecomeGlobals) {
        JS::RootedObject global(engine, m_realm->global());
        JS::RootedObject names(engine, checked(JS::GetModuleNamespace(engine, module)));
        checked(JS_AssignObject(engine, global, names));
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
    JSContext* const engine = engineContext();
    JS::RootedValue function(engine);
    try {
        // What a module keeps for itself is found as well as what it exports.
        if (m_scriptModule) {
            JS::RootedObject module(engine, m_scriptModule);
            JS::RootedObject names(engine, checked(JS::GetModuleEnvironment(engine, module)));
            bool isThere = false;
            checked(JS_HasProperty(engine, names, name.toUtf8().constData(), &isThere));
            if (isThere)
                function = propertyOf(names, name.toUtf8().constData());
        }
        if (!function.isObject())
            function = evaluateOwn(QStringLiteral("typeof %1 === 'function' ? %1 : null").arg(name),
                                   "<tamrix>");
    } catch (const ScriptErrorSet&) {
        // A name that has no value yet.
        clearException();
    }
    if (!function.isObject() || !JS::IsCallable(&function.toObject()))
        return {};
    return argumentOf(function);
}

ScriptArgument::Map JavaScriptInterpreter::exportedVariables() {
    ScriptArgument::Map variables;
    if (!m_scriptModule)
        return variables;
    JSContext* const engine = engineContext();
    try {
        JS::RootedObject module(engine, m_scriptModule);
        JS::RootedObject names(engine, checked(JS::GetModuleNamespace(engine, module)));
        JS::RootedIdVector keys(engine);
        checked(js::GetPropertyKeys(engine, names, JSITER_OWNONLY | JSITER_HIDDEN, &keys));
        JS::RootedId key(engine);
        JS::RootedValue value(engine);
        for (const jsid each : keys) {
            key = each;
            // A name has no value before the script has come to it.
            if (JS_GetPropertyById(engine, names, key, &value))
                variables[fromKey(key)] = argumentOf(value);
            else
                clearException();
        }
    } catch (const ScriptErrorSet&) {
        clearException();
    }
    return variables;
}

bool JavaScriptInterpreter::refuseScript(const LineInfo& place, const QString& message) {
    ScriptError error;
    error.message = message;
    error.callStack = {place};
    return failWith(error);
}

SharedPtr<ScriptArgument> JavaScriptInterpreter::libraryFunction(const QString& name) {
    JS::RootedObject global(engineContext(), m_realm->global());
    JS::RootedValue function(engineContext(), propertyOf(global, name.toUtf8().constData()));
    if (!function.isObject() || !JS::IsCallable(&function.toObject()))
        return {};
    return argumentOf(function);
}

LanguageInterpreter::CallEnd JavaScriptInterpreter::call(const SharedPtr<ScriptArgument>& function,
                                                         const CallArguments& arguments,
                                                         const QString& name, bool isCallback) {
    JSContext* const engine = engineContext();
    m_hasRunScript = true;
    const CallEnd end = runCall(isCallback, [&] {
        JS::RootedValueVector values(engine);
        for (const SharedPtr<ScriptArgument>& argument : arguments.positional)
            checked(values.append(valueOf(argument)));
        if (!arguments.named.empty()) {
            JS::RootedObject named(engine, checked(JS_NewPlainObject(engine)));
            for (const auto& [key, value] : arguments.named)
                defineProperty(named, key, valueOf(value));
            checked(values.append(JS::ObjectValue(*named)));
        }
        JS::RootedValue result(engine);
        checked(JS::Call(engine, JS::UndefinedHandleValue, valueOf(function), values, &result));
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
    JSContext* const engine = engineContext();
    JS::RootedValue value(engine, valueOf(function));
    JS::RootedFunction object(engine,
                              value.isObject() ? JS_GetObjectFunction(&value.toObject()) : nullptr);
    JSScript* const script = object ? JS_GetFunctionScript(engine, object) : nullptr;
    if (!script) {
        clearException();
        return {};
    }
    return placeOfCode(QString::fromUtf8(JS_GetScriptFilename(script)),
                       static_cast<int>(JS_GetScriptBaseLineNumber(engine, script)));
}

QString JavaScriptInterpreter::evaluateAtStop(const ScriptFrame* frame, const QString& code) {
    JS::RootedValue value(engineContext(), m_debugger->evaluate(frame, code));
    if (value.isUndefined())
        return {};
    return value.isString() ? quoted(fromJsString(value.toString())) : textOf(value);
}

// Errors

bool JavaScriptInterpreter::isErrorOrdinary() {
    return !isEndOfScript();
}

ScriptError JavaScriptInterpreter::takeError() {
    return takeScriptError();
}

void JavaScriptInterpreter::errorUncaught() {
    m_debugger->errorUncaught();
}

void JavaScriptInterpreter::noticeFailure(const ScriptFailure& failure, JS::HandleObject error) {
    m_failures.notice(failure, *m_debugger, engineContext(), error);
}

bool JavaScriptInterpreter::isSkip(JS::HandleValue exception) const {
    return exception.isObject() && m_failures.isSkip(&exception.toObject());
}

void JavaScriptInterpreter::completeError(JS::HandleValue exception, ScriptError* error) {
    if (exception.isObject())
        m_failures.complete(&exception.toObject(), error);
}

}  // namespace Tamrix::JavaScriptPlugin
