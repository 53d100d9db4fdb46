#pragma once

#include "base/export.h"

namespace Tamrix {

class ScriptContext;

// The script functions of the namespace "test" that compare files. Each adds one result, passed or
// failed, and returns whether the files are the same; wrong arguments and files that can't be read
// are script errors without a result, faulty options are warnings and the defaults hold.

/// (expected, actual [, options]): line by line.
TAMRIX_EXPORT void testCompareTextFiles(ScriptContext* context);
/// (expected, actual): the values.
TAMRIX_EXPORT void testCompareJSONFiles(ScriptContext* context);
/// (expected, actual [, options]): the documents.
TAMRIX_EXPORT void testCompareXMLFiles(ScriptContext* context);

}  // namespace Tamrix
