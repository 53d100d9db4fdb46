// What the core asks of a language plug-in.

#include <cstdio>
#include <exception>

#include "base/export.h"
#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/javascriptrecorder.h"
#include "plugins/javascript/objectnames.h"

/// An interpreter for JavaScript, owned by the caller; null, with a message on standard error, when
/// the engine can't be started.
extern "C" TAMRIX_EXPORT Tamrix::Interpreter* createInterpreter(Tamrix::RunnerInterface* runner) {
    try {
        return new Tamrix::JavaScriptPlugin::JavaScriptInterpreter(runner);
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "Error creating the JavaScript interpreter: %s\n", exception.what());
        return nullptr;
    }
}

/// A map of object names in a JavaScript module, owned by the caller.
extern "C" TAMRIX_EXPORT Tamrix::ScriptedObjectMap* createScriptedObjectMap(const QString& path) {
    return new Tamrix::JavaScriptPlugin::JavaScriptObjectMap(path);
}

/// Writes scripts in JavaScript, owned by the caller. The text is the module with the names of
/// objects that the scripts bring in, empty for none; the others have no meaning here.
extern "C" TAMRIX_EXPORT Tamrix::EventRecorder* createEventRecorder(bool /*first*/, bool /*second*/,
                                                                    bool /*third*/,
                                                                    const QString& namesModule) {
    return new Tamrix::JavaScriptPlugin::JavaScriptRecorder(namesModule);
}
