#pragma once

#include <QString>
#include <vector>

#include "interpreter/language/languageinterpreter.h"
#include "interpreter/language/scriptfailure.h"
#include "plugins/perl/guardedcall.h"

namespace Tamrix::PerlPlugin {

/// The exceptions of scripts: Perl itself keeps no stack of calls with them, so the stack is noted
/// where one is raised. Script thread only.
class ScriptErrors {
public:
    /// An exception is on its way, before any call is left. False for one that is raised once
    /// more.
    bool note(pTHX_ SV* exception);
    /// The next exception stands in a file that is none of Perl's, such as a feature file.
    void setOrigin(const LineInfo& position) { m_origin = position; }

    /// What a person is told of an exception that has come to its end.
    ScriptError take(pTHX_ const SvRef& exception);
    /// The same for what has left the script.
    static ScriptError ofDeparture(pTHX);
    /// Forgets what it has noted.
    void clear();
    /// The text alone.
    static QString messageOf(pTHX_ SV* exception);

private:
    /// Whether it is the exception that was noted last, or one that Perl has made of it.
    bool isNoted(pTHX_ SV* exception) const;

    /// Without the calls that are still running: they are not the exception's yet.
    void leaveRunningCalls(pTHX_ std::vector<LineInfo>& stack) const;

    /// A weak reference to an object, or the text.
    SvRef m_noted;
    std::vector<LineInfo> m_stack;
    /// Of scripts, of which the stack may have only the innermost.
    int m_depth = 0;
    LineInfo m_origin;
};

/// The exception for a failure; of Fatal there is none, but what leaves the script.
CodeEnd endOfFailure(pTHX_ const ScriptFailure& failure);
/// Throws ScriptErrorSet with it.
[[noreturn]] void throwFailure(const ScriptFailure& failure);
/// As the end of a native function.
NativeEnd failing(pTHX_ const ScriptFailure& failure);

}  // namespace Tamrix::PerlPlugin
