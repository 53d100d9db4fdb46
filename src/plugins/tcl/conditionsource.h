#pragma once

#include <QString>

namespace Tamrix::TclPlugin {

class TclInterpreter;

/// What the running verdict says in its script: the source of its condition, and below it, a line
/// each, the values in it:
///
///     [$field text] eq $wanted && [llength $rows] > 2
///     [$field text]: a
///     $wanted: b
///     [llength $rows]: 2
///
/// They are looked up once more: variables, properties of an application's objects, and what some
/// of Tcl's own commands tell of their arguments; nothing else is called a second time. Empty when
/// there is nothing to tell, as of a plain constant.
QString explainCondition(TclInterpreter& interpreter);

}  // namespace Tamrix::TclPlugin
