#pragma once

#include <vector>

#include "base/export.h"
#include "interpreter/language/nativefunction.h"

namespace Tamrix {

/// What a language needs that writes in itself with what scripts register steps, in files that its
/// plug-in carries: functions of a StepContext, which they take first and don't look at, to
/// register steps, hooks and parameter types, and for the names that steps and hooks keep for each
/// other. Scripts are told nothing of them; their names begin with "_". The context that they run
/// in is a LanguageContext.
TAMRIX_EXPORT std::vector<NativeFunction> stepMembers(const ScriptContext& context);

}  // namespace Tamrix
