#include "interpreter/language/languageplugin.h"

#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/javascriptrecorder.h"
#include "plugins/javascript/objectnames.h"

using namespace Tamrix;

Interpreter* createInterpreter(RunnerInterface* runner) {
    return createOrTell<JavaScriptPlugin::JavaScriptInterpreter>("JavaScript", runner);
}

ScriptedObjectMap* createScriptedObjectMap(const QString& path) {
    return new JavaScriptPlugin::JavaScriptObjectMap(path);
}

EventRecorder* createEventRecorder(bool, bool, bool, const QString& namesModule) {
    return new NotatedRecorder(JavaScriptPlugin::recordingNotation, namesModule);
}
