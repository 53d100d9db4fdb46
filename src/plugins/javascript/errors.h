#pragma once

#include <QString>
#include <optional>
#include <tl/expected.hpp>
#include <type_traits>
#include <utility>
#include <vector>

#include "interpreter/language/languageinterpreter.h"
#include "interpreter/language/scriptfailure.h"
#include "platform/testresult/lineinfo.h"
#include "plugins/javascript/roots.h"

namespace Tamrix::JavaScriptPlugin {

// What is thrown into the script.

/// The language's exception for a failure of the library. The first lets it be pending and returns,
/// the other throws ScriptErrorSet.
void raise(const ScriptFailure& failure);
[[noreturn]] void throwFailure(const ScriptFailure& failure);

/// An error of a class of the language.
[[noreturn]] void throwBuiltIn(JSProtoKey type, const QString& text);

[[noreturn]] void throwError(JS::HandleObject error);

/// Throws what was thrown before, with its stack; null for none.
[[noreturn]] void throwWithStack(JS::HandleValue thrown, JS::HandleObject stack);

/// The running step is still to be written.
[[noreturn]] void throwPendingStep(const QString& text);

/// What the library gives; its failure is thrown.
template <typename T>
T checked(tl::expected<T, ScriptFailure> result) {
    if (!result)
        throwFailure(result.error());
    if constexpr (!std::is_void_v<T>)
        return std::move(*result);
}

/// Runs `work` of a native function, which gives whether it succeeded: what it throws becomes an
/// exception of the script, and false is returned then. `name` gives the function's for messages.
template <typename Name, typename Work>
bool guarded(const Name& name, Work work) {
    try {
        return work();
    } catch (const ScriptErrorSet&) {
        // The script gets the exception that is pending.
    } catch (const std::exception& exception) {
        raise(thrownIn(name(), QString::fromUtf8(exception.what())));
    }
    return false;
}

/// The name of the function that is called.
QString nameOfCallee(const JS::CallArgs& arguments);

/// A function as the engine calls it. `body` takes the JS::CallArgs, gives its value to the script,
/// or none, and throws what it refuses.
template <auto body>
bool native(JSContext*, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    const auto name = [&] { return nameOfCallee(arguments); };
    return guarded(name, [&] {
        if constexpr (std::is_void_v<decltype(body(arguments))>) {
            body(arguments);
            arguments.rval().setUndefined();
        } else {
            arguments.rval().set(body(arguments));
        }
        return true;
    });
}

/// Whether what is pending ends the script, so that no function of the library may report it as an
/// error of a piece of code: what no `catch` stops, and a FatalError.
bool isEndOfScript();

/// Takes the exception that is pending, or what else has ended the script. Its stack ends where the
/// code was called that runs now, as that of a callback does at the native function.
ScriptError takeScriptError();
/// The same of an exception, which stays pending; nothing when none is.
std::optional<ScriptError> pendingScriptError();

/// What the engine itself knows of an error; null for other values.
const JSErrorReport* reportOf(const JS::Value& exception);

/// The text that a person is told of an exception, with what led to it.
QString exceptionText(JS::HandleValue exception);

/// The script lines of the code that runs now, the innermost first.
std::vector<LineInfo> runningLines();

/// The place that a stack's or a running script's file name and line stand for: code of an `eval`
/// stands where it was called. Invalid for code that is in no file.
LineInfo placeOfCode(const QString& file, int line);
/// Where a function or class of the script is defined; invalid for other values.
LineInfo placeOfFunction(const JS::Value& function);

}  // namespace Tamrix::JavaScriptPlugin
