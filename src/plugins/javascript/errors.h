#pragma once

#include <jsapi.h>

#include <QString>
#include <vector>

#include "interpreter/language/languageinterpreter.h"
#include "interpreter/language/scripterrorset.h"
#include "interpreter/language/scriptfailure.h"
#include "platform/testresult/lineinfo.h"

namespace Tamrix::JavaScriptPlugin {

/// Throws the language's exception for a failure of the library into the script.
void raise(const ScriptFailure& failure);

/// Throws a built-in error: `type` is the name of its class.
void raiseBuiltIn(const char* type, const QString& text);

/// Throws that the running step is still to be written.
void raisePendingStep(const QString& text);

/// Runs `work` of a native function, which gives whether it succeeded: what it throws becomes an
/// exception of the script, and false is returned then. `function` gives the name for messages.
template <typename Name, typename Work>
bool guarded(Name function, Work work) {
    try {
        return work();
    } catch (const ScriptErrorSet&) {
        // The script gets the exception that is pending.
    } catch (const std::exception& exception) {
        raise(thrownIn(function(), QString::fromUtf8(exception.what())));
    }
    return false;
}

/// Whether what is pending ends the script, so that no function of the library may report it as an
/// error of a piece of code: what no `catch` stops, and a FatalError.
bool isEndOfScript();

/// Whether the exception that is pending is that of a step which is still to be written.
bool isPendingStepError();

/// Takes the exception that is pending, or what else has ended the script. Its stack ends where the
/// code was called that runs now, as that of a callback does at the native function.
ScriptError takeScriptError();

/// Its text alone.
QString takeErrorText();

/// The text that a person is told of an exception, with what led to it.
QString exceptionText(JS::HandleValue exception);

/// The script lines of a stack, the innermost first. `stack` may be null.
std::vector<LineInfo> linesOfStack(JS::HandleObject stack);

/// Those of the code that runs now.
std::vector<LineInfo> runningLines();

/// The place that a stack's or a running script's file name and line stand for: code of an `eval`
/// stands where it was called. Invalid for code that is in no file.
LineInfo placeOfCode(const QString& file, int line);

}  // namespace Tamrix::JavaScriptPlugin
