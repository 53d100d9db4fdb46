#include "interpreter/objects/functionparameters.h"

#include <gtest/gtest.h>

#include "support/fakeobjects.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

const char* const s_clickParameters = "object[, x, y][, button][, modifiers]";

SharedPtr<ScriptArgument> none() {
    return new FakeArgument;
}

TEST(FunctionParameters, BringArgumentsIntoTheirOrder) {
    const auto b = text("b");
    const struct {
        const char* parameters;
        CallArguments arguments;
        /// The values in order, or the error.
        const char* outcome;
    } rows[] = {
        {"", {}, "[]"},
        {"object, text", {{b, text("t")}, {}}, "[b, t]"},
        {"object, text", {{b}, {{"text", text("t")}}}, "[b, t]"},
        // Where nothing is to be done, the application knows its forms by itself.
        {"object", {{b, b, b}, {}}, "[b, b, b]"},
        {s_clickParameters, {{b}, {{"modifiers", text("Ctrl")}}}, "[b, left, Ctrl]"},
        {s_clickParameters, {{b}, {{"modifiers", integer(67108864)}}}, "[b, left, int 67108864]"},
        {s_clickParameters,
         {{}, {{"modifiers", integer(1)}, {"button", integer(2)}, {"object", b}}},
         "[b, right, int 1]"},
        {s_clickParameters,
         {{b, integer(3), number(4)}, {{"modifiers", text("Alt")}}},
         "[b, int 3, double 4, left, Alt]"},
        {s_clickParameters, {{b}, {{"y", integer(4)}, {"x", integer(3)}}}, "[b, int 3, int 4]"},
        {s_clickParameters, {{b}, {{"button", integer(4)}}}, "[b, int 4]"},
        {s_clickParameters,
         {{b, text("right")}, {{"modifiers", text("Shift")}}},
         "[b, right, Shift]"},
        // The language's null stands for what is left out, but for what must be given.
        {s_clickParameters, {{b, none(), none(), text("right"), none()}, {}}, "[b, right]"},
        {s_clickParameters, {{none()}, {}}, "[null]"},
        {s_clickParameters, {{b}, {{"x", integer(3)}}}, "bad argument: f() needs an argument 'y'"},
        {s_clickParameters,
         {{b, integer(3), none()}, {}},
         "bad argument: f() needs an argument 'y'"},
        {s_clickParameters,
         {{}, {{"button", integer(1)}}},
         "bad argument: f() needs an argument 'object'"},
        {s_clickParameters,
         {{b}, {{"colour", integer(1)}}},
         "bad argument: f() has no argument 'colour'"},
        {s_clickParameters,
         {{b}, {{"object", b}}},
         "bad argument: f() got several values for the argument 'object'"},
        {s_clickParameters,
         {{b}, {{"button", integer(3)}, {"modifiers", integer(1)}}},
         "bad argument: f() 3 is no mouse button: 1 is left, 2 right, 4 middle"},
        {s_clickParameters,
         {{b, integer(1), integer(2), integer(3), integer(4), integer(5)},
          {{"modifiers", integer(1)}}},
         "bad argument: f() takes (object[, x, y][, button][, modifiers]), not 6 arguments without "
         "a name"},
    };
    FakeContext context;
    for (const auto& row : rows) {
        const auto values =
            FunctionParameters::of(row.parameters).ordered(context, "f", row.arguments);
        EXPECT_EQ(values ? written(list(*values)) : errorText(values), row.outcome);
    }
    for (const auto& [parameters, startWithObject] :
         {std::pair("object[, x]", true), std::pair("object", true), std::pair("file", false),
          std::pair("", false), std::pair("[object]", true), std::pair("objects", false)})
        EXPECT_EQ(FunctionParameters::of(parameters).startWithObject(), startWithObject)
            << parameters;
}

}  // namespace
}  // namespace Tamrix
