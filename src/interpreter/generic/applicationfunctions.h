#pragma once

#include "base/export.h"

namespace Tamrix {

class ScriptContext;

// The script functions that start and attach applications, switch between them and read facts of
// one. They take their arguments from the context, check them by themselves, and report with
// ScriptContext::setError(), always as a GeneralError. Functions that return a bool return whether
// no error was set.

// Starting and switching: applicationfunctions.cpp.
TAMRIX_EXPORT void startApplication(ScriptContext* context);
TAMRIX_EXPORT void attachToApplication(ScriptContext* context);
TAMRIX_EXPORT void waitForApplicationLaunch(ScriptContext* context);
TAMRIX_EXPORT void applicationContext(ScriptContext* context);
TAMRIX_EXPORT void currentApplicationContext(ScriptContext* context);
TAMRIX_EXPORT void defaultApplicationContext(ScriptContext* context);
TAMRIX_EXPORT void applicationContextList(ScriptContext* context);
TAMRIX_EXPORT void setApplicationContext(ScriptContext* context);

// Helper programs that stand for something else: specialapplications.cpp.
TAMRIX_EXPORT bool startFMI(ScriptContext* context);
TAMRIX_EXPORT bool startCAN(ScriptContext* context);
TAMRIX_EXPORT bool connectTo(ScriptContext* context);

// Members of ApplicationContext, which is argument 0: applicationcontextmembers.cpp.
TAMRIX_EXPORT void applicationName(ScriptContext* context);
TAMRIX_EXPORT void applicationCommandLine(ScriptContext* context);
TAMRIX_EXPORT void applicationToolkitVersion(ScriptContext* context);
TAMRIX_EXPORT void applicationPid(ScriptContext* context);
TAMRIX_EXPORT void applicationCwd(ScriptContext* context);
TAMRIX_EXPORT void applicationIsRunning(ScriptContext* context);
TAMRIX_EXPORT void applicationStartTime(ScriptContext* context);
TAMRIX_EXPORT void applicationUsedMemory(ScriptContext* context);
TAMRIX_EXPORT void applicationTotalTime(ScriptContext* context);
TAMRIX_EXPORT void applicationIsFrozen(ScriptContext* context);
TAMRIX_EXPORT void applicationReadStdout(ScriptContext* context);
TAMRIX_EXPORT void applicationReadStderr(ScriptContext* context);
TAMRIX_EXPORT void applicationOsName(ScriptContext* context);
TAMRIX_EXPORT void applicationEnvironmentVariable(ScriptContext* context);
TAMRIX_EXPORT void applicationHost(ScriptContext* context);
TAMRIX_EXPORT void applicationPort(ScriptContext* context);
TAMRIX_EXPORT void applicationExpectExit(ScriptContext* context);
TAMRIX_EXPORT void applicationDetach(ScriptContext* context);

}  // namespace Tamrix
