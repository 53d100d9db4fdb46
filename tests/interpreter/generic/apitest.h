#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "platform/objectmodel/inspector.h"
#include "support/fakelanguage.h"
#include "support/fakerunner.h"
#include "support/inmemorymodel.h"
#include "support/printqt.h"

namespace Tamrix::Test {

/// A native function with the result that tells of an error left out.
template <bool (*function)(ScriptContext*)>
void plain(ScriptContext* context) {
    const bool succeeded = function(context);
    EXPECT_EQ(succeeded, !context->hasError());
}

/// Script functions on a model in memory, with a runner that gives canned answers.
class ApiTest : public testing::Test {
protected:
    /// A call that is refused, and the text that says so.
    struct Refusal {
        ScriptContext::Function function;
        ScriptArgument::List arguments;
        const char* error;
    };

    ApiTest() { Inspector::self()->setModel(&model); }
    ~ApiTest() override {
        Inspector::self()->setModel(nullptr);
        Inspector::self()->setLastError(QString());
        ScriptContext::setCurrent(nullptr);
        Interpreter::setSelf(nullptr);
    }

    /// Calls a function; its error, or its result as text.
    QString call(ScriptContext::Function function, const ScriptArgument::List& arguments = {}) {
        context.call(function, arguments);
        if (context.hasError())
            return context.errorMessage();
        return context.result ? context.result->toString() : QString("no result");
    }

    void expectRefusals(const std::vector<Refusal>& rows) {
        for (const Refusal& row : rows) {
            EXPECT_EQ(call(row.function, row.arguments), row.error);
            EXPECT_TRUE(context.hasError()) << row.error;
            EXPECT_EQ(context.errorType(), ScriptContext::GeneralError) << row.error;
        }
    }

    SharedPtr<Object> resultObject() { return context.result->toObject(); }

    InMemoryModel model;
    FakeRunner runner;
    FakeInterpreter interpreter{&runner, Interpreter::Tcl};
    FakeContext context;
};

}  // namespace Tamrix::Test
