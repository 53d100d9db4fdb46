#include "interpreter/bridge/scriptcontext.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/fakelanguage.h"
#include "support/fakerunner.h"
#include "support/inmemorymodel.h"
#include "support/printqt.h"
#include "support/warningrecorder.h"

namespace Tamrix {
namespace {

using namespace Test;

class ScriptContextTest : public testing::Test {
protected:
    ~ScriptContextTest() override {
        ScriptContext::setCurrent(nullptr);
        Interpreter::setSelf(nullptr);
    }

    FakeContext context;
};

void succeed(ScriptContext* context) {
    context->setIntegerResult(context->argumentCount());
}

void failAsLookup(ScriptContext* context) {
    context->setError("not there", ScriptContext::LookupError);
}

TEST_F(ScriptContextTest, KeepsArguments) {
    context.setArguments({integer(1), text("two")});
    EXPECT_EQ(context.argument(1)->toString(), "two");
    EXPECT_FALSE(context.argument(5));
    EXPECT_FALSE(context.argument(-1));
    EXPECT_EQ(context.argumentCount(), 2);
}

TEST_F(ScriptContextTest, KeepsErrors) {
    context.setError("at a frame", DebuggerFrame{3, 4, 5});
    EXPECT_EQ(context.errorType(), ScriptContext::GeneralError);
    EXPECT_EQ(context.errorFrame(), (DebuggerFrame{3, 4, 5}));
    context.setError("elsewhere", ScriptContext::LookupError);
    EXPECT_EQ(context.errorType(), ScriptContext::LookupError);
    EXPECT_EQ(context.errorFrame(), DebuggerFrame());
}

TEST_F(ScriptContextTest, CallsByName) {
    context.addGlobalFunction("bridgeTestSucceed", succeed);
    context.addGlobalFunction("bridgeTestFail", failAsLookup);
    context.addStaticMemberFunction("bridgeTest", "both", succeed);
    context.addMemberFunction("bridgeTest", "both", failAsLookup);
    context.addMemberFunction("bridgeTest", "member", succeed);

    context.setError("old");
    EXPECT_EQ(context.tryGlobalCall("bridgeTestUnknown"), 2);
    EXPECT_EQ(context.errorMessage(), "old");
    EXPECT_EQ(context.tryGlobalCall("bridgeTestSucceed"), 0);
    EXPECT_EQ(context.errorMessage(), "");
    EXPECT_EQ(context.tryGlobalCall("bridgeTestFail"), 1);
    EXPECT_EQ(context.errorMessage(), "not there");

    EXPECT_EQ(context.tryCall("bridgeTest", "unknown"), 2);
    // A static member function goes before a member function, and needs no object.
    EXPECT_EQ(context.tryCall("bridgeTest", "both"), 0);
    context.result.reset();
    EXPECT_EQ(context.tryCall("bridgeTest", "member"), 1);
    EXPECT_EQ(context.errorMessage(), "Missing object reference in member call");
    EXPECT_FALSE(context.result);
    context.setArguments({integer(1)});
    EXPECT_EQ(context.tryCall("bridgeTest", "member"), 0);

    context.addConstant("bridgeTestConstant", 1);
    context.addConstant("bridgeTestConstant", 2);
    EXPECT_TRUE(ScriptContext::hasConstant("bridgeTestConstant"));
    EXPECT_FALSE(ScriptContext::hasConstant("bridgeTestOther"));
    EXPECT_EQ(ScriptContext::constantValue("bridgeTestConstant"), 2);
}

struct Native : NativeScriptObject {
    static void* staticTypeId() { return &s_marker; }
    void* typeId() const override { return &s_marker; }
    static int s_marker;
};
int Native::s_marker = 0;

TEST_F(ScriptContextTest, ExecutesEveryKindOfFunction) {
    EXPECT_FALSE(context.execute(succeed));
    EXPECT_TRUE(context.execute(failAsLookup));
    // The other kinds answer what the function returned.
    EXPECT_FALSE(context.execute([](ScriptContext*) { return false; }));
    EXPECT_TRUE(context.errorMessage().isEmpty());
    const SharedPtr<NativeScriptObject> made =
        context.execute(+[](ScriptContext*) { return SharedPtr<NativeScriptObject>(new Native); });
    EXPECT_TRUE(context.execute(
        +[](SharedPtr<NativeScriptObject> object, ScriptContext*) {
            return object->referenceCount() > 1;
        },
        made));
    EXPECT_EQ(context.clearedErrors, 5);
}

TEST_F(ScriptContextTest, HoldsTheObjectModelDuringACall) {
    FakeRunner runner;
    FakeInterpreter interpreter(&runner, Interpreter::Tcl);
    context.execute(succeed);
    EXPECT_EQ(runner.acquired, 1);
    // Nothing was given, so nothing is given back.
    EXPECT_EQ(runner.released, 0);
    runner.hasObjectModel = true;
    EXPECT_THROW(context.execute(+[](ScriptContext*) { throw std::runtime_error("native"); }),
                 std::runtime_error);
    EXPECT_EQ(runner.acquired, 2);
    EXPECT_EQ(runner.released, 1);
}

TEST_F(ScriptContextTest, ResultsOfManyValues) {
    InMemoryModel model;
    const auto button = model.addObject("Button", "ok");
    context.setObjectListResult({button, nullptr});
    const auto objects = context.result->toList();
    ASSERT_EQ(objects.size(), 2u);
    EXPECT_EQ(objects[0]->toObject(), button);
    EXPECT_TRUE(objects[1]->isObject());

    context.setMapResult({{"a", 1}, {"b", "text"}});
    EXPECT_EQ(context.result->toMap().at("a")->toString(), "1");

    context.setObjectPropertiesResult(button);
    EXPECT_TRUE(context.result->toMap().empty());
    Class* const buttonClass = model.objectClass("Button");
    buttonClass->addProperty("label");
    buttonClass->addProperty("unreadable");
    button->setProperty("label", model.addObject("String", "OK"));
    WarningRecorder warnings;
    context.setObjectPropertiesResult(button);
    ASSERT_EQ(context.result->toMap().size(), 1u);
    EXPECT_EQ(context.result->toMap().at("label")->toObject()->objectName(), "OK");
    EXPECT_EQ(warnings.messages(), QStringList("Error reading unreadable property"));
}

struct StandingDebugger : Debugger {
    StandingDebugger() : Debugger(nullptr) {}
    VariableBindings variables(const QString&) override { return {}; }
};

TEST_F(ScriptContextTest, PositionsOfResults) {
    EXPECT_EQ(context.lineInfoForResult(), context.frames[0]);
    EXPECT_EQ(context.callStackForResult(true), CallStack{context.frames[0]});

    StandingDebugger debugger;
    // A debugger outside any frame gives a result without position.
    EXPECT_TRUE(context.callStackForResult(true).empty());
    EXPECT_EQ(context.callStackForResult(false), CallStack{context.frames[0]});

    // The caller's line, then on top of it the own one.
    context.setArguments({});
    context.fixateResultContext();
    context.setArguments({integer(0)});
    context.fixateResultContext();
    EXPECT_EQ(context.callStackForResult(true), CallStack{context.frames[0]});
    context.setArguments({});
    context.restoreResultContext();
    EXPECT_EQ(context.callStackForResult(true), CallStack{context.frames[1]});
    context.restoreResultContext();
    EXPECT_EQ(context.errorMessage(), "");
    context.restoreResultContext();
    EXPECT_EQ(context.errorMessage(),
              "test::restoreResultContext: there are no fixated result contexts");
}

TEST_F(ScriptContextTest, FixatesOnlyWhatThereIs) {
    const char* const wrongNumber = "test::fixateResultContext takes a non-negative number";
    const char* const noFrame = "test::fixateResultContext: invalid ancestor stack frame number";
    struct {
        ScriptArgument::List arguments;
        const char* error;
    } const rows[] = {
        {{integer(1), integer(2)}, "test::fixateResultContext takes 0 or 1 argument"},
        {{text("1")}, wrongNumber},
        {{integer(-1)}, wrongNumber},
        {{integer(2)}, noFrame},
        {{integer(0x100000000)}, noFrame},
        {{number(1.0)}, ""},
    };
    for (const auto& row : rows) {
        context.setError(QString());
        context.setArguments(row.arguments);
        context.fixateResultContext();
        EXPECT_EQ(context.errorMessage(), row.error);
    }
    EXPECT_EQ(context.fixatedResultContexts().size(), 1u);
}

}  // namespace
}  // namespace Tamrix
