// What scripts register for the steps of feature files.

#include <gtest/gtest.h>

#include "interpreter/language/stepregistry.h"
#include "interpreter/language/stepscopes.h"
#include "interpreter/language/stepsnippet.h"
#include "support/fakelanguage.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;
using namespace Gherkin;

SharedPtr<ScriptArgument> function() {
    return callable([](const ScriptArgument::List&, QString*) { return integer(0); });
}

TEST(StepRegistry, ForgetsWhatAFileHadThatIsLoadedAgain) {
    StepRegistry registry;
    registry.addStep("{int} pie(s)", false, function(), {"/steps/a", 3});
    registry.addStep("^(\\d+) pies$", true, function(), {"/steps/b", 5});
    EXPECT_EQ(registry.find("2 pies").size(), 2u);
    registry.forget("/steps/a");
    ASSERT_EQ(registry.find("2 pies").size(), 1u);
    EXPECT_EQ(registry.find("2 pies")[0].definition.location.fileName, "/steps/b");
    EXPECT_EQ(registry.definitions().size(), 1u);
    // The same again, in a file that says the type again, too.
    registry.addParameterType("colour", {"red|green"}, function());
    registry.addParameterType("colour", {"red|green"}, function());
    registry.addStep("a {colour} pie", false, function(), {"/steps/a", 3});
    EXPECT_EQ(registry.find("a red pie").size(), 1u);
    EXPECT_TRUE(registry.transformer("colour"));
    EXPECT_FALSE(registry.transformer("int"));
}

TEST(StepRegistry, CallsHooksBehindSomethingInTheOppositeOrder) {
    StepRegistry registry;
    const auto first = function();
    const auto second = function();
    for (const HookOrder order : {BeforeHook, AfterHook}) {
        registry.addHook(ScenarioHook, order, "", first, "/steps/a");
        registry.addHook(ScenarioHook, order, "@slow", second, "/steps/b");
    }
    using Functions = std::vector<StepRegistry::Function>;
    EXPECT_EQ(registry.hooks(ScenarioHook, BeforeHook, {"slow"}), Functions({first, second}));
    EXPECT_EQ(registry.hooks(ScenarioHook, AfterHook, {"slow"}), Functions({second, first}));
    EXPECT_EQ(registry.hooks(ScenarioHook, BeforeHook, {}), Functions({first}));
    EXPECT_EQ(registry.hooks(StepHook, BeforeHook, {"slow"}), Functions());
    registry.forget("/steps/b");
    EXPECT_EQ(registry.hooks(ScenarioHook, AfterHook, {"slow"}), Functions({first}));
}

TEST(StepRegistry, KnowsHooksAsLanguagesWriteThem) {
    ASSERT_TRUE(hookKind("after_scenario"));
    EXPECT_EQ(hookKind("after_scenario"), hookKind("AfterScenario"));
    EXPECT_EQ(hookKind("AfterScenario")->type, ScenarioHook);
    EXPECT_EQ(hookKind("AfterScenario")->order, AfterHook);
    EXPECT_FALSE(hookKind("after_run"));
}

TEST(StepScopes, FindNamesFromTheInnermostOutwards) {
    StepScopes scopes;
    scopes.set("run", integer(1));
    scopes.enter();
    scopes.set("count", integer(2));
    scopes.enter();
    scopes.set("count", integer(3));
    EXPECT_EQ(scopes.find("count")->toInt(), 3);
    EXPECT_EQ(scopes.find("run")->toInt(), 1);
    EXPECT_EQ(scopes.all().size(), 2u);
    EXPECT_EQ(scopes.all()["count"]->toInt(), 3);
    // Only what is in the innermost can be taken away.
    EXPECT_FALSE(scopes.remove("run"));
    EXPECT_TRUE(scopes.remove("count"));
    EXPECT_EQ(scopes.find("count")->toInt(), 2);
    scopes.leaveAll();
    EXPECT_FALSE(scopes.find("count"));
    // The scope of the run stays.
    scopes.leave();
    EXPECT_TRUE(scopes.find("run"));
}

TEST(StepSnippet, IsMadeOfTheWordsOfTheStep) {
    Step step;
    step.text = "3 pies for \"Ann\" cost 4.50";
    const StepSnippet snippet = stepSnippet(step, KeywordType::Action);
    EXPECT_EQ(snippet.keyword, "when");
    EXPECT_EQ(snippet.expression, "{int} pies for {string} cost {float}");
    EXPECT_EQ(snippet.functionName, "pies_for_cost");
    EXPECT_EQ(snippet.parameters, QStringList({"int_1", "string_2", "float_3"}));
    step.text = "!";
    EXPECT_EQ(stepSnippet(step, KeywordType::Conjunction).keyword, "step");
    EXPECT_EQ(stepSnippet(step, KeywordType::Conjunction).functionName, "step_");
}

}  // namespace
}  // namespace Tamrix
