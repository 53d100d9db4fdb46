#include "runner/debugging/editedinput.h"

#include <editline/readline.h>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <utility>

namespace Tamrix {

namespace {

/// What the library has handed over; nothing as long as the line is not ended.
std::optional<CommandInput::Line> s_line;

void takeLine(char* text) {
    s_line = text ? CommandInput::Line{CommandInput::End::None, text}
                  : CommandInput::Line{CommandInput::End::OfInput, {}};
    std::free(text);
    // At once: the library would show its prompt again.
    rl_callback_handler_remove();
}

}  // namespace

EditedInput::EditedInput(std::function<bool()> isInterrupted)
    : m_isInterrupted(std::move(isInterrupted)) {
    static bool s_isPrepared = false;
    if (!std::exchange(s_isPrepared, true)) {
        rl_initialize();
        using_history();
    }
}

CommandInput::Line EditedInput::readLine(const std::string& prompt) {
    // Only its last line can be redrawn.
    const std::size_t lastLine = prompt.rfind('\n') + 1;
    std::fwrite(prompt.data(), 1, lastLine, stdout);
    std::fflush(stdout);
    s_line.reset();
    rl_callback_handler_install(prompt.c_str() + lastLine, takeLine);
    while (!s_line) {
        if (!waitForStandardInput(m_isInterrupted)) {
            rl_callback_handler_remove();
            return {End::Interrupted, {}};
        }
        rl_callback_read_char();
    }
    Line line = *std::exchange(s_line, std::nullopt);
    // Ctrl-D leaves the cursor behind the prompt.
    if (line.end == End::OfInput)
        std::fputc('\n', stdout);
    if (line.end == End::None && line.text.find_first_not_of(" \t") != std::string::npos) {
        if (line.text != m_last)
            add_history(line.text.c_str());
        m_last = line.text;
    }
    if (line.text.size() > maximalSize)
        line.end = End::TooLong;
    return line;
}

}  // namespace Tamrix
