#include "plugins/tcl/tclcontext.h"

#include "interpreter/language/valueequality.h"
#include "interpreter/objects/objectidentity.h"
#include "plugins/tcl/conditionsource.h"
#include "plugins/tcl/nativeclasses.h"
#include "plugins/tcl/nativecommands.h"
#include "plugins/tcl/tcldebugger.h"
#include "plugins/tcl/valuetype.h"

namespace Tamrix::TclPlugin {

namespace {

bool areEqualNumbers(Tcl_Obj* left, Tcl_Obj* right) {
    if (integerOf(left) && integerOf(right))
        return integerOf(left) == integerOf(right);
    return doubleOf(left) && doubleOf(left) == doubleOf(right);
}

}  // namespace

// Values

TclRef TclContext::makeValue(bool value) {
    // Words, as applications and the names of objects have them. Tcl's conditions take both.
    TclRef word(Tcl_NewStringObj(value ? "true" : "false", -1));
    truthOf(word.get());
    return word;
}

TclRef TclContext::makeValue(const QByteArray& value) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(value.constData());
    return TclRef(Tcl_NewByteArrayObj(bytes, value.size()));
}

TclRef TclContext::makeValue(const ScriptArgument::List& values) {
    TclRef list(Tcl_NewListObj(0, nullptr));
    for (const SharedPtr<ScriptArgument>& value : values)
        Tcl_ListObjAppendElement(nullptr, list.get(), valueOf(value));
    return list;
}

TclRef TclContext::makeValue(const ScriptArgument::Map& values) {
    TclRef dictionary(Tcl_NewDictObj());
    for (const auto& [name, value] : values)
        Tcl_DictObjPut(nullptr, dictionary.get(), toTcl(name).get(), valueOf(value));
    return dictionary;
}

// Registration

void TclContext::define(const NativeFunction& function) {
    const QString owner = function.signature().owner;
    const QString name = function.signature().name;
    // Tcl has one itself, under the same name and for the same.
    if (owner.isEmpty() && name == QLatin1String("source"))
        return;
    defineNative(m_interpreter, owner.isEmpty() ? name : owner + "::" + name, function);
}

void TclContext::defineMember(const NativeFunction& function) {
    if (function.signature().owner == QLatin1String("ApplicationContext"))
        m_interpreter.classes().addContextMember(function);
    else if (function.signature().owner == QLatin1String("StepContext"))
        defineNative(m_interpreter, "tamrix::" + function.signature().name, function);
    else
        LanguageContext::defineMember(function);
}

void TclContext::defineConstant(const QString& owner, const QString& name, int value) {
    m_interpreter.defineVariable(owner.isEmpty() ? name : owner + "::" + name, value);
}

// The language's own judgement

bool TclContext::isTrue(SharedPtr<ScriptArgument> value) {
    // An object is true when there is one.
    if (const SharedPtr<Object> object = value->toObject())
        return isTrueObject(object);
    if (value->isNull())
        return false;
    if (const std::optional<bool> truth = truthOf(valueOf(value)))
        return *truth;
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
    if (leftType == ValueType::Boolean || rightType == ValueType::Boolean)
        return truthOf(leftValue) && truthOf(leftValue) == truthOf(rightValue);
    // 4. A dictionary, a list by what they hold.
    const AreEqual areEqual = [this](const auto& one, const auto& other) {
        return valuesEqual(one, other);
    };
    if (leftType == ValueType::Dictionary || rightType == ValueType::Dictionary)
        return areEqualMaps(*left, *right, areEqual);
    return (leftType == ValueType::List || rightType == ValueType::List) &&
           areEqualLists(*left, *right, areEqual);
}

QString TclContext::explainArgument(const char*) {
    // The condition is the first argument: those that must be given have no names.
    return explainCondition(m_interpreter);
}

std::pair<QString, QString> TclContext::evaluateForException(SharedPtr<ScriptArgument> code) {
    // As it stands in the script, so that it knows its lines.
    const auto evaluate = [&] {
        m_interpreter.check(Tcl_EvalObjEx(m_interpreter.tcl(), valueOf(code), 0));
    };
    const auto slip = [](const QString& text) {
        const bool isWhole = Tcl_CommandComplete(toTclBytes(text).constData()) != 0;
        return isWhole ? QString() : QStringLiteral("it has no end");
    };
    return attemptException(*code, {slip, [&](const QString&) { evaluate(); }, evaluate});
}

bool TclContext::evaluateCondition(const QString& expression, QString* error) {
    return attemptCondition(
        [&] {
            int truth = 0;
            m_interpreter.check(
                Tcl_ExprBooleanObj(m_interpreter.tcl(), toTcl(expression).get(), &truth));
            return truth != 0;
        },
        error);
}

}  // namespace Tamrix::TclPlugin
