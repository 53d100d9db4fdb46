#pragma once

#include "interpreter/bridge/scriptargument.h"
#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// One Python object as a script value. Conversions that Python refuses throw PythonErrorSet.
class PythonArgument final : public ScriptArgument {
public:
    /// `object` must not be null: PythonErrorSet is thrown for a reference that could not be made.
    explicit PythonArgument(PyRef object);

    /// Makes the wrapper stand for another object, or for none while it is not used.
    void rebind(PyRef object) { m_object = std::move(object); }

    PyObject* object() const { return m_object.get(); }

    QString typeName() const override;
    bool isBool() const override;
    bool isNumber() const override;
    bool isInteger() const override;
    bool isString() const override;
    bool isObject() const override;
    /// A class of the application is given by its name.
    bool isClass() const override;
    bool isCallable() const override;
    bool isList() const override;
    bool isMap() const override;
    bool isNative(void* typeId) const override;
    bool toBool() const override;
    double toDouble() const override;
    /// Throws PythonErrorSet with an OverflowError for an int beyond 64 bits.
    long long toInt() const override;
    QString toString() const override;
    SharedPtr<Object> toObject() const override;
    const Class* toClass() const override;
    List toList() const override;
    Map toMap() const override;
    SharedPtr<NativeScriptObject> toNative(void* typeId) const override;
    SharedPtr<TestDataSet> toTestDataSet() const override;
    SharedPtr<ApplicationContext> toApplicationContext() const override;
    SharedPtr<ScriptArgument> call(const List& arguments, QString* error) override;
    QString callableIdentifier() const override;
    const TestDataRecord* toTestDataRecord() const override;
    /// Also None, bytes and datetime.
    std::optional<QVariant> toVariant() const override;
    bool isNull() const override { return object() == Py_None; }

    using ScriptArgument::toNative;

private:
    PyRef m_object;
};

}  // namespace Tamrix::PythonPlugin
