#include "interpreter/bridge/testsettingstype.h"

namespace Tamrix {

int TestSettingsType::s_waitForObjectTimeout = 20000;
bool TestSettingsType::s_logStacktraceOnLog = false;
bool TestSettingsType::s_logStacktraceOnPass = false;
bool TestSettingsType::s_breakOnFailure = false;
bool TestSettingsType::s_objectNotFoundDebugging = false;
bool TestSettingsType::s_imageNotFoundDebugging = false;
bool TestSettingsType::s_textNotFoundDebugging = false;
QString TestSettingsType::s_testCaseName;
VerificationOptions TestSettingsType::s_vpOptions;

namespace {

auto allSettings() {
    using Settings = TestSettingsType;
    return std::tie(Settings::s_waitForObjectTimeout, Settings::s_logStacktraceOnLog,
                    Settings::s_logStacktraceOnPass, Settings::s_breakOnFailure,
                    Settings::s_objectNotFoundDebugging, Settings::s_imageNotFoundDebugging,
                    Settings::s_textNotFoundDebugging, Settings::s_testCaseName,
                    Settings::s_vpOptions);
}

}  // namespace

TestSettingsGuard::TestSettingsGuard() : m_values(allSettings()) {}

TestSettingsGuard::~TestSettingsGuard() {
    allSettings() = m_values;
}

}  // namespace Tamrix
