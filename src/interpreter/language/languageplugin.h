#pragma once

#include <QString>
#include <cstdio>
#include <exception>

#include "base/export.h"
#include "interpreter/bridge/eventrecorder.h"
#include "interpreter/bridge/interpreter.h"
#include "platform/objectmodel/scriptedobjectmap.h"

// What the core asks of a language plug-in. What is given belongs to the caller.
extern "C" {

/// An interpreter; null, with a message on standard error, when the runtime can't be started.
TAMRIX_EXPORT Tamrix::Interpreter* createInterpreter(Tamrix::RunnerInterface* runner);

/// A map of object names in a script of the language.
TAMRIX_EXPORT Tamrix::ScriptedObjectMap* createScriptedObjectMap(const QString& path);

/// Writes scripts. The text is the module with the names of objects that the scripts import, empty
/// for none; the others have no meaning here.
TAMRIX_EXPORT Tamrix::EventRecorder* createEventRecorder(bool first, bool second, bool third,
                                                         const QString& namesModule);
}

namespace Tamrix {

/// createInterpreter() with a plug-in's own class, for a language of this name.
template <typename OwnInterpreter>
Interpreter* createOrTell(const char* language, RunnerInterface* runner) {
    try {
        return new OwnInterpreter(runner);
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "Error creating the %s interpreter: %s\n", language, exception.what());
        return nullptr;
    }
}

}  // namespace Tamrix
