#pragma once

#include <QString>

#include "base/outcome.h"
#include "plugins/perl/frames.h"
#include "plugins/perl/scripterrors.h"

namespace Tamrix::PerlPlugin {

/// Evaluates code that a person writes while a script stands still, with the variables of a frame,
/// which it may change; one without a statement means the package main alone. Gives the text of the
/// value; the failure is the text of what was raised.
Outcome<QString> evaluateInFrame(pTHX_ ScriptErrors& errors, const CodeFrame& frame,
                                 const QString& code);

/// Where a function is defined: its first statement.
LineInfo placeOfFunction(pTHX_ SourceFiles& files, SV* function);

}  // namespace Tamrix::PerlPlugin
