#pragma once

#include <istream>
#include <string>
#include <string_view>

#include "base/export.h"
#include "platform/gherkin/callbacks.h"

namespace Tamrix::Gherkin {

/// Runs the feature file in the stream, on the calling thread. Before anything runs it is read
/// whole.
///
/// Rules are transparent: their scenarios come with the tags and backgrounds of feature and rule. A
/// scenario without steps runs no background either. Once a step, a hook before it or a
/// verification has failed, the scenario's other steps are skipped; its hooks run all the same.
/// When a hook before the feature fails, all steps are skipped.
///
/// Filter, actions and debugger may be null: then every scenario runs, no step has a definition,
/// and nobody follows. Nothing is owned. `fileName` and `level` are not interpreted.
///
/// Throws SyntaxError, with the first error, before any callback; RunFeatureError when the file
/// can't be read or holds no feature, or when the values of a row make a text too long; and what
/// callbacks throw.
TAMRIX_EXPORT void runFeatureFile(std::istream* stream, std::string fileName, Filter* filter,
                                  ScriptActions* actions, ReportGenerator* report,
                                  Debugger* debugger, unsigned level);

/// Whether a tag, given without its "@", means something else than a tag where scenarios are
/// chosen.
TAMRIX_EXPORT bool isReservedTag(std::string_view tag);

}  // namespace Tamrix::Gherkin
