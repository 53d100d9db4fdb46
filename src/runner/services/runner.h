#pragma once

#include <QString>

#include "interpreter/bridge/runnerinterface.h"
#include "runner/services/applicationinput.h"
#include "runner/services/applicationservices.h"
#include "runner/services/objectwaits.h"
#include "runner/services/remotesystems.h"
#include "runner/services/runstate.h"

namespace Tamrix {

/// The services that this program gives to scripts. Each base class implements its part of the
/// interface on the state that all share; what is left are facts of the run and the passing of
/// time. Script thread only; needs a QCoreApplication for waits.
class Runner : private RunState,
               public ApplicationServices,
               public ObjectWaits,
               public ApplicationInput,
               public RemoteSystems {
public:
    Runner();

    using RunState::applications;
    using RunState::facts;
    using RunState::recordings;
    /// A test case begins.
    void startCase(const QString& name, const QString& scriptPath);
    /// See BackgroundWork.
    void reportUnexpectedEnds() { background.reportUnexpectedEnds(); }

    /// Ends early when the run is interrupted.
    void snooze(double seconds) override { background.snooze(seconds); }
    void processEvents() override { background.processEvents(); }
    QString testCasePath() override { return facts.scriptPath; }
    QString settingsGroup() override { return {}; }
    QString defaultDevice() override { return {}; }
    QString testCaseName() override { return facts.caseName; }
    QString testSuiteName() override { return facts.suiteName; }
    void setImageSearchFixTarget(int target) override { m_imageSearchFixTarget = target; }
    int imageSearchFixTarget() override { return m_imageSearchFixTarget; }
    /// Of the suite's map, whether it has one or not; empty without a suite.
    QString objectMapPath() override;
    QString currentResultDirectory() override { return facts.resultDirectory; }
    QStringList filterArguments() override { return facts.tagFilters; }
    std::vector<unsigned> scenarioIndices() override { return facts.scenarios; }
    bool isIDEMode() override { return false; }
    unsigned runLevel() override { return 0; }
    TestResult* testResult() override { return facts.testResult; }
    bool isVideoCaptureEnabled() override { return facts.recordsVideo; }
    /// One call of the script at a time holds the object model. Also notes where the script is, for
    /// what goes wrong with applications meanwhile.
    bool acquireRemoteObjectModel() override;
    void releaseRemoteObjectModel() override { background.endCall(); }
    void objectNotFound(const QString& name, const QString& function, QString* error) override;

private:
    int m_imageSearchFixTarget = 0;
};

}  // namespace Tamrix
