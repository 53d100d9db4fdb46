#include "plugins/tcl/tclcontext.h"

#include "interpreter/language/stepactions.h"
#include "interpreter/objects/objectidentity.h"
#include "plugins/tcl/conversion.h"
#include "plugins/tcl/nativeclasses.h"
#include "plugins/tcl/nativecommands.h"
#include "plugins/tcl/tclargument.h"
#include "plugins/tcl/tcldebugger.h"
#include "plugins/tcl/tclinterpreter.h"
#include "plugins/tcl/valuetype.h"

namespace Tamrix::TclPlugin {

namespace {

Tcl_Obj* valueOf(const SharedPtr<ScriptArgument>& argument) {
    return static_cast<const TclArgument*>(argument.get())->value();
}

/// Functions that Tcl has itself, under the same name and for the same.
bool isTclsOwn(const QString& name) {
    return name == QLatin1String("source");
}

bool isNumber(ValueType type) {
    return type == ValueType::Integer || type == ValueType::Double;
}

bool areEqualNumbers(Tcl_Obj* left, Tcl_Obj* right) {
    Tcl_WideInt leftInteger = 0;
    Tcl_WideInt rightInteger = 0;
    if (Tcl_GetWideIntFromObj(nullptr, left, &leftInteger) == TCL_OK &&
        Tcl_GetWideIntFromObj(nullptr, right, &rightInteger) == TCL_OK)
        return leftInteger == rightInteger;
    double leftNumber = 0;
    double rightNumber = 0;
    return Tcl_GetDoubleFromObj(nullptr, left, &leftNumber) == TCL_OK &&
           Tcl_GetDoubleFromObj(nullptr, right, &rightNumber) == TCL_OK &&
           leftNumber == rightNumber;
}

/// The same keys with equal values, in whatever order.
bool areEqualMaps(TclContext& context, const ScriptArgument& left, const ScriptArgument& right) {
    const ScriptArgument::Map leftMap = left.toMap();
    const ScriptArgument::Map rightMap = right.toMap();
    if (!left.isMap() || !right.isMap() || leftMap.size() != rightMap.size())
        return false;
    for (const auto& [key, value] : leftMap) {
        const auto other = rightMap.find(key);
        if (other == rightMap.end() || !context.valuesEqual(value, other->second))
            return false;
    }
    return true;
}

bool areEqualLists(TclContext& context, const ScriptArgument& left, const ScriptArgument& right) {
    const ScriptArgument::List leftList = left.toList();
    const ScriptArgument::List rightList = right.toList();
    if (!left.isList() || !right.isList() || leftList.size() != rightList.size())
        return false;
    for (std::size_t index = 0; index < leftList.size(); ++index) {
        if (!context.valuesEqual(leftList[index], rightList[index]))
            return false;
    }
    return true;
}

}  // namespace

TclContext::TclContext(TclInterpreter& interpreter)
    : LanguageContext(interpreter), m_interpreter(interpreter) {}

ScriptContext* TclContext::createSubContext() {
    auto* const context = new TclContext(m_interpreter);
    context->setTestResult(testResult());
    return context;
}

void TclContext::clearError() {
    // An error of Tcl is the result of a command, which has not ended.
}

// Values

SharedPtr<ScriptArgument> TclContext::argument(TclRef value) {
    return new TclArgument(m_interpreter, std::move(value));
}

SharedPtr<ScriptArgument> TclContext::argument(Tcl_Obj* value) {
    return argument(TclRef(value));
}

SharedPtr<ScriptArgument> TclContext::createNull() {
    return argument(Tcl_NewObj());
}

SharedPtr<ScriptArgument> TclContext::createBool(bool value) {
    // Words, as applications and the names of objects have them. Tcl's conditions take both.
    Tcl_Obj* const word = Tcl_NewStringObj(value ? "true" : "false", -1);
    int truth = 0;
    Tcl_GetBooleanFromObj(nullptr, word, &truth);
    return argument(word);
}

SharedPtr<ScriptArgument> TclContext::createInteger(int value) {
    return argument(Tcl_NewIntObj(value));
}

SharedPtr<ScriptArgument> TclContext::createInt64(long long value) {
    return argument(Tcl_NewWideIntObj(value));
}

SharedPtr<ScriptArgument> TclContext::createDouble(double value) {
    return argument(Tcl_NewDoubleObj(value));
}

SharedPtr<ScriptArgument> TclContext::createString(const QString& value) {
    return argument(toTcl(value));
}

SharedPtr<ScriptArgument> TclContext::createDateTime(const QDateTime& value) {
    return argument(toTcl(value));
}

SharedPtr<ScriptArgument> TclContext::createBytes(const QByteArray& value) {
    return argument(Tcl_NewByteArrayObj(reinterpret_cast<const unsigned char*>(value.constData()),
                                        value.size()));
}

SharedPtr<ScriptArgument> TclContext::createList(
    const std::vector<SharedPtr<ScriptArgument>>& values) {
    const TclRef list(Tcl_NewListObj(0, nullptr));
    for (const SharedPtr<ScriptArgument>& value : values)
        Tcl_ListObjAppendElement(nullptr, list.get(), valueOf(value));
    return argument(list);
}

SharedPtr<ScriptArgument> TclContext::createMap(
    const std::map<QString, SharedPtr<ScriptArgument>>& values) {
    const TclRef dictionary(Tcl_NewDictObj());
    for (const auto& [name, value] : values)
        Tcl_DictObjPut(nullptr, dictionary.get(), toTcl(name).get(), valueOf(value));
    return argument(dictionary);
}

SharedPtr<ScriptArgument> TclContext::createNative(SharedPtr<NativeScriptObject> object) {
    return argument(m_interpreter.classes().nameOf(object));
}

SharedPtr<ScriptArgument> TclContext::createObject(SharedPtr<Object> object) {
    return argument(m_interpreter.values().nameOf(object));
}

SharedPtr<ScriptArgument> TclContext::createTestDataSet(TestDataSet* dataSet) {
    return argument(m_interpreter.values().nameOf(SharedPtr<TestDataSet>(dataSet)));
}

SharedPtr<ScriptArgument> TclContext::createContext(SharedPtr<ApplicationContext> context) {
    return argument(m_interpreter.values().nameOf(context));
}

SharedPtr<ScriptArgument> TclContext::createLocation(const ScriptLocation& location) {
    return createMap(
        {{"fileName", createString(location.fileName)}, {"line", createInteger(location.line)}});
}

// Registration

void TclContext::addGlobalFunction(const QString& name, Function function) {
    ScriptContext::addGlobalFunction(name, function);
    if (!isTclsOwn(name))
        defineNative(m_interpreter, name,
                     NativeFunction(*this, signatureOfTable({}, name), function));
}

void TclContext::addStaticMemberFunction(const QString& className, const QString& name,
                                         Function function) {
    ScriptContext::addStaticMemberFunction(className, name, function);
    defineNative(m_interpreter, className + "::" + name,
                 NativeFunction(*this, signatureOfTable(className, name), function));
}

void TclContext::addMemberFunction(const QString& className, const QString& name,
                                   Function function) {
    ScriptContext::addMemberFunction(className, name, function);
    m_interpreter.classes().addMember(
        className, NativeFunction(*this, signatureOfTable(className, name), function));
}

void TclContext::addConstant(const QString& name, int value) {
    ScriptContext::addConstant(name, value);
    m_interpreter.defineVariable(name, value);
}

// Positions

bool TclContext::lineInfoOfFrame(LineInfo& position, int ancestorLevel) const {
    const std::vector<TclFrame> frames = m_interpreter.frames();
    if (ancestorLevel < 0 || static_cast<std::size_t>(ancestorLevel) >= frames.size())
        return false;
    const TclFrame& frame = frames[static_cast<std::size_t>(ancestorLevel)];
    position = LineInfo(frame.file, frame.line);
    return true;
}

// The language's own judgement

bool TclContext::isTrue(SharedPtr<ScriptArgument> value) {
    // An object is true when there is one.
    if (const SharedPtr<Object> object = value->toObject())
        return isTrueObject(object);
    int truth = 0;
    if (value->isNull())
        return false;
    if (Tcl_GetBooleanFromObj(nullptr, valueOf(value), &truth) == TCL_OK)
        return truth != 0;
    m_interpreter.throwError("expected boolean value but got \"" + value->toString() +
                             "\": write [expr {...}] around a condition");
}

bool TclContext::valuesEqual(SharedPtr<ScriptArgument> left, SharedPtr<ScriptArgument> right) {
    Tcl_Obj* const leftValue = valueOf(left);
    Tcl_Obj* const rightValue = valueOf(right);
    const ValueType leftType = typeOf(leftValue);
    const ValueType rightType = typeOf(rightValue);
    // 1. The same text is the same value.
    if (bytesOf(leftValue) == bytesOf(rightValue))
        return true;
    // 2. A number compares by its value with what looks like one. Two texts that look like numbers
    //    stay texts: "1.10" is not "1.1".
    if (isNumber(leftType) || isNumber(rightType))
        return areEqualNumbers(leftValue, rightValue);
    // 3. So does a truth value.
    int leftTruth = 0;
    int rightTruth = 0;
    if (leftType == ValueType::Boolean || rightType == ValueType::Boolean)
        return Tcl_GetBooleanFromObj(nullptr, leftValue, &leftTruth) == TCL_OK &&
               Tcl_GetBooleanFromObj(nullptr, rightValue, &rightTruth) == TCL_OK &&
               (leftTruth != 0) == (rightTruth != 0);
    // 4. A dictionary, a list by what they hold.
    if (leftType == ValueType::Dictionary || rightType == ValueType::Dictionary)
        return areEqualMaps(*this, *left, *right);
    if (leftType == ValueType::List || rightType == ValueType::List)
        return areEqualLists(*this, *left, *right);
    return false;
}

std::pair<QString, QString> TclContext::evaluateForException(SharedPtr<ScriptArgument> code) {
    // A slip in the code is not the error that the test is about.
    if (!Tcl_CommandComplete(Tcl_GetString(valueOf(code))))
        return {QString(), QStringLiteral("The code is not valid: it has no end")};
    const TclDebugger::Boundary boundary(m_interpreter.debugger(), true);
    const int result = Tcl_EvalObjEx(m_interpreter.tcl(), valueOf(code), 0);
    if (result == TCL_ERROR && !m_interpreter.isUnwinding())
        return {"Raised " + m_interpreter.takeError(result).message, QString()};
    if (result == FatalEnd || result == ExitEnd || result == TCL_ERROR)
        m_interpreter.throwPending(result);
    return {QString(), QStringLiteral("No exception was raised")};
}

bool TclContext::evaluateCondition(const QString& expression, QString* error) {
    int truth = 0;
    const int result = Tcl_ExprBooleanObj(m_interpreter.tcl(), toTcl(expression).get(), &truth);
    if (result == TCL_OK)
        return truth != 0;
    if (result != TCL_ERROR || m_interpreter.isUnwinding())
        m_interpreter.throwPending(result);
    *error = m_interpreter.takeError(result).message;
    return false;
}

bool TclContext::evaluate(const QString& text, const QString& fileName) {
    // What a file registers that is loaded again takes the place of what it did before.
    m_interpreter.steps().registry().forget(fileName);
    const int result = evaluateFile(m_interpreter.tcl(), text, fileName);
    if (result == TCL_OK || result == TCL_RETURN)
        return true;
    if (result != TCL_ERROR || m_interpreter.isUnwinding())
        m_interpreter.throwPending(result);
    const ScriptError raised = m_interpreter.takeError(result);
    QString message = raised.message;
    if (!raised.callStack.empty())
        message = QStringLiteral("%1:%2: %3")
                      .arg(raised.callStack.front().fileName(),
                           QString::number(raised.callStack.front().lineNumber()), message);
    setError(message);
    return false;
}

}  // namespace Tamrix::TclPlugin
