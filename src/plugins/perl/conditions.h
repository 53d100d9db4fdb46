#pragma once

#include <QString>

#include "plugins/perl/perlheaders.h"

namespace Tamrix::PerlPlugin {

class CaseInterpreter;

/// What the running call of a verdict says in its script: the source text of its first argument, or
/// of the one called `parameter`, and below it, a line each, the values in it:
///
///     $field->text eq $wanted && @rows > 2
///     $field->text: "a"
///     $wanted: "b"
///     @rows: [1]
///
/// Empty when there is nothing to tell. Throws ScriptErrorSet for what ends the script.
QString explainCall(pTHX_ CaseInterpreter& interpreter, const char* parameter);

}  // namespace Tamrix::PerlPlugin
