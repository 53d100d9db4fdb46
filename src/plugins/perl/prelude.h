#pragma once

namespace Tamrix::PerlPlugin {

/// What of the plug-in is written in Perl: exceptions, operators of objects, streams, `use tamrix`,
/// `use bdd`, RemoteSystem. It runs in each new interpreter, when the functions of C++ that it
/// names are there.
extern const char* const preludeText;

}  // namespace Tamrix::PerlPlugin
