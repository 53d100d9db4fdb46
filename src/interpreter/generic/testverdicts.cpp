#include <algorithm>
#include <limits>

#include "interpreter/bridge/debugger.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/testfunctions.h"
#include "interpreter/generic/textdifference.h"
#include "interpreter/generic/verdictsupport.h"

namespace Tamrix {

namespace {

QString optionalText(ScriptContext* context, int index) {
    return index < context->argumentCount() ? context->argument(index)->toString() : QString();
}

void logSimpleResult(ScriptContext* context, TestResult::ResultType type) {
    // 1. Message and optional detail.
    const int count = context->argumentCount();
    if (count < 1 || count > 2) {
        context->setError("Expected one or two arguments");
        return;
    }
    if (!context->argument(0)->isStringLike() ||
        (count == 2 && !context->argument(1)->isStringLike())) {
        context->setError("The first and optional second argument must be of type string");
        return;
    }
    QString message = context->argument(0)->toString();
    const QString detail = optionalText(context, 1);

    // 2. A screenshot stands in the message.
    message += screenshotForResult(type);

    // 3., 4. A skip stands at the calling line and ends the test case.
    if (type == TestResult::Skipped) {
        if (TestResult* result = context->testResult())
            result->addResult(type, message, detail, context->lineInfoForResult(), "testcase");
        context->setSkip(formatThrowMessage(message, detail, QString()));
        return;
    }

    // 5. The result.
    addScriptResult(context, type, message, detail);

    // 6. Two types are failures.
    if ((type == TestResult::Fail || type == TestResult::Fatal) &&
        failureAction(context, message, detail, QString()))
        return;

    // 7. What the script gets.
    context->setBoolResult(type == TestResult::Pass || type == TestResult::Log);
}

/// What the script wants of a verdict.
enum class Wanted { Pass, Failure };

TestResult::ResultType verdictType(bool passed, Wanted wanted) {
    if (wanted == Wanted::Failure)
        return passed ? TestResult::UnexpectedPass : TestResult::ExpectedFail;
    return passed ? TestResult::Pass : TestResult::Fail;
}

/// The second half of verify and compare: result, failure action, bool result.
void finishVerdict(ScriptContext* context, bool passed, Wanted wanted, const QString& message,
                   const QString& detail, const QString& comment,
                   const QString& explanation = QString()) {
    addScriptResult(context, verdictType(passed, wanted), message, detail, comment, explanation);
    if (passed != (wanted == Wanted::Pass) && failureAction(context, message, detail, comment))
        return;
    context->setBoolResult(passed);
}

void verify(ScriptContext* context, Wanted wanted) {
    const int count = context->argumentCount();
    if (count < 1 || count > 2) {
        context->setError(QString(wanted == Wanted::Pass ? "verify" : "xverify") +
                          "() expects 1-2 arguments");
        return;
    }
    const QString comment = optionalText(context, 1);
    const bool passed = context->isTrue(context->argument(0));
    // At once: what it tells of may change.
    const bool isFailure = passed != (wanted == Wanted::Pass);
    const QString explanation = isFailure ? context->explainArgument("condition") : QString();
    const QString message =
        (passed ? "Verified" : "Not verified") + screenshotForResult(verdictType(passed, wanted));
    finishVerdict(context, passed, wanted, message, passed ? "True expression" : "False expression",
                  comment, explanation);
}

QString comparisonDetail(const SharedPtr<ScriptArgument>& left,
                         const SharedPtr<ScriptArgument>& right, bool passed) {
    const QString leftText = left->toString();
    const QString rightText = right->toString();
    if (passed)
        return QStringLiteral("'%1' and '%2' are equal").arg(leftText, rightText);
    if (leftText == rightText && left->typeName() != right->typeName())
        return QStringLiteral(
                   "'%1' (%2) and '%3' (%4) are not equal because types of values differ")
            .arg(leftText, left->typeName(), rightText, right->typeName());
    return QStringLiteral("'%1' and '%2' are not equal").arg(leftText, rightText);
}

void compare(ScriptContext* context, Wanted wanted) {
    const int count = context->argumentCount();
    if (count < 2 || count > 3) {
        context->setError(QString(wanted == Wanted::Pass ? "compare" : "xcompare") +
                          "() expects 2-3 arguments");
        return;
    }
    // The language's comparison may run script code: the arguments are held here.
    const SharedPtr<ScriptArgument> left = context->argument(0);
    const SharedPtr<ScriptArgument> right = context->argument(1);
    const QString comment = optionalText(context, 2);
    const bool passed = context->valuesEqual(left, right);
    const QString message = "Comparison" + screenshotForResult(verdictType(passed, wanted));
    const bool isFailure = !passed && wanted == Wanted::Pass;
    finishVerdict(context, passed, wanted, message, comparisonDetail(left, right, passed), comment,
                  isFailure ? explainDifference(left->toString(), right->toString()) : QString());
}

}  // namespace

void testPass(ScriptContext* context) {
    logSimpleResult(context, TestResult::Pass);
}

void testXPass(ScriptContext* context) {
    logSimpleResult(context, TestResult::UnexpectedPass);
}

void testFail(ScriptContext* context) {
    logSimpleResult(context, TestResult::Fail);
}

void testXFail(ScriptContext* context) {
    logSimpleResult(context, TestResult::ExpectedFail);
}

void testFatal(ScriptContext* context) {
    logSimpleResult(context, TestResult::Fatal);
}

void testLog(ScriptContext* context) {
    logSimpleResult(context, TestResult::Log);
}

void testWarning(ScriptContext* context) {
    logSimpleResult(context, TestResult::Warning);
}

void testSkip(ScriptContext* context) {
    logSimpleResult(context, TestResult::Skipped);
}

void testVerify(ScriptContext* context) {
    verify(context, Wanted::Pass);
}

void testXVerify(ScriptContext* context) {
    verify(context, Wanted::Failure);
}

void testCompare(ScriptContext* context) {
    compare(context, Wanted::Pass);
}

void testXCompare(ScriptContext* context) {
    compare(context, Wanted::Failure);
}

void testException(ScriptContext* context) {
    // 1. Code and optional comment.
    const int count = context->argumentCount();
    if (count < 1 || count > 2) {
        context->setError("exception() expects at least 1-2 arguments");
        return;
    }
    const QString comment = optionalText(context, 1);
    // 2. The code runs; a text of failure means that it did not behave as wanted.
    const auto [passText, failText] = context->evaluateForException(context->argument(0));
    const bool passed = failText.isEmpty();
    // 3. The verdict
    const TestResult::ResultType type = verdictType(passed, Wanted::Pass);
    const QString message = "Exception" + screenshotForResult(type);
    const QString detail = passed ? passText : failText;
    // 4. becomes a result,
    addScriptResult(context, type, message, detail, comment);
    // 5. and a failure has its consequences.
    if (!passed && failureAction(context, message, detail, comment))
        return;
    // 6. The error of the evaluated code must not stay in the context.
    context->setError(QString());
    context->clearError();
    context->setBoolResult(passed);
}

void testResultCount(ScriptContext* context) {
    if (context->argumentCount() != 1) {
        context->setError("Expected one argument - test result category identifier");
        return;
    }
    const TestResult* result = context->testResult();
    const int count = result ? result->count(context->argument(0)->toString()) : 0;
    if (count == -1) {
        context->setError("Unknown result category specified.");
        return;
    }
    context->setIntegerResult(count);
}

void testStackTrace(ScriptContext* context) {
    const int count = context->argumentCount();
    bool numeric = count <= 2;
    for (int index = 0; numeric && index < count; ++index)
        numeric = !context->argument(index) || context->argument(index)->isNumber();
    if (!numeric) {
        context->setError("test::stackTrace() takes 0, 1 or 2 numeric arguments");
        return;
    }
    // No stack is deeper than an int can count.
    const auto limit = [context](int index) {
        constexpr long long most = std::numeric_limits<int>::max();
        return static_cast<int>(std::clamp(context->argument(index)->toInt(), -1LL, most));
    };
    const int start = context->argument(0) ? std::max(limit(0), 0) : 0;
    const int maximum = count > 1 ? limit(1) : -1;
    Debugger* const debugger = Debugger::self();
    context->setStackTraceResult(debugger ? debugger->stackTrace(start, maximum)
                                          : std::vector<ScriptLocation>());
}

void testFixateResultContext(ScriptContext* context) {
    context->fixateResultContext();
}

void testRestoreResultContext(ScriptContext* context) {
    context->restoreResultContext();
}

void testStartSection(ScriptContext* context) {
    const int count = context->argumentCount();
    if (count < 1 || count > 2) {
        context->setError("test::startSection takes 1 or 2 arguments");
        return;
    }
    if (TestResult* result = context->testResult())
        result->startSection(context->argument(0)->toString(), optionalText(context, 1),
                             context->lineInfoForResult());
    context->setNullResult();
}

void testEndSection(ScriptContext* context) {
    if (context->argumentCount() > 0) {
        context->setError("test::endSection takes no arguments");
        return;
    }
    QString error;
    if (TestResult* result = context->testResult())
        error = result->endSection(context->lineInfoForResult());
    if (error.isEmpty())
        context->setNullResult();
    else
        context->setError(error);
}

void testBreakpoint(ScriptContext* context) {
    if (TestResult* result = context->testResult())
        result->addResult(QDateTime::currentDateTime(), TestResult::Log, "script breakpoint",
                          "Hit a test.breakpoint()", context->callStackForResult(true),
                          "Invoked the test.breakpoint function");
    context->setNullResult();
    launchDebugger();
}

}  // namespace Tamrix
