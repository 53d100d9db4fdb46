#include <QRect>

#include "platform/objectmodel/inspector.h"
#include "plugins/python/pythontest.h"
#include "support/inmemorymodel.h"

namespace Tamrix {
namespace {

using namespace Test;

class PythonObjects : public PythonTest {
protected:
    PythonObjects() {
        Class* const buttonClass = model.objectClass("Button");
        buttonClass->addProperty("text", "QString", true);
        buttonClass->addProperty("width", "int", true);
        buttonClass->addProperty("geometry", "QRect");
        buttonClass->addProperty("tags", "QVariantList", true);
        buttonClass->addProperty("class");
        buttonClass->addProperty("unreadable");
        buttonClass->addMethod("resize", Signature({Argument("int"), Argument("int")}));
        buttonClass->addMethod("setValue", Signature({Argument("int")}));
        buttonClass->addMethod("setValue", Signature({Argument("QString")}));
        button = model.addObject("Button", "ok", model.addObject("Window", "main"));
        button->setProperty("text", QVariant("OK"));
        button->setProperty("geometry", QVariant(QRect(1, 2, 30, 40)));
        button->setProperty("class", QVariant("wide"));
        button->setProperty("ofItsOwn", QVariant(3));
        Class* const global = model.editableGlobalClass();
        global->addMethod("click", Signature({Argument("QObject")}));
        global->addMethod("clipboardText", Signature());
        global->addMethod("own", Signature({Argument("QString")}));
        global->addMethod("lookAt", Signature({Argument("QObject")}));
        global->addMethod("len", Signature({Argument("QObject")}));
        model.onCall = [this](const auto& self, const QString& method,
                              const ObjectList& arguments) {
            return answer(self, method, arguments);
        };
        Inspector::self()->setModel(&model);
        runner.found = button;
        s_button = button;
        define("theButton", [](ScriptContext* context) {
            context->setObjectResult(s_button);
            return true;
        });
    }
    ~PythonObjects() override {
        s_button.reset();
        interpreter.reset();
        Inspector::self()->setModel(nullptr);
    }

    /// Notes the call; the result is what `nextResult` says, null with a text for a failure.
    Outcome<SharedPtr<Object>> answer(const SharedPtr<Object>& self, const QString& method,
                                      const ObjectList& arguments) {
        QStringList words{self ? self->objectName() : "-", method};
        for (const SharedPtr<Object>& argument : arguments)
            words.append(argument->handle()
                             ? argument->objectName()
                             : QString("%1:%2").arg(argument->className(),
                                                    argument->toVariant().toString()));
        s_seen.append(words.join(' '));
        if (!failure.isEmpty()) {
            return fail(isLookup ? FailureKind::NotReady : FailureKind::Failed, failure);
        }
        return Inspector::self()->createObject(nextResult);
    }

