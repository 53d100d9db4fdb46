#pragma once

#include "interpreter/language/languageargument.h"
#include "plugins/python/holder.h"
#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// One Python object as a script value. Conversions that Python refuses throw PythonErrorSet.
class PythonArgument final : public LanguageArgument<PythonArgument> {
public:
    /// `object` must not be null: PythonErrorSet is thrown for a reference that could not be made.
    explicit PythonArgument(PyRef object);

    /// Makes the wrapper stand for another object, as for the constructor.
    void rebind(PyRef object) {
        m_object = checkedReference(std::move(object));
        keepOwnInteger();
    }
    /// Makes it stand for none while it is not used.
    void rebind() {
        m_object = PyRef();
        keepNoInteger();
    }

    PyObject* object() const { return m_object.get(); }

    QString typeName() const override;
    bool isBool() const override;
    bool isNumber() const override;
    bool holdsInteger() const override;
    bool isString() const override;
    bool isCallable() const override;
    bool isList() const override;
    bool isMap() const override;
    bool isNull() const override { return object() == Py_None; }
    bool toBool() const override;
    double toDouble() const override;
    /// Throws PythonErrorSet with an OverflowError for an int beyond 64 bits.
    long long convertedToInt() const override;
    QString toString() const override;
    List toList() const override;
    Map toMap() const override;
    QString callableIdentifier() const override;

    // For LanguageArgument.
    template <typename T>
    SharedPtr<T> held() const {
        return Holder<T>::unwrap(object());
    }
    std::optional<QByteArray> bytes() const;
    /// Of a datetime.
    QDateTime time() const;
    SharedPtr<ScriptArgument> called(const List& arguments) const;
    static LanguageInterpreter* active();

private:
    /// One of at most 30 bits, which are one digit of CPython's.
    void keepOwnInteger() {
        if (PyLong_CheckExact(object()) && std::abs(Py_SIZE(object())) <= 1)
            keepInteger(Py_SIZE(object()) * reinterpret_cast<PyLongObject*>(object())->ob_digit[0]);
        else
            keepNoInteger();
    }

    PyRef m_object;
};

/// The object of an argument of this plug-in.
inline PyObject* objectOf(const SharedPtr<ScriptArgument>& argument) {
    return static_cast<const PythonArgument*>(argument.get())->object();
}

}  // namespace Tamrix::PythonPlugin
