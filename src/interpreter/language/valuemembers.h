#pragma once

#include <vector>

#include "base/export.h"
#include "interpreter/language/nativefunction.h"

namespace Tamrix {

/// What a language needs for classes of the library's values that it writes in itself, in files
/// that its plug-in carries: functions that take the value first, for Object, ApplicationContext,
/// DataSet and Record, which owns them. Scripts are told nothing of them; their names begin with
/// "_". The context that they run in is a LanguageContext with a createRecord().
TAMRIX_EXPORT std::vector<NativeFunction> valueMembers(const ScriptContext& context);

}  // namespace Tamrix
