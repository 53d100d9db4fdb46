#include "interpreter/bdd/bdtdebugger.h"

#include "interpreter/bridge/debugger.h"

namespace Tamrix {

void BDTDebugger::trace(const Gherkin::SourceExtent& extent, Gherkin::TraceType type) {
    if (type == Gherkin::Entering) {
        m_debugger->pushFrameAndSetCurrent(extent.firstLine, extent.firstColumn, m_sourceId);
        stopAsWanted(extent);
    } else if (type == Gherkin::Leaving) {
        m_debugger->popFrameAndSetCurrent();
    }
}

void BDTDebugger::stopAsWanted(const Gherkin::SourceExtent& extent) {
    switch (m_debugger->debuggerMode()) {
        case Tamrix::Debugger::None:
            break;
        case Tamrix::Debugger::Next:
        case Tamrix::Debugger::Step:
            // Meant: a step counts as a line at any depth.
            m_debugger->stop();
            break;
        case Tamrix::Debugger::Run:
            if (hasBreakPoint(extent))
                m_debugger->stop();
            break;
    }
}

bool BDTDebugger::hasBreakPoint(const Gherkin::SourceExtent& extent) const {
    for (int line = extent.firstLine; line <= extent.lastLine; ++line) {
        if (m_debugger->hasBreakPoint(line, m_sourceId))
            return true;
    }
    return false;
}

bool BDTDebugger::handlesMissingSteps() {
    return m_debugger->breakOnMissingStep();
}

void BDTDebugger::missingStep(int line, const Gherkin::Step& step) {
    m_debugger->missingStep(line, step.text);
}

}  // namespace Tamrix
