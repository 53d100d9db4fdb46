#include "interpreter/generic/applicationfunctions.h"

#include "interpreter/bridge/actionrecord.h"
#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/objectarguments.h"
#include "interpreter/generic/runneraccess.h"

namespace Tamrix {

namespace {

void runApplication(ScriptContext* context, const char* functionName, bool attach) {
    const ActionRecord record(context, functionName);
    const QString function = QLatin1String(functionName);
    // 1. One to four arguments, the first not empty.
    const int count = context->argumentCount();
    // 2. Program, host, port, time-out.
    const SharedPtr<ScriptArgument> first = context->argument(0);
    const QString program = first && !first->isNull() ? first->toString() : QString();
    if (count < 1 || count > 4 || program.isEmpty()) {
        context->setError(QStringLiteral("Empty application specified to %1").arg(function));
        return;
    }
    const QString host = optionalText(context->argument(1));
    const int port = intOf(context->argument(2), -1);
    const int timeout = intOf(context->argument(3), -1);
    // 3. The runner does it.
    RunnerInterface* const runner = runnerFor(functionName);
    if (!runner)
        return;
    QString error;
    const SharedPtr<ApplicationContext> application =
        attach ? runner->attachToApplication(program, host, port, timeout, &error)
               : runner->startApplication(program, host, port, timeout, &error);
    // 4. The application, or why there is none.
    if (application && application->id >= 0)
        context->setContextResult(application);
    else
        context->setError(error.isEmpty() ? QStringLiteral("%1 failed").arg(function) : error);
}

/// False with the error set when there are arguments.
bool takesNoArguments(ScriptContext* context, const char* function) {
    if (context->argumentCount() == 0)
        return true;
    context->setError(QLatin1String(function) + QStringLiteral("() takes no arguments"));
    return false;
}

}  // namespace

void startApplication(ScriptContext* context) {
    runApplication(context, "startApplication", false);
}

void attachToApplication(ScriptContext* context) {
    runApplication(context, "attachToApplication", true);
}

void waitForApplicationLaunch(ScriptContext* context) {
    const ActionRecord record(context, "waitForApplicationLaunch");
    if (context->argumentCount() > 1) {
        context->setError("waitForApplicationLaunch() takes zero or one argument");
        return;
    }
    RunnerInterface* const runner = runnerFor("waitForApplicationLaunch");
    if (!runner)
        return;
    QString error;
    const SharedPtr<ApplicationContext> application =
        runner->waitForApplicationLaunch(intOf(context->argument(0), -1), &error);
    if (error.isEmpty() && !application)
        error = QStringLiteral("waitForApplicationLaunch failed");
    if (error.isEmpty())
        context->setContextResult(application);
    else
        context->setError(error);
}

void applicationContext(ScriptContext* context) {
    if (context->argumentCount() != 1) {
        context->setError("applicationContext() takes one argument");
        return;
    }
    if (!context->argument(0)->isString()) {
        context->setError("applicationContext() argument has to be of type string");
        return;
    }
    if (RunnerInterface* runner = runnerFor("applicationContext"))
        context->setContextResult(runner->applicationContext(context->argument(0)->toString()));
}

void currentApplicationContext(ScriptContext* context) {
    if (!takesNoArguments(context, "currentApplicationContext"))
        return;
    if (RunnerInterface* runner = runnerFor("currentApplicationContext"))
        context->setContextResult(runner->applicationContext(QString()));
}

void defaultApplicationContext(ScriptContext* context) {
    if (!takesNoArguments(context, "defaultApplicationContext"))
        return;
    if (RunnerInterface* runner = runnerFor("defaultApplicationContext"))
        context->setContextResult(runner->defaultApplicationContext());
}

void applicationContextList(ScriptContext* context) {
    if (!takesNoArguments(context, "applicationContextList"))
        return;
    RunnerInterface* const runner = runnerFor("applicationContextList");
    if (!runner)
        return;
    std::vector<SharedPtr<ScriptArgument>> list;
    for (const SharedPtr<ApplicationContext>& application : runner->applicationContexts())
        list.push_back(context->createContext(application));
    context->setResult(context->createList(list));
}

void setApplicationContext(ScriptContext* context) {
    const int count = context->argumentCount();
    if (count > 1) {
        context->setError("setApplicationContext(context)");
        return;
    }
    SharedPtr<ApplicationContext> application;
    if (count == 1) {
        application = context->argument(0)->toApplicationContext();
        if (!application) {
            context->setError("Invalid type passed to setApplicationContext()");
            return;
        }
    }
    RunnerInterface* const runner = runnerFor("setApplicationContext");
    if (!runner)
        return;
    if (count == 0)
        application = runner->defaultApplicationContext();
    if (!application || !runner->isValidContext(application)) {
        context->setError("Cannot switch to invalid application context");
        return;
    }
    runner->setCurrentApplicationContext(application);
    context->setNullResult();
}

}  // namespace Tamrix
