#pragma once

#include <jsapi.h>

#include <QString>
#include <memory>
#include <vector>

namespace Tamrix::JavaScriptPlugin {

/// A frame of the script as the debugger's side of the engine knows it.
using FrameHandle = std::shared_ptr<JS::PersistentRootedObject>;

/// Whom the debugger's side tells. In the realm of the script.
class DebuggeeListener {
public:
    virtual ~DebuggeeListener() = default;
    /// A line of the file is about to run.
    virtual void lineReached(const QString& file, int line) = 0;
    /// An exception leaves the innermost frame, and no `catch` of the script will stop it.
    virtual void errorThrown(JS::HandleValue exception) = 0;
};

/// Where the debugger's half of the engine lives: scripts can be looked at from another compartment
/// only, by code of the language. What is given and taken are values of the script's realm, in
/// which all of these are called. They throw ScriptErrorSet.
class DebuggerRealm {
public:
    /// Made on first use, for the process.
    static DebuggerRealm& self();

    /// Watches the realm for the listener, which is told of lines: of those in `breakLines` of each
    /// file, and of all when `isStepping`.
    void watch(JS::HandleObject global, DebuggeeListener& listener);
    void unwatch();
    bool isWatching() const { return m_listener != nullptr; }
    void setStepping(bool isStepping);
    void setBreakLines(const QString& file, const std::vector<int>& lines);
    /// Nothing is told meanwhile.
    void setSilent(bool isSilent);

    struct Frame {
        FrameHandle handle;
        /// As the engine names it: code of an `eval` has a name of its own.
        QString file;
        int line = -1;
        int column = -1;
    };
    /// The frames of the watched realm that run code of files, the innermost first.
    std::vector<Frame> frames();

    /// Names and values in a frame, those of inner scopes first, without names that hide others.
    struct Variable {
        QString name;
        JS::PersistentRootedValue value;
    };
    std::vector<Variable> variables(const FrameHandle& frame);

    /// Runs code in a frame; at the top level of the script for null.
    JS::Value evaluate(const FrameHandle& frame, const QString& code);
    /// Runs code in the frame that has called the running native function, of a script that need
    /// not be watched. `file` stands for the code in positions.
    JS::Value evaluateInCaller(const QString& code, const char* file);
    /// What the running call of a native function says in its script: the text of its first
    /// argument as a name without a value, then the values in it. These are looked up once more:
    /// names, properties, operators and some of the language's own functions; no other call is made
    /// a second time. Empty when there is nothing to tell.
    std::vector<Variable> explainCaller();

private:
    DebuggerRealm();
    /// Calls a function of the debugger's with values of any realm, and gives one of the
    /// debugger's.
    template <typename... Values>
    JS::Value call(const char* function, const Values&... values);
    /// The same for a function that gives how code has ended.
    template <typename... Values>
    JS::Value callForCompletion(const char* function, const Values&... values);
    template <typename... Values>
    std::vector<Variable> callForVariables(const char* function, const Values&... values);
    /// Lets `tell` tell the listener in the realm of the script.
    template <typename Tell>
    static bool tell(Tell tell);
    static bool tellLine(JSContext* context, unsigned count, JS::Value* values);
    static bool tellError(JSContext* context, unsigned count, JS::Value* values);

    JS::PersistentRootedObject m_global;
    JS::PersistentRootedObject m_watched;
    DebuggeeListener* m_listener = nullptr;
};

}  // namespace Tamrix::JavaScriptPlugin
