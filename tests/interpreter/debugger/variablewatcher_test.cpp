#include "interpreter/debugger/variablewatcher.h"

#include <gtest/gtest.h>

#include <QTimer>

#include "interpreter/debugger/testdebugger.h"
#include "platform/objectmodel/inspector.h"
#include "runner/coreapplication.h"
#include "support/fakelanguage.h"
#include "support/fakerunner.h"
#include "support/inmemorymodel.h"
#include "support/printqt.h"
#include "support/warningrecorder.h"

namespace Tamrix {
namespace {

using namespace Tamrix::Test;

/// A script with one number, one list and one object of an application.
class ScriptVariables : public VariableWatcher {
public:
    VariableBindings topLevelBindings() override {
        registerTamrixObject("+window", window);
        return {{"number", "int", "1"}, {"+list", "list", QString()}, {"+window", "Window", ""}};
    }
    bool handlesPath(const QString& path) override { return path == "+list"; }
    VariableBindings languageBindings(const QString& path) override {
        return {{path + "[0]", "str", "a"}};
    }

    SharedPtr<Object> window;
};

QStringList shown(const VariableWatcher::VariableBindings& bindings) {
    QStringList lines;
    for (const auto& binding : bindings)
        lines.append(binding.name + ": " + binding.type +
                     (binding.value.isNull() ? QString() : " = " + binding.value));
    return lines;
}

class VariableWatcherTest : public testing::Test {
protected:
    VariableWatcherTest() {
        coreApplication();
        Inspector::self()->setModel(&model);
        for (const char* name : {"title", "button"})
            model.objectClass("Window")->addProperty(name);
        model.objectClass("Button")->addProperty("text");
        window = model.addObject("Window", "main");
        button = model.addObject("Button", "ok", window);
        window->setProperty("button", button);
        runner.components = {{window->remoteId(), {"QString#title=a=b#c", "Button#+button=ok"}},
                             {button->remoteId(), {"QString#text=OK", "flag#checkable"}}};
        runner.contexts = {SharedPtr<ApplicationContext>(new ApplicationContext)};
        watcher.window = window;
    }
    ~VariableWatcherTest() override { Inspector::self()->setModel(nullptr); }

    QStringList list(const QString& path) { return shown(watcher.variableBindings(path)); }

    InMemoryModel model;
    FakeRunner runner;
    FakeInterpreter interpreter{&runner, Interpreter::Tcl};
    SharedPtr<InMemoryObject> window;
    SharedPtr<InMemoryObject> button;
    ScriptVariables watcher;
};

TEST_F(VariableWatcherTest, WhatIsListedCanBeAskedFor) {
    EXPECT_EQ(list(""), QStringList({"number: int = 1", "+list: list", "+window: Window = "}));
    EXPECT_EQ(list("+list"), QStringList("+list[0]: str = a"));
    EXPECT_EQ(list("+window"),
              QStringList({"window.title: QString = a=b#c", "+window.button: Button = ok"}));
    EXPECT_EQ(list("+window.button"),
              QStringList({"window.button.text: QString = OK", "window.button.checkable: flag"}));
    // A property is read when it is listed.
    window->setProperty("button", window);
    EXPECT_EQ(list("+window.button"), QStringList({"window.button.title: QString = a=b#c",
                                                   "+window.button.button: Button = ok"}));
    EXPECT_EQ(list("+window.button.button").size(), 2);
    // A window that holds itself would never go.
    window->setProperty("button", button);
}

TEST_F(VariableWatcherTest, WhatWasNotListedIsAWarning) {
    WarningRecorder warnings;
    for (const char* path : {"+window", "+window.button", "window.title", "nothing"})
        EXPECT_EQ(list(path), QStringList()) << path;
    list("");
    list("+window");
    // A value that is no object has nothing below it.
    EXPECT_EQ(list("+window.title"), QStringList());
    EXPECT_EQ(
        warnings.messages(),
        QStringList({"VariableWatcher::variableBindings: Cannot handle object '+window'.\n",
                     "VariableWatcher::variableBindings: Cannot handle object "
                     "'+window.button'.\n",
                     "VariableWatcher::variableBindings: Cannot handle object "
                     "'window.title'.\n",
                     "VariableWatcher::variableBindings: Cannot handle object 'nothing'.\n"}));
}

TEST_F(VariableWatcherTest, OnlyObjectsWithComponentsAreKept) {
    WarningRecorder warnings;
    runner.components.clear();
    list("");
    EXPECT_EQ(list("+window"), QStringList());
    EXPECT_EQ(warnings.messages().size(), 1);

    watcher.window = new Object(1);
    testing::internal::CaptureStderr();
    list("");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "VariableWatcher: Skipping non-remote-object\n");
    EXPECT_EQ(VariableWatcher::fetchObjectComponents(watcher.window), QStringList());
}

TEST_F(VariableWatcherTest, AnApplicationThatHasEndedHasNoObjects) {
    list("");
    EXPECT_EQ(list("+window").size(), 2);
    runner.contexts.clear();
    EXPECT_EQ(list("+window"), QStringList());
    Interpreter::setSelf(nullptr);
    EXPECT_EQ(list("+window"), QStringList());
    EXPECT_FALSE(VariableWatcher::objectHasComponents(window));
}

TEST_F(VariableWatcherTest, AFeatureFileHasNoVariables) {
    TestDebugger debugger;
    debugger.enterScript("/suite/tst/test.feature");
    EXPECT_EQ(list(""), QStringList());
    debugger.setCode(2, "/suite/tst/steps.fake");
    debugger.pushFrameAndSetCurrent(1, 0, 2);
    EXPECT_EQ(list("").size(), 3);
}

TEST_F(VariableWatcherTest, WhatIsPendingIsServedFirst) {
    QTimer::singleShot(0, [this] { watcher.window = button; });
    list("");
    EXPECT_EQ(list("+window").value(0), "window.text: QString = OK");
}

}  // namespace
}  // namespace Tamrix
