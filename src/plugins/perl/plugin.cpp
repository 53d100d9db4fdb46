// What the core asks of a language plug-in.

#include <cstdio>
#include <exception>

#include "base/export.h"
#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/objectnames.h"
#include "plugins/perl/perlrecorder.h"

/// An interpreter for Perl scripts, owned by the caller; null, with a message on standard error,
/// when Perl can't be started.
extern "C" TAMRIX_EXPORT Tamrix::Interpreter* createInterpreter(Tamrix::RunnerInterface* runner) {
    try {
        return new Tamrix::PerlPlugin::CaseInterpreter(runner);
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "Error creating the Perl interpreter: %s\n", exception.what());
        return nullptr;
    }
}

/// A map of object names in a Perl script, owned by the caller.
extern "C" TAMRIX_EXPORT Tamrix::ScriptedObjectMap* createScriptedObjectMap(const QString& path) {
    return new Tamrix::PerlPlugin::PerlObjectMap(path);
}

/// Writes scripts in Perl, owned by the caller. The text is the module with the names of objects
/// that the scripts bring in, empty for none; the others have no meaning here.
extern "C" TAMRIX_EXPORT Tamrix::EventRecorder* createEventRecorder(bool /*first*/, bool /*second*/,
                                                                    bool /*third*/,
                                                                    const QString& namesModule) {
    return new Tamrix::PerlPlugin::PerlRecorder(namesModule);
}
