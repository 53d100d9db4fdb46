#pragma once

#include <QString>

#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

// A namespace of the library whose name is one of Python's own: "object". Python's library needs
// the name as it is, so it stays in the builtins, and scripts and modules of the suite get an
// overlay instead: an object with the functions of the namespace that otherwise behaves as what it
// lies over. `class Thing(object)`, `object()` and `isinstance(x, object)` mean what they always
// do.

/// Makes the overlay's type and the hook by which modules of the suite get the names; once for the
/// process. False with the error indicator set on failure.
bool addOverlays(PyObject* module);

/// The overlays by name, as globals for scripts. Borrowed; filled by overlayFor().
PyObject* overlays();

/// The overlay of this name over `hidden`, made on first use. Null with the error indicator set on
/// failure. Attributes that are set on it hide those below it.
PyRef overlayFor(const QString& name, PyObject* hidden);

/// Forgets all overlays.
void dropOverlays();

}  // namespace Tamrix::PythonPlugin
