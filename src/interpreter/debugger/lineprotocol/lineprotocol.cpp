#include "interpreter/debugger/lineprotocol/lineprotocol.h"

#include <cstdio>

#include "base/overloaded.h"

namespace Tamrix {

void LineProtocol::stopped(const ScriptPosition& position, const StopReason& reason) {
    print(std::visit(
        Overloaded{
            [&](const LineReached&) { return "@" + positionText(position); },
            [&](const ObjectNotFound& object) {
                const std::string fields =
                    "@objLookupError " + positionFields(position) + '\t' + escaped(object.name);
                return object.detail.isEmpty()
                           ? fields
                           : fields + '\t' + encoded(escapeNonPrintable(object.detail));
            },
            [&](const ImageNotFound& image) {
                return "@imgLookupError " + positionFields(position) + '\t' + escaped(image.name) +
                       '\t' + std::to_string(image.target) + '\t' + escaped(image.screenshot);
            },
            [&](const TextNotFound& text) {
                return "@textLookupError " + positionFields(position) + '\t' +
                       escaped(text.screenshot);
            },
            [&](const StepMissing& step) {
                return "@missingStep " + std::to_string(position.line) + ' ' + step.text;
            },
        },
        reason));
}

void LineProtocol::passed(const ScriptPosition& position) {
    print("#" + positionText(position));
}

void LineProtocol::notify(const QString& key, const QString& value) {
    print("@notify " + escaped(key) + '\t' + escaped(value));
}

std::optional<DebuggerCommand> LineProtocol::waitForCommand() {
    return std::nullopt;
}

void LineProtocol::reply(const DebuggerCommand& command, const Outcome<BreakPointReply>& answer) {
    const bool isDeletion = std::holds_alternative<DeleteBreakPoint>(command);
    const std::string word = isDeletion ? "delete" : "break";
    if (!answer) {
        const std::string line =
            linePrefix(m_dialect) + word + " error: " + encoded(answer.error().text);
        // Meant: failures of these commands do not go where their successes go.
        std::fprintf(stderr, "%s\n", line.c_str());
        return;
    }
    const char* const what = isDeletion           ? "Deleted break point "
                             : answer->isBuffered ? "Set buffered break point "
                                                  : "Set break point ";
    print(word + " ok: " + what + encoded(answer->file) + ':' + std::to_string(answer->line));
}

std::string LineProtocol::encoded(const QString& text) const {
    return encodeForDialect(text, m_dialect);
}

std::string LineProtocol::escaped(const QString& text) const {
    return encoded(escapeForVariablePrinting(text));
}

void LineProtocol::print(const std::string& text) const {
    const std::string line = linePrefix(m_dialect) + text + '\n';
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fflush(stdout);
}

std::string LineProtocol::positionText(const ScriptPosition& position) const {
    return "line " + std::to_string(position.line) + ", column " + std::to_string(position.column) +
           ", " + encoded(position.file) + ':';
}

std::string LineProtocol::positionFields(const ScriptPosition& position) const {
    return std::to_string(position.line) + '\t' + std::to_string(position.column) + '\t' +
           encoded(position.file);
}

}  // namespace Tamrix
