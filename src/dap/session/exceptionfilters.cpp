#include "dap/session/exceptionfilters.h"

#include <algorithm>

#include "dap/session/language.h"

namespace Tamrix::Dap {

std::vector<ExceptionBreakpointsFilter> ExceptionFilters::offered() {
    return {
        {failedVerdict, "Failed Verdicts", "Stops where a verification fails.", true},
        {scriptError, "Script Errors", "Stops where an error leaves the script.", true},
        {objectNotFound, "Objects Not Found",
         "Stops where an object is looked for in vain. Continuing looks again.", false},
        {imageNotFound, "Images Not Found",
         "Stops where an image is searched for in vain. Continuing searches again.", false},
        {missingStep, "Missing Steps",
         "Stops at a step of a feature file without a definition. Continuing loads what has been "
         "written and looks again.",
         false},
    };
}

Outcome<> ExceptionFilters::choose(const std::vector<QString>& names) {
    const std::vector<ExceptionBreakpointsFilter> known = offered();
    for (const QString& name : names) {
        if (std::none_of(known.begin(), known.end(), [&](const ExceptionBreakpointsFilter& each) {
                return each.filter == name;
            }))
            return fail(FailureKind::BadArgument,
                        QStringLiteral("there is no exception filter '%1'").arg(name));
    }
    m_chosen = names;
    return {};
}

Outcome<> ExceptionFilters::apply(Debuggee& debuggee, const QString& file) const {
    debuggee.setObjectNotFoundStops(stopsAtMissingObjects());
    debuggee.setImageNotFoundStops(stopsAtMissingImages());
    if (const Outcome<> set = debuggee.setMissingStepStops(isOn(missingStep)); !set)
        return set;
    struct Switch {
        const char* setting;
        bool on;
    };
    const Switch switches[] = {
        {"breakOnFailure", stopsAtFailedVerdicts()},
        {"objectNotFoundDebugging", stopsAtMissingObjects()},
        {"imageNotFoundDebugging", stopsAtMissingImages()},
    };
    for (const Switch& each : switches) {
        const Outcome<QString> set = debuggee.evaluate(switchCode(file, each.setting, each.on));
        // Where the code of a feature file is not known, the run has its own setting.
        if (!set && set.error().kind != FailureKind::BadArgument)
            return fail(set.error());
    }
    return {};
}

bool ExceptionFilters::isOn(const char* name) const {
    return std::find(m_chosen.begin(), m_chosen.end(), QLatin1String(name)) != m_chosen.end();
}

}  // namespace Tamrix::Dap
