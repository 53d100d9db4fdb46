#pragma once

#include <vector>

#include "interpreter/language/valuecontext.h"
#include "plugins/python/conversion.h"
#include "plugins/python/holder.h"
#include "plugins/python/nativeclasses.h"
#include "plugins/python/pyref.h"
#include "plugins/python/pythonargument.h"

namespace Tamrix::PythonPlugin {

class PythonInterpreter;

/// The context of all calls of one interpreter.
class PythonContext final : public ValueContext<PythonContext, PythonArgument, PythonInterpreter> {
public:
    using ValueContext::ValueContext;

    void clearError() override;

    // For ValueContext.
    static PyRef makeNull() { return PyRef::borrow(Py_None); }
    static PyRef makeValue(const PythonArgument& wrapper) {
        return PyRef::borrow(wrapper.object());
    }
    static PyRef makeValue(bool value) { return PyRef::borrow(value ? Py_True : Py_False); }
    static PyRef makeValue(long long value) { return PyRef::steal(PyLong_FromLongLong(value)); }
    static PyRef makeValue(double value) { return PyRef::steal(PyFloat_FromDouble(value)); }
    static PyRef makeValue(const QString& value) { return toPyString(value); }
    static PyRef makeValue(const QDateTime& value) { return toPyDateTime(value); }
    static PyRef makeValue(const QByteArray& value);
    static PyRef makeValue(const ScriptArgument::List& values);
    static PyRef makeValue(const ScriptArgument::Map& values);
    static PyRef makeValue(const SharedPtr<NativeScriptObject>& object) {
        return wrapNative(object);
    }
    template <typename T>
    static PyRef makeValue(const SharedPtr<T>& held) {
        return Holder<T>::wrap(held);
    }

    SharedPtr<ScriptArgument> createLocation(const ScriptLocation& location) override;
    SharedPtr<ScriptArgument> createRecord(const SharedPtr<HeldRecord>& record) override {
        return wrapped(makeValue(record));
    }
    void define(const NativeFunction& function) override;

    bool lineInfoOfFrame(LineInfo& position, int ancestorLevel) const override;
    QString scriptName(const QString& name) const override;
    QString explainArgument(const char* parameter) override;
    std::pair<QString, QString> evaluateForException(SharedPtr<ScriptArgument> code) override;
    bool valuesEqual(SharedPtr<ScriptArgument> left, SharedPtr<ScriptArgument> right) override;
    bool evaluateCondition(const QString& expression, QString* error) override;

protected:
    void defineMember(const NativeFunction& function) override;
    void defineConstant(const QString& owner, const QString& name, int value) override;
};

}  // namespace Tamrix::PythonPlugin
