#pragma once

#include <optional>
#include <utility>

#include "interpreter/bridge/debugger.h"
#include "interpreter/language/languageinterpreter.h"
#include "interpreter/language/scriptfailure.h"

namespace Tamrix {

/// What a language's exceptions can't hold of the failures of which they were made: that one ends
/// the case as skipped, that one stands in a file that is none of the language's. Each is told by
/// the exception itself: what else is raised on its way is an error of its own.
///
/// `Reference` keeps an exception alive, and has it as get().
template <typename Reference>
class NoticedFailures {
public:
    /// `reference` are the arguments of a Reference to the exception.
    template <typename... Arguments>
    void notice(const ScriptFailure& failure, const Debugger& debugger,
                const Arguments&... reference) {
        if (failure.isSkip)
            m_skip.emplace(reference...);
        if (failure.origin.line >= 0)
            noticePlace(
                LineInfo(debugger.findSourceId(failure.origin.sourceId), failure.origin.line),
                reference...);
    }
    /// The exception stands there, in no code that runs.
    template <typename... Arguments>
    void noticePlace(const LineInfo& place, const Arguments&... reference) {
        m_ofOrigin.emplace(reference...);
        m_origin = place;
    }
    /// A script begins or ends.
    void clear() {
        m_skip.reset();
        m_ofOrigin.reset();
    }
    void clearSkip() { m_skip.reset(); }

    template <typename Exception>
    bool isSkip(const Exception& exception) const {
        return m_skip && m_skip->get() == exception;
    }
    /// Adds what is known of the exception.
    template <typename Exception>
    void complete(const Exception& exception, ScriptError* error) const {
        error->isSkip = isSkip(exception);
        if (m_ofOrigin && m_ofOrigin->get() == exception)
            error->callStack.insert(error->callStack.begin(), m_origin);
    }

private:
    std::optional<Reference> m_skip;
    std::optional<Reference> m_ofOrigin;
    LineInfo m_origin;
};

}  // namespace Tamrix
