#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QElapsedTimer>

#include "agent/input/inputtest.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

TAMRIX_FOR_EACH_PLATFORM(InputTest, {"offscreen", "xcb", "wayland"});

TEST_P(InputTest, MouseFunctionsGiveTheEventsOfAPerson) {
    struct {
        const char* function;
        QVariantList arguments;
        const char* log;
    } const cases[] = {
        {"click", {5, 6}, "enter|press 5,6 1 1|release 5,6 1 0"},
        {"click", {5, 6}, "press 5,6 1 1|release 5,6 1 0"},  // no double click
        {"doubleClick", {7, 8}, "press 7,8 1 1|release 7,8 1 0|double 7,8 1 1|release 7,8 1 0"},
        {"click", {5, 6, 2}, "press 5,6 2 2|release 5,6 2 0"},
        {"click", {5, 6, "middle"}, "press 5,6 4 4|release 5,6 4 0"},
        {"click",
         {5, 6, 1, "Ctrl+Shift"},
         "down 1000021/4000000 ''|down 1000020/6000000 ''|Ctrl+Shift+press 5,6 1 1|"
         "Ctrl+Shift+release 5,6 1 0|up 1000020/4000000 ''|up 1000021/0 ''"},
        {"click",
         {5, 6, "Alt"},
         "down 1000023/8000000 ''|Alt+press 5,6 1 1|Alt+release 5,6 1 0|up 1000023/0 ''"},
        {"hover", {9, 9}, ""},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(program().call(row.function, "pad", row.arguments), "");
        EXPECT_EQ(program().takeLog(), row.log) << row.function;
    }
    EXPECT_EQ(program().read("pad", "lastMove").toPoint(), QPoint(9, 9));
    EXPECT_EQ(program().call("drag", "pad", {10, 10, 100, 20}), "");
    EXPECT_EQ(program().takeLog(), "press 10,10 1 1|release 110,30 1 0");
    EXPECT_GT(program().read("pad", "dragMoves").toInt(), 3);
    EXPECT_EQ(program().call("hover", "Plain"), "");
    EXPECT_EQ(program().takeLog(), "leave");
}

