#include "interpreter/language/nativefunction.h"

#include <gtest/gtest.h>

#include "support/fakelanguage.h"
#include "support/fakerunner.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

using Kind = ScriptFailure::Kind;

bool fails(ScriptContext* context) {
    context->setError("it failed", ScriptContext::LookupError);
    return false;
}

void tells(ScriptContext* context) {
    context->setIntegerResult(context->argumentCount());
}

SharedPtr<NativeScriptObject> makesNothing(ScriptContext*) {
    return {};
}

TEST(NativeFunction, HasNamesAsScriptsWriteThem) {
    FakeContext context;
    const NativeFunction function(context, {"compare", "test", {"first"}, {"end"}, "Compares"},
                                  tells);
    EXPECT_EQ(function.displayName(), "test.compare");
    EXPECT_EQ(function.parameters().names, QStringList({"first", "end_"}));
    EXPECT_EQ(function.parameters().requiredCount, 1);
    const NativeFunction same(context, function.signature(), tells);
    EXPECT_EQ(function.address(), same.address());
}

TEST(NativeFunction, RunsWhatItStandsFor) {
    FakeContext context;
    context.setArguments({integer(1), integer(2)});
    FakeRunner runner;
    runner.hasObjectModel = true;
    NativeFunction(context, {"tells", {}, {}, {}, {}}, tells).run(context, &runner);
    EXPECT_EQ(runner.acquired, 1);
    EXPECT_EQ(runner.released, 1);
    EXPECT_EQ(context.result->toInt(), 2);
    NativeFunction(context, {"fails", {}, {}, {}, {}}, fails).run(context, nullptr);
    const ScriptFailure failure = failureOf(context);
    EXPECT_EQ(failure.kind, Kind::Lookup);
    EXPECT_EQ(failure.text, "it failed");
    EXPECT_FALSE(failure.isSkip);
    context.setSkip("not here");
    EXPECT_TRUE(failureOf(context).isSkip);
    EXPECT_EQ(failureOf(context).kind, Kind::Fatal);

    const NativeFunction constructor(context, {"Image", {}, {}, {}, {}}, makesNothing);
    EXPECT_TRUE(constructor.canConstruct());
    EXPECT_FALSE(constructor.construct(context));
    EXPECT_EQ(context.errorMessage(), "No Image could be made");
}

TEST(NativeFunction, IsRefusedWithoutACaseThatRuns) {
    FakeContext context;
    const ScriptResult result =
        callNative(nullptr, NativeFunction(context, {"log", "test", {}, {}, {}}, tells), {}, {});
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().text, "test.log() was called while no test case runs");
}

TEST(ScriptFailure, HasTheKindsOfObjects) {
    const std::pair<ObjectError::Kind, Kind> rows[] = {
        {ObjectError::Kind::NoMember, Kind::NoMember},
        {ObjectError::Kind::BadArgument, Kind::BadArgument},
        {ObjectError::Kind::NotFound, Kind::Lookup},
        {ObjectError::Kind::Failed, Kind::General},
    };
    for (const auto& [of, kind] : rows)
        EXPECT_EQ(failureOf(ObjectError{of, "text"}).kind, kind);
}

}  // namespace
}  // namespace Tamrix
