#include "runner/commands/runreports.h"

#include <fcntl.h>
#include <unistd.h>

#include <QFile>
#include <cstdio>

#include "platform/testresult/compositereport.h"
#include "platform/testresult/consolereport.h"
#include "runner/commands/caserun.h"

namespace Tamrix {

int consoleDescriptor(const CaseRunSettings& settings) {
    return settings.debugger == DebuggerDialogue::Machine ? STDERR_FILENO : STDOUT_FILENO;
}

std::unique_ptr<ReportGenerator> createConsole(const CaseRunSettings& settings,
                                               std::unique_ptr<QIODevice> output) {
    if (!settings.hasConsole)
        return std::make_unique<CompositeReport>();
    using Decoration = ConsoleReport::Decoration;
    const bool wantsColours = ::isatty(consoleDescriptor(settings)) &&
                              qEnvironmentVariableIsEmpty("NO_COLOR") && qgetenv("TERM") != "dumb";
    // The line that shows the running case is no place to type commands behind.
    const Decoration colours = settings.debugger == DebuggerDialogue::None
                                   ? Decoration::ColoursAndRunningCase
                                   : Decoration::Colours;
    return std::make_unique<ConsoleReport>(std::move(output), settings.verbosity,
                                           wantsColours ? colours : Decoration::None);
}

std::unique_ptr<ReportGenerator> createConsole(const CaseRunSettings& settings) {
    auto output = std::make_unique<QFile>();
    const int descriptor = consoleDescriptor(settings);
    // One of its own, since a script may close that of the process. A debugger's lines go where the
    // report goes, in their order.
    const int ownDescriptor =
        settings.debugger == DebuggerDialogue::None ? ::fcntl(descriptor, F_DUPFD_CLOEXEC, 3) : -1;
    if (ownDescriptor < 0)
        output->open(descriptor == STDERR_FILENO ? stderr : stdout, QIODevice::WriteOnly);
    else if (!output->open(ownDescriptor, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle))
        ::close(ownDescriptor);
    return createConsole(settings, std::move(output));
}

std::unique_ptr<ReportGenerator> createHistory(const CaseRunSettings& settings, const Suite& suite,
                                               const CaseTimes& history) {
    // All shards have to read the same.
    if (settings.farm.history.isEmpty() || settings.farm.shard)
        return nullptr;
    return std::make_unique<HistoryReport>(settings.farm.history, suite.name, history);
}

QString endedByFailures(const CaseRunSettings& settings) {
    return settings.maxFailures == 1
               ? QStringLiteral("ended at the first failure")
               : QStringLiteral("ended after %1 failed test cases").arg(settings.maxFailures);
}

}  // namespace Tamrix
