#include "interpreter/debugger/lineprotocol/lineprotocol.h"

#include "base/overloaded.h"
#include "base/protocolescapes.h"
#include "interpreter/bridge/debugger.h"
#include "interpreter/bridge/internaldebugger.h"
#include "interpreter/debugger/lineprotocol/command.h"
#include "interpreter/debugger/lineprotocol/commandfunctions.h"

namespace Tamrix {

LineProtocol::LineProtocol(ProtocolDialect dialect, ProtocolSurroundings surroundings)
    : m_output(dialect), m_surroundings(std::move(surroundings)) {
    if (!m_surroundings.input)
        m_surroundings.input = std::make_unique<StandardInput>();
}

void LineProtocol::stopped(const ScriptPosition& position, const StopReason& reason) {
    m_output.print(std::visit(
        Overloaded{
            [&](const LineReached&) {
                const std::string text = positionText(position);
                return "@" + text;
            },
            [&](const ObjectNotFound& object) {
                const std::string fields = "@objLookupError " + positionFields(position) + '\t' +
                                           m_output.escaped(object.name);
                return object.detail.isEmpty()
                           ? fields
                           : fields + '\t' + m_output.encoded(escapeNonPrintable(object.detail));
            },
            [&](const ImageNotFound& image) {
                return "@imgLookupError " + positionFields(position) + '\t' +
                       m_output.escaped(image.name) + '\t' + std::to_string(image.target) + '\t' +
                       m_output.escaped(image.screenshot);
            },
            [&](const TextNotFound& text) {
                return "@textLookupError " + positionFields(position) + '\t' +
                       m_output.escaped(text.screenshot);
            },
            [&](const StepMissing& step) {
                return "@missingStep " + std::to_string(position.line) + ' ' + step.text;
            },
        },
        reason));
    showSearch();
    if (m_surroundings.showPosition)
        m_surroundings.showPosition(position);
}

void LineProtocol::showSearch() {
    const Debugger* const debugger = Debugger::self();
    const InternalDebugger* const search = debugger ? debugger->internalDebugger() : nullptr;
    // A program asks for it.
    if (search && m_output.dialect() == ProtocolDialect::Terminal)
        m_output.print(m_output.encoded(search->contextName()) + ": " + searchStateText(*search));
}

void LineProtocol::passed(const ScriptPosition& position) {
    const std::string text = positionText(position);
    m_output.print("#" + text);
}

void LineProtocol::notify(const QString& key, const QString& value) {
    m_output.print("@notify " + m_output.escaped(key) + '\t' + m_output.escaped(value));
}

bool LineProtocol::performCommands(Debugger& debugger) {
    while (true) {
        const CommandInput::Line line = m_surroundings.input->readLine(promptText(debugger));
        switch (line.end) {
            case CommandInput::End::None:
                break;
            case CommandInput::End::OfInput:
                endProcess(m_surroundings.aboutToQuit);
            case CommandInput::End::Interrupted:
                return false;
            case CommandInput::End::TooLong:
                m_output.fail(QStringLiteral("Command of more than %1 bytes")
                                  .arg(CommandInput::maximalSize)
                                  .toStdString());
                continue;
        }
        const CommandCall call{
            debugger, m_output, QString::fromStdString(line.text), {}, m_surroundings.aboutToQuit};
        if (performCommand(call) == CommandEffect::Resumes)
            return true;
    }
}

std::string LineProtocol::promptText(Debugger& debugger) const {
    if (m_output.dialect() == ProtocolDialect::Machine)
        return {};
    const DebuggerFrame frame = debugger.currentFrame();
    return "\n@" + positionText({debugger.findSourceId(frame.sourceId), frame.line, frame.column}) +
           "\n\ntamrixrunner dbg> ";
}

std::string LineProtocol::positionText(const ScriptPosition& position) const {
    return "line " + std::to_string(position.line) + ", column " + std::to_string(position.column) +
           ", " + m_output.encoded(position.file) + ':';
}

std::string LineProtocol::positionFields(const ScriptPosition& position) const {
    return std::to_string(position.line) + '\t' + std::to_string(position.column) + '\t' +
           m_output.encoded(position.file);
}

}  // namespace Tamrix
