#include "plugins/ruby/rubyinterpreter.h"

#include <atomic>

#include "plugins/ruby/conversion.h"
#include "plugins/ruby/frames.h"
#include "plugins/ruby/holder.h"
#include "plugins/ruby/nativeclasses.h"
#include "plugins/ruby/nativefunctions.h"
#include "plugins/ruby/protection.h"
#include "plugins/ruby/rubydebugger.h"
#include "plugins/ruby/rubyoutput.h"
#include "plugins/ruby/rubyruntime.h"
#include "plugins/ruby/rubysteps.h"
#include "plugins/ruby/scripterrors.h"

namespace Tamrix::RubyPlugin {

namespace {

/// Stands for the file of code that has none.
const QString noFile = QStringLiteral("(init script)");

std::atomic<bool> s_isEvaluationOver{false};

VALUE isEvaluationOver(VALUE, VALUE, int, const VALUE*, VALUE) {
    return s_isEvaluationOver ? Qtrue : Qfalse;
}

/// A method of the top level as an object; null without one. What every object has is none of the
/// script's.
SharedPtr<ScriptArgument> topLevelMethod(const QString& name, bool isOfScript) {
    const VALUE text = toRuby(name);
    const VALUE main = RubyRuntime::self().main();
    const VALUE symbol = protect([=] { return rb_str_intern(text); });
    const auto has = [&](const char* question) {
        return RTEST(callMethod(rb_cObject, question, symbol, isOfScript ? Qfalse : Qtrue));
    };
    if (!has("method_defined?") && !has("private_method_defined?"))
        return {};
    const VALUE method = protect([=] { return rb_obj_method(main, symbol); });
    return new RubyArgument(method);
}

}  // namespace

RubyInterpreter::RubyInterpreter(RunnerInterface* runner) : LanguageInterpreter(runner, Ruby) {
    RubyRuntime::self();
    m_context = std::make_unique<RubyContext>(*this);
    m_debugger = std::make_unique<RubyDebugger>(*this);
    setDebugger(m_debugger.get());
    try {
        installOutput();
        m_context->defineValueMembers();
        m_context->defineStepMembers();
        begin(*m_context, *m_debugger, std::make_unique<RubySteps>(*this));
        RubyRuntime::self().takeState();
    } catch (const ScriptErrorSet&) {
        const std::string text = textOf(takeException()).toStdString();
        setDebugger(nullptr);
        throw std::runtime_error("The functions of the test system can't be made known to Ruby: " +
                                 text);
    }
}

RubyInterpreter::~RubyInterpreter() {
    RubyRuntime& runtime = RubyRuntime::self();
    runtime.runExitBlocks();
    m_debugger->shutDown();
    setDebugger(nullptr);
    output().flush();
    if (end()) {
        m_failures.clear();
        if (hasStarted() && !initScripts().isEmpty())
            runtime.popState();
        runtime.restoreState();
        dropReleased();
    }
}

// Names for scripts

void RubyInterpreter::addNativeType(const QString& name, void* typeId,
                                    const NativeScriptType& type) {
    RubyRuntime& runtime = RubyRuntime::self();
    const VALUE rubyClass = defineNativeClass(runtime.module(), *m_context, name, typeId, type);
    if (name.at(0).isLower()) {
        runtime.defineGetter(name, rubyClass);
        return;
    }
    const ID constant = rb_intern(name.toUtf8().constData());
    if (rb_const_defined_at(rb_cObject, constant) == 0)
        rb_const_set(rb_cObject, constant, rubyClass);
}

void RubyInterpreter::publishFunctions(const QStringList& names) {
    publishGlobalFunctions(names);
}

QString RubyInterpreter::addToSearchPath(const QFileInfo& directory) {
    RubyRuntime::self().addToSearchPath(directory.absoluteFilePath());
    return {};
}

void RubyInterpreter::runFile(const QString& text, const QString& path) {
    RubyRuntime::self().run(text, path);
}

bool RubyInterpreter::isErrorOrdinary() {
    return isOrdinaryError();
}

ScriptError RubyInterpreter::takeError() {
    return takeScriptError();
}

// Running

void RubyInterpreter::startScript(const QString& path, const QStringList& arguments,
                                  const QStringList& folders) {
    RubyRuntime& runtime = RubyRuntime::self();
    m_failures.clear();
    // What init scripts have defined before the first script stays for all.
    if (hasStarted()) {
        runtime.runExitBlocks();
        runtime.restoreState();
        m_debugger->updateTracePoints();
    } else if (!initScripts().isEmpty()) {
        runtime.pushState();
    }
    runtime.setArguments(path, arguments);
    runtime.setSearchPath(folders);
}

void RubyInterpreter::compileOnly(const QString& text, const QString& fileName) {
    RubyRuntime::self().compile(text, fileName.isEmpty() ? noFile : fileName);
}

bool RubyInterpreter::runScript(const QString& text, const QString& fileName) {
    return runCode(!fileName.isEmpty(), [&] {
        throwPostponed();
        if (!fileName.isEmpty())
            RubyRuntime::self().openData(text, fileName);
        RubyRuntime::self().run(text, fileName.isEmpty() ? noFile : fileName);
    });
}

SharedPtr<ScriptArgument> RubyInterpreter::scriptFunction(const QString& name) {
    return topLevelMethod(name, true);
}

SharedPtr<ScriptArgument> RubyInterpreter::libraryFunction(const QString& name) {
    return topLevelMethod(name, false);
}

LanguageInterpreter::CallEnd RubyInterpreter::call(const SharedPtr<ScriptArgument>& function,
                                                   const CallArguments& arguments, const QString&,
                                                   bool isCallback) {
    return runCall(isCallback, [&] {
        throwPostponed();
        callCallable(rubyValue(function), arguments);
    });
}

void RubyInterpreter::errorUncaught() {
    const PendingKept kept;
    m_debugger->errorUncaught(pendingException());
}

QString RubyInterpreter::evaluateAtStop(const ScriptFrame* frame, const QString& code) {
    const VALUE text = toRuby(code);
    const VALUE file = toRuby(QStringLiteral("(debugger)"));
    const VALUE binding =
        frame ? bindingOf(*frame) : rb_const_get(rb_cObject, rb_intern("TOPLEVEL_BINDING"));
    const VALUE shown = protect([=] {
        const VALUE limits = rb_path2class("Tamrix::TimeLimit");
        const VALUE isOver = rb_proc_new(isEvaluationOver, Qnil);
        const VALUE value =
            rb_funcall(limits, rb_intern("evaluate"), 4, text, binding, file, isOver);
        return rb_funcall(limits, rb_intern("inspect_within"), 2, value, DBL2NUM(1));
    });
    return NIL_P(shown) ? QStringLiteral("<no representation: not in time>") : fromRuby(shown);
}

TimeLimit::Expired RubyInterpreter::endOfEvaluation() {
    s_isEvaluationOver = false;
    return [] { s_isEvaluationOver = true; };
}

LineInfo RubyInterpreter::placeOf(const SharedPtr<ScriptArgument>& function) {
    return definitionOf(rubyValue(function));
}

}  // namespace Tamrix::RubyPlugin
