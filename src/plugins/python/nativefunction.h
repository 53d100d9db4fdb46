#pragma once

#include <QString>
#include <QStringList>

#include "interpreter/bridge/nativescripttype.h"
#include "interpreter/bridge/scriptcontext.h"
#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// What a native function is called by and with: the name for messages, parameter names, help text.
struct NativeSignature {
    /// The name in its namespace or class, "pass" also where scripts write "pass_".
    QString name;
    /// The namespace or class; empty for a global function.
    QString owner;
    QStringList required;
    QStringList optional;
    QString description;
};

/// The name as scripts write it: a keyword of Python gets an underscore behind it.
QString pythonName(const QString& name);

/// Whether the object is a function that one of the following made.
bool isNativeFunction(PyObject* object);

// Python functions over native ones. A function object lives for the process: making it a second
// time for the same owner, name and native function gives the same object. Null with the error
// indicator set on failure.

/// A function of the tables.
PyRef makeFunction(const NativeSignature& signature, ScriptContext::Function function);
/// A function of the native interface or a static method.
PyRef makeFunction(const NativeSignature& signature, bool (*function)(ScriptContext*));
/// The accessor of a static property: the first Python argument is the class and is not among the
/// arguments of the context.
PyRef makeStaticAccessor(const NativeSignature& signature, bool (*function)(ScriptContext*));
/// A method of a native class or the accessor of a property: the first Python argument is the
/// object and is not among the arguments of the context.
PyRef makeMethod(const NativeSignature& signature, NativeScriptType::MethodFunction function);
/// `__new__` of a native class: the first Python argument is the class. A null constructor refuses.
PyRef makeConstructor(const NativeSignature& signature, NativeScriptType::Constructor constructor);

}  // namespace Tamrix::PythonPlugin
