// How the script goes on.

#include <QUrl>

#include "interpreter/debugger/lineprotocol/commandfunctions.h"

namespace Tamrix {

namespace {

CommandEffect resume(const CommandCall& call, Debugger::Resume mode) {
    call.debugger.resume(mode);
    return CommandEffect::Resumes;
}

}  // namespace

CommandEffect nextCommand(const CommandCall& call) {
    return resume(call, Debugger::Resume::Next);
}

CommandEffect returnCommand(const CommandCall& call) {
    return resume(call, Debugger::Resume::Return);
}

CommandEffect stepCommand(const CommandCall& call) {
    return resume(call, Debugger::Resume::Step);
}

CommandEffect stopCommand(const CommandCall& call) {
    call.debugger.initVariableWatcher();
    // A command loop of its own; what lets the script go on there ends this one, too.
    call.debugger.stop();
    return CommandEffect::Resumes;
}

CommandEffect runCommand(const CommandCall& call) {
    call.debugger.clearStartFlag();
    return resume(call, Debugger::Resume::Run);
}

CommandEffect continueCommand(const CommandCall& call) {
    // 1. Whether the error of this stop takes its course.
    const bool skips = call.arguments.value(0) == QLatin1String("skipCurrentError");
    call.debugger.setSkipCurrentError(skips ? 1 : 0);
    // 2. The listings of this stop are over.
    call.debugger.clearStartFlag();
    call.debugger.initVariableWatcher();
    // 3. Code that sets right what names refer to.
    const int word = call.arguments.indexOf(QStringLiteral("updateReferences"));
    if (word >= 0 && word + 1 < call.arguments.size())
        call.debugger.evaluate(QUrl::fromPercentEncoding(call.arguments.at(word + 1).toUtf8()));
    // 4. On to the next break point.
    call.debugger.run();
    return CommandEffect::Resumes;
}

}  // namespace Tamrix
