#include <QRect>

#include "platform/objectmodel/inspector.h"
#include "plugins/ruby/rubytest.h"
#include "support/inmemorymodel.h"

namespace Tamrix {
namespace {

using namespace Test;

class RubyObjects : public RubyTest {
protected:
    RubyObjects() {
        Class* const buttonClass = model.objectClass("Button");
        buttonClass->addProperty("text", "QString", true);
        buttonClass->addProperty("width", "int", true);
        buttonClass->addProperty("geometry", "QRect");
        buttonClass->addProperty("tags", "QVariantList", true);
        buttonClass->addProperty("class");
        buttonClass->addProperty("display", "QString");
        buttonClass->addMethod("resize", Signature({Argument("int"), Argument("int")}));
        buttonClass->addMethod("toggle", Signature());
        button = model.addObject("Button", "ok", model.addObject("Window", "main"));
        button->setProperty("text", QVariant("OK"));
        button->setProperty("geometry", QVariant(QRect(1, 2, 30, 40)));
        button->setProperty("class", QVariant("wide"));
        button->setProperty("display", QVariant("shown"));
        Class* const global = model.editableGlobalClass();
        global->addMethod("doubleClick", Signature({Argument("QObject")}));
        global->addMethod("select", Signature({Argument("QObject")}));
        model.onCall = [this](const auto& self, const QString& method,
                              const ObjectList& arguments) -> Outcome<SharedPtr<Object>> {
            QStringList words{self ? self->objectName() : "-", method};
            for (const SharedPtr<Object>& argument : arguments)
                words.append(argument->handle() ? argument->objectName()
                                                : argument->toVariant().toString());
            s_seen.append(words.join(' '));
            if (!failure.isEmpty())
                return fail(FailureKind::Failed, failure);
            return Inspector::self()->createObject(nextResult);
        };
        Inspector::self()->setModel(&model);
        runner.found = button;
        s_button = button;
        define("theButton", [](ScriptContext* context) {
            context->setObjectResult(s_button);
            return true;
        });
    }
    ~RubyObjects() override {
        s_button.reset();
        interpreter.reset();
        Inspector::self()->setModel(nullptr);
    }

    inline static SharedPtr<Object> s_button;
    InMemoryModel model;
    SharedPtr<InMemoryObject> button;
    QVariant nextResult;
    QString failure;
};

TEST_F(RubyObjects, ReadAndWriteProperties) {
    EXPECT_EQ(run(R"rb(
b = theButton
raise 'text' unless b.text == 'OK' && b[:text] == 'OK' && b['class'] == 'wide'
raise 'class' unless b.class == Tamrix::Object && b.is_a?(Tamrix::Object) && b.display == 'shown'
raise 'value' unless [b.geometry.x, b.geometry.width] == [1, 30]
raise 'equal' unless b == theButton && b != 5 && [b, theButton].uniq.size == 1 && !b.nil?
b.text = 'Cancel'
b.width = 7.0
b[:tags] = [1, 'two', {'k' => nil}, "\xff".b, b]
raise b.tags.inspect unless b.tags == [1, 'two', {'k' => nil}, "\xff".b, b]
raise 'width' unless b.width.eql?(7)
raise 'responds' unless b.respond_to?(:text) && b.respond_to?(:text=) && !b.respond_to?(:txet)
raise 'array' unless [b].flatten == [b] && "#{b}" == b.inspect && b.methods.include?(:resize)
raise 'properties' unless object.properties(b)['text'] == 'Cancel'
raise 'null' unless isNull(object.createNull('Button')) && object.createNull('Button').nil?
b.tags = []
)rb"),
              "");
    const std::pair<const char*, const char*> rows[] = {
        {"theButton.txet",
         "NoMethodError: 'Button' has no property or method 'txet'; the nearest: "
         "'text'"},
        {"theButton.q = 1", "NoMethodError: 'Button' has no property or method 'q'"},
        {"theButton.text = Object.new",
         "ArgumentError: A value of type 'Object' can't be passed to an application"},
        {"c = []\nc << c\ntheButton.tags = c",
         "Tamrix::Error: Button.tags() failed: A value for an application is nested deeper than "
         "16: does a part of it hold itself?"},
        {"d = {type: 'Button'}\nd[:container] = d\nfindObject(d)",
         "Tamrix::Error: findObject() failed: The name of an object is nested deeper than 16: does "
         "a part of it hold itself?"},
        {"Tamrix::Object.new", "NoMethodError: undefined method `new' for Tamrix::Object:Class"},
    };
    for (const auto& [code, error] : rows)
        EXPECT_EQ(run(code).section('\n', 0, 0), error) << code;
}

TEST_F(RubyObjects, CallMethodsAndGlobalFunctions) {
    nextResult = QVariantMap{{"done", true}};
    EXPECT_EQ(run(R"rb(
b = theButton
raise 'result' unless b.resize(3, 4) == {'done' => true}
b.toggle
b.toggle()
doubleClick(b)
double_click(':OK')
doubleClick({type: 'Button'}, 3, 4)
raise 'taken' unless [1, 2].select(&:odd?) == [1]
)rb"),
              "");
    EXPECT_EQ(s_seen, (QStringList{"ok resize 3 4", "ok toggle", "ok toggle", "- doubleClick ok",
                                   "- doubleClick ok", "- doubleClick ok 3 4"}));
    ASSERT_EQ(runner.calls.size(), 2);
    EXPECT_TRUE(runner.calls[1].startsWith("wait for {type='Button'} for "));
    failure = "the object is gone";
    const std::pair<const char*, const char*> rows[] = {
        {"theButton.resize(1, 2)", "Tamrix::Error: the object is gone"},
        {"theButton.resize(1)", "ArgumentError: Button.resize() takes (int, int), not 1 arguments"},
        {"theButton.toggle(value: 1)", "ArgumentError: Button.toggle() takes no named arguments"},
        {"theButton.text(1)", "ArgumentError: Button.text is a property, which takes no arguments"},
    };
    for (const auto& [code, error] : rows)
        EXPECT_EQ(run(code), error) << code;
    // A script that calls itself through functions of the system ends as any that has no end.
    EXPECT_TRUE(run("def again = waitFor { again }\nagain").contains("SystemStackError"));
}

TEST_F(RubyObjects, GoWhenNobodyHasThem) {
    const int before = s_button->referenceCount();
    EXPECT_EQ(run("1000.times { theButton }\nGC.start\n"), "");
    EXPECT_EQ(run("def garbage = nil\ngarbage\nGC.start\ntheButton"), "");
    // One call later at the latest, but for those that Ruby believes to see on its stack.
    EXPECT_LT(s_button->referenceCount(), before + 100);
}

}  // namespace
}  // namespace Tamrix
