#pragma once

#include "interpreter/language/valuecontext.h"
#include "plugins/ruby/conversion.h"
#include "plugins/ruby/nativeclasses.h"
#include "plugins/ruby/objectclass.h"
#include "plugins/ruby/rubyargument.h"
#include "plugins/ruby/valueclasses.h"

namespace Tamrix::RubyPlugin {

class RubyInterpreter;

/// The context of all calls of one interpreter.
class RubyContext final : public ValueContext<RubyContext, RubyArgument, RubyInterpreter> {
public:
    using ValueContext::ValueContext;

    // For ValueContext.
    static VALUE makeNull() { return Qnil; }
    static VALUE makeValue(const RubyArgument& wrapper) { return wrapper.value(); }
    static VALUE makeValue(bool value) { return value ? Qtrue : Qfalse; }
    static VALUE makeValue(long long value) { return LL2NUM(value); }
    static VALUE makeValue(double value) { return DBL2NUM(value); }
    static VALUE makeValue(const QString& value) { return toRuby(value); }
    static VALUE makeValue(const QDateTime& value) { return toRuby(value); }
    static VALUE makeValue(const QByteArray& value) { return toRuby(value); }
    static VALUE makeValue(const ScriptArgument::List& values);
    static VALUE makeValue(const ScriptArgument::Map& values);
    static VALUE makeValue(const SharedPtr<Object>& object) { return wrapObject(object); }
    static VALUE makeValue(const SharedPtr<NativeScriptObject>& object) {
        return wrapNative(object);
    }
    static VALUE makeValue(const SharedPtr<TestDataSet>& set) { return wrapDataSet(set); }
    static VALUE makeValue(const SharedPtr<ApplicationContext>& context) {
        return wrapContext(context);
    }

    SharedPtr<ScriptArgument> createLocation(const ScriptLocation& location) override;
    SharedPtr<ScriptArgument> createRecord(const SharedPtr<HeldRecord>& row) override {
        return wrapped(wrapRecord(row));
    }
    void define(const NativeFunction& function) override;

    bool lineInfoOfFrame(LineInfo& position, int ancestorLevel) const override;
    std::pair<QString, QString> evaluateForException(SharedPtr<ScriptArgument> code) override;
    bool valuesEqual(SharedPtr<ScriptArgument> left, SharedPtr<ScriptArgument> right) override;
    bool evaluateCondition(const QString& expression, QString* error) override;
    QString explainArgument(const char* parameter) override;

protected:
    void defineMember(const NativeFunction& function) override;
    void defineConstant(const QString& owner, const QString& name, int value) override;
};

}  // namespace Tamrix::RubyPlugin
