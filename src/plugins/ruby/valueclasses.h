#pragma once

#include "interpreter/bridge/debuggerframe.h"
#include "platform/objectmodel/applicationcontext.h"
#include "platform/testresult/lineinfo.h"
#include "plugins/ruby/holder.h"
#include "shared/testdata/testdataset.h"

namespace Tamrix::RubyPlugin {

// Ruby classes of the library's values: Tamrix::ApplicationContext, DataSet, Record and Location.
// Scripts get objects from functions and can't make their own. What needs no C++ of them stands in
// prelude/values.rb.

void defineValueClasses(VALUE module);

VALUE wrapContext(const SharedPtr<ApplicationContext>& context);
VALUE wrapDataSet(const SharedPtr<TestDataSet>& set);
/// A row of a data set; it keeps the set alive.
VALUE wrapRecord(const SharedPtr<TestDataSet>& set, const TestDataRecord* record);
/// A Struct of file_name and line.
VALUE wrapLocation(const ScriptLocation& location);

/// The Ruby class that stands for a class of the library with member functions; nil for another.
VALUE classOfMembers(const QString& className);

}  // namespace Tamrix::RubyPlugin
