#include "interpreter/language/languageplugin.h"

#include "plugins/tcl/objectnames.h"
#include "plugins/tcl/tclinterpreter.h"
#include "plugins/tcl/tclrecorder.h"

using namespace Tamrix;

Interpreter* createInterpreter(RunnerInterface* runner) {
    return createOrTell<TclPlugin::TclInterpreter>("Tcl", runner);
}

ScriptedObjectMap* createScriptedObjectMap(const QString& path) {
    return new TclPlugin::TclObjectMap(path);
}

EventRecorder* createEventRecorder(bool, bool, bool, const QString& namesModule) {
    return new NotatedRecorder(TclPlugin::recordingNotation, namesModule);
}
