#pragma once

#include <QString>

#include "base/export.h"

namespace Tamrix {

class TestResult;

/// Evaluates a toolkit wrapper's init script in its line-oriented command language and sends each
/// command to Inspector::self(). The first error ends the evaluation and becomes a result of the
/// error kind when `result` is not null; commands that were sent stay in force. True without
/// errors. Script thread only.
TAMRIX_EXPORT bool evalInitScript(TestResult* result, const QString& text);

}  // namespace Tamrix
