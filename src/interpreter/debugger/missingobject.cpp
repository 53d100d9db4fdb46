#include "interpreter/debugger/missingobject.h"

#include "interpreter/bridge/debugger.h"
#include "interpreter/bridge/testsettingstype.h"
#include "platform/objectmodel/objectmap.h"

namespace Tamrix {

namespace {

bool isWanted(const Debugger* debugger) {
    return debugger && debugger->objectNotFoundDebugging() &&
           TestSettingsType::s_objectNotFoundDebugging &&
           // Not in code that the debugger itself evaluates.
           debugger->debuggerMode() != Debugger::None;
}

}  // namespace

bool stopForMissingObject(const QString& name, const QString& detail,
                          const QString& objectMapPath) {
    // 1. Test and front end both want the stop.
    Debugger* const debugger = Debugger::self();
    if (!isWanted(debugger))
        return false;
    // 2. The front end mends what is wrong. Without one that answers, nothing will change.
    if (!debugger->stopWithObjectName(name, detail))
        return false;
    // 3. It may also let the error take its course.
    if (debugger->skipCurrentError() == 1)
        return false;
    // 4. Another look, with what the map says now.
    // The script may have taken another one than the suite's.
    const QString used = ObjectMap::self()->path();
    const Outcome<> loaded =
        ObjectMap::self()->loadIfChanged(used.isEmpty() ? objectMapPath : used);
    if (!loaded)
        debugger->notify(QStringLiteral("ObjectMap"), loaded.error().text);
    return true;
}

}  // namespace Tamrix
