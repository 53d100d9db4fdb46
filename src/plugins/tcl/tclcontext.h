#pragma once

#include "interpreter/language/valuecontext.h"
#include "plugins/tcl/conversion.h"
#include "plugins/tcl/tclargument.h"
#include "plugins/tcl/tclinterpreter.h"

namespace Tamrix::TclPlugin {

/// The context of all calls of one interpreter.
class TclContext final : public ValueContext<TclContext, TclArgument, TclInterpreter> {
public:
    using ValueContext::ValueContext;

    // For ValueContext.
    static TclRef makeNull() { return TclRef(Tcl_NewObj()); }
    static TclRef makeValue(const TclArgument& wrapper) { return TclRef(wrapper.value()); }
    static TclRef makeValue(bool value);
    static TclRef makeValue(long long value) { return TclRef(Tcl_NewWideIntObj(value)); }
    static TclRef makeValue(double value) { return TclRef(Tcl_NewDoubleObj(value)); }
    static TclRef makeValue(const QString& value) { return toTcl(value); }
    static TclRef makeValue(const QDateTime& value) { return toTcl(value); }
    static TclRef makeValue(const QByteArray& value);
    static TclRef makeValue(const ScriptArgument::List& values);
    static TclRef makeValue(const ScriptArgument::Map& values);
    /// Of what scripts have by a name.
    template <typename T>
    TclRef makeValue(const SharedPtr<T>& held) {
        return m_interpreter.values().nameOf(held);
    }

    void define(const NativeFunction& function) override;

    bool isTrue(SharedPtr<ScriptArgument> value) override;
    QString explainArgument(const char* parameter) override;
    std::pair<QString, QString> evaluateForException(SharedPtr<ScriptArgument> code) override;
    bool valuesEqual(SharedPtr<ScriptArgument> left, SharedPtr<ScriptArgument> right) override;
    bool evaluateCondition(const QString& expression, QString* error) override;

protected:
    void defineMember(const NativeFunction& function) override;
    void defineConstant(const QString& owner, const QString& name, int value) override;
};

}  // namespace Tamrix::TclPlugin
