#pragma once

#include <map>
#include <vector>

#include "interpreter/language/languagedebugger.h"
#include "plugins/ruby/rubyref.h"

namespace Tamrix::RubyPlugin {

class RubyInterpreter;

/// Ruby's half of the debugger. While it is interactive, trace points tell it what scripts do, as
/// little as is needed: lines with break points alone, or all lines while it steps. An exception's
/// frames are kept with their variables when it is raised: whether something catches it is known
/// when nothing has, and then the script stops where it was raised, although `ensure` has run by
/// then.
class RubyDebugger final : public LanguageDebugger {
public:
    explicit RubyDebugger(RubyInterpreter& interpreter);

    void shutDown() override;

    /// Code of a file was compiled: an InstructionSequence, which holds that of its methods.
    void codeLoaded(VALUE sequence);
    /// Trace points become what mode and break points ask for, also where scripts have ended them.
    void updateTracePoints();

    /// Nothing has caught the exception, which may be nil.
    void errorUncaught(VALUE exception);
    std::vector<ValueTexts::Part> variablesOf(const ScriptFrame& frame) override;

protected:
    std::vector<ScriptFrame> runningFrames() override;
    int runningDepth() override;
    std::unique_ptr<ValueTexts> makeValueTexts() override;
    void breakPointsChanged() override { updateTracePoints(); }
    void modeChanged() override { updateTracePoints(); }
    void stopSoon() override;

private:
    /// The code of one file, or of an `eval` that names it.
    struct Code {
        RubyRef sequence;
        QString path;
        /// For each line that has had a break point. Those that have none any more stay: they may
        /// be what runs.
        std::map<int, RubyRef> tracePoints;
    };

    RubyRef newTracePoint(unsigned events);
    static void eventHappened(VALUE point, void* debugger);
    void lineEntered(VALUE point, VALUE path, int line);
    void errorRaised(VALUE exception);
    bool isOurEvent() const;
    bool isStepping() const { return debuggerMode() == Step || debuggerMode() == Next; }
    void traceBreakLines(Code& code);

    RubyInterpreter& m_ruby;
    RubyRef m_compilations;
    RubyRef m_allLines;
    RubyRef m_errors;
    std::vector<Code> m_codes;

    /// The file of the last line, since the next one is mostly in the same.
    RubyRef m_lastPath;
    /// -1 for a file that is no script.
    int m_lastSourceId = -1;

    /// The exception that was raised last, and where.
    RubyRef m_raised;
    std::vector<ScriptFrame> m_raisedFrames;
};

}  // namespace Tamrix::RubyPlugin
