// A language plug-in whose factories give back what they got, as pointers that nobody follows.

#include <QString>

#include "base/export.h"

namespace Tamrix {

class EventRecorder;
class Interpreter;
class RunnerInterface;
class ScriptedObjectMap;

extern "C" {

TAMRIX_EXPORT Interpreter* createInterpreter(RunnerInterface* runner) {
    return reinterpret_cast<Interpreter*>(runner);
}

TAMRIX_EXPORT EventRecorder* createEventRecorder(bool first, bool second, bool third,
                                                 const QString& text) {
    const bool asExpected = first && !second && third && text == QLatin1String("text");
    return reinterpret_cast<EventRecorder*>(asExpected ? 1 : 2);
}

TAMRIX_EXPORT ScriptedObjectMap* createScriptedObjectMap(const QString& path) {
    return reinterpret_cast<ScriptedObjectMap*>(static_cast<quintptr>(path.size()));
}

}  // extern "C"

}  // namespace Tamrix
