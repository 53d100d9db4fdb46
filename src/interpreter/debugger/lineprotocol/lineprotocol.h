#pragma once

#include <functional>
#include <memory>
#include <string>

#include "interpreter/debugger/frontend.h"
#include "interpreter/debugger/lineprotocol/commandinput.h"
#include "interpreter/debugger/lineprotocol/protocoloutput.h"

namespace Tamrix {

/// What surrounds the protocol in a program.
struct ProtocolSurroundings {
    /// Where commands come from; standard input for null.
    std::unique_ptr<CommandInput> input;
    /// Called before a command, or the end of the input, ends the process with exit code 0.
    std::function<void()> aboutToQuit;
    /// Called behind the line that tells of a stop, to show more of it.
    std::function<void(const ScriptPosition&)> showPosition;
};

/// The front end of lines: commands come in on standard input, answers and events go out on
/// standard output, some failures on standard error. command.cpp has the table of commands.
class TAMRIX_EXPORT LineProtocol : public DebuggerFrontEnd {
public:
    explicit LineProtocol(ProtocolDialect dialect, ProtocolSurroundings surroundings = {});

    void stopped(const ScriptPosition& position, const StopReason& reason) override;
    void passed(const ScriptPosition& position) override;
    void notify(const QString& key, const QString& value) override;
    /// The end of the input ends the process.
    bool performCommands(Debugger& debugger) override;

private:
    /// Shows a person the search behind a stop, if there is one.
    void showSearch();
    /// What a person sees in front of a command.
    std::string promptText(Debugger& debugger) const;
    /// "line 3, column 4, FILE:"
    std::string positionText(const ScriptPosition& position) const;
    /// The fields with which a failed look-up is told: line, column and path.
    std::string positionFields(const ScriptPosition& position) const;

    ProtocolOutput m_output;
    ProtocolSurroundings m_surroundings;
};

}  // namespace Tamrix
