// What stops, and what is searched for.

#include <exception>

#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/debugger/lineprotocol/commandfunctions.h"

namespace Tamrix {

namespace {

/// Whether such a command switches on: only "false" switches off.
bool switchesOn(const CommandCall& call) {
    return call.arguments.value(0) != QLatin1String("false");
}

}  // namespace

CommandEffect enableObjectNotFoundDebuggingCommand(const CommandCall& call) {
    call.debugger.setObjectNotFoundDebugging(switchesOn(call));
    return CommandEffect::Stays;
}

CommandEffect enableImageNotFoundDebuggingCommand(const CommandCall& call) {
    call.debugger.setImageNotFoundDebugging(switchesOn(call));
    return CommandEffect::Stays;
}

CommandEffect enableTextNotFoundDebuggingCommand(const CommandCall& call) {
    call.debugger.setTextNotFoundDebugging(switchesOn(call));
    return CommandEffect::Stays;
}

CommandEffect imageNotFoundFixTargetCommand(const CommandCall& call) {
    if (call.arguments.isEmpty()) {
        call.output.print("imageNotFoundFixTarget error: at least one argument is required");
        return CommandEffect::Stays;
    }
    bool isNumber = false;
    const int target = call.arguments.first().toInt(&isNumber);
    if (!isNumber || target < 0) {
        // Meant: 0 is taken in spite of the wording.
        call.output.print("imageNotFoundFixTarget error: argument is not a positive integer");
        return CommandEffect::Stays;
    }
    if (RunnerInterface* const runner = Interpreter::currentRunner())
        runner->setImageSearchFixTarget(target);
    return CommandEffect::Stays;
}

CommandEffect imageSearchDefaultsCommand(const CommandCall& call) {
    if (call.arguments.isEmpty())
        return CommandEffect::Stays;
    try {
        TestSettingsType::s_image =
            Vision::ImageLookupOptions::fromDescription(call.arguments.first());
    } catch (const std::exception& error) {
        call.output.print("imageSearchDefaults error: " +
                          call.output.encoded(QString::fromUtf8(error.what())));
    }
    return CommandEffect::Stays;
}

CommandEffect breakOnMissingStepCommand(const CommandCall& call) {
    if (call.arguments.size() != 1) {
        call.output.fail("breakOnMissingStep error: not enough arguments");
        return CommandEffect::Stays;
    }
    const bool breaks = call.arguments.first() == QLatin1String("true");
    call.debugger.setBreakOnMissingStep(breaks);
    call.output.print(std::string("breakOnMissingStep ok: ") + (breaks ? '1' : '0'));
    return CommandEffect::Stays;
}

}  // namespace Tamrix
