#include "interpreter/generic/inputfunctions.h"

#include <QTemporaryDir>

#include "interpreter/bridge/debugger.h"
#include "interpreter/generic/apitest.h"
#include "platform/objectmodel/valueobject.h"
#include "support/files.h"

namespace Tamrix {
namespace {

using namespace Test;

class InputFunctions : public ApiTest {
protected:
    InputFunctions() {
        runner.currentContext = new ApplicationContext;
        Class* const global = model.editableGlobalClass();
        global->addEvent("Key", Signature({Argument("QString"), Argument("int")}));
        global->addEvent("QMouseEvent", Signature({Argument("int"), Argument("int")}));
    }

    SharedPtr<InMemoryObject> button = model.addObject("Button", "ok");
    SharedPtr<ScriptArgument> buttonValue = object(button);
    SharedPtr<ScriptArgument> buttonName = text("{name='ok' type='Button'}");
    SharedPtr<ScriptArgument> callback =
        callable([](const auto&, QString*) { return SharedPtr<ScriptArgument>(new FakeArgument); });
};

TEST_F(InputFunctions, RefuseWrongArguments) {
    const auto one = integer(1);
    const auto name = text("e");
    const char* const usage = "installEventHandler([object|typeName,] event, callback)";
    const char* const callbackText = "Event handler must be a callable or a non-empty string";
    expectRefusals({
        {installEventHandler, {name}, usage},
        {uninstallEventHandler, {name, name, name, name}, usage},
        {installEventHandler, {one, name}, "Event name has be specified as a string"},
        {installEventHandler,
         {buttonValue, one, name},
         "Event type has to be specified as a string"},
        {installEventHandler,
         {one, name, name},
         "First argument of installEventHandler with 3 arguments is neither a GUI object nor a "
         "type name"},
        {installEventHandler,
         {text("Unknown"), name, name},
         "First argument of installEventHandler with 3 arguments is neither a GUI object nor a "
         "type name"},
        {installEventHandler, {name, text("")}, callbackText},
        {installEventHandler, {name, one}, callbackText},
        {uninstallEventHandler, {name, callback}, callbackText},
        {sendEvent,
         {name},
         "sendEvent() expects at least two arguments. The event type and an object reference"},
        {sendEvent, {one, one}, "Event name must be of type string"},
        {sendEvent, {name, buttonValue}, "Unknown event type e"},
        {sendEvent,
         {text("Key"), text("{type='None'}")},
         "Can't find object named '{type='None'}'"},
        {sendEvent,
         {text("Key"), buttonValue, one},
         "Wrong number of event parameters. Expected: 2"},
        {mouseMove, {one}, "Overload not found"},
        {mouseMove, {one, one, one}, "Overload not found"},
        {mousePress, {one, one, one, one, one}, "Overload not found"},
        {mouseMove, {buttonValue, name, one}, "Invalid type of x value"},
        {mouseMove, {buttonValue, one, name}, "Invalid type of y value"},
        {mousePress, {buttonValue, name}, "Invalid type of button value"},
        {mousePress, {one, name}, "Invalid type of modifiers value"},
        {mousePress, {text("{type='None'}")}, "Can't find object named '{type='None'}'"},
        {plain<keyPress>, {}, "One string argument expected"},
        {plain<keyRelease>, {one}, "Argument '1' is not a string"},
        {readGesture, {one}, "readGesture() requires a file name argument"},
    });
    EXPECT_EQ(runner.calls, QStringList());
    runner.currentContext.reset();
    EXPECT_EQ(call(installEventHandler, {name, callback}),
              "Invalid current application context, check that you have an application started and "
              "that it's still running");
    Inspector::self()->setModel(nullptr);
    EXPECT_EQ(call(sendEvent, {name, buttonValue}), "Invalid application context");
}

TEST_F(InputFunctions, EventHandlers) {
    const QString identifier = callback->callableIdentifier();
    call(installEventHandler, {text("clicked"), callback});
    call(installEventHandler, {buttonValue, text("clicked"), callback});
    call(installEventHandler, {text("Button"), text("clicked"), text("onClick")});
    EXPECT_TRUE(interpreter.isCallableAvailable(identifier));
    call(uninstallEventHandler, {buttonValue, text("clicked"), callback});
    EXPECT_FALSE(context.hasError());
    EXPECT_FALSE(interpreter.isCallableAvailable(identifier));
    ASSERT_EQ(model.journal.size(), 4);
    EXPECT_TRUE(model.journal[0].endsWith("|clicked|" + identifier));
    EXPECT_TRUE(model.journal[1].startsWith("install|ok|"));
    EXPECT_TRUE(model.journal[2].endsWith("|Button|clicked|onClick"));
    EXPECT_TRUE(model.journal[3].startsWith("uninstall|ok|"));
    // The callable is out of the table: it is no handler any more.
    EXPECT_EQ(call(uninstallEventHandler, {text("clicked"), callback}),
              "Event handler must be a callable or a non-empty string");
}

TEST_F(InputFunctions, SendEvents) {
    call(sendEvent, {text("Key"), buttonName, integer(5), number(2.0)});
    call(sendEvent, {text("QMouseEvent"), buttonValue, integer(1), integer(2), integer(3)});
    EXPECT_EQ(model.journal, (QStringList{"send|ok|Key|2", "send|ok|QMouseEvent|3"}));
    EXPECT_EQ(call(sendEvent, {text("Key"), buttonName, integer(5), callback}),
              "A value of type 'function' can't be passed to an application");
}

TEST_F(InputFunctions, PickTheMouseOverload) {
    runner.takesInput = true;
    EXPECT_EQ(call(mousePress), "true");
    call(mousePress, {integer(2), integer(3)});
    call(mousePress, {integer(4), integer(5), integer(2)});
    call(mouseRelease, {buttonName, integer(4), integer(5), integer(2), integer(7)});
    call(mouseRelease, {buttonValue, integer(2)});
    call(mouseMove, {integer(4), number(5.9)});
    call(mouseMove, {buttonName, integer(4), integer(5)});
    EXPECT_EQ(runner.calls, (QStringList{
                                "mouse - mask 0 at 0,0 button 1 modifiers 0 change 1 press 1",
                                "mouse - mask 0 at 0,0 button 2 modifiers 3 change 1 press 1",
                                "mouse - mask 8 at 4,5 button 2 modifiers 0 change 1 press 1",
                                "mouse ok mask 9 at 4,5 button 2 modifiers 7 change 1 press 0",
                                "mouse ok mask 1 at 0,0 button 2 modifiers 0 change 1 press 0",
                                "mouse - mask 8 at 4,5 button 1 modifiers 0 change 0 press 0",
                                "mouse ok mask 9 at 4,5 button 1 modifiers 0 change 0 press 0",
                            }));
    runner.takesInput = false;
    EXPECT_EQ(call(mousePress), "it is not there");
}

TEST_F(InputFunctions, PressKeys) {
    runner.takesInput = true;
    EXPECT_EQ(call(plain<keyPress>, {text("Ctrl")}), "true");
    EXPECT_EQ(call(plain<keyRelease>, {text("Ctrl")}), "true");
    EXPECT_EQ(runner.calls, (QStringList{"press Ctrl", "release Ctrl"}));
    runner.takesInput = false;
    EXPECT_EQ(call(plain<keyPress>, {text("Ctrl")}), "it is not there");
}

struct StandingDebugger : Debugger {
    StandingDebugger() : Debugger(nullptr) {}
    VariableBindings variables(const QString&) override { return {}; }
};

TEST_F(InputFunctions, ReadGestures) {
    const QTemporaryDir folder;
    const auto file = [&](const char* path) { return folder.filePath(path); };
    runner.casePath = file("suite/tst_a/test.py");
    EXPECT_EQ(call(readGesture, {text("swipe")}), "Couldn't open file swipe");

    // From the last place to the first: each hides those behind it.
    StandingDebugger debugger;
    ASSERT_TRUE(writeFile(file("suite/deep/er/lib.py")));
    ASSERT_TRUE(writeFile(file("suite/shared/scripts/lib.py")));
    debugger.setCode(1, file("suite/deep/er/lib.py"));
    debugger.setCurrentSourceId(1);
    QString error;
    for (const char* path :
         {"suite/shared/gestures/swipe.gesture", "suite/deep/er/gestures/swipe.gesture",
          "suite/tst_a/gestures/swipe.gesture"}) {
        ASSERT_TRUE(writeFile(file(path), path));
        EXPECT_EQ(readGestureByName("swipe", &error), path);
    }
    debugger.setCode(2, file("suite/shared/scripts/lib.py"));
    debugger.setCurrentSourceId(2);
    ASSERT_TRUE(writeFile(file("suite/shared/gestures/other.gesture"), "other"));
    EXPECT_EQ(readGestureByName("other", &error), "other");
    EXPECT_EQ(error, "");

    EXPECT_EQ(call(readGesture, {text("swipe")}), "Loading GestureBuilder");
    model.objectClass("GestureBuilder");
    EXPECT_EQ(call(readGesture, {text("swipe")}), "GestureBuilder( xml )");
    model.onCall = [&](const auto&, const QString& method, const ObjectList& arguments) {
        EXPECT_EQ(method, "new");
        EXPECT_EQ(arguments.at(0)->toVariant(), "suite/tst_a/gestures/swipe.gesture");
        return SharedPtr<Object>(button);
    };
    call(readGesture, {text("swipe")});
    EXPECT_EQ(resultObject(), button);
}

}  // namespace
}  // namespace Tamrix
