#include "runner/services/runner.h"

#include "interpreter/bridge/debugger.h"
#include "interpreter/bridge/testsettingstype.h"

namespace Tamrix {

Runner::Runner()
    : ApplicationServices(static_cast<RunState&>(*this)),
      ObjectWaits(static_cast<RunState&>(*this)),
      ApplicationInput(static_cast<RunState&>(*this)) {}

void Runner::startCase(const QString& name, const QString& scriptPath) {
    facts.caseName = name;
    facts.scriptPath = scriptPath;
    m_imageSearchFixTarget = 0;
    background.startCase();
}

QString Runner::objectMapPath() {
    const QString& suite = facts.places.suiteDirectory;
    return suite.isEmpty() ? QString() : suite + QLatin1String("/shared/objectnames.tsv");
}

bool Runner::acquireRemoteObjectModel() {
    background.beginCall();
    return true;
}

void Runner::objectNotFound(const QString& name, const QString&, QString* error) {
    // The script stops only where the test and a front end both want it; else it fails at once.
    Debugger* const debugger = Debugger::self();
    if (debugger && debugger->objectNotFoundDebugging() &&
        TestSettingsType::s_objectNotFoundDebugging)
        debugger->stopWithObjectName(name, *error);
}

}  // namespace Tamrix
