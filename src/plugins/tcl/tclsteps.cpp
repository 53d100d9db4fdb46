#include "plugins/tcl/tclsteps.h"

#include <functional>
#include <string>

#include "interpreter/language/languagecontext.h"
#include "platform/gherkin/expressions/expressionerror.h"
#include "plugins/tcl/commandbody.h"
#include "plugins/tcl/conversion.h"
#include "plugins/tcl/tclargument.h"

namespace Tamrix::TclPlugin {

namespace {

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

using Registration =
    std::function<void(const std::string& text, const SharedPtr<ScriptArgument>& procedure)>;

/// Defines `bdd::NAME TEXT parameters body`. What the text is refused for is the command's error.
void defineRegistration(TclInterpreter& interpreter, const char* name, const char* textName,
                        const Registration& work) {
    const auto run = [&interpreter, textName, work](int count, Tcl_Obj* const* words) {
        if (count != 4)
            return wrongWords(interpreter, QStringLiteral("%1 %2 parameters body")
                                               .arg(textOf(words[0]), QLatin1String(textName)));
        try {
            work(textOf(words[1]).toStdString(), makeProcedure(interpreter, words));
        } catch (const Gherkin::ExpressionError& error) {
            return interpreter.fail(badArgument(QString::fromUtf8(error.what())));
        }
        return interpreter.finish(SharedPtr<ScriptArgument>());
    };
    interpreter.defineCommand(QStringLiteral("bdd::") + QLatin1String(name), run);
}

}  // namespace

void defineStepCommands(TclInterpreter& interpreter) {
    for (const char* const name : {"given", "when", "then", "step"}) {
        defineRegistration(
            interpreter, name, "expression", [&](const auto& text, const auto& procedure) {
                // Between two "/" is a regular one.
                const bool isPattern =
                    text.size() >= 2 && text.front() == '/' && text.back() == '/';
                interpreter.steps().addStep(isPattern ? text.substr(1, text.size() - 2) : text,
                                            isPattern, procedure);
            });
    }
    for (const HookKind& hook : hookKinds) {
        defineRegistration(interpreter, hook.name, "tags",
                           [&](const auto& tags, const auto& procedure) {
                               interpreter.steps().addHook(hook, tags, procedure);
                           });
    }
}

TclSteps::TclSteps(TclInterpreter& interpreter) : StepLanguage(interpreter), m_tcl(interpreter) {}

StepLanguage::Value TclSteps::contextValue() {
    return m_tcl.context().createString(QStringLiteral("::bdd::context"));
}

StepLanguage::Value TclSteps::tableValue(const Value& rows) {
    return new TclArgument(m_tcl, m_tcl.callPrelude({"rowsOf"}, valueOf(rows)));
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
