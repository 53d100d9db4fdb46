#pragma once

#include <QString>

#include "plugins/perl/perlargument.h"

namespace Tamrix::PerlPlugin {

class CaseInterpreter;

/// Makes a package of a native class: `new`, its methods, and its properties as methods that read
/// without and write with an argument.
void defineNativeClass(CaseInterpreter& interpreter, const QString& name, void* typeId,
                       const NativeScriptType& type);

/// An object of the native class's package; undef for null.
SvRef wrapNative(pTHX_ SharedPtr<NativeScriptObject> object);

}  // namespace Tamrix::PerlPlugin
