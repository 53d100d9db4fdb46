#include "interpreter/language/languageplugin.h"

#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/objectnames.h"
#include "plugins/perl/perlrecorder.h"

using namespace Tamrix;

Interpreter* createInterpreter(RunnerInterface* runner) {
    return createOrTell<PerlPlugin::CaseInterpreter>("Perl", runner);
}

ScriptedObjectMap* createScriptedObjectMap(const QString& path) {
    return new PerlPlugin::PerlObjectMap(path);
}

EventRecorder* createEventRecorder(bool, bool, bool, const QString& namesModule) {
    return new NotatedRecorder(PerlPlugin::recordingNotation, namesModule);
}
