#include "plugins/python/nativefunction.h"

#include <QHash>
#include <algorithm>
#include <memory>
#include <string>

#include "interpreter/language/directcall.h"
#include "plugins/python/conversion.h"
#include "plugins/python/nativeclasses.h"
#include "plugins/python/pythoncontext.h"
#include "plugins/python/pythondebugger.h"
#include "plugins/python/pythoninterpreter.h"
#include "plugins/python/scriptcall.h"

namespace Tamrix::PythonPlugin {

namespace {

using Kind = NativeFunction::Kind;

/// What one Python function calls. It lives for the process, as the function object does.
struct Target {
    NativeFunction function;
    std::string name;
    std::string doc;
    PyMethodDef definition;
};

/// The "self" of the function object.
struct TargetObject {
    PyObject_HEAD const Target* target;
};

// Arguments

/// Arguments as the script wrote them: `count` without a name, then those of the names.
CallArguments givenArguments(PyObject* const* arguments, Py_ssize_t count, PyObject* names) {
    CallArguments given;
    given.positional.reserve(static_cast<std::size_t>(count));
    for (Py_ssize_t index = 0; index < count; ++index)
        given.positional.push_back(new PythonArgument(PyRef::borrow(arguments[index])));
    for (Py_ssize_t index = 0; names && index < PyTuple_GET_SIZE(names); ++index)
        given.named.emplace_back(fromPyString(PyTuple_GET_ITEM(names, index)),
                                 new PythonArgument(PyRef::borrow(arguments[count + index])));
    return given;
}

// The call

/// What Python gets of a result: a new reference.
PyObject* givenTo(const PythonArgument* result) {
    return Py_NewRef(result ? result->object() : Py_None);
}

/// The result of the native function, whose exceptions pass; null with the error indicator set when
/// it has failed. `first` is the object or class of the kinds that have one.
template <Kind kind>
PyObject* run(const NativeFunction& function, PythonInterpreter& interpreter, PyObject* first,
              PyObject* const* arguments, Py_ssize_t count, PyObject* names) {
    SharedPtr<NativeScriptObject> object;
    if constexpr (kind == Kind::Method)
        object = NativeHolder::unwrap(first);
    const auto isNone = [=](int index) { return arguments[index] == Py_None; };
    const bool isDirect =
        kind != Kind::Constructor && !names && function.areInPlace(static_cast<int>(count), isNone);
    PyObject* value = nullptr;
    if (isDirect) {
        const auto valueAt = [=](int place) { return PyRef::borrow(arguments[place]); };
        const auto take = [&value](PyRef result) { value = result.release(); };
        const auto call = [&](const auto&... receiver) {
            return callDirectly<PythonContext>(interpreter, function, static_cast<int>(count),
                                               valueAt, take, receiver...);
        };
        bool isDone = false;
        if constexpr (kind == Kind::Method)
            isDone = call(object);
        else
            isDone = call();
        if (!isDone) [[unlikely]]
            setFailure(*interpreter.takeCallFailure());
        return value;
    }
    const ScriptResult result =
        callNative(&interpreter, function, object, givenArguments(arguments, count, names));
    if (!result)
        setFailure(result.error());
    else if constexpr (kind == Kind::Constructor)
        // Of the class that is called, which a script may have derived.
        value = NativeHolder::wrap(NativeHolder::unwrap(pythonValue(*result).get()),
                                   reinterpret_cast<PyTypeObject*>(first))
                    .release();
    else
        value = givenTo(static_cast<const PythonArgument*>(result->get()));
    return value;
}

constexpr bool hasFirst(Kind kind) {
    return kind != Kind::Table && kind != Kind::Native;
}

/// Whether the first Python argument is what the kind needs; otherwise a TypeError is set.
bool checkFirst(const Target& target, PyObject* const* arguments, Py_ssize_t count) {
    const bool given = count > 0;
    switch (target.function.kind()) {
        case Kind::Method:
            if (given && NativeHolder::check(arguments[0]))
                return true;
            break;
        case Kind::Constructor:
            if (given && !target.function.canConstruct()) {
                PyErr_Format(PyExc_TypeError, "%s objects can't be made by scripts",
                             target.name.c_str());
                return false;
            }
            if (given && PyType_Check(arguments[0]) &&
                PyType_IsSubtype(reinterpret_cast<PyTypeObject*>(arguments[0]),
                                 NativeHolder::s_type))
                return true;
            break;
        default:
            if (given)
                return true;
    }
    PyErr_Format(PyExc_TypeError, "%s needs an object of its class as first argument",
                 target.name.c_str());
    return false;
}

/// Null with the error indicator set when the call was refused or has failed.
template <Kind kind>
PyObject* tryTarget(const Target& target, PythonInterpreter& interpreter,
                    PyObject* const* arguments, Py_ssize_t count, PyObject* names) {
    PyObject* first = nullptr;
    if constexpr (hasFirst(kind)) {
        if (!checkFirst(target, arguments, count))
            return nullptr;
        first = *arguments++;
        --count;
    }
    try {
        return run<kind>(target.function, interpreter, first, arguments, count, names);
    } catch (const PythonErrorSet&) {
        // The script gets the exception that is set.
    }
    return nullptr;
}

template <Kind kind>
PyObject* callTarget(PyObject* self, PyObject* const* arguments, Py_ssize_t count,
                     PyObject* names) {
    const Target& target = *reinterpret_cast<TargetObject*>(self)->target;
    PythonInterpreter* const interpreter = PythonInterpreter::active();
    if (!interpreter || !interpreter->isScriptThread()) {
        raiseFailure(refusedCall(target.function.displayName(), interpreter != nullptr));
        return nullptr;
    }
    PyObject* const result = tryTarget<kind>(target, *interpreter, arguments, count, names);
    if (!result)
        interpreter->debugger().errorRaised();
    return result;
}

using Entry = PyObject* (*)(PyObject*, PyObject* const*, Py_ssize_t, PyObject*);

/// The C function behind a Python function; one for each kind, since every call goes through it.
Entry entryOf(Kind kind) {
    switch (kind) {
        case Kind::Table:
            return callTarget<Kind::Table>;
        case Kind::Native:
            return callTarget<Kind::Native>;
        case Kind::StaticAccessor:
            return callTarget<Kind::StaticAccessor>;
        case Kind::Method:
            return callTarget<Kind::Method>;
        case Kind::Constructor:
            break;
    }
    return callTarget<Kind::Constructor>;
}

// Function objects

PyTypeObject* targetType() {
    static PyTypeObject* s_type = nullptr;
    if (!s_type) {
        PyType_Slot slots[] = {{Py_tp_doc, const_cast<char*>("A function of the test system")},
                               {0, nullptr}};
        PyType_Spec definition{"tamrix.NativeFunction", sizeof(TargetObject), 0,
                               Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION, slots};
        s_type = reinterpret_cast<PyTypeObject*>(PyType_FromSpec(&definition));
    }
    return s_type;
}

/// The text from which Python makes signature and help.
std::string docText(const NativeSignature& signature, Kind kind) {
    QStringList parameters;
    if (kind == Kind::Method)
        parameters.append("$self");
    for (const QString& name : signature.required)
        parameters.append(pythonName(name));
    for (const QString& name : signature.optional)
        parameters.append(pythonName(name) + "=None");
    return QStringLiteral("%1(%2)\n--\n\n%3")
        .arg(pythonName(signature.name), parameters.join(", "), signature.description)
        .toStdString();
}

/// All targets, by what makes them different.
QHash<QString, PyRef>& functionObjects() {
    static auto* const s_instance = new QHash<QString, PyRef>;
    return *s_instance;
}

}  // namespace

QString pythonName(const QString& name) {
    static const QStringList s_keywords = [] {
        QStringList found;
        const PyRef module = checked(PyImport_ImportModule("keyword"));
        const PyRef list = checked(PyObject_GetAttrString(module.get(), "kwlist"));
        for (Py_ssize_t index = 0; index < PyList_Size(list.get()); ++index)
            found.append(fromPyString(PyList_GET_ITEM(list.get(), index)));
        return found;
    }();
    return s_keywords.contains(name) ? name + '_' : name;
}

bool isNativeFunction(PyObject* object) {
    return PyCFunction_Check(object) && PyCFunction_GET_SELF(object) &&
           Py_IS_TYPE(PyCFunction_GET_SELF(object), targetType());
}

PyRef makeFunction(const NativeFunction& function) {
    const NativeSignature& signature = function.signature();
    const QString key =
        QStringLiteral("%1::%2/%3/%4")
            .arg(signature.owner, signature.name, QString::number(int(function.kind())),
                 QString::number(reinterpret_cast<quintptr>(function.address())));
    const auto known = functionObjects().constFind(key);
    if (known != functionObjects().constEnd())
        return *known;

    auto target = std::make_unique<Target>(Target{function, {}, {}, {}});
    target->name = pythonName(signature.name).toStdString();
    target->doc = docText(signature, function.kind());
    target->definition = {
        target->name.c_str(),
        reinterpret_cast<PyCFunction>(reinterpret_cast<void*>(entryOf(function.kind()))),
        METH_FASTCALL | METH_KEYWORDS, target->doc.c_str()};

    PyTypeObject* const type = targetType();
    const PyRef self = checked(type ? type->tp_alloc(type, 0) : nullptr);
    const PyRef module = checkedReference(
        toPyString(signature.owner.isEmpty() ? QStringLiteral("builtins") : signature.owner));
    reinterpret_cast<TargetObject*>(self.get())->target = target.get();
    const PyRef made = checked(PyCFunction_NewEx(&target->definition, self.get(), module.get()));
    functionObjects().insert(key, made);
    static_cast<void>(target.release());  // the function object lives for the process
    return made;
}

}  // namespace Tamrix::PythonPlugin
