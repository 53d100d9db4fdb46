#pragma once

#include "base/export.h"

namespace Tamrix {

class ScriptContext;

// The script functions of the namespace "tamrixinfo": facts of the run and the version.

TAMRIX_EXPORT void infoTestCase(ScriptContext* context);
TAMRIX_EXPORT void infoTestCaseName(ScriptContext* context);
TAMRIX_EXPORT void infoTestSuiteName(ScriptContext* context);
TAMRIX_EXPORT void infoVersionString(ScriptContext* context);
TAMRIX_EXPORT void infoVersion(ScriptContext* context);
TAMRIX_EXPORT void infoMajor(ScriptContext* context);
TAMRIX_EXPORT void infoMinor(ScriptContext* context);
TAMRIX_EXPORT void infoPatch(ScriptContext* context);
TAMRIX_EXPORT void infoSettingsGroup(ScriptContext* context);
TAMRIX_EXPORT void infoDefaultDevice(ScriptContext* context);
TAMRIX_EXPORT void infoResultDir(ScriptContext* context);

}  // namespace Tamrix
