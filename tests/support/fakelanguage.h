#pragma once

#include <functional>
#include <map>
#include <variant>
#include <vector>

#include "base/export.h"
#include "interpreter/bridge/debugger.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/scriptargument.h"
#include "interpreter/bridge/scriptcontext.h"

namespace Tamrix::Test {

// The script language of tests. Its values are C++ values, its functions are canned, and the
// position of its script is what a test says.

/// A value of the fake language.
class TAMRIX_EXPORT FakeArgument : public ScriptArgument {
public:
    using Function = std::function<SharedPtr<ScriptArgument>(const List&, QString*)>;
    using Value = std::variant<std::monostate, bool, long long, double, QString, List, Map,
                               Function, SharedPtr<Object>, SharedPtr<NativeScriptObject>,
                               SharedPtr<TestDataSet>, SharedPtr<ApplicationContext>, const Class*>;

    FakeArgument() = default;
    explicit FakeArgument(Value value) : m_value(std::move(value)) {}

    const Value& value() const { return m_value; }
    /// The text of a value that is a map, too: it then is a string as well.
    QString alsoText;

    QString typeName() const override;
    bool isBool() const override { return has<bool>(); }
    bool isNumber() const override { return has<long long>() || has<double>(); }
    bool holdsInteger() const override { return has<long long>(); }
    bool isString() const override { return has<QString>() || !alsoText.isNull(); }
    bool isObject() const override { return has<SharedPtr<Object>>(); }
    bool isClass() const override { return has<const Class*>(); }
    bool isCallable() const override { return has<Function>(); }
    bool isList() const override { return has<List>(); }
    bool isMap() const override { return has<Map>(); }
    bool isNative(void* typeId) const override { return bool(toNative(typeId)); }
    bool toBool() const override { return get<bool>(); }
    double toDouble() const override;
    long long convertedToInt() const override;
    QString toString() const override;
    SharedPtr<Object> toObject() const override { return get<SharedPtr<Object>>(); }
    const Class* toClass() const override { return get<const Class*>(); }
    List toList() const override { return get<List>(); }
    Map toMap() const override { return get<Map>(); }
    SharedPtr<NativeScriptObject> toNative(void* typeId) const override;
    SharedPtr<TestDataSet> toTestDataSet() const override { return get<SharedPtr<TestDataSet>>(); }
    SharedPtr<ApplicationContext> toApplicationContext() const override {
        return get<SharedPtr<ApplicationContext>>();
    }
    SharedPtr<ScriptArgument> call(const List& arguments, QString* error) override;
    bool isNull() const override { return has<std::monostate>(); }
    using ScriptArgument::toNative;

private:
    template <typename T>
    bool has() const {
        return std::holds_alternative<T>(m_value);
    }
    template <typename T>
    T get() const {
        return has<T>() ? std::get<T>(m_value) : T();
    }

    Value m_value;
};

// Values in short.
TAMRIX_EXPORT SharedPtr<ScriptArgument> text(const QString& value);
TAMRIX_EXPORT SharedPtr<ScriptArgument> number(double value);
TAMRIX_EXPORT SharedPtr<ScriptArgument> integer(long long value);
TAMRIX_EXPORT SharedPtr<ScriptArgument> boolean(bool value);
TAMRIX_EXPORT SharedPtr<ScriptArgument> list(const ScriptArgument::List& values);
TAMRIX_EXPORT SharedPtr<ScriptArgument> map(const ScriptArgument::Map& values);
TAMRIX_EXPORT SharedPtr<ScriptArgument> callable(FakeArgument::Function function);
TAMRIX_EXPORT SharedPtr<ScriptArgument> object(SharedPtr<Object> value);

/// A context of the fake language.
class TAMRIX_EXPORT FakeContext : public ScriptContext {
public:
    explicit FakeContext(TestResult* result = nullptr) { m_testResult = result; }

    /// Positions of the running calls, innermost first.
    std::vector<LineInfo> frames{LineInfo("/suite/tst/test.fake", 7),
                                 LineInfo("/suite/tst/test.fake", 20)};
    /// What the last call set; null without a result.
    SharedPtr<ScriptArgument> result;
    int clearedErrors = 0;
    /// What evaluateForException() gives.
    std::pair<QString, QString> exceptionOutcome;
    /// What evaluateCondition() runs; without one the text "true" is true.
    std::function<bool(const QString& expression, QString* error)> conditionEvaluator;
    /// What evaluate() runs on a context; a true value is a success.
    std::function<bool(FakeContext&, const QString& text, const QString& fileName)> evaluator;

    /// Sets the arguments and executes the function; returns what execute() does.
    bool call(Function function, const ScriptArgument::List& arguments = {});
    /// The same for a function that returns whether it succeeded.
    bool call(bool (*function)(ScriptContext*), const ScriptArgument::List& arguments = {});

