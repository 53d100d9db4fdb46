#pragma once

#include <functional>

#include "interpreter/debugger/lineprotocol/commandinput.h"

namespace Tamrix {

/// Commands that a person types at a terminal, with line editing and a history that lasts as long
/// as the process. While the script runs, the terminal is as it was before. One at a time: the
/// editing library has one state for the process.
class EditedInput : public CommandInput {
public:
    /// `isInterrupted` tells that a wait is to be given up.
    explicit EditedInput(std::function<bool()> isInterrupted);

    Line readLine(const std::string& prompt) override;

private:
    std::function<bool()> m_isInterrupted;
    std::string m_last;
};

}  // namespace Tamrix
