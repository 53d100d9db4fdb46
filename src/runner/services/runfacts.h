#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

#include "base/shared.h"
#include "runner/applications/application.h"
#include "runner/applications/applicationstart.h"

namespace Tamrix {

class TestResult;

/// Facts of a run, set by the one who runs the suite.
struct RunFacts {
    QString suiteName;
    QString caseName;
    QString scriptPath;
    /// An absolute path, or empty when no folder for results was chosen.
    QString resultDirectory;
    /// Not owned, may be null.
    TestResult* testResult = nullptr;
    /// Which scenarios of features run.
    QStringList tagFilters = {};
    std::vector<unsigned> scenarios = {};
    /// Where applications and the map of object names are looked for.
    ApplicationPlaces places;
    /// Whether the run makes a video of each case by itself.
    bool recordsVideo = false;
    /// Called when a script has got an application, however; may be null.
    std::function<void(const SharedPtr<Application>&)> onApplication;
};

}  // namespace Tamrix
