#include "plugins/python/bddactions.h"

#include "platform/gherkin/expressions/expressionerror.h"
#include "plugins/python/bddarguments.h"
#include "plugins/python/bddmodule.h"
#include "plugins/python/bddsnippet.h"
#include "plugins/python/conversion.h"
#include "plugins/python/pythoninterpreter.h"

namespace Tamrix::PythonPlugin {

namespace {

using Result = Gherkin::LookupAndExecuteStepResult;

PyRef pyTexts(const std::vector<std::string>& texts) {
    const PyRef list = checked(PyList_New(0));
    for (const std::string& text : texts)
        checked(PyList_Append(list.get(), checked(PyUnicode_FromString(text.c_str())).get()));
    return list;
}

Gherkin::StepMatch stepMatch(const BddRegistry::Match& match) {
    Gherkin::StepMatch result{match.definition.source, match.definition.location, {}};
    for (const Gherkin::Argument& argument : match.match.arguments) {
        if (argument.text)
            result.parameters.push_back({argument.range.begin, argument.range.end,
                                         argument.typeName.value_or(std::string())});
    }
    return result;
}

/// A line for each of them.
std::string listed(const std::vector<BddRegistry::Match>& matches) {
    std::string text;
    for (const BddRegistry::Match& match : matches)
        text += (text.empty() ? "" : "\n") + match.definition.source + " at " +
                match.definition.location.fileName + ":" +
                std::to_string(match.definition.location.line);
    return text;
}

}  // namespace

void BddActions::clear() {
    m_registry.clear();
    m_scopes.clear();
    m_files.clear();
}

QString BddActions::prepare(const QString& featureFile) {
    m_featureFile = featureFile;
    m_reloadError.clear();
    m_scopes.leaveAll();
    return m_files.load(featureFile);
}

void BddActions::noticeKeyword(const Gherkin::Step& step) {
    if (step.type != Gherkin::KeywordType::Conjunction)
        m_keywordType = step.type;
}

Result BddActions::lookupAndExecuteStep(const Gherkin::Step& step) {
    noticeKeyword(step);
    Result result;
    result.location = {m_featureFile.toStdString(), step.line};
    std::vector<BddRegistry::Match> matches;
    try {
        matches = m_registry.find(step.text);
    } catch (const Gherkin::ExpressionError& error) {
        result.kind = Result::LookupFailure;
        result.message = error.what();
        return result;
    }
    if (matches.size() == 1)
        return execute(step, matches[0]);
    result.kind = matches.empty() ? Result::NoMatch : Result::SeveralMatches;
    result.message = matches.empty() ? snippet(step) : listed(matches);
    if (matches.empty() && !m_reloadError.isEmpty())
        result.message = m_reloadError.toStdString() + "\n\n" + result.message;
    return result;
}

Result BddActions::execute(const Gherkin::Step& step, const BddRegistry::Match& match) {
    Result result;
    result.match = stepMatch(match);
    result.location = match.definition.location;
    const std::optional<StepArguments> arguments =
        stepArguments(m_registry, match, &result.message);
    if (!arguments) {
        result.kind = Result::ArgumentFailure;
        return result;
    }
    const PyRef table = bddTable(step);
    const PyRef text = step.docString ? checked(PyUnicode_FromString(step.docString->text.c_str()))
                                      : PyRef::borrow(Py_None);
    m_scopes.set("table", table);
    m_scopes.set("text", text);
    const PythonInterpreter::Callback outcome = m_interpreter.callBack(
        match.function.get(), arguments->positional.get(), arguments->named.get());
    m_scopes.set("table", PyRef::borrow(Py_None));
    m_scopes.set("text", PyRef::borrow(Py_None));
    if (outcome == PythonInterpreter::Callback::Succeeded)
        return result;
    result.kind =
        outcome == PythonInterpreter::Callback::Pending ? Result::Pending : Result::ScriptFailure;
    result.message = m_interpreter.errorMessage().toStdString();
    return result;
}

std::vector<Gherkin::StepMatch> BddActions::findStep(const Gherkin::Step& step) {
    noticeKeyword(step);
    std::vector<Gherkin::StepMatch> found;
    for (const BddRegistry::Match& match : m_registry.find(step.text))
        found.push_back(stepMatch(match));
    return found;
}

std::vector<Gherkin::ScriptActions::Definition> BddActions::definitions() {
    std::vector<Definition> all;
    for (const Gherkin::StepDefinitions::Definition& definition : m_registry.definitions())
        all.push_back({definition.source, definition.location});
    return all;
}

std::string BddActions::snippet(const Gherkin::Step& step) {
    noticeKeyword(step);
    return stepSnippet(step, m_keywordType);
}

void BddActions::reload() {
    m_reloadError = m_files.loadChanged();
}

void BddActions::enterScope(Gherkin::HookType type, const Gherkin::HookSubject& subject) {
    const PyRef title = checked(PyUnicode_FromString(subject.title.c_str()));
    if (type == Gherkin::StepHook) {
        m_scopes.set("step", title);
        return;
    }
    m_scopes.enter();
    m_scopes.set(type == Gherkin::FeatureHook ? "feature" : "scenario", title);
    m_scopes.set("tags", pyTexts(subject.tags));
    m_keywordType = Gherkin::KeywordType::Unknown;
}

Gherkin::ExecuteHookResult BddActions::executeHooks(Gherkin::HookType type,
                                                    Gherkin::HookOrder order,
                                                    const Gherkin::HookSubject& subject) {
    if (order == Gherkin::BeforeHook)
        enterScope(type, subject);
    Gherkin::ExecuteHookResult result;
    const PyRef arguments = checked(PyTuple_Pack(1, bddContext()));
    for (const PyRef& function : m_registry.hooks(type, order, subject.tags)) {
        if (m_interpreter.callBack(function.get(), arguments.get(), nullptr) ==
            PythonInterpreter::Callback::Succeeded)
            continue;
        result.kind = Gherkin::ExecuteHookResult::ScriptFailure;
        if (!result.message.empty())
            result.message += '\n';
        result.message += m_interpreter.errorMessage().toStdString();
        // What cleans up runs all the same.
        if (order == Gherkin::BeforeHook)
            break;
    }
    if (order == Gherkin::AfterHook && type != Gherkin::StepHook)
        m_scopes.leave();
    return result;
}

}  // namespace Tamrix::PythonPlugin
