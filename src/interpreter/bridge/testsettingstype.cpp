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

}  // namespace Tamrix
