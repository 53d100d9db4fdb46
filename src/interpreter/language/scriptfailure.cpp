#include "interpreter/language/scriptfailure.h"

#include "interpreter/bridge/scriptcontext.h"

namespace Tamrix {

namespace {

using Kind = ScriptFailure::Kind;

Kind kindOf(ScriptContext::ErrorType type) {
    switch (type) {
        case ScriptContext::VerificationError:
            return Kind::Verification;
        case ScriptContext::FatalError:
            return Kind::Fatal;
        case ScriptContext::LookupError:
            return Kind::Lookup;
        case ScriptContext::GeneralError:
            break;
    }
    return Kind::General;
}

Kind kindOf(ObjectError::Kind kind) {
    switch (kind) {
        case ObjectError::Kind::NoMember:
            return Kind::NoMember;
        case ObjectError::Kind::BadArgument:
            return Kind::BadArgument;
        case ObjectError::Kind::NotFound:
            return Kind::Lookup;
        case ObjectError::Kind::Failed:
            break;
    }
    return Kind::General;
}

}  // namespace

ScriptFailure failureOf(const ScriptContext& context) {
    return {kindOf(context.errorType()), context.errorMessage(), context.isSkip(),
            context.errorFrame()};
}

ScriptFailure failureOf(const ObjectError& error) {
    return {kindOf(error.kind), error.text, false, {}};
}

ScriptFailure badArgument(const QString& text) {
    return {Kind::BadArgument, text, false, {}};
}

ScriptFailure thrownIn(const QString& function, const QString& text) {
    return {Kind::General, QStringLiteral("%1() failed: %2").arg(function, text), false, {}};
}

ScriptFailure refusedCall(const QString& function, bool caseRuns) {
    return {Kind::General,
            function + (caseRuns ? "() was called from another thread than the test script's: only "
                                   "that thread may use the functions of the test system"
                                 : "() was called while no test case runs"),
            false,
            {}};
}

}  // namespace Tamrix
