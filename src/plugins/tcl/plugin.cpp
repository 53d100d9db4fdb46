// What the core asks of a language plug-in.

#include <cstdio>
#include <exception>

#include "base/export.h"
#include "plugins/tcl/objectnames.h"
#include "plugins/tcl/tclinterpreter.h"
#include "plugins/tcl/tclrecorder.h"
#include "plugins/tcl/tclruntime.h"

/// An interpreter for Tcl scripts, owned by the caller; null, with a message on standard error,
/// when Tcl can't be started.
extern "C" TAMRIX_EXPORT Tamrix::Interpreter* createInterpreter(Tamrix::RunnerInterface* runner) {
    try {
        return new Tamrix::TclPlugin::TclInterpreter(runner);
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "Error creating the Tcl interpreter: %s\n", exception.what());
    } catch (const Tamrix::TclPlugin::TclPanic& panic) {
        std::fprintf(stderr, "Error creating the Tcl interpreter: %s\n", panic.text);
    }
    return nullptr;
}

/// A map of object names in a Tcl script, owned by the caller.
extern "C" TAMRIX_EXPORT Tamrix::ScriptedObjectMap* createScriptedObjectMap(const QString& path) {
    return new Tamrix::TclPlugin::TclObjectMap(path);
}

/// Writes scripts in Tcl, owned by the caller. The text is the module with the names of objects
/// that the scripts bring in, empty for none; the others have no meaning here.
extern "C" TAMRIX_EXPORT Tamrix::EventRecorder* createEventRecorder(bool /*first*/, bool /*second*/,
                                                                    bool /*third*/,
                                                                    const QString& namesModule) {
    return new Tamrix::TclPlugin::TclRecorder(namesModule);
}
