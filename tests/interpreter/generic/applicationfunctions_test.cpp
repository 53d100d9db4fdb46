#include "interpreter/generic/applicationfunctions.h"

#include "interpreter/generic/apitest.h"

namespace Tamrix {
namespace {

using namespace Test;

class ApplicationFunctions : public ApiTest {
protected:
    static SharedPtr<ApplicationContext> makeApplication(const char* name) {
        SharedPtr<ApplicationContext> made(new ApplicationContext);
        made->id = 1;
        made->name = name;
        made->commandLine = QString(name) + " --quiet";
        made->toolkitVersion = "Qt 6.4.2";
        made->pid = 42;
        made->valid = true;
        made->startTime = QDateTime({2026, 1, 2}, {3, 4, 5});
        return made;
    }
    static SharedPtr<ScriptArgument> value(const SharedPtr<ApplicationContext>& application) {
        return new FakeArgument(application);
    }
    SharedPtr<ApplicationContext> resultContext() { return context.result->toApplicationContext(); }

    SharedPtr<ApplicationContext> application = makeApplication("calc");
};

TEST_F(ApplicationFunctions, RefuseWrongArguments) {
    const auto one = integer(1);
    expectRefusals({
        {startApplication, {}, "Empty application specified to startApplication"},
        {startApplication, {text("")}, "Empty application specified to startApplication"},
        {attachToApplication,
         {one, one, one, one, one},
         "Empty application specified to attachToApplication"},
        {waitForApplicationLaunch,
         {one, one},
         "waitForApplicationLaunch() takes zero or one argument"},
        {applicationContext, {}, "applicationContext() takes one argument"},
        {applicationContext, {one}, "applicationContext() argument has to be of type string"},
        {currentApplicationContext, {one}, "currentApplicationContext() takes no arguments"},
        {defaultApplicationContext, {one}, "defaultApplicationContext() takes no arguments"},
        {applicationContextList, {one}, "applicationContextList() takes no arguments"},
        {setApplicationContext, {one, one}, "setApplicationContext(context)"},
        {setApplicationContext, {one}, "Invalid type passed to setApplicationContext()"},
        {setApplicationContext, {}, "Cannot switch to invalid application context"},
        {plain<startFMI>, {one, one, one, one}, "startFMI takes between 0 and 3 arguments"},
        {plain<startCAN>, {one, one, one, one, one}, "startCAN() takes between 0 and 4 arguments"},
        {plain<startCAN>, {one}, "connectTo failed"},
        {plain<startCAN>, {map({{"url", text("u")}})}, "connectTo failed"},
        {plain<connectTo>, {}, "connectTo() takes between 0 and 3 arguments"},
        {plain<connectTo>, {text("u")}, "connectTo failed"},
        {applicationName, {one}, "Invalid application context reference"},
        {applicationDetach, {one}, "Invalid application context reference"},
        {applicationExpectExit, {one}, "Invalid application context reference"},
        {applicationIsFrozen,
         {value(application)},
         "isFrozen() requires an integer timeout[secs] argument"},
        {applicationIsFrozen,
         {value(application), number(1.5)},
         "isFrozen() requires an integer timeout[secs] argument"},
        {applicationIsFrozen,
         {value(application), integer(-1)},
         "isFrozen() requires a timeout[secs] of 0 or more, not -1"},
        {applicationIsFrozen,
         {value(application), integer(1), one},
         "isFrozen() requires an integer timeout[secs] argument"},
        {applicationEnvironmentVariable,
         {value(application)},
         "environmentVariable() requires a name argument"},
        {startApplication, {new FakeArgument}, "Empty application specified to startApplication"},
        {applicationName, {value(application), one}, "name() takes no arguments"},
        {applicationCommandLine, {value(application), one}, "commandLine() takes no arguments"},
        {applicationToolkitVersion,
         {value(application), one},
         "toolkitVersion() takes no arguments"},
        {applicationStartTime, {value(application), one}, "startTime() takes no arguments"},
        {applicationPid, {value(application), one}, "pid() takes no arguments"},
        {applicationUsedMemory, {value(application), one}, "usedMemory() takes no arguments"},
        {applicationReadStdout, {value(application), one}, "readStdout() takes no arguments"},
        {applicationExpectExit, {value(application), one}, "expectExit() takes no arguments"},
        {applicationDetach, {value(application), one}, "detach() takes no arguments"},
    });
    EXPECT_EQ(runner.calls, QStringList());
}

TEST_F(ApplicationFunctions, Start) {
    runner.started = application;
    runner.startError.clear();
    call(startApplication, {text("calc -x"), text("h"), integer(7), integer(8)});
    EXPECT_EQ(resultContext(), application);
    call(attachToApplication, {text("a")});
    call(waitForApplicationLaunch, {integer(5)});
    EXPECT_EQ(resultContext(), application);
    EXPECT_EQ(runner.calls, (QStringList{"start calc -x host 'h' port 7 timeout 8",
                                         "attach a host '' port -1 timeout -1",
                                         "launch host '' port -1 timeout 5"}));
    // The runner's reason, or a text of its own.
    for (const bool isNull : {true, false}) {
        runner.started = isNull ? SharedPtr<ApplicationContext>() : makeApplication("failed");
        if (!isNull)
            runner.started->id = -1;
        runner.startError = "no such program";
        EXPECT_EQ(call(startApplication, {text("a")}), "no such program");
        runner.startError.clear();
        EXPECT_EQ(call(attachToApplication, {text("a")}), "attachToApplication failed");
    }
    runner.started.reset();
    EXPECT_EQ(call(waitForApplicationLaunch), "waitForApplicationLaunch failed");
    runner.startError = "nothing came";
    EXPECT_EQ(call(waitForApplicationLaunch), "nothing came");
}

TEST_F(ApplicationFunctions, StartHelpers) {
    runner.started = application;
    runner.startError.clear();
    call(plain<startFMI>, {text("h"), integer(1), integer(2)});
    call(plain<startFMI>);
    call(plain<connectTo>, {map({{"url", text("vnc:1")}}), text("h"), integer(1), integer(2)});
    call(plain<startCAN>, {map({{"schema", text("s")}})});
    EXPECT_EQ(resultContext(), application);
    call(plain<startCAN>);
    EXPECT_EQ(runner.calls, (QStringList{
                                "special __tamrix__fmiutil () host 'h' port 1 timeout 2",
                                "special __tamrix__fmiutil () host '' port -1 timeout -1",
                                "special vncaut (vnc:1) host 'h' port 1 timeout 2",
                                "special canutil (s) host '' port -1 timeout -1",
                                "special canutil () host '' port -1 timeout -1",
                            }));
    // What counts as started.
    const auto server = map({{"url", text("u")}});
    const std::function<void(ApplicationContext&)> faults[] = {
        [](auto& made) { made.id = -1; }, [](auto& made) { made.pid = -1; },
        [](auto& made) { made.commandLine.clear(); }, [](auto& made) { made.valid = false; }};
    for (const auto& fault : faults) {
        runner.started = makeApplication("x");
        fault(*runner.started);
        EXPECT_EQ(call(plain<connectTo>, {server}), "connectTo failed");
        EXPECT_EQ(call(plain<startCAN>), "connectTo failed");
        EXPECT_EQ(call(plain<startFMI>) == "startFMI failed", !runner.started->valid);
    }
    runner.startError = "no helper";
    EXPECT_EQ(call(plain<connectTo>, {server}), "no helper");
}

TEST_F(ApplicationFunctions, Switch) {
    const auto second = makeApplication("second");
    runner.contexts = {application, second};
    runner.defaultContext = application;
    call(currentApplicationContext);
    EXPECT_EQ(context.result->typeName(), "null");
    call(setApplicationContext);
    EXPECT_EQ(runner.currentContext, application);
    call(setApplicationContext, {value(second)});
    EXPECT_EQ(runner.currentContext, second);
    call(currentApplicationContext);
    EXPECT_EQ(resultContext(), second);
    call(defaultApplicationContext);
    EXPECT_EQ(resultContext(), application);
    call(applicationContext, {text("second")});
    EXPECT_EQ(resultContext(), second);
    call(applicationContext, {text("third")});
    EXPECT_EQ(context.result->typeName(), "null");
    call(applicationContextList);
    EXPECT_EQ(context.result->toList().size(), 2u);
    second->valid = false;
    EXPECT_EQ(call(setApplicationContext, {value(second)}),
              "Cannot switch to invalid application context");
}

TEST_F(ApplicationFunctions, ReadFacts) {
    const auto self = value(application);
    const std::pair<ScriptContext::Function, const char*> rows[] = {
        {applicationName, "calc"},
        {applicationCommandLine, "calc --quiet"},
        {applicationToolkitVersion, "Qt 6.4.2"},
        {applicationPid, "99"},
        {applicationCwd, "/cwd"},
        {applicationIsRunning, "true"},
        {applicationStartTime, "2026-01-02T03:04:05"},
        {applicationUsedMemory, "1099511627776"},
        {applicationTotalTime, "2199023255552"},
        {applicationReadStdout, "The AUT standard output is not available."},
        {applicationReadStderr, "The AUT standard error is not available."},
        {applicationOsName, "os"},
        {applicationHost, "host"},
        {applicationPort, "4711"},
        {applicationDetach, "detach() failed"},
    };
    for (const auto& [function, expected] : rows)
        EXPECT_EQ(call(function, {self}), expected);
    EXPECT_EQ(call(applicationIsFrozen, {self, integer(3)}), "true");
    EXPECT_EQ(call(applicationEnvironmentVariable, {self, text("HOME")}), "value of HOME");
    for (const auto function : {applicationCwd, applicationUsedMemory, applicationTotalTime}) {
        runner.factError = "it has ended";
        EXPECT_EQ(call(function, {self}), "it has ended");
        runner.factError.clear();
    }
    EXPECT_FALSE(application->isExitExpected);
    call(applicationExpectExit, {self});
    EXPECT_TRUE(application->isExitExpected);
    runner.output = "";
    EXPECT_EQ(call(applicationReadStdout, {self}), "");
    EXPECT_FALSE(context.hasError());
    runner.detaches = true;
    call(applicationDetach, {self});
    EXPECT_FALSE(context.hasError());
}

}  // namespace
}  // namespace Tamrix
