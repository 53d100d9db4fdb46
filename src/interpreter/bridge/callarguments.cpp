#include "interpreter/bridge/callarguments.h"

namespace Tamrix {

namespace {

/// Puts a named argument at its place; what is wrong with it, empty on success.
QString place(const Parameters& parameters, const QString& name,
              const SharedPtr<ScriptArgument>& value, ScriptArgument::List* values) {
    const int index = parameters.names.indexOf(name);
    if (index < 0)
        return "has no argument '" + name + "'";
    const auto wanted = static_cast<std::size_t>(index);
    if (wanted >= values->size())
        values->resize(wanted + 1);
    else if ((*values)[wanted])
        return "got several values for the argument '" + name + "'";
    (*values)[wanted] = value;
    return {};
}

}  // namespace

Outcome<ScriptArgument::List> bindArguments(const QString& function, const Parameters& parameters,
                                            CallArguments arguments) {
    const auto refuse = [&](const QString& problem) {
        return fail(FailureKind::BadArgument, function + "() " + problem);
    };
    ScriptArgument::List values = std::move(arguments.positional);
    for (const auto& [name, value] : arguments.named) {
        const QString problem = place(parameters, name, value, &values);
        if (!problem.isEmpty())
            return refuse(problem);
    }
    for (std::size_t index = 0; index < values.size(); ++index) {
        const bool isOptional = parameters.isOptional(static_cast<int>(index));
        if (isOptional && values[index] && values[index]->isNull())
            values[index].reset();
        else if (!isOptional && !values[index])
            return refuse("needs an argument '" + parameters.names.at(static_cast<int>(index)) +
                          "'");
    }
    while (!values.empty() && !values.back())
        values.pop_back();
    return values;
}

}  // namespace Tamrix
