#include "plugins/javascript/javascriptinterpreter.h"

#include <js/Array.h>
#include <js/CompilationAndEvaluation.h>
#include <js/CompileOptions.h>
#include <js/ErrorReport.h>
#include <js/Exception.h>
#include <js/Modules.h>
#include <js/Object.h>
#include <js/ScriptPrivate.h>
#include <js/SourceText.h>
#include <js/friend/ErrorMessages.h>
#include <jsfriendapi.h>

#include <QRegularExpression>
#include <cstring>
#include <stdexcept>

#include "interpreter/language/stepactions.h"
#include "interpreter/objects/globalfunctions.h"
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

/// Code of the library that is evaluated in the script's realm.
JS::Value evaluateOwn(const QString& text) {
    JSContext* const context = engineContext();
    JS::CompileOptions options(context);
    options.setFileAndLine("<tamrix>", 1);
    JS::SourceText<char16_t> source;
    checked(source.init(context, reinterpret_cast<const char16_t*>(text.utf16()),
                        static_cast<std::size_t>(text.size()), JS::SourceOwnership::Borrowed));
    JS::RootedValue value(context);
    checked(JS::Evaluate(context, options, source, &value));
    return value;
}

}  // namespace

JavaScriptInterpreter::JavaScriptInterpreter(RunnerInterface* runner)
    : LanguageInterpreter(runner, JavaScript) {
    JSContext* const engine = engineContext();
    Modules::install(engine);
    m_scriptModule.init(engine);
    m_skip.init(engine);
    m_originOf.init(engine);
    m_debugger = std::make_unique<JavaScriptDebugger>(*this);
    try {
        enterNewRealm();
        begin(std::make_unique<JavaScriptSteps>(*this));
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
    Engine::self().jobs().clear();
    leaveActive();
    enterActiveRealm();
    m_realm.reset();
}

LanguageDebugger& JavaScriptInterpreter::languageDebugger() {
    return *m_debugger;
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

void JavaScriptInterpreter::define(const NativeFunction& function) {
    JSContext* const engine = engineContext();
    const QString& owner = function.signature().owner;
    JS::RootedObject holder(engine,
                            owner.isEmpty() ? m_realm->global() : m_realm->nameSpace(owner));
    defineProperty(holder, function.signature().name, JS::ObjectValue(*makeFunction(function)),
                   owner.isEmpty() ? 0 : JSPROP_ENUMERATE);
}

void JavaScriptInterpreter::defineConstant(const QString& name, int value) {
    const QString separator = QStringLiteral("::");
    const bool isMember = name.contains(separator);
    JS::RootedObject holder(engineContext(), isMember
                                                 ? m_realm->nameSpace(name.section(separator, 0, 0))
                                                 : m_realm->global());
    defineProperty(holder, isMember ? name.section(separator, 1) : name, JS::Int32Value(value), 0);
}

namespace {

/// A member function of the library's takes its object as the first argument.
bool callMember(JSContext* context, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    JS::RootedValue function(context, js::GetFunctionNativeReserved(&arguments.callee(), 0));
    JS::RootedValueVector all(context);
    bool isDone = all.append(arguments.thisv());
    for (unsigned index = 0; index < count; ++index)
        isDone = isDone && all.append(arguments[index]);
    return isDone && JS::Call(context, JS::UndefinedHandleValue, function, all, arguments.rval());
}

}  // namespace

void JavaScriptInterpreter::defineMember(const NativeFunction& function) {
    JSContext* const engine = engineContext();
    if (function.signature().owner != QLatin1String("ApplicationContext")) {
        qWarning("JavaScript has no class for the member functions of %s",
                 function.signature().owner.toLocal8Bit().constData());
        return;
    }
    JS::RootedObject prototype(engine, m_realm->applicationContextPrototype());
    JS::RootedValue target(engine, JS::ObjectValue(*makeFunction(function)));
    const QString& name = function.signature().name;
    JSFunction* const member =
        checked(js::NewFunctionWithReserved(engine, callMember, 0, 0, name.toUtf8().constData()));
    JS::RootedObject object(engine, JS_GetFunctionObject(member));
    js::SetFunctionNativeReserved(object, 0, target);
    defineProperty(prototype, name, JS::ObjectValue(*object), 0);
}

void JavaScriptInterpreter::addNativeFunction(const QString& name, bool (*function)(ScriptContext*),
                                              const QStringList& requiredParameters,
                                              const QStringList& optionalParameters,
                                              const QString& description) {
    define(NativeFunction(
        m_context, {name, {}, requiredParameters, optionalParameters, description}, function));
}

void JavaScriptInterpreter::addNativeType(const QString& name, void* typeId,
                                          const NativeScriptType& type) {
    m_nativeTypes[typeId] = type.super();
    JS::RootedObject global(engineContext(), m_realm->global());
    JSObject* const made = makeNativeClass(name, typeId, type);
    defineProperty(global, name, JS::ObjectValue(*made), 0);
}

JS::Value JavaScriptInterpreter::nativeValue(SharedPtr<NativeScriptObject> object) {
    if (!object)
        return JS::NullValue();
    JS::RootedObject prototype(engineContext());
    void* type = object->typeId();
    while (type && !prototype) {
        prototype = m_realm->nativePrototype(type);
        type = m_nativeTypes.value(type);
    }
    return JS::ObjectValue(*makeHostObject(std::move(object), prototype));
}

bool JavaScriptInterpreter::isDerivedFrom(void* typeId, void* wanted) const {
    while (typeId && typeId != wanted)
        typeId = m_nativeTypes.value(typeId);
    return typeId && typeId == wanted;
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
    m_skip = nullptr;
    m_originOf = nullptr;
    m_scriptModule = nullptr;
    Engine::self().jobs().clear();
    try {
        if (m_hasRunScript) {
            enterNewRealm();
            m_context.initFunctions();
            initNativeAPI();
            publishFunctions(globalFunctionNames(Inspector::self()->model()));
            for (const QString& text : m_initScripts)
                runText(text, QString(), Exports::BecomeGlobals);
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
    checked(source.init(engine, reinterpret_cast<const char16_t*>(text.utf16()),
                        static_cast<std::size_t>(text.size()), JS::SourceOwnership::Borrowed));
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
    JS::RootedScript script(engineContext());
    JS::RootedObject module(engineContext());
    try {
        compile(text, Debugger::sanitizedFilePath(fileName), &script, &module);
        return true;
    } catch (const ScriptErrorSet&) {
        return failWith(takeScriptError());
    }
}

JSObject* JavaScriptInterpreter::runText(const QString& text, const QString& fileName,
                                         Exports exports) {
    JSContext* const engine = engineContext();
    JS::RootedScript script(engine);
    JS::RootedObject module(engine);
    compile(text, fileName.isEmpty() ? noFile : Debugger::sanitizedFilePath(fileName), &script,
            &module);
    JS::RootedValue value(engine);
    if (script) {
        checked(JS_ExecuteScript(engine, script, &value));
        throwUnhandledRejection();
        return nullptr;
    }
    m_realm->modules().run(module);
    throwUnhandledRejection();
    if (exports == Exports::BecomeGlobals) {
        JS::RootedObject global(engine, m_realm->global());
        JS::RootedObject names(engine, checked(JS::GetModuleNamespace(engine, module)));
        checked(JS_AssignObject(engine, global, names));
    }
    return module;
}

bool JavaScriptInterpreter::runScript(const QString& text, const QString& fileName) {
    try {
        JSObject* const module = runText(text, fileName, Exports::StayInModule);
        if (!fileName.isEmpty()) {
            m_scriptModule = module;
            m_hasRunScript = true;
        } else {
            m_initScripts.append(text);
        }
        return succeed();
    } catch (const ScriptErrorSet&) {
        m_hasRunScript = m_hasRunScript || !fileName.isEmpty();
        const ScriptError error = takeScriptError();
        m_debugger->errorUncaught(error);
        return failWith(error, !fileName.isEmpty());
    }
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
            function =
                evaluateOwn(QStringLiteral("typeof %1 === 'function' ? %1 : null").arg(name));
    } catch (const ScriptErrorSet&) {
        // A name that has no value yet.
        clearException();
    }
    if (!function.isObject() || !JS::IsCallable(&function.toObject()))
        return {};
    return argumentOf(function);
}

SharedPtr<ScriptArgument> JavaScriptInterpreter::libraryFunction(const QString& name) {
    JS::RootedObject global(engineContext(), m_realm->global());
    JS::RootedValue function(engineContext(), propertyOf(global, name.toUtf8().constData()));
    if (!function.isObject() || !JS::IsCallable(&function.toObject()))
        return {};
    return argumentOf(function);
}

void JavaScriptInterpreter::refuseGenerator(const QString& name, JS::HandleValue result) {
    if (!result.isObject())
        return;
    const char* const className = JS::GetClass(&result.toObject())->name;
    if (std::strcmp(className, "Generator") != 0 && std::strcmp(className, "AsyncGenerator") != 0)
        return;
    raiseBuiltIn("TypeError", (name.isEmpty() ? QStringLiteral("The function") : name + "()") +
                                  " is a generator and nothing of it has run: take its '*' away");
    throw ScriptErrorSet();
}

LanguageInterpreter::CallEnd JavaScriptInterpreter::call(const SharedPtr<ScriptArgument>& function,
                                                         const CallArguments& arguments,
                                                         const QString& name, bool isCallback) {
    JSContext* const engine = engineContext();
    m_hasRunScript = true;
    try {
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
        succeed();
        return CallEnd::Succeeded;
    } catch (const ScriptErrorSet&) {
        if (isCallback && isEndOfScript())
            throw;
    }
    const bool isPending = isPendingStepError();
    ScriptError error = takeScriptError();
    // A call that was refused has come to no line.
    if (error.callStack.empty())
        error.callStack.push_back(placeOf(function));
    if (!isCallback)
        m_debugger->errorUncaught(error);
    if (failWith(error))
        return CallEnd::Succeeded;
    return isPending ? CallEnd::Pending : CallEnd::Failed;
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

Outcome<QString> JavaScriptInterpreter::evaluateAtStop(const ScriptFrame* frame,
                                                       const QString& code) {
    try {
        JS::RootedValue value(engineContext(), m_debugger->evaluate(frame, code));
        if (value.isUndefined())
            return QString();
        return value.isString() ? quoted(fromJsString(value.toString())) : textOf(value);
    } catch (const ScriptErrorSet&) {
        return fail(FailureKind::Failed, takeErrorText());
    }
}

// Errors

bool JavaScriptInterpreter::isErrorOrdinary() {
    return !isEndOfScript();
}

ScriptError JavaScriptInterpreter::takeError() {
    return takeScriptError();
}

void JavaScriptInterpreter::noticeFailure(const ScriptFailure& failure, JS::HandleObject error) {
    if (failure.isSkip)
        m_skip = error;
    if (failure.origin.line >= 0) {
        m_originOf = error;
        m_origin = LineInfo(m_debugger->findSourceId(failure.origin.sourceId), failure.origin.line);
    }
}

bool JavaScriptInterpreter::isSkip(JS::HandleValue exception) const {
    return exception.isObject() && m_skip == &exception.toObject();
}

void JavaScriptInterpreter::completeError(JS::HandleValue exception, ScriptError* error) {
    error->isSkip = isSkip(exception);
    if (exception.isObject() && m_originOf == &exception.toObject())
        error->callStack.insert(error->callStack.begin(), m_origin);
}

}  // namespace Tamrix::JavaScriptPlugin
