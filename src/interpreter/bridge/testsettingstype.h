#pragma once

#include <QString>
#include <tuple>

#include "base/export.h"
#include "platform/testresult/verificationoptions.h"

namespace Tamrix {

/// The settings of a run that verdicts and waits consult. They are process-wide, belong to the
/// script thread, and a change lasts until it is taken back: nothing here does so of itself.
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

/// Remembers all settings and sets them back when it goes: around a test case, whose changes are
/// none of the next one's business. Script thread only.
class TAMRIX_EXPORT TestSettingsGuard {
public:
    TestSettingsGuard();
    ~TestSettingsGuard();
    TestSettingsGuard(const TestSettingsGuard&) = delete;
    TestSettingsGuard& operator=(const TestSettingsGuard&) = delete;

private:
    std::tuple<int, bool, bool, bool, bool, bool, bool, QString, VerificationOptions> m_values;
};

}  // namespace Tamrix
