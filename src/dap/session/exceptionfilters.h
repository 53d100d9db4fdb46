#pragma once

#include <QString>
#include <vector>

#include "base/outcome.h"
#include "dap/program/debuggee.h"
#include "dap/protocol/messages.h"

namespace Tamrix::Dap {

/// What a script stops for beside its break points.
class ExceptionFilters {
public:
    /// Those that a client can choose of.
    static std::vector<ExceptionBreakpointsFilter> offered();

    /// Those that are on from now on; an unknown name is a failure.
    Outcome<> choose(const std::vector<QString>& names);
    bool stopsAtFailedVerdicts() const { return isOn(failedVerdict); }
    bool stopsAtScriptErrors() const { return isOn(scriptError); }
    bool stopsAtMissingObjects() const { return isOn(objectNotFound); }

    /// Tells the debugger, in a script that stands still in this file.
    Outcome<> apply(Debuggee& debuggee, const QString& file) const;

private:
    static constexpr char failedVerdict[] = "failedVerdict";
    static constexpr char scriptError[] = "scriptError";
    static constexpr char objectNotFound[] = "objectNotFound";
    static constexpr char missingStep[] = "missingStep";

    bool isOn(const char* name) const;

    std::vector<QString> m_chosen;
};

}  // namespace Tamrix::Dap
