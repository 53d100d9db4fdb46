#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/applicationfunctions.h"
#include "interpreter/generic/objectarguments.h"
#include "interpreter/generic/runneraccess.h"

namespace Tamrix {

namespace {

using ApplicationPtr = SharedPtr<ApplicationContext>;

/// The context that is argument 0; null with the error set when it is none.
ApplicationPtr applicationOf(ScriptContext* context) {
    const SharedPtr<ScriptArgument> argument = context->argument(0);
    ApplicationPtr application = argument ? argument->toApplicationContext() : ApplicationPtr();
    if (!application)
        context->setError("Invalid application context reference");
    return application;
}

/// The same for a function that takes no arguments beside the context.
ApplicationPtr applicationAlone(ScriptContext* context, const char* function) {
    ApplicationPtr application = applicationOf(context);
    if (application && context->argumentCount() > 1) {
        context->setError(QLatin1String(function) + QStringLiteral("() takes no arguments"));
        return {};
    }
    return application;
}

/// Asks the runner about an application, if there is one.
template <typename Ask>
void askRunnerAbout(const ApplicationPtr& application, const char* function, Ask ask) {
    if (!application)
        return;
    if (RunnerInterface* runner = runnerFor(function))
        ask(runner, application);
}

/// Asks the runner about the context that is the only argument.
template <typename Ask>
void askRunner(ScriptContext* context, const char* function, Ask ask) {
    askRunnerAbout(applicationAlone(context, function), function, ask);
}

/// The same for a fact that only a running application has.
template <typename Ask>
void askFact(ScriptContext* context, const char* function, Ask ask) {
    reportFailureOf(context, [&] { askRunner(context, function, ask); });
}

void readOutput(ScriptContext* context, const char* function,
                QString (RunnerInterface::*read)(ApplicationPtr, bool*), const char* notAvailable) {
    askRunner(context, function, [&](RunnerInterface* runner, const ApplicationPtr& application) {
        bool available = true;
        const QString text = (runner->*read)(application, &available);
        if (available)
            context->setStringResult(text);
        else
            context->setError(notAvailable);
    });
}

}  // namespace

void applicationName(ScriptContext* context) {
    if (const ApplicationPtr application = applicationAlone(context, "name"))
        context->setStringResult(application->name);
}

void applicationCommandLine(ScriptContext* context) {
    if (const ApplicationPtr application = applicationAlone(context, "commandLine"))
        context->setStringResult(application->commandLine);
}

void applicationToolkitVersion(ScriptContext* context) {
    if (const ApplicationPtr application = applicationAlone(context, "toolkitVersion"))
        context->setStringResult(application->toolkitVersion);
}

void applicationStartTime(ScriptContext* context) {
    if (const ApplicationPtr application = applicationAlone(context, "startTime"))
        context->setDateTimeResult(application->startTime);
}

void applicationPid(ScriptContext* context) {
    askRunner(context, "pid", [&](auto* runner, const auto& application) {
        context->setIntegerResult(runner->pid(application));
    });
}

void applicationCwd(ScriptContext* context) {
    askFact(context, "cwd", [&](auto* runner, const auto& application) {
        context->setStringResult(runner->currentDirectory(application));
    });
}

void applicationIsRunning(ScriptContext* context) {
    askRunner(context, "isRunning", [&](auto* runner, const auto& application) {
        context->setBoolResult(runner->isRunning(application));
    });
}

void applicationUsedMemory(ScriptContext* context) {
    askFact(context, "usedMemory", [&](auto* runner, const auto& application) {
        context->setInt64Result(runner->usedMemory(application));
    });
}

void applicationTotalTime(ScriptContext* context) {
    askFact(context, "totalTime", [&](auto* runner, const auto& application) {
        context->setInt64Result(runner->totalTime(application));
    });
}

void applicationIsFrozen(ScriptContext* context) {
    askRunnerAbout(applicationOf(context), "isFrozen", [&](auto* runner, const auto& application) {
        const SharedPtr<ScriptArgument> timeout = context->argument(1);
        if (context->argumentCount() != 2 || !timeout || !timeout->isInteger())
            context->setError("isFrozen() requires an integer timeout[secs] argument");
        else if (timeout->toInt() < 0)
            context->setError("isFrozen() requires a timeout[secs] of 0 or more, not " +
                              timeout->toString());
        else
            context->setBoolResult(runner->isFrozen(application, intOf(timeout)));
    });
}

void applicationReadStdout(ScriptContext* context) {
    readOutput(context, "readStdout", &RunnerInterface::readStdout,
               "The AUT standard output is not available.");
}

void applicationReadStderr(ScriptContext* context) {
    readOutput(context, "readStderr", &RunnerInterface::readStderr,
               "The AUT standard error is not available.");
}

void applicationOsName(ScriptContext* context) {
    askRunner(context, "osName", [&](auto* runner, const auto& application) {
        context->setStringResult(runner->osName(application));
    });
}

void applicationEnvironmentVariable(ScriptContext* context) {
    reportFailureOf(context, [&] {
        askRunnerAbout(applicationOf(context), "environmentVariable",
                       [&](auto* runner, const auto& application) {
                           if (context->argumentCount() == 2)
                               context->setStringResult(runner->environmentVariable(
                                   application, context->argument(1)->toString()));
                           else
                               context->setError("environmentVariable() requires a name argument");
                       });
    });
}

void applicationHost(ScriptContext* context) {
    askRunner(context, "host", [&](auto* runner, const auto& application) {
        context->setStringResult(runner->host(application));
    });
}

void applicationPort(ScriptContext* context) {
    askRunner(context, "port", [&](auto* runner, const auto& application) {
        context->setIntegerResult(runner->port(application));
    });
}

void applicationExpectExit(ScriptContext* context) {
    if (const ApplicationPtr application = applicationAlone(context, "expectExit")) {
        application->isExitExpected = true;
        context->setNullResult();
    }
}

void applicationDetach(ScriptContext* context) {
    askRunner(context, "detach", [&](auto* runner, const auto& application) {
        if (runner->detachApplication(application))
            context->setNullResult();
        else
            context->setError("detach() failed");
    });
}

}  // namespace Tamrix
