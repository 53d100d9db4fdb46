#pragma once

#include <vector>

#include "platform/gherkin/records.h"
#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// What steps and hooks keep in their context, in scopes that lie in each other: the run, the
/// feature, the scenario. A name is set in the innermost scope and looked for from there outwards.
/// Script thread only.
class BddScopes {
public:
    void clear() { m_scopes.clear(); }
    /// Leaves all but that of the run, as after a run that was cut short.
    void leaveAll();
    void enter();
    void leave();

    /// Borrowed; null when there is none.
    PyObject* find(PyObject* name) const;
    /// Throws PythonErrorSet.
    void set(PyObject* name, PyObject* value);
    void set(const char* name, const PyRef& value);
    /// False when the innermost scope has no such name.
    bool remove(PyObject* name);
    /// All names with their values, in a new dictionary.
    PyRef all() const;

private:
    /// Dictionaries, the innermost last.
    std::vector<PyRef> m_scopes;
};

/// Adds the type of the context to the module `bdd`, and the one context that there is. False with
/// the error indicator set on failure.
bool addBddContext(PyObject* module);
/// That context; borrowed.
PyObject* bddContext();

/// The table of a step for scripts: a list of its rows as dictionaries, with the attributes
/// `headers`, `rows` and `raw`. None without a table. Throws PythonErrorSet.
PyRef bddTable(const Gherkin::Step& step);

}  // namespace Tamrix::PythonPlugin
