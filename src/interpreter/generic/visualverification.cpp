#include "interpreter/generic/visualverification.h"

#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/generic/verdictsupport.h"
#include "platform/testresult/testvp.h"

namespace Tamrix {

bool visualVerificationResult(ScriptContext* context, RunnerInterface* runner, bool passed,
                              const QString& detail, const QString& comment, const QImage& image,
                              const QString& explanation) {
    const TestResult::ResultType type = passed ? TestResult::Pass : TestResult::Fail;
    QString message = passed ? QStringLiteral("Verified") : QStringLiteral("Not verified");
    // 1. The picture that was looked at stands in the message.
    if (TestVP::wantLogScreenshotForResult(TestSettingsType::s_vpOptions, type))
        message += TestVP::logScreenshot(runner, type, image);
    // 2. The result.
    if (TestResult* const result = runner ? runner->testResult() : nullptr)
        result->addResult(QDateTime::currentDateTime(), type, message, detail,
                          context->callStackForResult(wantCallStackForResult(type)), comment, -1,
                          explanation);
    // 3. A failure has its consequences.
    if (!passed && failureAction(context, message, detail, comment))
        return false;
    context->setBoolResult(passed);
    return true;
}

}  // namespace Tamrix
