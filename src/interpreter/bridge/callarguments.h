#pragma once

#include <QString>
#include <QStringList>
#include <utility>
#include <vector>

#include "base/export.h"
#include "base/outcome.h"
#include "interpreter/bridge/scriptargument.h"

namespace Tamrix {

/// Arguments that a script gave by name, in its order.
using NamedArguments = std::vector<std::pair<QString, SharedPtr<ScriptArgument>>>;

/// The arguments of a call as the script wrote them. What it gave as its null is a value of it, no
/// null pointer.
struct CallArguments {
    ScriptArgument::List positional;
    NamedArguments named;
};

/// The parameters of a native function, as scripts write them: first those that must be given.
struct Parameters {
    QStringList names;
    int requiredCount = 0;

    bool isOptional(int index) const { return index >= requiredCount && index < names.size(); }
};

/// The arguments in the order of the parameters, named ones at their places. One that is left out,
/// or the language's null where an argument is optional, is a null pointer; at the end there are
/// none of these. Arguments behind the last parameter stay: the function refuses them itself. Fails
/// with BadArgument and a text that names the function.
TAMRIX_EXPORT Outcome<ScriptArgument::List> bindArguments(const QString& function,
                                                          const Parameters& parameters,
                                                          CallArguments arguments);

}  // namespace Tamrix
