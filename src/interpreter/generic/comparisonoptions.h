#pragma once

#include <QString>
#include <QStringList>
#include <set>
#include <string>

#include "base/export.h"
#include "interpreter/bridge/scriptargument.h"

namespace Tamrix {

class TestResult;

// Readers of the map of options that a script gives. They leave the output alone when the option is
// absent or of a wrong type; the latter, and every other fault, adds a warning at the script's
// current line. Without a result sink warnings are dropped.

/// Null when the option is absent.
TAMRIX_EXPORT SharedPtr<ScriptArgument> retrieveOption(const ScriptArgument::Map& options,
                                                       const QString& name);
TAMRIX_EXPORT void retrieveBooleanOption(TestResult* result, const ScriptArgument::Map& options,
                                         const QString& name, bool* out);
TAMRIX_EXPORT void retrieveStringOption(TestResult* result, const ScriptArgument::Map& options,
                                        const QString& name, QString* out);
/// A list of strings; `out` gets their UTF-8 forms.
TAMRIX_EXPORT void retrieveStringSetOption(TestResult* result, const ScriptArgument::Map& options,
                                           const QString& name, std::set<std::string>* out);
/// Warns of each option that is not one of the known ones.
TAMRIX_EXPORT void reportUnknownOptions(TestResult* result, const ScriptArgument::Map& options,
                                        const QStringList& known);
/// Reads "normalize", "trim" or "preserve". Anything else is taken for the default value, or with
/// an empty one leaves the outputs alone.
TAMRIX_EXPORT void parseWhitespaceHandlingOptions(TestResult* result, const QString& value,
                                                  bool* normalize, bool* trim,
                                                  const QString& defaultValue);

}  // namespace Tamrix
