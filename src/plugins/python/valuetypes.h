#pragma once

#include "interpreter/bridge/debuggerframe.h"
#include "interpreter/language/heldrecord.h"
#include "platform/objectmodel/applicationcontext.h"
#include "plugins/python/holder.h"

namespace Tamrix::PythonPlugin {

// Python types of the library's values: tamrix.ApplicationContext, DataSet, Record and Location.
// Scripts get instances from functions and can't make their own.

using ApplicationContextHolder = Holder<ApplicationContext>;
using DataSetHolder = Holder<TestDataSet>;
using RecordHolder = Holder<HeldRecord>;

/// Makes the types and adds them to the module. False with the error indicator set on failure.
bool addValueTypes(PyObject* module);

/// A named tuple of file name and line.
PyRef wrapLocation(const ScriptLocation& location);

}  // namespace Tamrix::PythonPlugin
