#pragma once

#include <type_traits>

#include "interpreter/language/languageargument.h"
#include "plugins/tcl/conversion.h"
#include "plugins/tcl/tclinterpreter.h"
#include "plugins/tcl/valuetype.h"

namespace Tamrix::TclPlugin {

/// One value of Tcl as a script value.
///
/// To Tcl every value is a text, and what else it is depends on who asks. So the type tests say
/// what a value can be taken for: "12" is a text, a number and a list of one element. What can be
/// told for sure is what a value was made as, by a calculation, by `list` or `dict`, by the
/// application: such a number, list or dictionary is no text.
class TclArgument : public LanguageArgument<TclArgument> {
public:
    TclArgument(TclInterpreter& interpreter, TclRef value)
        : m_interpreter(interpreter), m_value(std::move(value)) {}

    /// Makes the wrapper stand for another value, or for none while it is not used.
    void rebind(TclRef value = TclRef()) {
        m_value = std::move(value);
        m_isResult = false;
    }

    Tcl_Obj* value() const { return m_value.get(); }

    QString typeName() const override;
    bool isBool() const override;
    bool isNumber() const override;
    bool holdsInteger() const override;
    bool isString() const override;
    /// What is written to results may be anything.
    bool isStringLike() const override { return true; }
    /// The first element of a callable is the name of a command.
    bool isCallable() const override;
    bool isList() const override;
    bool isMap() const override;
    bool toBool() const override;
    double toDouble() const override;
    /// Throws ScriptErrorSet for an integer beyond 64 bits.
    long long convertedToInt() const override;
    /// Of an object the name that finds it again.
    QString toString() const override;
    List toList() const override;
    Map toMap() const override;
    /// Also of a text: a dictionary of properties, a real name without its braces.
    QString toRealName() const override;
    QString callableIdentifier() const override { return "Callable|" + textOf(value()); }
    PropertyValue toPropertyValue() const override;
    std::optional<QVariant> toVariant() const override;
    /// The empty text.
    bool isNull() const override { return isEmptyText(value()); }

    /// Takes the value of a call, where a truth value may also be a number.
    void setIsResult() { m_isResult = true; }

    // For LanguageArgument.
    template <typename T>
    SharedPtr<T> held() const {
        if constexpr (std::is_same_v<T, TestDataSet>)
            return setOfRecords();
        else if constexpr (std::is_same_v<T, HeldRecord>)
            return m_interpreter.values().record(value());
        else
            return m_interpreter.values().get<T>(value());
    }
    std::optional<QByteArray> bytes() const;
    /// Times are texts.
    static QDateTime time() { return {}; }
    SharedPtr<ScriptArgument> called(const List& arguments) const;
    static LanguageInterpreter* active() { return TclInterpreter::active(); }

private:
    /// A data set is the list of its records.
    SharedPtr<TestDataSet> setOfRecords() const;

    TclInterpreter& m_interpreter;
    TclRef m_value;
    bool m_isResult = false;
};

/// The value of an argument.
inline Tcl_Obj* valueOf(const SharedPtr<ScriptArgument>& argument) {
    return static_cast<const TclArgument*>(argument.get())->value();
}

}  // namespace Tamrix::TclPlugin
