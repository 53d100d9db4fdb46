#include "plugins/tcl/nativecommands.h"

#include <QRegularExpression>
#include <algorithm>
#include <memory>

#include "interpreter/language/directcall.h"
#include "interpreter/language/objectcalls.h"
#include "interpreter/objects/globalfunctions.h"
#include "plugins/tcl/commandbody.h"
#include "plugins/tcl/conversion.h"
#include "plugins/tcl/tclargument.h"
#include "plugins/tcl/tclcontext.h"
#include "plugins/tcl/tclinterpreter.h"
#include "plugins/tcl/valuetype.h"

namespace Tamrix::TclPlugin {

namespace {

/// The name of an option; empty for a word that can't be one. What was calculated is none.
std::string_view optionName(Tcl_Obj* word) {
    if (!word->bytes)
        return {};
    const std::string_view bytes = bytesOf(word);
    const bool isOption = bytes.size() > 1 && bytes.front() == '-' &&
                          (bytes[1] < '0' || bytes[1] > '9') && bytes[1] != '.';
    return isOption ? bytes.substr(1) : std::string_view();
}

QString listed(const QStringList& names) {
    QStringList options;
    for (const QString& name : names)
        options.append("-" + name);
    if (options.size() < 2)
        return options.join(QString());
    const QString last = options.takeLast();
    return options.join(", ") + ", or " + last;
}

struct NativeCommand {
    TclInterpreter& interpreter;
    NativeFunction function;
};

/// Whether the words can go to the function as they stand: none is missing, left out or an option.
bool arePlain(const NativeFunction& function, int count, Tcl_Obj* const* words) {
    const int requiredCount = function.parameters().requiredCount;
    const auto isNull = [words](int index) { return isEmptyText(words[index]); };
    if (!function.areInPlace(count, isNull))
        return false;
    return std::all_of(words + requiredCount, words + count,
                       [](Tcl_Obj* word) { return optionName(word).empty(); });
}

int runNative(void* data, Tcl_Interp* interp, int count, Tcl_Obj* const* words) {
    const auto& command = *static_cast<NativeCommand*>(data);
    TclInterpreter& interpreter = command.interpreter;
    --count;
    ++words;
    if (!interpreter.isScriptThread() || !arePlain(command.function, count, words))
        return callWithWords(interpreter, command.function, {}, {}, count, words);
    // The road of most calls, without a list of arguments that is made for it.
    const auto valueAt = [words](int place) { return TclRef(words[place]); };
    const auto take = [interp](const TclRef& result) { Tcl_SetObjResult(interp, result.get()); };
    return runCommand(interpreter, [&] {
        return callDirectly<TclContext>(interpreter, command.function, count, valueAt, take)
                   ? TCL_OK
                   : interpreter.fail(*interpreter.takeCallFailure());
    });
}

/// The parameters that help tells: "click(object[, x, y][, button])".
QStringList parametersOf(const QString& function) {
    const QString help = globalFunctionHelp(function).section('\n', 0, 0);
    static const QRegularExpression s_name(QStringLiteral("\\w+"));
    QStringList names;
    QRegularExpressionMatchIterator found = s_name.globalMatch(help.section('(', 1));
    while (help.contains('(') && found.hasNext())
        names.append(found.next().captured());
    return names;
}

}  // namespace

Outcome<CallArguments> argumentsOf(TclInterpreter& interpreter, const QStringList& names,
                                   int requiredCount, int count, Tcl_Obj* const* words) {
    CallArguments arguments;
    const auto value = [&](int index) -> SharedPtr<ScriptArgument> {
        return new TclArgument(interpreter, TclRef(words[index]));
    };
    arguments.positional.reserve(static_cast<std::size_t>(count));
    bool takesOptions = true;
    for (int index = 0; index < count; ++index) {
        const std::string_view option =
            takesOptions && index >= requiredCount ? optionName(words[index]) : std::string_view();
        const QString name = option.empty() ? QString() : fromTclBytes(option);
        if (option == "-") {
            takesOptions = false;
        } else if (!option.empty() && names.contains(name)) {
            if (index + 1 == count)
                return fail(FailureKind::BadArgument,
                            QStringLiteral("value for \"-%1\" missing").arg(name));
            arguments.named.emplace_back(name, value(++index));
        } else if (!arguments.named.empty()) {
            return fail(FailureKind::BadArgument,
                        QStringLiteral("bad option \"%1\": must be %2")
                            .arg(textOf(words[index]), listed(names.mid(requiredCount))));
        } else {
            arguments.positional.push_back(value(index));
        }
    }
    return arguments;
}

int callWithWords(TclInterpreter& interpreter, const NativeFunction& function,
                  const SharedPtr<NativeScriptObject>& object, const ScriptArgument::List& first,
                  int count, Tcl_Obj* const* words) {
    return runCommand(interpreter, [&] {
        const Parameters& parameters = function.parameters();
        const auto given = static_cast<int>(first.size());
        Outcome<CallArguments> arguments = argumentsOf(
            interpreter, parameters.names, parameters.requiredCount - given, count, words);
        if (!arguments)
            return interpreter.fail(badArgument(arguments.error().text));
        arguments->positional.insert(arguments->positional.begin(), first.begin(), first.end());
        return interpreter.finish(
            callNative(&interpreter, function, object, std::move(*arguments)));
    });
}

void defineNative(TclInterpreter& interpreter, const QString& name,
                  const NativeFunction& function) {
    interpreter.defineCommand(
        name, runNative, std::make_unique<NativeCommand>(NativeCommand{interpreter, function}));
}

void defineGlobalFunction(TclInterpreter& interpreter, const QString& name) {
    const auto run = [&interpreter, name](int count, Tcl_Obj* const* words) {
        // The first one is the object, or whatever the function is for. Names of the others matter
        // only where a word looks like one.
        const bool hasOptions =
            std::any_of(words + std::min(count, 2), words + count,
                        [](Tcl_Obj* word) { return !optionName(word).empty(); });
        const Outcome<CallArguments> arguments = argumentsOf(
            interpreter, hasOptions ? parametersOf(name) : QStringList(), 1, count - 1, words + 1);
        return arguments ? interpreter.finish(callGlobal(&interpreter, name, *arguments))
                         : interpreter.fail(badArgument(arguments.error().text));
    };
    interpreter.defineCommand(name, run);
}

}  // namespace Tamrix::TclPlugin
