#include "dap/session/logmessage.h"

namespace Tamrix::Dap {

namespace {

/// The brace that closes the one at `start`, -1 when there is none.
int closingBrace(const QString& text, int start) {
    int depth = 0;
    for (int index = start; index < text.size(); ++index) {
        if (text[index] == '{')
            ++depth;
        else if (text[index] == '}' && --depth == 0)
            return index;
    }
    return -1;
}

}  // namespace

std::vector<LogPart> splitLogMessage(const QString& message) {
    std::vector<LogPart> parts;
    QString text;
    for (int index = 0; index < message.size(); ++index) {
        const int end = message[index] == '{' ? closingBrace(message, index) : -1;
        const QString code = message.mid(index + 1, end - index - 1).trimmed();
        if (end < 0 || code.isEmpty()) {
            text += message[index];
            continue;
        }
        if (!text.isEmpty())
            parts.push_back({std::exchange(text, {}), false});
        parts.push_back({code, true});
        index = end;
    }
    if (!text.isEmpty())
        parts.push_back({text, false});
    return parts;
}

}  // namespace Tamrix::Dap
