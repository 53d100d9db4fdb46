#include "plugins/tcl/heldvalues.h"

#include "base/overloaded.h"
#include "interpreter/language/objectcalls.h"
#include "plugins/tcl/commandbody.h"
#include "plugins/tcl/conversion.h"
#include "plugins/tcl/nativeclasses.h"
#include "plugins/tcl/nativecommands.h"
#include "plugins/tcl/tclargument.h"

namespace Tamrix::TclPlugin {

namespace {

int callObject(TclInterpreter& interpreter, const SharedPtr<Object>& object, int count,
               Tcl_Obj* const* words) {
    const auto read = [&](const QString& name) {
        return interpreter.finish(getProperty(&interpreter, object, name));
    };
    const auto write = [&](const QString& name, Tcl_Obj* value) {
        const auto written =
            setMember(&interpreter, object, name, new TclArgument(interpreter, TclRef(value)));
        return written ? interpreter.finish(SharedPtr<ScriptArgument>())
                       : interpreter.fail(written.error());
    };
    if (const auto code =
            useOptions(interpreter, object->className(), "property", count, words, read, write))
        return *code;
    CallArguments arguments;
    for (int index = 1; index < count; ++index)
        arguments.positional.push_back(new TclArgument(interpreter, TclRef(words[index])));
    return interpreter.finish(callMember(&interpreter, object, textOf(words[0]), arguments));
}

}  // namespace

int runHeldCommand(void* data, Tcl_Interp*, int count, Tcl_Obj* const* words) {
    const auto& held = *static_cast<HeldValues::Held*>(data);
    TclInterpreter& interpreter = held.owner->interpreter();
    // What is called may delete the command.
    const HeldValues::Value value = held.value;
    if (count < 2)
        return wrongWords(interpreter,
                          interpreter.values().classNameOf(value) + " method ?arg ...?");
    const int rest = count - 1;
    Tcl_Obj* const* const behind = words + 1;
    return runCommand(interpreter, [&] {
        return std::visit(
            Overloaded{[&](const SharedPtr<Object>& object) {
                           return callObject(interpreter, object, rest, behind);
                       },
                       [&](const SharedPtr<NativeScriptObject>& object) {
                           return interpreter.classes().callMethod(object, rest, behind);
                       },
                       [&](const SharedPtr<ApplicationContext>& context) {
                           return interpreter.classes().callMember(context, rest, behind);
                       },
                       [&](const SharedPtr<TestDataSet>&) {
                           return interpreter.fail(noSuch("subcommand", textOf(behind[0]),
                                                          QStringLiteral("DataSet"), {}));
                       }},
            value);
    });
}

}  // namespace Tamrix::TclPlugin
