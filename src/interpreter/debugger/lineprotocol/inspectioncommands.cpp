// Where the script stands and what it holds.

#include <QUrl>

#include "interpreter/bridge/interpreter.h"
#include "interpreter/debugger/lineprotocol/commandfunctions.h"

namespace Tamrix {

namespace {

std::string bindingText(const ProtocolOutput& output, const Debugger::VariableBinding& binding) {
    std::string text = output.escaped(binding.type) + '#' + output.escaped(binding.name);
    if (!binding.value.isNull())
        text += '=' + output.escaped(binding.value);
    return text;
}

void printVariables(const CommandCall& call, const QString& path) {
    std::string listing;
    for (const Debugger::VariableBinding& binding : call.debugger.variables(path)) {
        if (!listing.empty())
            listing += ',';
        listing += bindingText(call.output, binding);
    }
    const std::string asked = path.isEmpty() ? "" : '.' + call.output.encoded(path);
    call.output.print("symb" + asked + ":{" + listing + '}');
}

}  // namespace

CommandEffect printCommand(const CommandCall& call) {
    const QString what = call.arguments.value(0);
    if (what == QLatin1String("line")) {
        call.output.print("@line " + std::to_string(call.debugger.currentFrame().line));
    } else if (what == QLatin1String("file")) {
        const int source = call.debugger.currentFrame().sourceId;
        call.output.print("@file " + call.output.encoded(call.debugger.findSourceId(source)));
    } else if (what == QLatin1String("variables")) {
        printVariables(call, call.arguments.mid(1).join(QLatin1Char(' ')));
    } else if (what == QLatin1String("evaluation")) {
        // The text that the code gave does not say whether it is a value or an error's message.
        const Interpreter* const interpreter = call.debugger.interpreter();
        const bool isGood = !interpreter || interpreter->errorMessage().isEmpty();
        call.output.print(isGood ? "@evaluation ok" : "@evaluation failed");
    }
    // Meant: other words have no answer.
    return CommandEffect::Stays;
}

CommandEffect backtraceCommand(const CommandCall& call) {
    const std::vector<LineInfo> stack = call.debugger.callStack();
    // The first one is where the script stands, which the front end knows.
    for (std::size_t index = 1; index < stack.size(); ++index) {
        if (stack[index].isValid()) {
            call.output.print(call.output.encoded(stack[index].fileName()) + ": " +
                              std::to_string(stack[index].lineNumber()));
        }
    }
    return CommandEffect::Stays;
}

CommandEffect evalCommand(const CommandCall& call) {
    std::string result;
    if (call.arguments.size() == 1) {
        const QString code = QUrl::fromPercentEncoding(call.arguments.first().toUtf8());
        result = QUrl::toPercentEncoding(call.debugger.evaluate(code)).toStdString();
    }
    call.output.print("eval" + result);
    return CommandEffect::Stays;
}

}  // namespace Tamrix
