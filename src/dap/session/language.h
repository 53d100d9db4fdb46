#pragma once

#include <QString>

#include "base/outcome.h"
#include "dap/program/debuggee.h"

// What has to be known of the language of a script, told by the suffix of its file, beside what the
// debugger does for every language.

namespace Tamrix::Dap {

/// Code that sets a switch of the run.
QString switchCode(const QString& file, const char* setting, bool on);

/// Whether a condition holds where the script stands. Code that fails is a failure with its text.
Outcome<bool> conditionHolds(Debuggee& debuggee, const QString& file, const QString& condition);

/// What reads a part of a value: an attribute, an entry or an element, named as a listing names it.
/// Null when the name does not tell.
QString memberExpression(const QString& file, const QString& value, const QString& name);

/// Code that assigns a value to what the expression reads; null where nothing can be assigned.
QString assignmentCode(const QString& file, const QString& expression, const QString& value);

/// Whether what reads a part of a value of this type can be told by its name.
bool membersHaveExpressions(const QString& type);

/// The name of the function in which a line of a file stands; the name of the file when it can't be
/// told.
QString functionAt(const ScriptPlace& place);

}  // namespace Tamrix::Dap
