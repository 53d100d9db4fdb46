#pragma once

#include <QString>

#include "interpreter/language/timelimit.h"
#include "interpreter/language/valuetexts.h"
#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// What repr() gives, or that it was not done within a second. Null with the error indicator set
/// when it has raised something.
PyRef timedRepresentation(PyObject* value);

/// What ends running code when a TimeLimit calls it, with an exception that no `except Exception`
/// catches. Called before there is an error, since nothing can be made ready then.
TimeLimit::Expired readyTimeLimit();

/// Writes Python's values by their representation, or in <> what there is instead of it. Their
/// parts are elements, entries, or the attributes of an object, a class or a module.
class PythonTexts final : public ValueTexts {
public:
    Parts partsOf(const Value& value, int end, int depth = 0) override;
    Value partNamed(const Value& value, const QString& name) override;

protected:
    QString text(const Value& value, int depth) override;

private:
    QString keyText(PyObject* key, int depth);
    QString containerText(const Value& value, int depth);
    QString reprText(PyObject* value);
};

}  // namespace Tamrix::PythonPlugin
