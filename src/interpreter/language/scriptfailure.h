#pragma once

#include <QString>
#include <cstddef>
#include <tl/expected.hpp>

#include "base/export.h"
#include "base/shared.h"
#include "interpreter/bridge/debuggerframe.h"
#include "interpreter/bridge/scriptargument.h"
#include "interpreter/objects/objecterror.h"

namespace Tamrix {

class ScriptContext;

/// Why the library did not do what a script wanted. Each kind is an exception of its own where a
/// language has them.
struct ScriptFailure {
    /// Plug-ins have tables of exceptions in this order.
    enum class Kind {
        General,       ///< a function of the library failed
        Verification,  ///< a failed verdict that is to end the script
        Fatal,         ///< ends the test case; scripts that catch errors let it pass
        Lookup,        ///< something was not found in time
        NoMember,      ///< an object has no such member
        BadArgument    ///< the number, names or types of arguments
    };

    static constexpr std::size_t kindCount = 6;
    template <typename T>
    static const T& of(Kind kind, const T (&table)[kindCount]) {
        return table[static_cast<std::size_t>(kind)];
    }

    Kind kind = Kind::General;
    /// For the tester. Never empty.
    QString text;
    /// It ends the case as a skipped one.
    bool isSkip = false;
    /// Where it stands when that is in a file that is none of the language's, such as a feature
    /// file; a line of -1 otherwise. The source is the debugger's.
    DebuggerFrame origin;
};

/// What a script gets from the library, or why not. A null value is that of a function without one.
using ScriptResult = tl::expected<SharedPtr<ScriptArgument>, ScriptFailure>;

/// The error that is set in the context.
[[gnu::cold]] TAMRIX_EXPORT ScriptFailure failureOf(const ScriptContext& context);
TAMRIX_EXPORT ScriptFailure failureOf(const ObjectError& error);
/// Of the number, names or types of arguments.
TAMRIX_EXPORT ScriptFailure badArgument(const QString& text);
/// `function` threw an exception with this text.
TAMRIX_EXPORT ScriptFailure thrownIn(const QString& function, const QString& text);
/// `function` was called by another thread than the script's, or while no case runs.
TAMRIX_EXPORT ScriptFailure refusedCall(const QString& function, bool caseRuns);

}  // namespace Tamrix
