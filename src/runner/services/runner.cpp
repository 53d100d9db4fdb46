#include "runner/services/runner.h"

#include "interpreter/debugger/missingobject.h"
#include "interpreter/names/objectmaps.h"

namespace Tamrix {

Runner::Runner()
    : ApplicationServices(static_cast<RunState&>(*this)),
      ObjectWaits(static_cast<RunState&>(*this)),
      ApplicationInput(static_cast<RunState&>(*this)),
      RemoteSystems(static_cast<RunState&>(*this)) {}

void Runner::startCase(const QString& name, const QString& scriptPath) {
    facts.caseName = name;
    facts.scriptPath = scriptPath;
    m_imageSearchFixTarget = 0;
    closeRemoteSystems();
    background.startCase();
}

QString Runner::objectMapPath() {
    const QString& suite = facts.places.suiteDirectory;
    return suite.isEmpty() ? QString() : suiteObjectMap(suite);
}

bool Runner::acquireRemoteObjectModel() {
    background.beginCall();
    return true;
}

void Runner::objectNotFound(const QString& name, const QString&, QString* error) {
    if (stopForMissingObject(name, *error, objectMapPath()))
        error->clear();
}

}  // namespace Tamrix
