#pragma once

#include <QString>

#include "interpreter/bridge/nativescripttype.h"
#include "interpreter/bridge/scriptcontext.h"
#include "plugins/python/holder.h"

namespace Tamrix::PythonPlugin {

/// Base of all Python classes that are made from native ones.
using NativeHolder = Holder<NativeScriptObject>;

/// Makes the base class and adds it to the module `tamrix` as NativeObject. Throws PythonErrorSet.
void addNativeBase(PyObject* module);

/// A Python class from the description of a native one; it derives from the class that was made
/// from the description's base class. Throws PythonErrorSet.
PyRef makeNativeClass(const ScriptContext& context, const QString& name, void* typeId,
                      const NativeScriptType& type);

/// A Python object that holds the native one, of the class made for its type or for the next base
/// class that has one.
PyRef wrapNative(SharedPtr<NativeScriptObject> object);

}  // namespace Tamrix::PythonPlugin
