#include "plugins/python/pythoncontext.h"

#include "interpreter/language/stepactions.h"
#include "plugins/python/conditionsource.h"
#include "plugins/python/conversion.h"
#include "plugins/python/nativeclasses.h"
#include "plugins/python/nativefunction.h"
#include "plugins/python/objecttype.h"
#include "plugins/python/pythondebugger.h"
#include "plugins/python/pythoninterpreter.h"
#include "plugins/python/scripterror.h"
#include "plugins/python/valuetypes.h"

namespace Tamrix::PythonPlugin {

namespace {

PyObject* objectOf(const SharedPtr<ScriptArgument>& value) {
    return static_cast<const PythonArgument*>(value.get())->object();
}

SharedPtr<ScriptArgument> argumentOf(PyRef object) {
    return new PythonArgument(std::move(object));
}

/// Where code that was handed over as text is evaluated: in the calling script frame. Locals are
/// seen by expressions, while names that statements define outlast the call in the globals only.
struct Namespaces {
    PyRef globals;
    PyRef locals;
};

Namespaces callingNamespaces(PythonInterpreter& interpreter) {
    PyFrameObject* const frame = PyEval_GetFrame();
    if (!frame)
        return {interpreter.moduleNamespace(), interpreter.moduleNamespace()};
    return {checked(PyFrame_GetGlobals(frame)), checked(PyFrame_GetLocals(frame))};
}

}  // namespace

PythonContext::PythonContext(PythonInterpreter& interpreter)
    : LanguageContext(interpreter), m_interpreter(interpreter) {}

ScriptContext* PythonContext::createSubContext() {
    auto* const context = new PythonContext(m_interpreter);
    context->setTestResult(testResult());
    return context;
}

void PythonContext::clearError() {
    if (m_interpreter.isErrorSet())
        PyErr_Clear();
}

// Values

SharedPtr<ScriptArgument> PythonContext::createNull() {
    return argumentOf(PyRef::borrow(Py_None));
}

SharedPtr<ScriptArgument> PythonContext::createBool(bool value) {
    return argumentOf(PyRef::borrow(value ? Py_True : Py_False));
}

SharedPtr<ScriptArgument> PythonContext::createInteger(int value) {
    return argumentOf(PyRef::steal(PyLong_FromLong(value)));
}

SharedPtr<ScriptArgument> PythonContext::createInt64(long long value) {
    return argumentOf(PyRef::steal(PyLong_FromLongLong(value)));
}

SharedPtr<ScriptArgument> PythonContext::createDouble(double value) {
    return argumentOf(PyRef::steal(PyFloat_FromDouble(value)));
}

SharedPtr<ScriptArgument> PythonContext::createString(const QString& value) {
    return argumentOf(toPyString(value));
}

SharedPtr<ScriptArgument> PythonContext::createDateTime(const QDateTime& value) {
    return argumentOf(toPyDateTime(value));
}

SharedPtr<ScriptArgument> PythonContext::createBytes(const QByteArray& value) {
    return argumentOf(PyRef::steal(PyBytes_FromStringAndSize(value.constData(), value.size())));
}

SharedPtr<ScriptArgument> PythonContext::createList(
    const std::vector<SharedPtr<ScriptArgument>>& values) {
    PyRef list = checked(PyList_New(static_cast<Py_ssize_t>(values.size())));
    for (std::size_t index = 0; index < values.size(); ++index)
        PyList_SET_ITEM(list.get(), static_cast<Py_ssize_t>(index),
                        Py_NewRef(objectOf(values[index])));
    return argumentOf(std::move(list));
}

SharedPtr<ScriptArgument> PythonContext::createMap(
    const std::map<QString, SharedPtr<ScriptArgument>>& values) {
    PyRef dictionary = checked(PyDict_New());
    for (const auto& [name, value] : values) {
        const PyRef key = checked(toPyString(name).release());
        checked(PyDict_SetItem(dictionary.get(), key.get(), objectOf(value)));
    }
    return argumentOf(std::move(dictionary));
}

SharedPtr<ScriptArgument> PythonContext::createNative(SharedPtr<NativeScriptObject> object) {
    return argumentOf(wrapNative(std::move(object)));
}

SharedPtr<ScriptArgument> PythonContext::createObject(SharedPtr<Object> object) {
    return argumentOf(ObjectHolder::wrap(std::move(object)));
}

SharedPtr<ScriptArgument> PythonContext::createTestDataSet(TestDataSet* dataSet) {
    return argumentOf(DataSetHolder::wrap(SharedPtr<TestDataSet>(dataSet)));
}

SharedPtr<ScriptArgument> PythonContext::createContext(SharedPtr<ApplicationContext> context) {
    return argumentOf(ApplicationContextHolder::wrap(std::move(context)));
}

SharedPtr<ScriptArgument> PythonContext::createLocation(const ScriptLocation& location) {
    return argumentOf(wrapLocation(location));
}

// Registration: each entry of the tables becomes a Python name too.

void PythonContext::addGlobalFunction(const QString& name, Function function) {
    ScriptContext::addGlobalFunction(name, function);
    m_interpreter.defineGlobal(name, makeFunction({*this, signatureOfTable({}, name), function}));
}

void PythonContext::addStaticMemberFunction(const QString& className, const QString& name,
                                            Function function) {
    ScriptContext::addStaticMemberFunction(className, name, function);
    m_interpreter.defineInNamespace(
        className, name, makeFunction({*this, signatureOfTable(className, name), function}));
}

void PythonContext::addMemberFunction(const QString& className, const QString& name,
                                      Function function) {
    ScriptContext::addMemberFunction(className, name, function);
    m_interpreter.defineMember(className, name,
                               makeFunction({*this, signatureOfTable(className, name), function}));
}

void PythonContext::addConstant(const QString& name, int value) {
    ScriptContext::addConstant(name, value);
    const PyRef number = checked(PyLong_FromLong(value));
    const QString separator = QStringLiteral("::");
    if (name.contains(separator))
        m_interpreter.defineInNamespace(name.section(separator, 0, 0), name.section(separator, 1),
                                        number);
    else
        m_interpreter.defineGlobal(name, number);
}

// Positions

bool PythonContext::lineInfoOfFrame(LineInfo& position, int ancestorLevel) const {
    SourceFiles& files = m_interpreter.files();
    PyRef frame = innermostFrame(files);
    for (int level = 0; frame && level < ancestorLevel; ++level)
        frame = outerFrame(frame.get(), files);
    if (!frame)
        return false;
    position = LineInfo(files.path(frameFileName(frame.get()).get()), frameLine(frame.get()));
    return true;
}

// The language's own judgement

bool PythonContext::isTrue(SharedPtr<ScriptArgument> value) {
    return value->toBool();
}

QString PythonContext::scriptName(const QString& name) const {
    return pythonName(name);
}

QString PythonContext::explainArgument(const char* parameter) {
    return explainCall(parameter, m_interpreter.files());
}

bool PythonContext::valuesEqual(SharedPtr<ScriptArgument> left, SharedPtr<ScriptArgument> right) {
    const PyRef equal = checked(PyObject_RichCompare(objectOf(left), objectOf(right), Py_EQ));
    const int truth = PyObject_IsTrue(equal.get());
    checked(truth);
    return truth == 1;
}

std::pair<QString, QString> PythonContext::evaluateForException(SharedPtr<ScriptArgument> code) {
    const PythonDebugger::CatchesErrors catching(m_interpreter.debugger());
    PyRef result;
    if (code->isString()) {
        const PyRef compiled =
            m_interpreter.compile(code->toString(), "<test.exception>", Py_file_input);
        // A slip in the code is not the exception that the test is about.
        if (!compiled) {
            if (!isOrdinaryError())
                throw PythonErrorSet();
            return {QString(), "The code is not valid: " + takeScriptError().message};
        }
        const Namespaces names = callingNamespaces(m_interpreter);
        result =
            PyRef::steal(PyEval_EvalCode(compiled.get(), names.globals.get(), names.locals.get()));
    } else if (code->isCallable()) {
        result = PyRef::steal(PyObject_CallNoArgs(objectOf(code)));
    } else {
        return {QString(), "Neither code as text nor a callable: " + code->toString()};
    }
    if (result)
        return {QString(), QStringLiteral("No exception was raised")};
    if (!isOrdinaryError())
        throw PythonErrorSet();
    return {"Raised " + takeScriptError().message, QString()};
}

bool PythonContext::evaluateCondition(const QString& expression, QString* error) {
    PyRef value;
    if (const PyRef code =
            m_interpreter.compile(expression.trimmed(), "<waitFor>", Py_eval_input)) {
        const Namespaces names = callingNamespaces(m_interpreter);
        value = PyRef::steal(PyEval_EvalCode(code.get(), names.globals.get(), names.locals.get()));
    }
    const int truth = value ? PyObject_IsTrue(value.get()) : -1;
    if (truth >= 0)
        return truth == 1;
    if (!isOrdinaryError())
        throw PythonErrorSet();
    *error = takeScriptError().message;
    return false;
}

bool PythonContext::evaluate(const QString& text, const QString& fileName) {
    // What a file registers that is loaded again takes the place of what it did before.
    m_interpreter.steps().registry().forget(fileName);
    PyRef result;
    if (const PyRef code = m_interpreter.compile(text, fileName, Py_file_input)) {
        // What the text defines is to outlast the call.
        const PyRef globals = callingNamespaces(m_interpreter).globals;
        result = PyRef::steal(PyEval_EvalCode(code.get(), globals.get(), globals.get()));
    }
    if (result)
        return true;
    if (!isOrdinaryError())
        throw PythonErrorSet();
    const PythonError error = takeScriptError(&m_interpreter.files());
    QString message = error.message;
    if (!error.callStack.empty())
        message = QStringLiteral("%1:%2: %3")
                      .arg(error.callStack.front().fileName(),
                           QString::number(error.callStack.front().lineNumber()), message);
    setError(message);
    return false;
}

}  // namespace Tamrix::PythonPlugin
