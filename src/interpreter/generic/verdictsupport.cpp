#include "interpreter/generic/verdictsupport.h"

#include <QImage>

#include "interpreter/bridge/debugger.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/testsettingstype.h"
#include "platform/testresult/testvp.h"

namespace Tamrix {

bool wantCallStackForResult(int type) {
    switch (type) {
        case TestResult::Fatal:
        case TestResult::Error:
        case TestResult::Fail:
        case TestResult::UnexpectedPass:
        case TestResult::Warning:
            return true;
        case TestResult::Pass:
        case TestResult::ExpectedFail:
            return TestSettingsType::s_logStacktraceOnPass;
        case TestResult::Log:
            return TestSettingsType::s_logStacktraceOnLog;
        default:
            return false;
    }
}

QString screenshotForResult(TestResult::ResultType type) {
    if (!TestVP::wantLogScreenshotForResult(TestSettingsType::s_vpOptions, type))
        return {};
    return TestVP::logScreenshot(Interpreter::currentRunner(), type, QImage());
}

void addScriptResult(ScriptContext* context, TestResult::ResultType type, const QString& message,
                     const QString& detail, const QString& comment, const QString& explanation) {
    if (TestResult* result = context->testResult())
        result->addResult(QDateTime::currentDateTime(), type, message, detail,
                          context->callStackForResult(wantCallStackForResult(type)), comment, -1,
                          explanation);
}

QString formatThrowMessage(const QString& message, const QString& detail, const QString& comment) {
    if (comment.isEmpty())
        return QStringLiteral("%1: %2").arg(message, detail);
    return QStringLiteral("%1: %2, %3").arg(message, comment, detail);
}

void launchDebugger() {
    Debugger* const debugger = Debugger::self();
    // Not in code that the debugger itself evaluates.
    if (debugger && debugger->isInteractive() && debugger->debuggerMode() != Debugger::None)
        debugger->stop();
}

bool failureAction(ScriptContext* context, const QString& message, const QString& detail,
                   const QString& comment) {
    // 1. A look at the script where it failed.
    if (TestSettingsType::s_breakOnFailure)
        launchDebugger();
    // 2. An error of the script.
    if (TestSettingsType::s_vpOptions.testFlag(VerificationOptions::ThrowOnFailure)) {
        context->setError(formatThrowMessage(message, detail, comment),
                          ScriptContext::VerificationError);
        return true;
    }
    // 3. Nothing: the script goes on.
    return false;
}

}  // namespace Tamrix