TEST_P(InputTest, WrongCallsNameWhatIsWrong) {
    const QString usage = "; usage: click(object[, x, y][, button][, modifiers])";
    struct {
        const char* function;
        const char* object;
        QVariantList arguments;
        QString error;
    } const cases[] = {
        {"click",
         "pad",
         {5, 6, 3},
         "click: 3 is no mouse button: 1 is left, 2 right, 4 middle" + usage},
        {"click",
         "pad",
         {"lift", 1},
         "click: 'lift' is no mouse button: \"left\", \"right\" or \"middle\"" + usage},
        {"click",
         "pad",
         {"lift"},
         "click: 'lift' is neither a mouse button nor a modifier" + usage},
        {"click", "pad", {"Ctrl+Foo"}, "click: unknown modifier 'Foo' in 'Ctrl+Foo'" + usage},
        {"click", "pad", {1, 2, 1, 0, 9}, "click: 6 arguments are too many, 5 were used" + usage},
        {"press",
         "line",
         {"Ctrl+Blub"},
         "press: unknown key 'Blub' in 'Ctrl+Blub'; usage: press(object, keys)"},
        {"drag",
         "pad",
         {1},
         "drag: the argument y is missing; usage: drag(object, x, y, dx, dy[, button][, "
         "modifiers])"},
        {"fill", "Plain", {"x"}, "QPushButton 'Plain' is no field that takes text"},
        {"fill", "combo", {"x"}, "QComboBox 'Choice 0' is no field that takes text"},
        {"fill", "readOnly", {"x"}, "QLineEdit 'readOnly' is read only"},
        {"check", "Plain", {}, "QPushButton 'Plain' can't be checked"},
        {"uncheck", "radioA", {}, "QRadioButton 'A' can't be unchecked: check another one instead"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(program().call(row.function, row.object, row.arguments), row.error);
    EXPECT_EQ(program().takeLog(), "");
}

TEST_P(InputTest, CallsWaitUntilTheObjectIsReady) {
    EXPECT_EQ(program().call("click", "Disabled", {}, 300),
              "QPushButton 'Disabled' is not ready: it is disabled");
    EXPECT_EQ(program().call("click", "EnableLater"), "");
    EXPECT_EQ(program().call("click", "Disabled"), "");
    EXPECT_EQ(program().takeLog(), "impossible");
    EXPECT_EQ(program().call("click", "Move"), "");
    EXPECT_EQ(program().call("click", "Moving", {}, 200),
              "QPushButton 'Moving' is not ready: it is moving");
    EXPECT_EQ(program().call("click", "Moving"), "");
    EXPECT_EQ(program().takeLog(), "caught");
    EXPECT_THAT(program().call("click", "Covered", {}, 200).toStdString(),
                testing::MatchesRegex("QPushButton 'Covered' is not ready: QFrame 'overlay' covers "
                                      "the point \\([0-9]+, [0-9]+\\)"));
    EXPECT_EQ(program().call("click", "Covered", {3, 5}), "");
    EXPECT_EQ(program().takeLog(), "reached");
    EXPECT_EQ(program().call("click", "Deep15"), "");  // scrolled to
    EXPECT_EQ(program().takeLog(), "deep 15");
}

TEST_P(InputTest, AModalDialogBlocksTheRestAndIsAnswered) {
    EXPECT_EQ(program().call("click", "Modal"), "");
    EXPECT_EQ(program().call("click", "Plain", {}, 200),
              "QPushButton 'Plain' is not ready: the modal window QMessageBox 'Sure?' blocks it");
    EXPECT_EQ(program().call("click", program().client().find({"type=QPushButton", "text=Yes"})),
              "");
    EXPECT_EQ(program().takeLog(), "yes");
    EXPECT_EQ(program().call("click", "Modal"), "");
    EXPECT_EQ(program().call("closeWindow", program().client().find({"type=QMessageBox"})), "");
    EXPECT_EQ(program().takeLog(), "no");
}

TEST_P(InputTest, EveryFunctionTellsThatTheObjectIsGone) {
    EXPECT_EQ(program().call("click", "Modal"), "");
    const Wire::ObjectInfo button = program().client().find({"type=QPushButton", "text=Yes"});
    EXPECT_EQ(program().call("click", button), "");
    const struct {
        const char* function;
        QVariantList arguments;
    } rows[] = {
        {"click", {}}, {"click", {1, 2}}, {"doubleClick", {}}, {"drag", {1, 2, 3, 4}},
        {"hover", {}}, {"fill", {"x"}},   {"typeText", {"x"}}, {"press", {"Return"}},
        {"check", {}}, {"uncheck", {}},   {"closeWindow", {}}, {"selectItem", {"x"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(program().call(row.function, button, row.arguments),
                  "the QPushButton does not exist any more")
            << row.function;
        EXPECT_EQ(program().client().lastKind(), FailureKind::Gone);
    }
}

TEST_P(InputTest, AClickMayEndTheProgram) {
    EXPECT_EQ(program().call("click", "Exit"), "");
    EXPECT_TRUE(program().endsWith(7));
}

TEST_P(InputTest, FieldsAreFilled) {
    struct {
        const char* object;
        const char* text;
        const char* property;
    } const cases[] = {
        {"line", "Grüße, Ω 漢字 😀!", "text"},      {"line", "", "text"},
        {"textEdit", "two\nlines", "plainText"},   {"plainEdit", "two\n\tlines", "plainText"},
        {"editable", "some Thing", "currentText"},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(program().call("fill", row.object, {row.text}), "");
        EXPECT_EQ(program().read(row.object, row.property).toString(), row.text);
    }
    EXPECT_EQ(program().call("fill", "spin", {"123"}), "");
    EXPECT_EQ(program().read("spin", "value").toInt(), 123);
    EXPECT_EQ(program().call("fill", "line", {"one"}), "");
    EXPECT_EQ(program().call("typeText", "line", {" two\n"}), "");
    EXPECT_EQ(program().read("line", "text").toString(), "one two");
    EXPECT_EQ(program().takeLog(), "return");
    for (const char* const keys : {"Ctrl+A", "Ctrl+C", "End", "Ctrl+V", "Shift+Home", "Ctrl+X"})
        EXPECT_EQ(program().call("press", "line", {keys}), "") << keys;
    EXPECT_EQ(program().read("line", "text").toString(), "");
    Wire::Invoke clipboard;
    clipboard.method = "clipboardText";
    // A compositor gives the clipboard only for input that it knows.
    EXPECT_EQ(program().client().request<Wire::Value>(Wire::MessageType::Invoke, clipboard).value,
              isWayland() ? "" : "one twoone two");
}

TEST_P(InputTest, KeysComeAsFromAKeyboard) {
    struct {
        const char* keys;
        const char* log;
    } const cases[] = {
        {"a", "down 41/0 'a'|up 41/0 'a'"},
        {"A", "down 41/0 'a'|up 41/0 'a'"},
        {"Shift+a",
         "down 1000020/2000000 ''|down 41/2000000 'A'|up 41/2000000 'A'|up 1000020/0 ''"},
        {"Return", "down 1000004/0 'R'|up 1000004/0 'R'"},
        {"f5", "down 1000034/0 ''|up 1000034/0 ''"},
        {"PgDown", "down 1000017/0 ''|up 1000017/0 ''"},
        {"Ctrl++", "down 1000021/4000000 ''|down 2b/4000000 '+'|up 2b/4000000 '+'|up 1000021/0 ''"},
    };
    EXPECT_EQ(program().call("click", "pad", {1, 1}), "");
    program().takeLog();
    for (const auto& row : cases) {
        EXPECT_EQ(program().call("press", "pad", {row.keys}), "");
        EXPECT_EQ(program().takeLog(), row.log) << row.keys;
    }
    // Low level: what is held changes what comes.
    for (const auto& [key, isPress] : {std::pair("Shift", true), std::pair("B", true),
                                       std::pair("B", false), std::pair("Shift", false)})
        EXPECT_TRUE(
            program().client().tell(Wire::MessageType::KeyEvent, Wire::KeyEvent{key, isPress}));
    program().sync();
    EXPECT_EQ(program().takeLog(),
              "down 1000020/2000000 ''|down 42/2000000 'B'|up 42/2000000 'B'|up 1000020/0 ''");
    // A shortcut acts although another object has the focus.
    EXPECT_EQ(program().call("press", "line", {"Ctrl+O"}), "");
    EXPECT_EQ(program().takeLog(), "open");
}

TEST_P(InputTest, ItemsAreSelected) {
    struct {
        const char* object;
        QVariant text;
        const char* error;
        const char* log;
    } const cases[] = {
        {"combo", "Choice 33", "", "activated 33"},
        {"combo", "Choice 2", "", "activated 2"},
        {"combo", "Nowhere", "QComboBox 'Choice 2' has no item 'Nowhere'", ""},
        {"menubar", "File.Open\\.\\.\\.", "", "open"},
        {"menubar", "File.Recent.a\\.txt", "", "a.txt"},
        {"menubar", "File.Save As...", "", "save as"},
        {"menubar", "&File.Save &As", "", "save as"},
        {"menubar", "File.Save", "", "save"},
        {"menubar", "File.Open", "", "open"},
        {"menubar", "File.v1.0", "", "v1.0"},
        {"menubar", QVariantList({"File", "v1.0"}), "", "v1.0"},
        {"menubar", QVariantList({"File", "Recent", "a.txt"}), "", "a.txt"},
        {"menubar", QVariantList({"File.v1.0"}),
         "QMenuBar has no item 'File.v1.0'; it has: File, Other", ""},
        {"menubar", "File.Locked", "the menu item 'Locked' is not ready: it is disabled", ""},
        {"menubar", "Other.Some", "QMenu 'Other' has no item 'Some'; it has: Nothing", ""},
        {"list", "Row 77", "", ""},
        {"tree", "v1.0.Kind.Pear", "", ""},
        {"tree", QVariantList({"Fruit", "Kind", "Apple"}), "", ""},
        {"list", "Row 177", "QListWidget 'list' has no item 'Row 177'", ""},
        {"table", "Cell 20-1", "", ""},
        {"tabs", "Three", "", ""},
        {"editable", "second", "", ""},
    };
    program().write("main", "log", QString());
    const Wire::ObjectInfo bar = program().client().find({"type=QMenuBar"});
    for (const auto& row : cases) {
        const Wire::ObjectInfo target =
            qstrcmp(row.object, "menubar") == 0 ? bar : program().object(row.object);
        const int timeout = *row.error == '\0' ? 5000 : 300;
        EXPECT_EQ(program().call("selectItem", target, {row.text}, timeout), row.error)
            << row.text.toString().toStdString();
        EXPECT_EQ(program().takeLog(), row.log) << row.text.toString().toStdString();
        if (*row.error != '\0')
            for (int i = 0; i < 2; ++i)
                program().call("press", "main", {"Escape"});
    }
    EXPECT_EQ(program().read("list", "currentRow").toInt(), 77);
    EXPECT_EQ(program().read("tabs", "currentIndex").toInt(), 2);
    EXPECT_EQ(program().read("editable", "currentText").toString(), "second");
    for (const auto& [view, text] :
         {std::pair("tree", "Fruit.Kind.Apple"), std::pair("table", "Cell 20-1")}) {
        EXPECT_TRUE(program().client().read(program().item(view, text), "selected").toBool())
            << text;
    }
}

TEST_P(InputTest, WhatCantComeToPassIsNotWaitedFor) {
    constexpr int longTime = 60000;
    const Wire::ObjectInfo bar = program().client().find({"type=QMenuBar"});
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(program().call("selectItem", bar, {""}, longTime),
              "QMenuBar has no item ''; it has: File, Other");
    // The window goes while it is waited for.
    EXPECT_EQ(program().call("click", "CloseLater"), "");
    EXPECT_EQ(program().call("closeWindow", program().object("shortLived"), {}, longTime),
              "the QWidget does not exist any more");
    EXPECT_LT(timer.elapsed(), longTime / 2);
}

TEST_P(InputTest, OpenListsAreNotClickedAway) {
    EXPECT_EQ(program().call("fill", "completing", {"alp"}), "");
    EXPECT_EQ(program().call("click", "Plain"), "");
    EXPECT_EQ(program().takeLog(), "clicked");
    EXPECT_EQ(program().call("typeText", "completing", {"h"}), "");
    EXPECT_EQ(program().read("completing", "text").toString(), "alph");
    EXPECT_EQ(program().call("click", "Toggle", {}, 300),
              "QPushButton 'Toggle' is not ready: it is blocked by the list of QLineEdit 'alph'");
    EXPECT_EQ(program().call("fill", "line", {"x"}, 300),
              "QLineEdit 'old' is not ready: it is blocked by the list of QLineEdit 'alph'");
    for (const char* const key : {"Down", "Return"})
        EXPECT_EQ(program().call("press", "completing", {key}), "");
    EXPECT_EQ(program().read("completing", "text").toString(), "alpha");
    EXPECT_EQ(program().call("click", "combo"), "");
    EXPECT_EQ(program().call("click", "Toggle", {}, 300),
              "QPushButton 'Toggle' is not ready: it is blocked by the list of QComboBox 'Choice "
              "0'");
    EXPECT_EQ(program().call("selectItem", "combo", {"Choice 1"}), "");
    const Wire::ObjectInfo file = program().client().find({"type=QAction", "text=File"});
    EXPECT_EQ(program().call("click", file), "");
    EXPECT_EQ(program().call("click", "Toggle", {}, 300),
              "QPushButton 'Toggle' is not ready: it is blocked by the open QMenu 'File'");
    EXPECT_EQ(program().call("press", "main", {"Escape"}), "");
    program().takeLog();
    EXPECT_EQ(program().call("click", "Toggle"), "");
    EXPECT_EQ(program().takeLog(), "toggled");
}

TEST_P(InputTest, ChecksAreSet) {
    for (const char* const name : {"checkBox", "threeStates", "radioB", "Toggle"})
        for (int i = 0; i < 2; ++i) {  // the second one has nothing to do
            EXPECT_EQ(program().call("check", name), "") << name;
            EXPECT_TRUE(program().read(name, "checked").toBool()) << name;
        }
    EXPECT_EQ(program().takeLog(), "toggled");
    for (const char* const name : {"checkBox", "threeStates", "Toggle"}) {
        EXPECT_EQ(program().call("uncheck", name), "") << name;
        EXPECT_FALSE(program().read(name, "checked").toBool()) << name;
    }
    const Wire::ObjectInfo item = program().item("list", "Row 1");
    EXPECT_EQ(program().call("check", item), "");
    EXPECT_TRUE(program().client().read(item, "checked").toBool());
    EXPECT_EQ(program().call("uncheck", item), "");
    EXPECT_FALSE(program().client().read(item, "checked").toBool());
}

TEST_P(InputTest, DialogsFromMenusAreClosed) {
    EXPECT_EQ(
        program().call("selectItem", program().client().find({"type=QMenuBar"}), {"File.Ask"}), "");
    EXPECT_EQ(program().call("closeWindow", "dialog"), "");
    EXPECT_EQ(program().takeLog(), "rejected");
    EXPECT_EQ(program().call("closeWindow", "Plain"), "");
    EXPECT_TRUE(program().endsWith(0));
}

}  // namespace
}  // namespace Tamrix
