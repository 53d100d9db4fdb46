#include "interpreter/objects/members.h"

#include "interpreter/objects/objectidentity.h"
#include "interpreter/objects/objectstest.h"

namespace Tamrix {
namespace {

using namespace Test;

class Members : public ObjectsTest {};

TEST_F(Members, AreReadByName) {
    const std::pair<const char*, const char*> rows[] = {
        {"text", "OK"},
        {"width", "int 7"},
        {"geometry", "QRect(1, 2, 30, 40)"},
        {"end", "right"},
        // Of a property and a method of one name the property is meant.
        {"both", "bool true"},
        {"resize", "<method Button.resize of {name='ok' type='Button'}>"},
        {"ofItsOwn", "int 3"},
        {"txet", "no member: 'Button' has no property or method 'txet'; the nearest: 'text'"},
        {"ned", "no member: 'Button' has no property or method 'ned'"},
        {"q", "no member: 'Button' has no property or method 'q'"},
        {"", "no member: 'Button' has no property or method ''"},
    };
    for (const auto& [name, value] : rows)
        EXPECT_EQ(get(context, button, name), value) << name;
    // Each took the application's model, and the text of the rectangle once more.
    EXPECT_EQ(runner.acquired, int(std::size(rows)) + 1);
    EXPECT_TRUE(get(context, button, "unreadable").startsWith("failed: "));
    EXPECT_EQ(readProperty(context, button, "width").value()->toInt(), 7);
    EXPECT_EQ(readProperty(context, button, "resize").error().text,
              "'resize' of 'Button' is a method: call it instead");
    EXPECT_EQ(memberNames(context, button).value(),
              (QStringList{"text", "width", "geometry", "end_", "unreadable", "both", "resize",
                           "setValue"}));
    // A keyword of the language is told as scripts write it.
    EXPECT_EQ(get(context, button, "endd"),
              "no member: 'Button' has no property or method 'endd'; the nearest: 'end_'");
}

TEST_F(Members, AreWrittenWithValuesOfTheirTypes) {
    const struct {
        const char* name;
        SharedPtr<ScriptArgument> value;
        /// What was read afterwards, or the error.
        const char* outcome;
    } rows[] = {
        {"text", text("Cancel"), "Cancel"},
        {"text", integer(5), "5"},
        {"width", number(8.0), "int 8"},
        {"end", list({integer(1), map({{"k", text("v")}})}), "[int 1, {k: v}]"},
        {"text", object(button), "{name='ok' type='Button'}"},
        {"geometry", integer(1), "no member: The property 'geometry' of 'Button' can't be written"},
        {"text", nullptr, "no member: The property 'text' of 'Button' can't be deleted"},
        {"end", nullptr, "no member: The property 'end_' of 'Button' can't be deleted"},
        {"resize", integer(1), "no member: 'resize' of 'Button' is a method: call it instead"},
        {"widht", integer(1),
         "no member: 'Button' has no property or method 'widht'; the nearest: 'width'"},
        {"text", callable({}),
         "bad argument: A value of type 'function' can't be passed to an application"},
    };
    for (const auto& row : rows) {
        const QString error = set(context, button, row.name, row.value);
        EXPECT_EQ(error.isEmpty() ? get(context, button, row.name) : error, row.outcome)
            << row.name;
    }
    // The button must not hold itself.
    button->setProperty("text", QVariant());

    SharedPtr<ScriptArgument> deep = text("x");
    for (int level = 0; level < 17; ++level)
        deep = list({deep});
    EXPECT_EQ(set(context, button, "text", deep),
              "failed: Button.text() failed: A value for an application is nested deeper than 16: "
              "does a part of it hold itself?");
}

TEST_F(Members, MethodsAreCalledWithWhatTheScriptGives) {
    const struct {
        const char* method;
        CallArguments arguments;
        /// What the application saw, or the error.
        const char* outcome;
    } rows[] = {
        {"resize", {{integer(3), integer(4)}, {}}, "ok resize int:3 int:4"},
        {"resize", {{boolean(true), number(4)}, {}}, "ok resize bool:true double:4"},
        // Which overload is meant is the application's to say: values go as they are.
        {"setValue", {{integer(5)}, {}}, "ok setValue int:5"},
        {"setValue", {{text("five")}, {}}, "ok setValue QString:five"},
        {"setValue", {{object(button)}, {}}, "ok setValue ok"},
        {"resize",
         {{integer(1)}, {}},
         "bad argument: Button.resize() takes (int, int), not 1 arguments"},
        {"setValue",
         {},
         "bad argument: Button.setValue() takes (int) or (QString), not 0 arguments"},
        {"setValue",
         {{}, {{"value", integer(1)}}},
         "bad argument: Button.setValue() takes no named arguments"},
        {"resize",
         {{integer(1), callable({})}, {}},
         "bad argument: Button.resize() argument 2: A value of type 'function' can't be passed to "
         "an application"},
    };
    for (const auto& row : rows) {
        const QString outcome = call(context, button, row.method, row.arguments);
        EXPECT_EQ(outcome == "done" ? takeSeen() : outcome, row.outcome);
    }
    EXPECT_EQ(takeSeen(), "");
    nextResult = QVariant();
    EXPECT_EQ(call(context, button, "resize", {{integer(1), integer(2)}, {}}), "null");
    failure = "the object is gone";
    EXPECT_EQ(call(context, button, "resize", {{integer(1), integer(2)}, {}}),
              "failed: the object is gone");
    isLookup = true;
    EXPECT_EQ(call(context, button, "resize", {{integer(1), integer(2)}, {}}),
              "not found: the object is gone");
}

TEST_F(Members, ObjectsAreComparedByWhatTheyStandFor) {
    Inspector* const inspector = Inspector::self();
    const SharedPtr<Object> rectangle = inspector->createObject(QRect(1, 2, 3, 4));
    const SharedPtr<Object> none = inspector->createNullObject(model.objectClass("Button"));
    const struct {
        SharedPtr<Object> left;
        SharedPtr<Object> right;
        bool isSame;
    } pairs[] = {
        {button, model.findObject("{name='ok' type='Button'}"), true},
        {button, model.addObject("Button", "ok"), false},
        {rectangle, inspector->createObject(QRect(1, 2, 3, 4)), true},
        {rectangle, inspector->createObject(QRect(1, 2, 3, 5)), false},
        {inspector->createObject(1), inspector->createObject(1.0), false},
        {rectangle, none, false},
        {none, rectangle, false},
    };
    for (const auto& pair : pairs) {
        EXPECT_EQ(isSameObject(pair.left, pair.right), pair.isSame);
        EXPECT_EQ(context.valuesEqual(object(pair.left), object(pair.right)), pair.isSame);
        if (pair.isSame) {
            EXPECT_EQ(objectHash(pair.left), objectHash(pair.right));
        }
    }
    EXPECT_TRUE(context.isTrue(object(button)));
    EXPECT_FALSE(context.isTrue(object(none)));
    EXPECT_EQ(objectText(rectangle).value(), "QRect(1, 2, 3, 4)");
    EXPECT_EQ(objectText(none).value(), "<Button object>");
}

}  // namespace
}  // namespace Tamrix
