#pragma once

#include "interpreter/bridge/interpreter.h"
#include "platform/gherkin/callbacks.h"

namespace Tamrix::Test {

/// Steps of which the texts say what becomes of them.
class FakeActions : public Gherkin::ScriptActions {
public:
    using Result = Gherkin::LookupAndExecuteStepResult;

    Result lookupAndExecuteStep(const Gherkin::Step& step) override {
        const std::string& text = step.text;
        if (text == "unknown" && !isWritten)
            return {Result::NoMatch, "@given(\"unknown\")", {}, {}};
        if (text == "twice")
            return {Result::SeveralMatches, "steps.py:1 and steps.py:9", {}, {}};
        if (text == "wrong arguments")
            return {Result::ArgumentFailure, "2 are given, 1 is taken", {"/s/steps.py", 5}, {}};
        Result result;
        result.match = match(step);
        if (text == "to be written")
            result.kind = Result::Pending;
        if (text == "this fails") {
            result.kind = Result::ScriptFailure;
            Interpreter::self()->setErrorFile("/s/steps.py");
            Interpreter::self()->setErrorLine(12);
        }
        result.message = result.kind == Result::Success ? "" : "about " + text;
        return result;
    }
    std::vector<Gherkin::StepMatch> findStep(const Gherkin::Step& step) override {
        if (step.text == "unknown" && !isWritten)
            return {};
        return {match(step)};
    }
    std::vector<Definition> definitions() override { return {}; }
    std::string snippet(const Gherkin::Step&) override { return {}; }
    void reload() override { isWritten = true; }
    Gherkin::ExecuteHookResult executeHooks(Gherkin::HookType type, Gherkin::HookOrder order,
                                            const Gherkin::HookSubject& subject) override {
        if (subject.title != "a hook fails" || type != Gherkin::ScenarioHook)
            return {};
        // The interpreter tells where scripts have failed; the library itself does so here.
        if (order == Gherkin::BeforeHook)
            return {Gherkin::ExecuteHookResult::LibraryFailure, "bad tags", {"/s/hooks.py", 2}};
        return {Gherkin::ExecuteHookResult::ScriptFailure, "it raised", {}};
    }

    bool isWritten = false;

private:
    /// Quoted texts are parameters.
    static Gherkin::StepMatch match(const Gherkin::Step& step) {
        Gherkin::StepMatch found{"a definition", {"/s/steps.py", 3}, {}};
        const std::size_t begin = step.text.find('"');
        if (begin != std::string::npos)
            found.parameters.push_back({begin, step.text.rfind('"') + 1, "string"});
        return found;
    }
};

}  // namespace Tamrix::Test
