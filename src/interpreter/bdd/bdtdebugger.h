#pragma once

#include "base/export.h"
#include "platform/gherkin/callbacks.h"

namespace Tamrix {

class Debugger;

/// Shows the steps of a feature file to the script debugger as frames in that file.
class TAMRIX_EXPORT BDTDebugger final : public Gherkin::Debugger {
public:
    /// `debugger` is not owned; `sourceId` is that of the feature file.
    BDTDebugger(Tamrix::Debugger* debugger, int sourceId)
        : m_debugger(debugger), m_sourceId(sourceId) {}

    void trace(const Gherkin::SourceExtent& extent, Gherkin::TraceType type) override;
    bool handlesMissingSteps() override;
    void missingStep(int line, const Gherkin::Step& step) override;

    bool hasBreakPoint(const Gherkin::SourceExtent& extent) const;

private:
    void stopAsWanted(const Gherkin::SourceExtent& extent);

    Tamrix::Debugger* m_debugger;
    int m_sourceId;
};

}  // namespace Tamrix
