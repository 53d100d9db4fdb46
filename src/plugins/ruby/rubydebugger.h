#pragma once

#include <vector>

#include "interpreter/language/languagedebugger.h"
#include "plugins/ruby/rubyref.h"

namespace Tamrix::RubyPlugin {

class RubyInterpreter;

/// Ruby's half of the debugger. While it is interactive, a trace point tells it of lines and of
/// exceptions. An exception's frames are kept with their
/// variables when it is raised: whether something catches it is known when nothing has, and then
/// the script stops where it was raised, although `ensure` has run by then.
class RubyDebugger final : public LanguageDebugger {
public:
    explicit RubyDebugger(RubyInterpreter& interpreter);

    void setInteractive(bool interactive) override;
    void setDebuggerMode(DbgMode mode) override;
    /// Stops at the next line. Only asks Ruby for it.
    void interrupt() override;
    void shutDown() override;

    /// Nothing has caught the exception, which may be nil.
    void errorUncaught(VALUE exception);

protected:
    std::vector<ScriptFrame> runningFrames() override;
    int runningDepth() override;
    std::unique_ptr<VariableWatcher> makeVariableWatcher() override;
    void enterStandstill() override;
    void leaveStandstill() override;

private:
    static void eventHappened(VALUE point, void* debugger);
    void lineEntered(VALUE path, int line);
    void errorRaised(VALUE exception);
    bool isOurEvent() const;
    void updateHook();

    RubyInterpreter& m_ruby;
    RubyRef m_tracePoint;
    bool m_isTracing = false;
    int m_silence = 0;

    /// The file of the last line, since the next one is mostly in the same.
    RubyRef m_lastPath;
    /// -1 for a file that is no script.
    int m_lastSourceId = -1;

    /// The exception that was raised last, and where.
    RubyRef m_raised;
    std::vector<ScriptFrame> m_raisedFrames;
};

}  // namespace Tamrix::RubyPlugin