    ScriptContext* createSubContext() override;
    void clearError() override { ++clearedErrors; }
    void setResult(SharedPtr<ScriptArgument> value) override { result = value; }
    SharedPtr<ScriptArgument> createNull() override { return new FakeArgument; }
    SharedPtr<ScriptArgument> createBool(bool value) override { return boolean(value); }
    SharedPtr<ScriptArgument> createInteger(int value) override { return integer(value); }
    SharedPtr<ScriptArgument> createInt64(long long value) override { return integer(value); }
    SharedPtr<ScriptArgument> createDouble(double value) override { return number(value); }
    SharedPtr<ScriptArgument> createString(const QString& value) override { return text(value); }
    SharedPtr<ScriptArgument> createDateTime(const QDateTime& value) override {
        return text(value.toString(Qt::ISODate));
    }
    SharedPtr<ScriptArgument> createList(
        const std::vector<SharedPtr<ScriptArgument>>& values) override {
        return list(values);
    }
    SharedPtr<ScriptArgument> createMap(
        const std::map<QString, SharedPtr<ScriptArgument>>& values) override {
        return map(values);
    }
    SharedPtr<ScriptArgument> createNative(SharedPtr<NativeScriptObject> object) override {
        return new FakeArgument(object);
    }
    SharedPtr<ScriptArgument> createObject(SharedPtr<Object> object) override {
        return new FakeArgument(object);
    }
    SharedPtr<ScriptArgument> createTestDataSet(TestDataSet* dataSet) override {
        return new FakeArgument(SharedPtr<TestDataSet>(dataSet));
    }
    SharedPtr<ScriptArgument> createContext(SharedPtr<ApplicationContext> context) override {
        return new FakeArgument(context);
    }
    SharedPtr<ScriptArgument> createLocation(const ScriptLocation& location) override {
        return text(location.fileName + ":" + QString::number(location.line));
    }
    bool lineInfoOfFrame(LineInfo& position, int ancestorLevel) const override;
    bool isTrue(SharedPtr<ScriptArgument> value) override;
    /// The keyword "end" has an underscore behind it.
    QString scriptName(const QString& name) const override { return name == "end" ? "end_" : name; }
    std::pair<QString, QString> evaluateForException(SharedPtr<ScriptArgument>) override {
        return exceptionOutcome;
    }
    bool valuesEqual(SharedPtr<ScriptArgument> left, SharedPtr<ScriptArgument> right) override;
    bool evaluateCondition(const QString& expression, QString* error) override {
        return conditionEvaluator ? conditionEvaluator(expression, error) : expression == "true";
    }
    bool evaluate(const QString& text, const QString& fileName) override;
};

/// An interpreter whose scripts are lists of functions and what becomes of them, one a line:
///
///     NAME                       the function NAME exists and succeeds
///     NAME error LINE MESSAGE    it fails there
///     NAME line LINE             it succeeds but leaves that line as the error's
///     syntax error LINE MESSAGE  makes checkSyntax() fail
///
/// The name "evaluation" means evaluate() itself.
class TAMRIX_EXPORT FakeInterpreter : public Interpreter {
public:
    FakeInterpreter(RunnerInterface* runner, Language language);
    ~FakeInterpreter() override;

    /// Interpreters that are alive, and those that were ever made.
    static int s_alive;
    static int s_made;
    /// What happened, in order: "evaluate", "call main", ...
    static QStringList s_calls;
    /// Runs inside each callFunction(), for tests that want a state at that moment.
    static std::function<void(FakeInterpreter&, const QString& name)> s_duringCall;

    QStringList searchPath;
    QString nativeFunctions;
    struct NativeClass {
        QString name;
        void* typeId;
        NativeScriptType type;
    };
    std::vector<NativeClass> nativeClasses;

    bool evaluate(const QString& text, const QString& fileName, int line, int column) override;
    bool callFunction(const QString& name, const ObjectList& arguments) override;
    bool hasFunction(const QString& name) override { return m_functions.count(name) > 0; }
    bool checkSyntax(const QString& text, const QString& fileName) override;
    void addNativeFunction(const QString& name, bool (*function)(ScriptContext*),
                           const QStringList& requiredParameters,
                           const QStringList& optionalParameters,
                           const QString& description) override;
    void addNativeType(const QString& name, void* typeId, const NativeScriptType& type) override;
    void initTestFunctions(TestResult*) override { s_calls.append("initTestFunctions"); }
    void initUtilFunctions() override { s_calls.append("initUtilFunctions"); }
    QString addToSearchPath(const QFileInfo& directory) override;
    Language language() const override { return m_language; }

private:
    bool outcome(const QString& words);

    Language m_language;
    std::map<QString, QString> m_functions;
};

}  // namespace Tamrix::Test
