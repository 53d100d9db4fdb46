#include "interpreter/objects/globalfunctions.h"

#include "interpreter/objects/objectstest.h"

namespace Tamrix {
namespace {

using namespace Test;

class GlobalFunctions : public ObjectsTest {
protected:
    GlobalFunctions() {
        Class* const global = model.editableGlobalClass();
        global->addMethod("click", Signature({Argument("Object")}));
        global->addMethod("clipboardText", Signature());
        global->addMethod("ownText", Signature({Argument("QString")}));
        global->addMethod("lookAt", Signature({Argument("Object")}));
        global->addMethod("stir", Signature({Argument("int"), Argument("Object")}))
            .describe("times[, object]", "Stirs the object");
    }

    /// The actions of the results, each on a line: function, arguments, "failed".
    QString takeActions() {
        QStringList lines;
        for (const ActionEnded& action : report.all<ActionEnded>())
            lines += QStringList{action.function, action.arguments,
                                 action.hasFailed ? QStringLiteral("failed") : QString()}
                         .join('|');
        report.entries.clear();
        return lines.join('\n');
    }
};

TEST_F(GlobalFunctions, AreKnownByNameAndHelp) {
    const QStringList common = globalFunctionNames(nullptr);
    EXPECT_TRUE(common.contains("click") && common.contains("clipboardText"));
    EXPECT_EQ(globalFunctionNames(&model), common + QStringList({"ownText", "lookAt", "stir"}));
    EXPECT_EQ(globalFunctionHelp("click"),
              "click(object[, x, y][, button][, modifiers])\n\n"
              "Clicks the object, in its middle without a place");
    EXPECT_EQ(globalFunctionHelp("stir"), "stir(times[, object])\n\nStirs the object");
    EXPECT_EQ(globalFunctionHelp("lookAt"), "A function of the application");
    // What the application tells counts.
    model.editableGlobalClass()->addMethod("fill", Signature()).describe("", "Fills all");
    EXPECT_EQ(globalFunctionHelp("fill"), "fill()\n\nFills all");
    Inspector::self()->setModel(nullptr);
    EXPECT_EQ(globalFunctionHelp("fill"), "fill(object, text)\n\nSets the whole text of a field");
}

TEST_F(GlobalFunctions, TakeObjectsAlsoByName) {
    const auto name = map({{"type", text("Button")}});
    const struct {
        const char* function;
        CallArguments arguments;
        /// What the application saw, or the error.
        const char* outcome;
        /// The action's arguments.
        const char* action;
    } rows[] = {
        {"click", {{object(button)}, {}}, "- click ok", "Button 'ok'|"},
        {"click", {{text(":OK")}, {}}, "- click ok", "\":OK\"|"},
        {"click",
         {{name, integer(3), number(4.5)}, {}},
         "- click ok int:3 double:4.5",
         "{type='Button'}, 3, 4.5|"},
        {"click",
         {{}, {{"object", text(":OK")}, {"modifiers", text("Ctrl")}}},
         "- click ok QString:left QString:Ctrl",
         "object=\":OK\", modifiers=\"Ctrl\"|"},
        {"click", {{integer(1)}, {}}, "- click int:1", "1|"},
        {"clipboardText", {}, "- clipboardText", "|"},
        // What is not described takes an object unless a method of the name takes a text.
        {"ownText", {{text("a text")}, {}}, "- ownText QString:a text", "\"a text\"|"},
        {"lookAt", {{text(":OK")}, {}}, "- lookAt ok", "\":OK\"|"},
        {"stir", {{}, {{"times", text("5")}}}, "- stir QString:5", "times=\"5\"|"},
        {"lookAt",
         {{}, {{"object", text(":OK")}}},
         "bad argument: lookAt() takes no named arguments",
         "object=\":OK\"|failed"},
        {"click",
         {{text(":OK")}, {{"colour", list({text("red"), integer(1)})}}},
         "bad argument: click() has no argument 'colour'",
         "\":OK\", colour=[\"red\", 1]|failed"},
        {"click",
         {{text(":OK"), callable({})}, {}},
         "bad argument: click() argument 2: A value of type 'function' can't be passed to an "
         "application",
         "\":OK\", function|failed"},
        {"fill",
         {{text(":OK"), text("x")}, {}},
         "failed: The application has no function 'fill'",
         "\":OK\", \"x\"|failed"},
    };
    for (const auto& row : rows) {
        const QString outcome = call(context, row.function, row.arguments);
        EXPECT_EQ(outcome == "done" ? takeSeen() : outcome, row.outcome);
        EXPECT_EQ(takeActions(), QString(row.function) + "|" + row.action);
    }
    EXPECT_TRUE(runner.calls.first().startsWith("wait for :OK for "));
    EXPECT_TRUE(runner.calls.at(1).startsWith("wait for {type='Button'} for "));
}

TEST_F(GlobalFunctions, TellNoPasswords) {
    Class* const global = model.editableGlobalClass();
    for (const char* const function : {"fill", "typeText"})
        global->addMethod(function, Signature({Argument("Object"), Argument("QString")}))
            .describe("object, text", "Enters it");
    Class* const fieldClass = model.objectClass("Field");
    fieldClass->addProperty("echoMode");
    const SharedPtr<InMemoryObject> shown = model.addObject("Field", "name");
    const SharedPtr<InMemoryObject> hidden = model.addObject("Field", "code");
    shown->setProperty("echoMode", QVariant(0));
    hidden->setProperty("echoMode", QVariant(2));
    const auto named = [this](const char* name) { return map({{"name", text(name)}}); };
    const struct {
        const char* function;
        CallArguments arguments;
        const char* action;
    } rows[] = {
        {"fill", {{object(hidden), text("hunter2")}, {}}, "Field 'code', ******|"},
        {"typeText", {{named("code"), text("hunter2")}, {}}, "{name='code'}, ******|"},
        {"fill",
         {{}, {{"text", text("hunter2")}, {"object", named("code")}}},
         "text=******, object={name='code'}|"},
        {"fill", {{object(shown), text("Ann")}, {}}, "Field 'name', \"Ann\"|"},
        {"fill", {{named("name"), text("Ann")}, {}}, "{name='name'}, \"Ann\"|"},
        {"fill", {{object(button), text("Ann")}, {}}, "Button 'ok', \"Ann\"|"},
    };
    for (const auto& row : rows) {
        call(context, row.function, row.arguments);
        EXPECT_EQ(takeActions(), QString(row.function) + "|" + row.action);
    }
}

TEST_F(GlobalFunctions, TellWhyTheyFailed) {
    failure = "it is not ready: it is disabled";
    EXPECT_EQ(call(context, "click", {{object(button)}, {}}), "failed: " + failure);
    isLookup = true;
    EXPECT_EQ(call(context, "click", {{object(button)}, {}}), "not found: " + failure);
    EXPECT_EQ(takeActions(), "click|Button 'ok'|failed\nclick|Button 'ok'|failed");
    runner.found.reset();
    EXPECT_EQ(call(context, "click", {{text(":OK")}, {}}), "not found: it is not there");
    EXPECT_EQ(takeActions(), "click|\":OK\"|failed");
    SharedPtr<ScriptArgument> deep = map({});
    for (int level = 0; level < 17; ++level)
        deep = map({{"container", deep}});
    EXPECT_EQ(call(context, "click", {{deep}, {}}),
              "failed: click() failed: The name of an object is nested deeper than 16: does a part "
              "of it hold itself?");
    Inspector::self()->setModel(nullptr);
    EXPECT_EQ(call(context, "click", {{object(button)}, {}}),
              "failed: No application is connected");
}

}  // namespace
}  // namespace Tamrix
