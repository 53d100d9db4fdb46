#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/export.h"

namespace Tamrix {

/// Where commands come from, one a line.
class TAMRIX_EXPORT CommandInput {
public:
    enum class End {
        None,         ///< there is a line
        OfInput,      ///< nothing more will come
        Interrupted,  ///< the wait was given up: the program is to end
        TooLong       ///< a line above maximalSize, which is passed over
    };
    struct Line {
        End end = End::None;
        /// Without the line feed.
        std::string text;
    };
    /// Code and states of searches are long; what is longer than this is no command.
    static constexpr std::size_t maximalSize = 1 << 20;

    virtual ~CommandInput() = default;

    /// Waits without limit for the next line, and lets Qt work meanwhile. `prompt` is shown where a
    /// person types.
    virtual Line readLine(const std::string& prompt) = 0;
};

/// Standard input, of which no byte behind the line is taken: the rest may be the script's. Needs a
/// QCoreApplication for Qt's work; without one it only waits.
class TAMRIX_EXPORT StandardInput : public CommandInput {
public:
    /// `isInterrupted` tells that a wait is to be given up; empty when that never happens.
    explicit StandardInput(std::function<bool()> isInterrupted = {});

    Line readLine(const std::string& prompt) override;

private:
    std::function<bool()> m_isInterrupted;
};

/// Waits until standard input can be read, or has ended, and lets Qt work meanwhile. False when
/// `isInterrupted`, if there is one, says so first.
TAMRIX_EXPORT bool waitForStandardInput(const std::function<bool()>& isInterrupted);

}  // namespace Tamrix
