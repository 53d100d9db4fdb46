#pragma once

#include <QIODevice>
#include <QString>
#include <memory>

#include "platform/testresult/reportgenerator.h"
#include "runner/farm/casetimes.h"

namespace Tamrix {

struct CaseRunSettings;

// The reports that a run has beside those that it was asked for.

/// Where the console report goes: standard output may be a program's that debugs the run.
int consoleDescriptor(const CaseRunSettings& settings);

/// The console report on a device; one that tells nothing where none is wanted.
std::unique_ptr<ReportGenerator> createConsole(const CaseRunSettings& settings,
                                               std::unique_ptr<QIODevice> output);
/// The same on the console itself.
std::unique_ptr<ReportGenerator> createConsole(const CaseRunSettings& settings);

/// What keeps the times of the run; null when they are not kept.
std::unique_ptr<ReportGenerator> createHistory(const CaseRunSettings& settings, const Suite& suite,
                                               const CaseTimes& history);

/// Why a run ended before all cases had run: "ended at the first failure".
QString endedByFailures(const CaseRunSettings& settings);

}  // namespace Tamrix
