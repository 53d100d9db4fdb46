#pragma once

#include <QString>

#include "plugins/perl/frames.h"

namespace Tamrix::PerlPlugin {

/// Evaluates code that a person writes while a script stands still, with the variables of a frame,
/// which it may change; one without a statement means the package main alone. Gives the text of the
/// value. Throws ScriptErrorSet.
QString evaluateInFrame(pTHX_ const CodeFrame& frame, const QString& code);

/// Where a function is defined: its first statement.
LineInfo placeOfFunction(pTHX_ SourceFiles& files, SV* function);

}  // namespace Tamrix::PerlPlugin
