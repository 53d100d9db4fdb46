#include "interpreter/language/languageplugin.h"

#include "plugins/python/objectnames.h"
#include "plugins/python/pythoninterpreter.h"
#include "plugins/python/pythonrecorder.h"

using namespace Tamrix;

Interpreter* createInterpreter(RunnerInterface* runner) {
    return createOrTell<PythonPlugin::PythonInterpreter>("Python", runner);
}

ScriptedObjectMap* createScriptedObjectMap(const QString& path) {
    return new PythonPlugin::PythonObjectMap(path);
}

EventRecorder* createEventRecorder(bool, bool, bool, const QString& namesModule) {
    return new NotatedRecorder(PythonPlugin::recordingNotation, namesModule);
}
