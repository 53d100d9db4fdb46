#pragma once

#include "platform/gherkin/records.h"
#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// Adds the type of the context to the module `bdd`, and the one context that there is. False with
/// the error indicator set on failure.
bool addBddContext(PyObject* module);
/// That context; borrowed.
PyObject* bddContext();

/// The table of a step for scripts: a list of its rows as dictionaries, with the attributes
/// `headers`, `rows` and `raw`. The step has one. Throws PythonErrorSet.
PyRef bddTable(const Gherkin::Step& step);

}  // namespace Tamrix::PythonPlugin
