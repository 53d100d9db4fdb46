#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/applicationfunctions.h"
#include "interpreter/generic/objectarguments.h"
#include "interpreter/generic/runneraccess.h"

namespace Tamrix {

namespace {

/// Starts a helper program. The arguments of the script from index `first` on are host, port and
/// time-out.
SharedPtr<ApplicationContext> startHelper(ScriptContext* context, RunnerInterface* runner,
                                          const char* program, const QStringList& arguments,
                                          int first, QString* error) {
    return runner->startSpecialApplication(
        QLatin1String(program), arguments, optionalText(context->argument(first)),
        intOf(context->argument(first + 1), -1), intOf(context->argument(first + 2), -1), error);
}

/// What the script gets; `failure` when the runner gave no reason.
bool setHelperResult(ScriptContext* context, const SharedPtr<ApplicationContext>& application,
                     bool started, const QString& error, const char* failure) {
    if (started)
        context->setContextResult(application);
    else
        context->setError(error.isEmpty() ? QString(QLatin1String(failure)) : error);
    return started;
}

/// What connectTo and startCAN take as started.
bool isStarted(const SharedPtr<ApplicationContext>& application) {
    return application && application->valid && application->id >= 0 && application->pid >= 0 &&
           !application->commandLine.isEmpty();
}

/// The tail of connectTo and startCAN: the helper's only argument is an entry of a map.
bool startWithEntry(ScriptContext* context, RunnerInterface* runner, const char* program,
                    const char* entry) {
    const SharedPtr<ScriptArgument> options = context->argument(0);
    QStringList arguments;
    if (options) {
        ScriptArgument::Map entries;
        if (options->isMap())
            entries = options->toMap();
        const auto found = entries.find(QLatin1String(entry));
        if (found == entries.end()) {
            context->setError("connectTo failed");
            return false;
        }
        arguments.append(found->second->toString());
    }
    QString error;
    const SharedPtr<ApplicationContext> application =
        startHelper(context, runner, program, arguments, 1, &error);
    // The name in the text is that of connectTo for both: this is meant.
    return setHelperResult(context, application, isStarted(application), error, "connectTo failed");
}

}  // namespace

bool startFMI(ScriptContext* context) {
    if (context->argumentCount() > 3) {
        context->setError("startFMI takes between 0 and 3 arguments");
        return false;
    }
    RunnerInterface* const runner = runnerFor("startFMI");
    if (!runner)
        return true;
    QString error;
    const SharedPtr<ApplicationContext> application =
        startHelper(context, runner, "__tamrix__fmiutil", {}, 0, &error);
    return setHelperResult(context, application, application && application->valid, error,
                           "startFMI failed");
}

bool startCAN(ScriptContext* context) {
    if (context->argumentCount() > 4) {
        context->setError("startCAN() takes between 0 and 4 arguments");
        return false;
    }
    RunnerInterface* const runner = runnerFor("startCAN");
    return !runner || startWithEntry(context, runner, "canutil", "schema");
}

bool connectTo(ScriptContext* context) {
    const int count = context->argumentCount();
    if (count < 1 || count > 4) {
        // The map counts, though the text leaves it out: this is meant.
        context->setError("connectTo() takes between 0 and 3 arguments");
        return false;
    }
    RunnerInterface* const runner = runnerFor("connectTo");
    return !runner || startWithEntry(context, runner, "vncaut", "url");
}

}  // namespace Tamrix
