// What the core asks of a language plug-in.

#include <cstdio>
#include <exception>

#include "base/export.h"
#include "plugins/python/objectnames.h"
#include "plugins/python/pythoninterpreter.h"
#include "plugins/python/pythonrecorder.h"

/// An interpreter for Python scripts, owned by the caller; null, with a message on standard error,
/// when Python can't be started.
extern "C" TAMRIX_EXPORT Tamrix::Interpreter* createInterpreter(Tamrix::RunnerInterface* runner) {
    try {
        return new Tamrix::PythonPlugin::PythonInterpreter(runner);
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "Error creating the Python interpreter: %s\n", exception.what());
        return nullptr;
    }
}

/// Writes scripts in Python, owned by the caller. The text is the module with the names of objects
/// that the scripts import, empty for none; the others have no meaning here.
extern "C" TAMRIX_EXPORT Tamrix::EventRecorder* createEventRecorder(bool /*first*/, bool /*second*/,
                                                                    bool /*third*/,
                                                                    const QString& namesModule) {
    return new Tamrix::PythonPlugin::PythonRecorder(namesModule);
}

/// A map of object names in a Python script, owned by the caller.
extern "C" TAMRIX_EXPORT Tamrix::ScriptedObjectMap* createScriptedObjectMap(const QString& path) {
    return new Tamrix::PythonPlugin::PythonObjectMap(path);
}
