#pragma once

#include <QString>

#include "base/export.h"
#include "platform/testresult/verificationoptions.h"

namespace Tamrix {

/// The settings of a run that verdicts and waits consult. They are process-wide, belong to the
/// script thread, and a change lasts to the end of the process.
class TAMRIX_EXPORT TestSettingsType {
public:
    /// Milliseconds.
    static int s_waitForObjectTimeout;
    static bool s_logStacktraceOnLog;
    static bool s_logStacktraceOnPass;
    static bool s_breakOnFailure;
    static bool s_objectNotFoundDebugging;
    static bool s_imageNotFoundDebugging;
    static bool s_textNotFoundDebugging;
    static QString s_testCaseName;
    static VerificationOptions s_vpOptions;
};

}  // namespace Tamrix
