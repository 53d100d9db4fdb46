#include <QRect>

#include "platform/objectmodel/inspector.h"
#include "plugins/tcl/tcltest.h"
#include "support/inmemorymodel.h"

namespace Tamrix {
namespace {

using namespace Test;

class TclObjects : public TclTest {
protected:
    TclObjects() {
        Class* const buttonClass = model.objectClass("Button");
        buttonClass->addProperty("text", "QString", true);
        buttonClass->addProperty("width", "int", true);
        buttonClass->addProperty("enabled", "bool", true);
        buttonClass->addProperty("geometry", "QRect");
        buttonClass->addProperty("tags", "QVariantList", true);
        buttonClass->addProperty("unreadable");
        buttonClass->addMethod("resize", Signature({Argument("int"), Argument("int")}));
        buttonClass->addMethod("setValue", Signature({Argument("QVariant")}));
        button = model.addObject("Button", "ok", model.addObject("Window", "main"));
        button->setProperty("text", QVariant("OK"));
        button->setProperty("enabled", QVariant(true));
        button->setProperty("geometry", QVariant(QRect(1, 2, 30, 40)));
        button->setProperty("ofItsOwn", QVariant(3));
        Class* const global = model.editableGlobalClass();
        global->addMethod("click", Signature({Argument("QObject")}));
        global->addMethod("clipboardText", Signature());
        global->addMethod("own", Signature({Argument("QString")}));
        global->addMethod("puts", Signature({Argument("QObject")}));
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
    ~TclObjects() override {
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
        if (!failure.isEmpty())
            return fail(isLookup ? FailureKind::NotReady : FailureKind::Failed, failure);
        return Inspector::self()->createObject(nextResult);
    }

    inline static SharedPtr<Object> s_button;
    InMemoryModel model;
    SharedPtr<InMemoryObject> button;
    QVariant nextResult;
    QString failure;
    bool isLookup = false;
};

TEST_F(TclObjects, ReadAndWriteProperties) {
    EXPECT_EQ(run(R"tcl(
proc check {value expected} {if {$value ne $expected} {error "$value, not $expected"}}
set b [theButton]
check $b [theButton]
check [$b text] OK
check [$b cget -text] OK
check [$b ofItsOwn] 3
check [[$b geometry] width] 30
check [$b geometry] [$b geometry]
$b configure -text Cancel -width 7.0 -enabled false
check [$b text] Cancel
check [$b width] 7
if {[$b enabled]} {error enabled}
$b configure -tags [list 1 two [dict create k v] $b]
check [lrange [$b tags] 0 2] {1 two {k v}}
check [lindex [$b tags] 3] $b
$b configure -tags [list]
check [dict get [object properties $b] text] Cancel
check [object children [object parent $b]] [list $b]
if {![isNull [object createNull Button]]} {error null}
check [typeName $b] Button
test log $b
# A name is a name, whatever became of it.
check [[string trim " $b "] text] Cancel
rename $b {}
check [catch {$b text}] 1
check [[theButton] text] Cancel
)tcl"),
              "");
    EXPECT_EQ(results(), QStringList("7 {name='ok' type='Button'}: "));
    const std::pair<const char*, const char*> rows[] = {
        {"$b txet", "MemberError: 'Button' has no property or method 'txet'; the nearest: 'text'"},
        {"$b configure -q 1", "MemberError: 'Button' has no property or method 'q'"},
        {"$b configure -resize 1",
         "MemberError: 'resize' of 'Button' is a method: call it instead"},
        {"$b cget -resize", "MemberError: 'resize' of 'Button' is a method: call it instead"},
        {"$b text 5", "ArgumentError: Button.text is a property, which takes no arguments"},
        {"$b configure text 5", "MemberError: Button has no property \"text\""},
        {"$b cget", "ArgumentError: wrong # args: should be \"Button cget -property\""},
        {"$b", "ArgumentError: wrong # args: should be \"Button method ?arg ...?\""},
    };
    ASSERT_EQ(run("set b [theButton]"), "");
    for (const auto& [code, error] : rows)
        EXPECT_EQ(run(code), error) << code;
}

TEST_F(TclObjects, CallMethods) {
    nextResult = QVariantMap{{"done", true}};
    EXPECT_EQ(run(R"tcl(
set b [theButton]
if {[dict get [$b resize 3 4] done] ne true} {error result}
$b setValue 5
$b setValue 007
$b setValue [expr {4 / 2.0}]
$b setValue five
$b setValue {}
$b setValue [expr {1 == 1}]
$b setValue [theButton]
)tcl"),
              "");
    EXPECT_EQ(s_seen,
              (QStringList{"ok resize int:3 int:4", "ok setValue int:5", "ok setValue QString:007",
                           "ok setValue double:2", "ok setValue QString:five",
                           "ok setValue QString:", "ok setValue int:1", "ok setValue ok"}));
    failure = "the object is gone";
    EXPECT_EQ(run("$b resize 1 2"), "TamrixError: the object is gone");
    EXPECT_EQ(run("$b resize 1"),
              "ArgumentError: Button.resize() takes (int, int), not 1 arguments");
}

TEST_F(TclObjects, NamesHaveManyForms) {
    const std::pair<const char*, const char*> rows[] = {
        {"\"{type='Button' text='OK'}\"", "{type='Button' text='OK'}"},
        {"{type='Button' text='OK'}", "{type='Button' text='OK'}"},
        {"{type Button text {Save As}}", "{text='Save As' type='Button'}"},
        {"{type Button text* Sav*}", "{text*='Sav*' type='Button'}"},
        {"[dict create type Button window [dict create type Window]]",
         "{type='Button' window={type='Window'}}"},
        {"{type Button text {type A} window {type Window visible true}}",
         "{text='type A' type='Button' window={type='Window' visible='true'}}"},
        {"{type Button label {two words}}", "{label='two words' type='Button'}"},
        {"{type Button window {{type='Window'}}}", "{type='Button' window={type='Window'}}"},
        {":OK", ":OK"},
        {"{:Save As}", ":Save As"},
    };
    for (const auto& [code, name] : rows) {
        EXPECT_EQ(run(QString("waitForObjectExists ") + code), "") << code;
        EXPECT_TRUE(runner.calls.last().startsWith("wait until exists " + QString(name)))
            << runner.calls.last().toStdString();
    }
}

TEST_F(TclObjects, AFailedConditionReadsPropertiesOnceMore) {
    EXPECT_EQ(
        run("set b [theButton]\n"
            "test verify [expr {[$b text] eq {No} || ![$b cget -enabled] && [$b resize 1 2]}]"),
        "");
    ASSERT_EQ(report.results().size(), 1u);
    EXPECT_EQ(report.results().front().explanation.section('\n', 0, 1),
              "[$b text] eq {No} || ![$b cget -enabled] && [$b resize 1 2]\n[$b text]: OK");
    EXPECT_TRUE(report.results().front().explanation.contains("\n$b: ")) << "of the method";
    EXPECT_EQ(s_seen, QStringList()) << "no method is called";
}

TEST_F(TclObjects, CallGlobalFunctions) {
    nextResult = "text";
    EXPECT_EQ(run(R"tcl(
set b [theButton]
if {[click $b] ne {text}} {error result}
click :OK
click {type Button} 3 4
clipboardText
own {a text}
puts stderr out
)tcl"),
              "");
    EXPECT_EQ(s_seen, (QStringList{"- click ok", "- click ok", "- click ok int:3 int:4",
                                   "- clipboardText", "- own QString:a text"}));
    s_seen.clear();
    const std::pair<const char*, const char*> named[] = {
        {"click $b -modifiers 0x04000000", "QString:left QString:0x04000000"},
        {"click $b -modifiers Ctrl -button 2", "QString:right QString:Ctrl"},
        {"click $b {} {} right", "QString:right"},
        {"click $b -x 3 -y 4", "int:3 int:4"},
    };
    for (const auto& [code, arguments] : named) {
        EXPECT_EQ(run(code), "") << code;
        EXPECT_EQ(s_seen.takeLast(), QString("- click ok ") + arguments) << code;
    }
    EXPECT_EQ(run("click $b -x 3"), "ArgumentError: click() needs an argument 'y'");
    EXPECT_EQ(run("fill $b x"), "TamrixError: The application has no function 'fill'");
    failure = "it is not ready: it is disabled";
    EXPECT_EQ(run("click $b"), "TamrixError: it is not ready: it is disabled");
    isLookup = true;
    EXPECT_EQ(run("try {click $b} trap {TAMRIX LOOKUP} {} {set lookup 1}\nset lookup"), "");
}

TEST_F(TclObjects, NativeClassesAreCommands) {
    EXPECT_EQ(run(R"tcl(
proc check {value expected} {if {$value ne $expected} {error "$value, not $expected"}}
set image [Image new 4 3 red]
check [$image cget -width] 4
check [$image height] 3
$image setPixel 1 1 0 255 0
check [$image getPixelRGBA 1 1] {0 255 0 255}
check [[$image copy 0 0 2 2] width] 2
check [[Image new $image] equals $image] true
testSettings configure -waitForObjectTimeout 500
check [testSettings cget -waitForObjectTimeout] 500
testSettings configure -waitForObjectTimeout 20000
check $testInteraction::Ok [set ::testInteraction::Ok]
check [test::resultCount passes] [test resultCount passes]
)tcl"),
              "");
    const std::pair<const char*, const char*> rows[] = {
        {"$image widht", "MemberError: Image has no subcommand \"widht\"; the nearest: \"width\""},
        {"$image configure -width 5",
         "MemberError: The property 'width' of 'Image' can't be written"},
        {"Image laod x", "MemberError: Image has no subcommand \"laod\"; the nearest: \"load\""},
        {"testSettings new", "ArgumentError: testSettings objects can't be made by scripts"},
        {"test komm", "Error: unknown subcommand \"komm\": must be "},
    };
    for (const auto& [code, error] : rows)
        EXPECT_EQ(run(code).left(int(qstrlen(error))), error) << code;
}

}  // namespace
}  // namespace Tamrix
