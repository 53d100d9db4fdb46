#include "plugins/tcl/tclsteps.h"

#include <functional>

#include "interpreter/language/languagecontext.h"
#include "platform/gherkin/expressions/expressionerror.h"
#include "plugins/tcl/commandbody.h"
#include "plugins/tcl/conversion.h"
#include "plugins/tcl/nativecommands.h"
#include "plugins/tcl/tclargument.h"

namespace Tamrix::TclPlugin {

namespace {

const QString contextName = QStringLiteral("::bdd::context");

struct StepCommand {
    TclInterpreter& interpreter;
    const HookKind* hook = nullptr;
};

/// Makes a procedure of parameters and body, so that the body knows its lines: these are where the
/// words are that `proc` has there, too.
SharedPtr<ScriptArgument> makeProcedure(TclInterpreter& interpreter, Tcl_Obj* const* words) {
    static int s_count = 0;
    const QString name = QStringLiteral("::bdd::procedure%1").arg(++s_count);
    const TclRef command = toTcl(QStringLiteral("::proc"));
    const TclRef procedure = toTcl(name);
    Tcl_Obj* const definition[] = {command.get(), procedure.get(), words[2], words[3]};
    interpreter.check(Tcl_EvalObjv(interpreter.tcl(), 4, definition, 0));
    return new TclArgument(interpreter, procedure);
}

/// Runs `work` as the body of a command; what an expression is refused for is its error.
int registering(TclInterpreter& interpreter, const std::function<void(StepActions&)>& work) {
    return runCommand(interpreter, [&] {
        try {
            work(interpreter.steps());
            return interpreter.finish(SharedPtr<ScriptArgument>());
        } catch (const Gherkin::ExpressionError& error) {
            return interpreter.fail(badArgument(QString::fromUtf8(error.what())));
        }
    });
}

/// Whether an expression is a regular one, "/.../"; takes the marks away.
bool takeRegularMarks(std::string* expression) {
    if (expression->size() < 2 || expression->front() != '/' || expression->back() != '/')
        return false;
    *expression = expression->substr(1, expression->size() - 2);
    return true;
}

int registerStep(void* data, Tcl_Interp*, int count, Tcl_Obj* const* words) {
    TclInterpreter& interpreter = static_cast<StepCommand*>(data)->interpreter;
    if (count != 4)
        return wrongWords(interpreter, textOf(words[0]) + " expression parameters body");
    return registering(interpreter, [&](StepActions& steps) {
        std::string expression = textOf(words[1]).toStdString();
        const bool isRegular = takeRegularMarks(&expression);
        steps.addStep(expression, isRegular, makeProcedure(interpreter, words));
    });
}

int registerHook(void* data, Tcl_Interp*, int count, Tcl_Obj* const* words) {
    const auto& command = *static_cast<StepCommand*>(data);
    TclInterpreter& interpreter = command.interpreter;
    if (count != 4)
        return wrongWords(interpreter, textOf(words[0]) + " tags parameters body");
    return registering(interpreter, [&](StepActions& steps) {
        steps.addHook(*command.hook, textOf(words[1]).toStdString(),
                      makeProcedure(interpreter, words));
    });
}

int registerParameterType(void* data, Tcl_Interp*, int count, Tcl_Obj* const* words) {
    TclInterpreter& interpreter = static_cast<StepCommand*>(data)->interpreter;
    if (count != 3 && count != 4)
        return wrongWords(interpreter, "bdd::parameter_type name pattern ?transformer?");
    return registering(interpreter, [&](StepActions& steps) {
        const SharedPtr<ScriptArgument> transformer(
            count == 4 ? new TclArgument(interpreter, TclRef(words[3])) : nullptr);
        steps.registry().addParameterType(textOf(words[1]).toStdString(),
                                          {textOf(words[2]).toStdString()}, transformer);
    });
}

/// What steps keep for each other.
int useContext(void* data, Tcl_Interp*, int count, Tcl_Obj* const* words) {
    TclInterpreter& interpreter = static_cast<StepCommand*>(data)->interpreter;
    const QString usage =
        QStringLiteral("context get name | set name value | unset name | exists name | names");
    if (count < 2)
        return wrongWords(interpreter, usage);
    StepScopes& scopes = interpreter.steps().scopes();
    const QString action = textOf(words[1]);
    const QString name = count > 2 ? textOf(words[2]) : QString();
    ScriptContext& context = interpreter.context();
    if (action == QLatin1String("set") && count == 4) {
        const SharedPtr<ScriptArgument> value(new TclArgument(interpreter, TclRef(words[3])));
        scopes.set(name, value);
        return interpreter.finish(value);
    }
    if (action == QLatin1String("names") && count == 2) {
        ScriptArgument::List names;
        for (const auto& entry : scopes.all())
            names.push_back(context.createString(entry.first));
        return interpreter.finish(context.createList(names));
    }
    if (action == QLatin1String("exists") && count == 3)
        return interpreter.finish(context.createBool(bool(scopes.find(name))));
    if (action == QLatin1String("get") && count == 3) {
        if (const SharedPtr<ScriptArgument> value = scopes.find(name))
            return interpreter.finish(value);
        return interpreter.fail(noSuch("value", name, QStringLiteral("The context"), {}));
    }
    if (action == QLatin1String("unset") && count == 3) {
        if (scopes.remove(name))
            return interpreter.finish(SharedPtr<ScriptArgument>());
        return interpreter.fail(noSuch("value", name, QStringLiteral("The context"), {}));
    }
    return wrongWords(interpreter, usage);
}

constexpr struct {
    const char* name;
    Tcl_ObjCmdProc* command;
} commands[] = {
    {"given", registerStep},
    {"when", registerStep},
    {"then", registerStep},
    {"step", registerStep},
    {"parameter_type", registerParameterType},
    {"context", useContext},
};

}  // namespace

void defineStepCommands(TclInterpreter& interpreter) {
    const auto define = [&](const char* name, Tcl_ObjCmdProc* command, const HookKind* hook) {
        interpreter.defineCommand(QStringLiteral("bdd::") + QLatin1String(name), command,
                                  std::make_unique<StepCommand>(StepCommand{interpreter, hook}));
    };
    for (const auto& row : commands)
        define(row.name, row.command, nullptr);
    for (const HookKind& hook : hookKinds)
        define(hook.name, registerHook, &hook);
}

TclSteps::TclSteps(TclInterpreter& interpreter) : StepLanguage(interpreter), m_tcl(interpreter) {}

std::optional<ScriptError> TclSteps::loadFile(const QString& path, const QString& text) {
    return m_tcl.attempt([&] { m_tcl.runFile(text, path); });
}

StepLanguage::Value TclSteps::contextValue() {
    return m_tcl.context().createString(contextName);
}

StepLanguage::Value TclSteps::tableValue(const Value& rows) {
    m_tcl.steps().scopes().set("headers", rows->toList().front());
    m_tcl.steps().scopes().set("raw", rows);
    return new TclArgument(m_tcl, m_tcl.callPrelude({"rowsOf"}, valueOf(rows)));
}

StepLanguage::Value TclSteps::bigInteger(const QString& text) {
    // Tcl's integers have no limit.
    return new TclArgument(m_tcl, toTcl(text));
}

StepLanguage::Value TclSteps::bigDecimal(const QString& text) {
    // A text keeps all digits until something is calculated with it.
    return new TclArgument(m_tcl, toTcl(text));
}

QString TclSteps::snippetText(const StepSnippet& snippet) {
    const TclRef expression = toTcl(QStringList(snippet.expression));
    const QStringList parameters = QStringList("context") + snippet.parameters;
    return QStringLiteral("bdd::%1 %2 {%3} {\n    bdd::pending\n}\n")
        .arg(snippet.keyword, textOf(expression.get()), parameters.join(QLatin1Char(' ')));
}

}  // namespace Tamrix::TclPlugin
