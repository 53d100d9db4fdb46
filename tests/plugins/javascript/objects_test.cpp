#include <QRect>

#include "platform/objectmodel/inspector.h"
#include "plugins/javascript/javascripttest.h"
#include "support/inmemorymodel.h"

namespace Tamrix {
namespace {

using namespace Test;

class JavaScriptObjects : public JavaScriptTest {
protected:
    JavaScriptObjects() {
        Class* const buttonClass = model.objectClass("Button");
        buttonClass->addProperty("text", "QString", true);
        buttonClass->addProperty("width", "int", true);
        buttonClass->addProperty("geometry", "QRect");
        buttonClass->addProperty("tags", "QVariantList", true);
        buttonClass->addMethod("resize", Signature({Argument("int"), Argument("int")}));
        button = model.addObject("Button", "ok", model.addObject("Window", "main"));
        button->setProperty("text", QVariant("OK"));
        button->setProperty("geometry", QVariant(QRect(1, 2, 30, 40)));
        Class* const global = model.editableGlobalClass();
        global->addMethod("click", Signature({Argument("QObject")}));
        global->addMethod("own", Signature({Argument("QString")}));
        global->addMethod("print", Signature({Argument("QString")}));
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
    ~JavaScriptObjects() override {
        s_button.reset();
        interpreter.reset();
        Inspector::self()->setModel(nullptr);
    }

    Outcome<SharedPtr<Object>> answer(const SharedPtr<Object>& self, const QString& method,
                                      const ObjectList& arguments) {
        QStringList words{self ? self->objectName() : "-", method};
        for (const SharedPtr<Object>& argument : arguments)
            words.append(argument->handle()
                             ? argument->objectName()
                             : QString("%1:%2").arg(argument->className(),
                                                    argument->toVariant().toString()));
        s_seen.append(words.join(' '));
        if (!failure.isEmpty())
            return fail(FailureKind::NotReady, failure);
        return Inspector::self()->createObject(nextResult);
    }

    inline static SharedPtr<Object> s_button;
    InMemoryModel model;
    SharedPtr<InMemoryObject> button;
    QVariant nextResult;
    QString failure;
};

TEST_F(JavaScriptObjects, ReadAndWriteProperties) {
    EXPECT_EQ(run(R"js(
const b = theButton();
test.compare(b.text, "OK");
test.compare([b.geometry.x, b.geometry.width], [1, 30]);
test.compare(b, theButton());
test.verify(b.geometry !== b.geometry);
test.compare(b.geometry, theButton().geometry);
b.text = "Cancel";
b.width = 7;
b.tags = [1, "two", {k: null}, new Uint8Array([120]), theButton()];
test.compare([b.text, b.width], ["Cancel", 7]);
test.compare(b.tags, [1, "two", {k: null}, new Uint8Array([120]), b]);
test.verify("text" in b && !("nothing" in b));
test.verify(Object.keys(b).includes("resize"));
test.compare(object.properties(b).text, "Cancel");
test.compare(object.children(object.parent(b)), [b]);
test.compare(`${b}`, "{name='ok' type='Button'}");
test.compare(JSON.stringify({b: b.text}), '{"b":"Cancel"}');
Object.defineProperty(b, "width", {value: 8});
test.verify(b.width === 8 && Object.getOwnPropertyDescriptor(b, "nothing") === undefined);
b.tags = [];
)js"),
              "");
    for (const QString& each : results())
        EXPECT_TRUE(each.startsWith("10 ")) << qPrintable(each);

    const std::pair<const char*, const char*> rows[] = {
        {"b.txet",
         "ReferenceError: 'Button' has no property or method 'txet'; the nearest: 'text'"},
        {"b.q = 1", "ReferenceError: 'Button' has no property or method 'q'"},
        {"delete b.text", "ReferenceError: The property 'text' of 'Button' can't be deleted"},
        {"b.resize = 1", "ReferenceError: 'resize' of 'Button' is a method: call it instead"},
        {"Object.preventExtensions(b)", "TypeError: "},
        {"b.text = Math.max",
         "TypeError: A value of type 'function' can't be passed to an application"},
        {"const c = []; c.push(c); b.tags = c",
         "tamrix.Error: Button.tags() failed: A value for an application is nested deeper than 16: "
         "does a part of it hold itself?"},
        {"await Promise.resolve(b); b.resize(1)", "TypeError: "},
    };
    for (const auto& [code, error] : rows) {
        const QString told =
            run(QStringLiteral("{ const b = theButton(); %1 }").arg(QLatin1String(code)));
        EXPECT_TRUE(told.startsWith(error)) << code << ": " << qPrintable(told);
    }
}

TEST_F(JavaScriptObjects, CallMethodsAndGlobalFunctions) {
    nextResult = 5;
    EXPECT_EQ(run(R"js(
const b = theButton();
const resize = b.resize;
test.compare([b.resize(3, 4), resize(5, 6)], [5, 5]);
click(b);
click("{name='ok'}");
click(b, undefined, undefined, "left");
own("x");
print("to the results");
)js"),
              "");
    EXPECT_TRUE(results().at(0).startsWith("10 "));
    EXPECT_EQ(s_seen.mid(0, 4), (QStringList{"ok resize int:3 int:4", "ok resize int:5 int:6",
                                             "- click ok", "- click ok"}));
    EXPECT_EQ(s_seen.last(), "- own QString:x");

    failure = "not ready in time";
    EXPECT_EQ(run("\nclick('{name=\"ok\"}')"), "tamrix.LookupError: not ready in time");
    EXPECT_EQ(lines(), std::vector{2});
    EXPECT_EQ(run("function click() { return 'mine'; }\ntest.compare(click(), 'mine')"), "");
    EXPECT_TRUE(results().last().startsWith("10 "));
}

}  // namespace
}  // namespace Tamrix
