#include "interpreter/language/languageplugin.h"

#include "plugins/ruby/objectnames.h"
#include "plugins/ruby/rubyinterpreter.h"
#include "plugins/ruby/rubyrecorder.h"

using namespace Tamrix;

Interpreter* createInterpreter(RunnerInterface* runner) {
    return createOrTell<RubyPlugin::RubyInterpreter>("Ruby", runner);
}

ScriptedObjectMap* createScriptedObjectMap(const QString& path) {
    return new RubyPlugin::RubyObjectMap(path);
}

EventRecorder* createEventRecorder(bool, bool, bool, const QString& namesModule) {
    return new NotatedRecorder(RubyPlugin::recordingNotation, namesModule);
}
