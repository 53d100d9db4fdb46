#pragma once

#include "interpreter/bridge/scriptargument.h"
#include "plugins/tcl/tclref.h"

namespace Tamrix::TclPlugin {

class TclInterpreter;

/// One value of Tcl as a script value.
///
/// To Tcl every value is a text, and what else it is depends on who asks. So the type tests say
/// what a value can be taken for: "12" is a text, a number and a list of one element. What can be
/// told for sure is what a value was made as, by a calculation, by `list` or `dict`, by the
/// application: such a number, list or dictionary is no text.
class TclArgument : public ScriptArgument {
public:
    TclArgument(TclInterpreter& interpreter, TclRef value);

    Tcl_Obj* value() const { return m_value.get(); }

    QString typeName() const override;
    bool isBool() const override;
    bool isNumber() const override;
    bool isInteger() const override;
    bool isString() const override;
    bool isStringLike() const override;
    bool isObject() const override;
    bool isClass() const override;
    /// The first element of a callable is the name of a command.
    bool isCallable() const override;
    bool isList() const override;
    bool isMap() const override;
    bool isNative(void* typeId) const override;
    bool toBool() const override;
    double toDouble() const override;
    /// Throws ScriptErrorSet for an integer beyond 64 bits.
    long long toInt() const override;
    /// Of an object the name that finds it again.
    QString toString() const override;
    SharedPtr<Object> toObject() const override;
    const Class* toClass() const override;
    List toList() const override;
    Map toMap() const override;
    SharedPtr<NativeScriptObject> toNative(void* typeId) const override;
    SharedPtr<TestDataSet> toTestDataSet() const override;
    SharedPtr<ApplicationContext> toApplicationContext() const override;
    /// Also of a text: a dictionary of properties, a real name without its braces.
    QString toRealName() const override;
    SharedPtr<ScriptArgument> call(const List& arguments, QString* error) override;
    QString callableIdentifier() const override;
    PropertyValue toPropertyValue() const override;
    const TestDataRecord* toTestDataRecord() const override;
    std::optional<QVariant> toVariant() const override;
    /// The empty text.
    bool isNull() const override;

    using ScriptArgument::toNative;

    /// Takes the value of a call, where a truth value may also be a number.
    void setIsResult() { m_isResult = true; }

private:
    TclInterpreter& m_interpreter;
    TclRef m_value;
    bool m_isResult = false;
};

}  // namespace Tamrix::TclPlugin
