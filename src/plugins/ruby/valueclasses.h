#pragma once

#include "interpreter/bridge/debuggerframe.h"
#include "interpreter/language/heldrecord.h"
#include "platform/objectmodel/applicationcontext.h"
#include "platform/testresult/lineinfo.h"
#include "plugins/ruby/holder.h"

namespace Tamrix::RubyPlugin {

// Ruby classes of the library's values: Tamrix::ApplicationContext, DataSet, Record and Location.
// Scripts get objects from functions and can't make their own. Their methods stand in
// prelude/values.rb.

void defineValueClasses(VALUE module);

VALUE wrapContext(const SharedPtr<ApplicationContext>& context);
VALUE wrapDataSet(const SharedPtr<TestDataSet>& set);
VALUE wrapRecord(const SharedPtr<HeldRecord>& record);
/// A Struct of file_name and line.
VALUE wrapLocation(const ScriptLocation& location);

}  // namespace Tamrix::RubyPlugin
