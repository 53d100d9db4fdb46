#include "interpreter/bridge/callarguments.h"

#include <gtest/gtest.h>

#include "support/fakelanguage.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

TEST(CallArguments, FindTheirParameters) {
    const SharedPtr<ScriptArgument> none = new FakeArgument;
    const Parameters parameters{{"name", "timeout", "block"}, 1};
    const struct {
        CallArguments arguments;
        /// The values in order, "-" for one that was left out, or the error.
        const char* outcome;
    } rows[] = {
        {{{text("n")}, {}}, "n"},
        {{{text("n"), integer(1), integer(2)}, {}}, "n 1 2"},
        {{{text("n")}, {{"block", integer(2)}}}, "n - 2"},
        {{{}, {{"block", integer(2)}, {"name", text("n")}}}, "n - 2"},
        // The language's null leaves out what may be left out.
        {{{text("n"), none, integer(2)}, {}}, "n - 2"},
        {{{text("n"), none, none}, {}}, "n"},
        {{{text("n")}, {{"timeout", none}}}, "n"},
        {{{none}, {}}, "null"},
        {{{}, {}}, ""},
        // Too many arguments are the function's to refuse, nulls among them.
        {{{text("n"), integer(1), integer(2), none, none}, {}}, "n 1 2 null null"},
        {{{}, {{"timeout", integer(1)}}}, "f() needs an argument 'name'"},
        {{{text("n")}, {{"colour", integer(1)}}}, "f() has no argument 'colour'"},
        {{{text("n")}, {{"name", text("m")}}}, "f() got several values for the argument 'name'"},
        {{{text("n"), none}, {{"timeout", integer(1)}}},
         "f() got several values for the argument 'timeout'"},
    };
    for (const auto& row : rows) {
        const Outcome<ScriptArgument::List> bound = bindArguments("f", parameters, row.arguments);
        QStringList values;
        for (const SharedPtr<ScriptArgument>& value : bound.value_or(ScriptArgument::List()))
            values.append(value ? value->toString() : QString("-"));
        EXPECT_EQ(bound ? values.join(' ') : bound.error().text, row.outcome);
        if (!bound) {
            EXPECT_EQ(bound.error().kind, FailureKind::BadArgument);
        }
    }
}

}  // namespace
}  // namespace Tamrix
