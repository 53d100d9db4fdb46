#include "interpreter/debugger/lineprotocol/command.h"

#include <QCoreApplication>
#include <algorithm>
#include <cstdlib>

#include "interpreter/debugger/lineprotocol/commandfunctions.h"

namespace Tamrix {

namespace {

/// In the order in which the words are tested.
constexpr CommandEntry commands[] = {
    {{"n", "next"}, nextCommand},
    // "r" means this and not `run`, which has no short form.
    {{"r", "return"}, returnCommand},
    {{"s", "step"}, stepCommand},
    {{"stop"}, stopCommand},
    {{"b", "break"}, breakCommand},
    {{"d", "delete"}, deleteCommand},
    {{"run"}, runCommand},
    {{"c", "continue"}, continueCommand},
    {{"p", "print"}, printCommand},
    {{"q", "quit", "exit"}, quitCommand},
    {{"bt", "backtrace"}, backtraceCommand},
    {{"eval"}, evalCommand},
    {{"enableObjectNotFoundDebugging"}, enableObjectNotFoundDebuggingCommand},
    {{"enableImageNotFoundDebugging"}, enableImageNotFoundDebuggingCommand},
    {{"enableTextNotFoundDebugging"}, enableTextNotFoundDebuggingCommand},
    {{"imageNotFoundFixTarget"}, imageNotFoundFixTargetCommand},
    {{"imageSearchDefaults"}, imageSearchDefaultsCommand},
    {{"setInterpreterStateFor"}, setInterpreterStateForCommand},
    {{"getInterpreterStateFor"}, getInterpreterStateForCommand},
    {{"launchApplication"}, launchApplicationCommand},
    {{"breakOnMissingStep"}, breakOnMissingStepCommand},
};

bool hasName(const CommandEntry& entry, const QString& word) {
    return std::any_of(std::begin(entry.names), std::end(entry.names),
                       [&](const char* name) { return name && word == QLatin1String(name); });
}

}  // namespace

QStringList commandWords(const QString& line) {
    QStringList words;
    QString word;
    bool isEscaped = false;
    for (const QChar character : line) {
        if (character == ' ' && !isEscaped) {
            words.append(word);
            word.clear();
            continue;
        }
        isEscaped = character == '\\' && !isEscaped;
        word += character;
    }
    words.append(word);
    words.removeAll(QString());
    return words;
}

CommandEffect performCommand(const CommandCall& call) {
    const QStringList words = commandWords(call.line.simplified());
    if (words.isEmpty())
        return CommandEffect::Stays;
    for (const CommandEntry& entry : commands) {
        if (hasName(entry, words.first()))
            return entry.perform(
                {call.debugger, call.output, call.line, words.mid(1), call.aboutToQuit});
    }
    call.output.fail("Unknown command: " + call.output.encoded(call.line));
    return CommandEffect::Stays;
}

void endProcess(const std::function<void()>& aboutToQuit) {
    if (aboutToQuit)
        aboutToQuit();
    QCoreApplication::quit();
    std::exit(0);
}

}  // namespace Tamrix
