#pragma once

#include "interpreter/language/heldrecord.h"
#include "platform/objectmodel/applicationcontext.h"
#include "plugins/python/holder.h"

namespace Tamrix::PythonPlugin {

// Python types of the library's values: tamrix.ApplicationContext, DataSet and Record. Scripts get
// instances from functions and can't make their own.

using ApplicationContextHolder = Holder<ApplicationContext>;
using DataSetHolder = Holder<TestDataSet>;
using RecordHolder = Holder<HeldRecord>;

/// Makes the types and adds them to the module. Throws PythonErrorSet.
void addValueTypes(PyObject* module);

}  // namespace Tamrix::PythonPlugin
