#include "plugins/javascript/javascriptcontext.h"

#include <js/Array.h>

#include "interpreter/bridge/debugger.h"
#include "interpreter/language/stepactions.h"
#include "plugins/javascript/debuggerrealm.h"
#include "plugins/javascript/errors.h"
#include "plugins/javascript/hostobjects.h"
#include "plugins/javascript/javascriptdebugger.h"
#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/javascriptvariables.h"
#include "plugins/javascript/objectproxy.h"
#include "plugins/javascript/scriptrealm.h"
#include "plugins/javascript/values.h"

namespace Tamrix::JavaScriptPlugin {

JavaScriptContext::JavaScriptContext(JavaScriptInterpreter& interpreter)
    : LanguageContext(interpreter), m_interpreter(interpreter) {}

ScriptContext* JavaScriptContext::createSubContext() {
    auto* const context = new JavaScriptContext(m_interpreter);
    context->setTestResult(testResult());
    return context;
}

// Values

SharedPtr<ScriptArgument> JavaScriptContext::createNull() {
    return argumentOf(JS::NullValue());
}

SharedPtr<ScriptArgument> JavaScriptContext::createBool(bool value) {
    return argumentOf(JS::BooleanValue(value));
}

SharedPtr<ScriptArgument> JavaScriptContext::createInteger(int value) {
    return argumentOf(JS::Int32Value(value));
}

SharedPtr<ScriptArgument> JavaScriptContext::createInt64(long long value) {
    return argumentOf(toJsInteger(value));
}

SharedPtr<ScriptArgument> JavaScriptContext::createDouble(double value) {
    return argumentOf(JS::NumberValue(value));
}

SharedPtr<ScriptArgument> JavaScriptContext::createString(const QString& value) {
    return argumentOf(toJsText(value));
}

SharedPtr<ScriptArgument> JavaScriptContext::createDateTime(const QDateTime& value) {
    return argumentOf(toJsDate(value));
}

SharedPtr<ScriptArgument> JavaScriptContext::createBytes(const QByteArray& value) {
    return argumentOf(toJsBytes(value));
}

SharedPtr<ScriptArgument> JavaScriptContext::createList(
    const std::vector<SharedPtr<ScriptArgument>>& values) {
    JS::RootedValueVector elements(engineContext());
    for (const SharedPtr<ScriptArgument>& value : values)
        checked(elements.append(valueOf(value)));
    return argumentOf(JS::ObjectValue(*checked(JS::NewArrayObject(engineContext(), elements))));
}

SharedPtr<ScriptArgument> JavaScriptContext::createMap(
    const std::map<QString, SharedPtr<ScriptArgument>>& values) {
    JS::RootedObject object(engineContext(), checked(JS_NewPlainObject(engineContext())));
    for (const auto& [name, value] : values)
        defineProperty(object, name, valueOf(value));
    return argumentOf(JS::ObjectValue(*object));
}

SharedPtr<ScriptArgument> JavaScriptContext::createNative(SharedPtr<NativeScriptObject> object) {
    return argumentOf(m_interpreter.nativeValue(std::move(object)));
}

SharedPtr<ScriptArgument> JavaScriptContext::createObject(SharedPtr<Object> object) {
    return argumentOf(applicationObjectValue(object));
}

SharedPtr<ScriptArgument> JavaScriptContext::createTestDataSet(TestDataSet* dataSet) {
    return argumentOf(dataSetValue(SharedPtr<TestDataSet>(dataSet)));
}

SharedPtr<ScriptArgument> JavaScriptContext::createContext(
    SharedPtr<ApplicationContext> application) {
    // One object for each application, so that `===` tells whether two are the same.
    JS::PersistentRootedObject& known = m_interpreter.realm().contextObject(application->id);
    if (!known) {
        JS::RootedObject prototype(engineContext(),
                                   m_interpreter.realm().applicationContextPrototype());
        known = makeHostObject(std::move(application), prototype);
    }
    return argumentOf(JS::ObjectValue(*known));
}

SharedPtr<ScriptArgument> JavaScriptContext::createLocation(const ScriptLocation& location) {
    JS::RootedObject object(engineContext(), checked(JS_NewPlainObject(engineContext())));
    defineProperty(object, "fileName", toJsText(location.fileName));
    defineProperty(object, "line", JS::Int32Value(location.line));
    return argumentOf(JS::ObjectValue(*object));
}

// Registration

void JavaScriptContext::addGlobalFunction(const QString& name, Function function) {
    ScriptContext::addGlobalFunction(name, function);
    m_interpreter.define(NativeFunction(*this, signatureOfTable({}, name), function));
}

void JavaScriptContext::addStaticMemberFunction(const QString& className, const QString& name,
                                                Function function) {
    ScriptContext::addStaticMemberFunction(className, name, function);
    m_interpreter.define(NativeFunction(*this, signatureOfTable(className, name), function));
}

void JavaScriptContext::addMemberFunction(const QString& className, const QString& name,
                                          Function function) {
    ScriptContext::addMemberFunction(className, name, function);
    m_interpreter.defineMember(NativeFunction(*this, signatureOfTable(className, name), function));
}

void JavaScriptContext::addConstant(const QString& name, int value) {
    ScriptContext::addConstant(name, value);
    m_interpreter.defineConstant(name, value);
}

// Positions

bool JavaScriptContext::lineInfoOfFrame(LineInfo& position, int ancestorLevel) const {
    JSContext* const context = engineContext();
    JS::AutoFilename file;
    unsigned line = 0;
    if (ancestorLevel == 0 && JS::DescribeScriptedCaller(context, &file, &line) && file.get()) {
        const LineInfo place = placeOfCode(QString::fromUtf8(file.get()), static_cast<int>(line));
        if (place.isValid()) {
            position = place;
            return true;
        }
    }
    const std::vector<LineInfo> lines = runningLines();
    if (ancestorLevel >= static_cast<int>(lines.size()))
        return false;
    position = lines[static_cast<std::size_t>(ancestorLevel)];
    return true;
}

// The language's own judgement

QString JavaScriptContext::explainArgument(const char* /*parameter*/) {
    QStringList lines;
    JavaScriptValueTexts texts;
    try {
        for (const DebuggerRealm::Variable& each : DebuggerRealm::self().explainCaller())
            lines += lines.isEmpty() ? each.name : each.name + ": " + texts.textOf(each.value);
    } catch (const ScriptErrorSet&) {
        if (isEndOfScript())
            throw;
        clearException();
    }
    return lines.join('\n');
}

bool JavaScriptContext::valuesEqual(SharedPtr<ScriptArgument> left,
                                    SharedPtr<ScriptArgument> right) {
    return areEqual(valueOf(left), valueOf(right));
}

std::pair<QString, QString> JavaScriptContext::evaluateForException(
    SharedPtr<ScriptArgument> code) {
    if (!code->isString() && !code->isCallable())
        return {QString(), "Neither code as text nor a callable: " + code->toString()};
    const JavaScriptDebugger::CatchesErrors catching(m_interpreter.javaScriptDebugger());
    try {
        if (code->isString()) {
            // A slip in the code is not the exception that the test is about.
            const QString slip = m_interpreter.syntaxError(code->toString());
            if (!slip.isEmpty())
                return {QString(), "The code is not valid: " + slip};
            DebuggerRealm::self().evaluateInCaller(code->toString(), "<test.exception>");
        } else {
            JS::RootedValue result(engineContext());
            checked(JS::Call(engineContext(), JS::UndefinedHandleValue, valueOf(code),
                             JS::HandleValueArray::empty(), &result));
            settled(&result);
        }
        return {QString(), QStringLiteral("No exception was raised")};
    } catch (const ScriptErrorSet&) {
        if (isEndOfScript())
            throw;
    }
    return {"Raised " + takeErrorText(), QString()};
}

bool JavaScriptContext::evaluateCondition(const QString& expression, QString* error) {
    try {
        JS::RootedValue value(engineContext(),
                              DebuggerRealm::self().evaluateInCaller(
                                  '(' + expression.trimmed() + "\n)", "<waitFor>"));
        return JavaScriptArgument(value).toBool();
    } catch (const ScriptErrorSet&) {
        if (isEndOfScript())
            throw;
    }
    *error = takeErrorText();
    return false;
}

bool JavaScriptContext::evaluate(const QString& text, const QString& fileName) {
    // What a file registers that is loaded again takes the place of what it did before.
    m_interpreter.steps().registry().forget(fileName);
    try {
        m_interpreter.runText(text, fileName, JavaScriptInterpreter::Exports::BecomeGlobals);
        return true;
    } catch (const ScriptErrorSet&) {
        if (isEndOfScript())
            throw;
    }
    const ScriptError error = takeScriptError();
    QString message = error.message;
    if (!error.callStack.empty())
        message = QStringLiteral("%1:%2: %3")
                      .arg(error.callStack.front().fileName(),
                           QString::number(error.callStack.front().lineNumber()), message);
    setError(message);
    return false;
}

}  // namespace Tamrix::JavaScriptPlugin
