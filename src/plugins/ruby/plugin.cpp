// What the core asks of a language plug-in.

#include <cstdio>
#include <exception>

#include "base/export.h"
#include "plugins/ruby/objectnames.h"
#include "plugins/ruby/rubyinterpreter.h"
#include "plugins/ruby/rubyrecorder.h"

/// An interpreter for Ruby scripts, owned by the caller; null, with a message on standard error,
/// when Ruby can't be started.
extern "C" TAMRIX_EXPORT Tamrix::Interpreter* createInterpreter(Tamrix::RunnerInterface* runner) {
    try {
        return new Tamrix::RubyPlugin::RubyInterpreter(runner);
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "Error creating the Ruby interpreter: %s\n", exception.what());
        return nullptr;
    }
}

/// A map of object names in a Ruby script, owned by the caller.
extern "C" TAMRIX_EXPORT Tamrix::ScriptedObjectMap* createScriptedObjectMap(const QString& path) {
    return new Tamrix::RubyPlugin::RubyObjectMap(path);
}

/// Writes scripts in Ruby, owned by the caller. The text is the module with the names of objects
/// that the scripts bring in, empty for none; the others have no meaning here.
extern "C" TAMRIX_EXPORT Tamrix::EventRecorder* createEventRecorder(bool /*first*/, bool /*second*/,
                                                                    bool /*third*/,
                                                                    const QString& namesModule) {
    return new Tamrix::RubyPlugin::RubyRecorder(namesModule);
}
