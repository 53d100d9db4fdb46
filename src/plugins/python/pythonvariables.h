#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "interpreter/debugger/variablewatcher.h"
#include "plugins/python/pyref.h"
#include "plugins/python/valuemembers.h"
#include "plugins/python/valuetext.h"

namespace Tamrix::PythonPlugin {

class PythonInterpreter;

/// Lists the variables of a Python script that stands still.
///
/// A path is made of parts with "." between them: the name of a variable, then members
/// (pathPart()). In front of them may stand "^N", which means the variables of the frame N levels
/// outwards from where the script stands; behind them "@N", which means the members from the one
/// numbered N. A listing is limited; the rest is one binding, whose path says so.
class PythonVariableWatcher final : public VariableWatcher {
public:
    explicit PythonVariableWatcher(PythonInterpreter& interpreter) : m_python(interpreter) {}

    /// The variables of the function where the script stands, then those of its module.
    VariableBindings topLevelBindings() override;
    bool handlesPath(const QString& path) override;
    VariableBindings languageBindings(const QString& path) override;

private:
    /// What a path leads to.
    struct Target {
        /// The path without its mark and "@N".
        QString path;
        /// How many frames outwards.
        int level = 0;
        /// Null for the variables of the frame themselves.
        PyRef value;
        Py_ssize_t first = 0;
    };
    std::optional<Target> find(const QString& path);
    VariableBindings list(const Target& target);
    /// The variables of a frame, those of its function first.
    std::vector<ValueMember> variablesOf(int level);
    Debugger::VariableBinding bind(const QString& path, PyObject* value, ValueTexts& texts);

    PythonInterpreter& m_python;
};

}  // namespace Tamrix::PythonPlugin
