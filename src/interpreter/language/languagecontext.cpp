#include "interpreter/language/languagecontext.h"

#include <utility>

#include "interpreter/bridge/scriptlanguage.h"
#include "interpreter/language/languagedebugger.h"
#include "interpreter/language/languageinterpreter.h"
#include "interpreter/language/nativefunction.h"
#include "interpreter/language/stepactions.h"
#include "interpreter/language/stepmembers.h"
#include "interpreter/language/valuemembers.h"

namespace Tamrix {

// Calls

LanguageContext::Interlude::Interlude(LanguageContext& context)
    : m_context(context),
      m_state(context.m_state),
      m_areNamed(std::exchange(context.m_hasNamedArguments, false)),
      m_errorMessage(context.errorMessage()),
      m_errorType(context.errorType()),
      m_isSkip(context.isSkip()),
      m_result(std::move(context.m_result)),
      m_plainResult(std::exchange(context.m_plainResult, {})) {
    m_arguments.swap(context.argumentStorage());
    context.forgetError();
    context.m_state = 0;
}

LanguageContext::Interlude::~Interlude() {
    // The error of a call that runs inside of no other one stays to be asked for.
    if (m_state & Running) {
        m_context.forgetError();
        if (m_isSkip)
            m_context.setSkip(m_errorMessage);
        else if (m_state & ErrorStored)
            m_context.setError(m_errorMessage, m_errorType);
        m_context.m_state = m_state;
    }
    m_context.argumentStorage().swap(m_arguments);
    m_context.m_hasNamedArguments = m_areNamed;
    m_context.m_result = std::move(m_result);
    m_context.m_plainResult = m_plainResult;
}

LanguageContext::Call::Call(LanguageContext& context, ScriptArgument::List given, bool areNamed)
    : m_context(context) {
    if (context.isBusy())
        m_interlude.emplace(context);
    context.m_state = Running;
    context.m_hasNamedArguments = areNamed;
    context.argumentStorage() = std::move(given);
    setCurrent(&context);
}

LanguageContext::Call::~Call() {
    m_context.argumentStorage().clear();
    m_context.m_hasNamedArguments = false;
    m_context.endUnusualCall();
}

SharedPtr<ScriptArgument> LanguageContext::Call::takeResult() {
    return m_context.m_plainResult.kind != PlainResult::None
               ? m_context.create(m_context.m_plainResult)
               : std::move(m_context.m_result);
}

void LanguageContext::endUnusualCall() {
    m_result.reset();
    m_plainResult = {};
    // An error stays to be asked for, until the next call.
    if (!hasError())
        forgetError();
    m_state &= ErrorStored;
}

void LanguageContext::dropKeptArguments() {
    std::erase_if(argumentStorage(), [](const SharedPtr<ScriptArgument>& each) {
        return !each || each->referenceCount() > 1;
    });
}

void LanguageContext::setStackTraceResult(const std::vector<ScriptLocation>& trace) {
    std::vector<ScriptLocation> inScripts;
    for (const ScriptLocation& location : trace) {
        if (!location.fileName.isEmpty())
            inScripts.push_back(location);
    }
    ScriptContext::setStackTraceResult(inScripts);
}

SharedPtr<ScriptArgument> LanguageContext::createLocation(const ScriptLocation& location) {
    return createMap({{QStringLiteral("fileName"), createString(location.fileName)},
                      {QStringLiteral("line"), createInteger(location.line)}});
}

// Registration

void LanguageContext::addGlobalFunction(const QString& name, Function function) {
    ScriptContext::addGlobalFunction(name, function);
    define(NativeFunction(*this, signatureOfTable({}, name), function));
}

void LanguageContext::addStaticMemberFunction(const QString& className, const QString& name,
                                              Function function) {
    ScriptContext::addStaticMemberFunction(className, name, function);
    define(NativeFunction(*this, signatureOfTable(className, name), function));
}

void LanguageContext::addMemberFunction(const QString& className, const QString& name,
                                        Function function) {
    ScriptContext::addMemberFunction(className, name, function);
    defineMember(NativeFunction(*this, signatureOfTable(className, name), function));
}

void LanguageContext::addConstant(const QString& name, int value) {
    ScriptContext::addConstant(name, value);
    const QString separator = QStringLiteral("::");
    const bool isOwned = name.contains(separator);
    defineConstant(isOwned ? name.section(separator, 0, 0) : QString(),
                   isOwned ? name.section(separator, 1) : name, value);
}

void LanguageContext::define(const NativeFunction&) {}

void LanguageContext::defineValueMembers() {
    for (const NativeFunction& member : valueMembers(*this))
        defineMember(member);
}

void LanguageContext::defineStepMembers() {
    for (const NativeFunction& member : stepMembers(*this))
        defineMember(member);
}

StepActions& LanguageContext::steps() {
    return m_interpreter.steps();
}

void LanguageContext::defineMember(const NativeFunction& function) {
    const auto* const language = ScriptLanguageInformation::forLanguage(m_interpreter.language());
    qWarning("%s has no class for the member functions of %s",
             language ? language->name.toLocal8Bit().constData() : "The language",
             function.signature().owner.toLocal8Bit().constData());
}

void LanguageContext::defineConstant(const QString&, const QString&, int) {}

bool LanguageContext::lineInfoOfFrame(LineInfo& position, int ancestorLevel) const {
    const LineInfo place = m_interpreter.languageDebugger().placeOfFrame(ancestorLevel);
    if (place.isValid())
        position = place;
    return place.isValid();
}

// The language's own judgement

bool LanguageContext::evaluate(const QString& text, const QString& fileName) {
    // What a file registers that is loaded again takes the place of what it did before.
    m_interpreter.steps().registry().forget(fileName);
    const std::optional<ScriptError> raised =
        m_interpreter.attempt([&] { m_interpreter.runFile(text, fileName); });
    if (raised)
        setError(placedText(*raised));
    return !raised;
}

bool LanguageContext::attemptCondition(const std::function<bool()>& evaluate, QString* error) {
    bool holds = false;
    if (const auto raised = m_interpreter.attempt([&] { holds = evaluate(); }))
        *error = raised->message;
    return holds;
}

QString LanguageContext::slipIn(const QString& code) {
    const std::optional<ScriptError> error =
        m_interpreter.attempt([&] { m_interpreter.compileOnly(code, QString()); });
    return error ? error->message : QString();
}

std::pair<QString, QString> LanguageContext::attemptException(const ScriptArgument& code,
                                                              const ExceptionCode& actions) {
    if (!code.isString() && !code.isCallable())
        return {QString(), "Neither code as text nor a callable: " + code.toString()};
    const LanguageDebugger::CatchesErrors catching(m_interpreter.languageDebugger());
    if (code.isString()) {
        const QString slip = actions.slip ? actions.slip(code.toString()) : slipIn(code.toString());
        if (!slip.isEmpty())
            return {QString(), "The code is not valid: " + slip};
    }
    const std::optional<ScriptError> raised = m_interpreter.attempt([&] {
        if (code.isString())
            actions.evaluate(code.toString());
        else
            actions.call();
    });
    if (raised)
        return {"Raised " + raised->message, QString()};
    return {QString(), QStringLiteral("No exception was raised")};
}

Gherkin::ScriptActions* LanguageContext::gherkinScriptActions(const QString& featureFile) {
    StepActions& actions = m_interpreter.steps();
    const QString error = actions.prepare(featureFile);
    if (error.isEmpty())
        return &actions;
    setError(error);
    return nullptr;
}

}  // namespace Tamrix
