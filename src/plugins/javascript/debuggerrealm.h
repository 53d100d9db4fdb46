#pragma once

#include <QString>
#include <vector>

#include "interpreter/bridge/scriptargument.h"
#include "interpreter/language/languagedebugger.h"
#include "plugins/javascript/values.h"

namespace Tamrix::JavaScriptPlugin {

class JavaScriptDebugger;

/// A frame of the script as the debugger's side of the engine knows it; null for a line alone.
using FrameHandle = ObjectRoot;

/// Where the debugger's half of the engine lives: scripts can be looked at from another compartment
/// only, by code of the language. What is given and taken are values of the script's realm, in
/// which all of these are called. They throw ScriptErrorSet.
class DebuggerRealm {
public:
    /// Made on first use, for the process.
    static DebuggerRealm& self();

    /// Watches the realm for the debugger, which is told of lines: of those in `breakLines` of each
    /// file, and of all when `isStepping`.
    void watch(JS::HandleObject global, JavaScriptDebugger& listener);
    void unwatch();
    void setStepping(bool isStepping);
    void setBreakLines(const QString& file, const std::vector<int>& lines);
    /// Nothing is told meanwhile.
    void setSilent(bool isSilent);

    /// The frames of the watched realm that run code of files, the innermost first. Each has its
    /// FrameHandle.
    std::vector<ScriptFrame> frames();

    /// Those of a frame, of inner scopes first, with their names as parts of paths; none that are
    /// hidden by others.
    std::vector<ValueTexts::Part> variables(const FrameHandle& frame);

    /// Runs code in a frame; at the top level of the script for null.
    JS::Value evaluate(const FrameHandle& frame, const QString& code);
    /// Runs code in the frame that has called the running native function, of a script that need
    /// not be watched. `file` stands for the code in positions.
    JS::Value evaluateInCaller(const QString& code, const char* file);
    /// What the running call of a native function says in its script: the text of its first
    /// argument as a name without a value, then the values in it. These are looked up once more:
    /// names, properties, operators and some of the language's own functions; no other call is made
    /// a second time. Empty when there is nothing to tell.
    std::vector<ValueTexts::Part> explainCaller();

    // For the functions that its code calls.
    /// Null while nothing is watched.
    JavaScriptDebugger* listener() const { return m_listener; }
    JS::HandleObject watched() const { return m_watched; }

private:
    DebuggerRealm();
    /// Calls a function of the debugger's with values of any realm.
    JS::Value call(const char* function, const ValueRoots& given = ValueRoots());

    JS::PersistentRootedObject m_global;
    JS::PersistentRootedObject m_watched;
    JavaScriptDebugger* m_listener = nullptr;
};

}  // namespace Tamrix::JavaScriptPlugin