    inline static SharedPtr<Object> s_button;
    InMemoryModel model;
    SharedPtr<InMemoryObject> button;
    QVariant nextResult;
    QString failure;
    bool isLookup = false;
};

TEST_F(PythonObjects, ReadAndWriteProperties) {
    EXPECT_EQ(run(R"py(
b = theButton()
assert b.text == 'OK' and b.class_ == 'wide' and b.ofItsOwn == 3
assert (b.geometry.x, b.geometry.width) == (1, 30)
assert b.geometry == theButton().geometry and b.geometry != b and b.geometry != 5
b.text = 'Cancel'
b.width = 7.0
b.tags = [1, 'two', {'k': None}, b'x', theButton()]
assert b.text == 'Cancel' and b.width == 7 and type(b.width) is int
assert b.tags == [1, 'two', {'k': None}, b'x', b], b.tags
assert hasattr(b, 'text') and not hasattr(b, 'nothing') and bool(b)
assert {'text', 'class_', 'resize', 'setValue'} <= set(dir(b))
assert object.properties(b)['text'] == 'Cancel'
assert [child for child in object.children(object.parent(b))] == [b]
assert isNull(object.createNull('Button')) and not object.createNull('Button')
# The button must not hold itself.
b.tags = []
)py"),
              "");
    const std::pair<const char*, const char*> rows[] = {
        {"b.txet",
         "AttributeError: 'Button' has no property or method 'txet'; the nearest: "
         "'text'"},
        {"b.q = 1", "AttributeError: 'Button' has no property or method 'q'"},
        {"del b.text", "AttributeError: The property 'text' of 'Button' can't be deleted"},
        {"b.resize = 1", "AttributeError: 'resize' of 'Button' is a method: call it instead"},
        {"b.text = len",
         "TypeError: A value of type 'builtin_function_or_method' can't be passed "
         "to an application"},
        {"c = []\nc.append(c)\nb.tags = c",
         "tamrix.Error: Button.tags() failed: A value for an application is nested deeper than 16: "
         "does a part of it hold itself?"},
        {"c = {}\nc['c'] = (1, c)\nb.setValue(c)",
         "tamrix.Error: Button.setValue() failed: A value for an application is nested deeper than "
         "16: does a part of it hold itself?"},
        {"b.geometry.q", "AttributeError: 'QRect' has no property or method 'q'"},
    };
    for (const auto& [code, error] : rows)
        EXPECT_EQ(run(code), error) << code;
    EXPECT_TRUE(run("b.unreadable").startsWith("tamrix.Error: "));
}

TEST_F(PythonObjects, NamesThatHoldThemselvesAreErrors) {
    ASSERT_EQ(run("d = {'type': 'Button'}\nd['container'] = d"), "");
    for (const char* call :
         {"object.exists", "findObject", "findAllObjects", "waitForObject", "waitForObjectExists"})
        EXPECT_EQ(run(QString(call) + "(d)"),
                  "tamrix.Error: " + QString(call) +
                      "() failed: The name of an object is nested deeper than 16: does a part of "
                      "it hold itself?");
    // No more does a script that calls itself through functions of the system.
    EXPECT_TRUE(run("def again(): waitFor(again)\nagain()").contains("RecursionError"));
}

TEST_F(PythonObjects, CallMethods) {
    nextResult = QVariantMap{{"done", true}};
    EXPECT_EQ(run(R"py(
b = theButton()
assert b.resize(3, 4) == {'done': True}
method = b.setValue
method(5)
method('five')
b.setValue(2.0)
)py"),
              "");
    nextResult = QVariant();
    EXPECT_EQ(run("assert b.resize(True, 4) is None"), "");
    EXPECT_EQ(s_seen,
              (QStringList{"ok resize int:3 int:4", "ok setValue int:5", "ok setValue QString:five",
                           "ok setValue double:2", "ok resize bool:true int:4"}));
    failure = "the object is gone";
    const std::pair<const char*, const char*> rows[] = {
        {"b.resize(1, 2)", "tamrix.Error: the object is gone"},
        {"b.resize(1)", "TypeError: Button.resize() takes (int, int), not 1 arguments"},
        {"b.setValue()", "TypeError: Button.setValue() takes (int) or (QString), not 0 arguments"},
        {"b.setValue(value=1)", "TypeError: Button.setValue() takes no named arguments"},
        {"b.setValue({1})",
         "TypeError: Button.setValue() argument 1: A value of type 'set' can't "
         "be passed to an application"},
    };
    for (const auto& [code, error] : rows)
        EXPECT_EQ(run(code), error) << code;
}

TEST_F(PythonObjects, CallGlobalFunctions) {
    nextResult = "text";
    EXPECT_EQ(run(R"py(
assert click(theButton()) == 'text'
click(":OK")
click({'type': 'Button'}, 3, 4)
clipboardText()
own('a text')
lookAt(':OK')
assert len('four') == 4
def press(key): return key
assert press('a') == 'a' and 'Clicks' in click.__doc__ and click.__name__ == 'click'
)py"),
              "");
    EXPECT_EQ(s_seen, (QStringList{"- click ok", "- click ok", "- click ok int:3 int:4",
                                   "- clipboardText", "- own QString:a text", "- lookAt ok"}));
    ASSERT_EQ(runner.calls.size(), 3);
    EXPECT_TRUE(runner.calls[0].startsWith("wait for :OK for "));
    EXPECT_TRUE(runner.calls[1].startsWith("wait for {type='Button'} for "));
    s_seen.clear();
    // By name and with None: what these mean is told below the languages.
    const std::pair<const char*, const char*> named[] = {
        {"click(b, modifiers=0x04000000)", "QString:left int:67108864"},
        {"click(modifiers=1, button=2, object=b)", "QString:right int:1"},
        {"click(b, None, None, 'right', None)", "QString:right"},
    };
    EXPECT_EQ(run("b = theButton()"), "");
    for (const auto& [code, arguments] : named) {
        EXPECT_EQ(run(code), "") << code;
        EXPECT_EQ(s_seen.takeLast(), QString("- click ok ") + arguments) << code;
    }
    const std::pair<const char*, const char*> refused[] = {
        {"click(b, x=3)", "TypeError: click() needs an argument 'y'"},
        {"lookAt(object=b)", "TypeError: lookAt() takes no named arguments"},
    };
    for (const auto& [code, error] : refused)
        EXPECT_EQ(run(code), error) << code;
    EXPECT_EQ(run("fill(theButton(), 'x')"),
              "tamrix.Error: The application has no function 'fill'");
    failure = "it is not ready: it is disabled";
    EXPECT_EQ(run("click(theButton())"), "tamrix.Error: it is not ready: it is disabled");
    isLookup = true;
    EXPECT_EQ(run("click(theButton())"), "tamrix.LookupError: it is not ready: it is disabled");
    runner.found.reset();
    EXPECT_EQ(run("click(':OK')"), "tamrix.LookupError: it is not there");
}

TEST_F(PythonObjects, CallsOfGlobalFunctionsAreActions) {
    nextResult = "text";
    EXPECT_EQ(run(R"py(
click({'type': 'Button'}, 3, 4.5)
click(theButton())
own("it's")
click(object=':OK', modifiers=None)
failed = 0
try:
    fill(":OK", 'x')
except Exception:
    failed = 1
assert failed

click(
    ":OK",
    True)
)py"),
              "");
    QStringList actions;
    for (const ActionEnded& action : report.all<ActionEnded>()) {
        actions += QStringLiteral("%1 %2 %3 %4")
                       .arg(QString::number(action.position.lineNumber()), action.function,
                            action.arguments, action.hasFailed ? "failed" : "");
    }
    EXPECT_EQ(actions.join('\n'),
              "2 click {type='Button'}, 3, 4.5 \n"
              "3 click Button 'ok' \n"
              "4 own \"it's\" \n"
              "5 click object=\":OK\", modifiers=None \n"
              "8 fill \":OK\", \"x\" failed\n"
              "13 click \":OK\", True ");
}

TEST_F(PythonObjects, GlobalFunctionsFollowTheApplication) {
    Inspector::self()->setModel(nullptr);
    EXPECT_EQ(run("click(theButton())"), "tamrix.Error: No application is connected");
    InMemoryModel other;
    other.editableGlobalClass()->addMethod("special", Signature());
    other.onCall = [](const auto&, const auto&, const auto&) {
        return Inspector::self()->createObject(5);
    };
    static InMemoryModel* s_other;
    s_other = &other;
    define("switch", [](ScriptContext*) {
        Inspector::self()->setModel(s_other);
        return true;
    });
    EXPECT_EQ(run("switch()\nassert special() == 5"), "");
    EXPECT_EQ(run("click(theButton())"), "tamrix.Error: The application has no function 'click'");
    Inspector::self()->setModel(nullptr);
}

TEST_F(PythonObjects, OnlyTheScriptsThreadAsks) {
    EXPECT_EQ(run(R"py(
import threading
b, errors = theButton(), []
def work():
    for ask in (lambda: b.text, lambda: click(b)):
        try:
            ask()
        except RuntimeError as error:
            errors.append(str(error))
thread = threading.Thread(target=work)
thread.start()
thread.join()
assert [e.split('()')[0] for e in errors] == ['Button.text', 'click'], errors
)py"),
              "");
}

}  // namespace
}  // namespace Tamrix
