#include "interpreter/language/languagecontext.h"

#include "interpreter/language/languageinterpreter.h"
#include "interpreter/language/stepactions.h"

namespace Tamrix {

void LanguageContext::Call::keepOuter() {
    m_outer = std::make_unique<Outer>();
    m_outer->arguments.swap(m_context.argumentStorage());
    m_outer->areNamed = m_context.m_hasNamedArguments;
    m_outer->errorMessage = m_context.errorMessage();
    m_outer->errorType = m_context.errorType();
    m_outer->isSkip = m_context.isSkip();
    m_outer->result = std::move(m_context.m_result);
}

void LanguageContext::Call::restoreOuter() {
    m_context.argumentStorage().swap(m_outer->arguments);
    m_context.m_hasNamedArguments = m_outer->areNamed;
    if (m_outer->isSkip)
        m_context.setSkip(m_outer->errorMessage);
    else
        m_context.setError(m_outer->errorMessage, m_outer->errorType);
    m_context.m_result = std::move(m_outer->result);
}

void LanguageContext::setStackTraceResult(const std::vector<ScriptLocation>& trace) {
    std::vector<ScriptLocation> inScripts;
    for (const ScriptLocation& location : trace) {
        if (!location.fileName.isEmpty())
            inScripts.push_back(location);
    }
    ScriptContext::setStackTraceResult(inScripts);
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
