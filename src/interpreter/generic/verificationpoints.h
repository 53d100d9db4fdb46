#pragma once

#include <QString>

#include "base/export.h"

namespace Tamrix {

class ScriptContext;

// The script functions of verification points, and where their files are. They take their arguments
// from the context, check them by themselves, and report with ScriptContext::setError().

TAMRIX_EXPORT void testVP(ScriptContext* context);
/// For a point that is expected to differ.
TAMRIX_EXPORT void testXVP(ScriptContext* context);
/// With an object in place of the one that the file names.
TAMRIX_EXPORT void testVPWithObject(ScriptContext* context);
/// Stores what an object looks like as a new verification point.
TAMRIX_EXPORT bool createVisualVP(ScriptContext* context);

/// The path of a verification point for a script of that path: in the folder "verificationPoints"
/// beside it, or in that of a folder "shared" above it or beside its folder. An absolute name
/// stands as it is. The caller looks whether the file exists.
TAMRIX_EXPORT QString locateVP(const QString& name, const QString& testCasePath);

}  // namespace Tamrix
