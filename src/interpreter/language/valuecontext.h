#pragma once

#include <type_traits>
#include <utility>

#include "interpreter/language/languagecontext.h"

namespace Tamrix {

/// What the contexts of all languages have alike in which values of the script are made. `Own`, the
/// plug-in's class, derives from it and has beside what is left to override, `Value` being what an
/// `Argument` is made of:
///
///     static Value makeNull();
///     Value makeValue(T value);  // T a bool, long long, double, QString, QDateTime, QByteArray,
///                                // ScriptArgument::List, ScriptArgument::Map, or a SharedPtr of
///                                // an Object, NativeScriptObject, TestDataSet, ApplicationContext
///     static Value makeValue(const Argument& wrapper);   // which it has; static as those of a
///                                // bool and of an integer
template <typename Own, typename WrappedArgument, typename Interpreter>
class ValueContext : public LanguageContext {
public:
    using Argument = WrappedArgument;

    explicit ValueContext(Interpreter& interpreter)
        : LanguageContext(interpreter), m_interpreter(interpreter) {}

    /// What a function without a result gives.
    static auto makeNothing() { return Own::makeNull(); }

    ScriptContext* createSubContext() final {
        auto* const context = new Own(m_interpreter);
        context->setTestResult(testResult());
        return context;
    }

    SharedPtr<ScriptArgument> createNull() final { return wrapped(own().makeNull()); }
    SharedPtr<ScriptArgument> createBool(bool value) final { return made(value); }
    SharedPtr<ScriptArgument> createInteger(int value) final { return createInt64(value); }
    SharedPtr<ScriptArgument> createInt64(long long value) final { return made(value); }
    SharedPtr<ScriptArgument> createDouble(double value) final { return made(value); }
    SharedPtr<ScriptArgument> createString(const QString& value) final { return made(value); }
    SharedPtr<ScriptArgument> createDateTime(const QDateTime& value) final { return made(value); }
    SharedPtr<ScriptArgument> createBytes(const QByteArray& value) final { return made(value); }
    SharedPtr<ScriptArgument> createList(const ScriptArgument::List& values) final {
        return made(values);
    }
    SharedPtr<ScriptArgument> createMap(const ScriptArgument::Map& values) final {
        return made(values);
    }
    SharedPtr<ScriptArgument> createNative(SharedPtr<NativeScriptObject> object) final {
        return made(object);
    }
    SharedPtr<ScriptArgument> createObject(SharedPtr<Object> object) final { return made(object); }
    SharedPtr<ScriptArgument> createTestDataSet(TestDataSet* dataSet) final {
        return made(SharedPtr<TestDataSet>(dataSet));
    }
    SharedPtr<ScriptArgument> createContext(SharedPtr<ApplicationContext> context) final {
        return made(context);
    }

    void setStringResult(const QString& value) final { setResult(made(value)); }
    void setResult(SharedPtr<ScriptArgument> value) final {
        LanguageContext::setResult(std::move(value));
    }

protected:
    /// The value in a wrapper: one that waits, see DirectCall::add(), or a new one.
    template <typename Value>
    SharedPtr<ScriptArgument> wrapped(Value&& value) {
        if (SharedPtr<ScriptArgument> spare = takeSpareWrapper()) {
            static_cast<Argument*>(spare.get())->rebind(std::forward<Value>(value));
            return spare;
        }
        if constexpr (std::is_constructible_v<Argument, Interpreter&, Value>)
            return new Argument(m_interpreter, std::forward<Value>(value));
        else
            return new Argument(std::forward<Value>(value));
    }

    Interpreter& m_interpreter;

private:
    Own& own() { return static_cast<Own&>(*this); }

    template <typename T>
    SharedPtr<ScriptArgument> made(const T& value) {
        return wrapped(own().makeValue(value));
    }
};

}  // namespace Tamrix
