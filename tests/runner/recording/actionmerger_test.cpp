// Observations in, lines out: what belongs together, what replaces what, and what means nothing.

#include "runner/recording/actionmerger.h"

#include <gtest/gtest.h>

#include "platform/objectmodel/remote/namequery.h"
#include "plugins/python/pythonrecorder.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Wire;

/// An object that is called by one word.
ObservedObject object(ObservedRole role, const QString& word, quint64 handle) {
    return {handle, role, Query{{{"name", 0, word, nullptr}}, 1}};
}

const ObservedObject button = object(ObservedRole::Control, "button", 1);
const ObservedObject field = object(ObservedRole::Field, "field", 2);
const ObservedObject area = object(ObservedRole::TextArea, "area", 3);
const ObservedObject secret = object(ObservedRole::Password, "secret field", 4);
const ObservedObject number = object(ObservedRole::Number, "number", 5);
const ObservedObject slider = object(ObservedRole::Slider, "slider", 6);
const ObservedObject box = object(ObservedRole::Choice, "box", 7);
const ObservedObject item = object(ObservedRole::Item, "item", 8);
const ObservedObject view = object(ObservedRole::Place, "view", 9);
const ObservedObject bar = object(ObservedRole::ScrollBar, "bar", 10);
const ObservedObject menu = object(ObservedRole::Control, "menu", 11);
const ObservedObject nameless{12, ObservedRole::Control, {}};

ObservedState text(const ObservedObject& of, const QString& text, bool isOpen = false) {
    return {of.handle, text, -1, {}, isOpen};
}
ObservedState check(const ObservedObject& of, int check) {
    return {of.handle, {}, check, {}, false};
}
ObservedState value(const ObservedObject& of, const QVariant& value) {
    return {of.handle, {}, -1, value, false};
}
ObservedPress press(const ObservedObject& on, int modifiers = 0, int button = Qt::LeftButton) {
    ObservedPress press;
    press.object = on;
    press.place = {3, 4};
    press.button = button;
    press.modifiers = modifiers;
    return press;
}
ObservedPress pressItem(const ObservedObject& holder, const QStringList& steps, int modifiers = 0) {
    ObservedPress press = Tamrix::press(item, modifiers);
    press.holder = holder;
    press.steps = steps;
    return press;
}
const ObservedRelease up{};
const ObservedRelease dragged{{40, 5}, true};
const ObservedRest rest{};
ObservedKey typed(const ObservedObject& into, const QString& text) {
    return {into, text, text};
}
ObservedKey key(const ObservedObject& into, const QString& keys) {
    return {into, keys, {}};
}

struct Row {
    const char* name;
    QList<Observation> observations;
    QStringList lines;
};

const ObservedPress revealed = [] {
    ObservedPress press = Tamrix::press(button);
    press.hovered = view;
    return press;
}();

const Row rows[] = {
    {"a click", {press(button), rest, up, rest}, {"click(\"{name='button'}\")"}},
    {"another button with keys held",
     {press(button, Qt::ControlModifier | Qt::ShiftModifier, Qt::RightButton), up, rest},
     {R"(click("{name='button'}", button="right", modifiers="Ctrl+Shift"))"}},
    {"where it matters", {press(view), up, rest}, {"click(\"{name='view'}\", 3, 4)"}},
    {"a double click takes the place of the click",
     {press(button), up, rest, press(button), ObservedDoubleClick{}, up, rest},
     {"doubleClick(\"{name='button'}\")"}},
    {"a double click on another object does not",
     {press(button), up, rest, press(menu), ObservedDoubleClick{}, up, rest},
     {"click(\"{name='button'}\")", "doubleClick(\"{name='menu'}\")"}},
    {"what the mouse reveals",
     {revealed, up, rest},
     {"hover(\"{name='view'}\")", "click(\"{name='button'}\")"}},
    {"a drag", {press(view), dragged, rest}, {"drag(\"{name='view'}\", 3, 4, 40, 5)"}},
    {"a press whose release was lost",
     {press(view), rest, press(button), up, rest},
     {"click(\"{name='button'}\")"}},
    {"scroll bars", {press(bar), dragged, rest, press(bar), up, rest}, {}},

    {"a check",
     {check(button, 0), press(button), up, check(button, 2), rest},
     {"check(\"{name='button'}\")"}},
    {"one that goes away",
     {check(button, 2), press(button), up, check(button, 0), rest},
     {"uncheck(\"{name='button'}\")"}},
    {"a third state is clicked",
     {check(button, 0), press(button), up, check(button, 1), rest},
     {"click(\"{name='button'}\")"}},
    {"a checked one that stays",
     {check(button, 2), press(button), up, rest},
     {"click(\"{name='button'}\")"}},
    {"arrows of a number become one value",
     {text(number, "1"), press(number), text(number, "2"), rest, up, rest, press(number),
      text(number, "3"), up, rest},
     {R"(fill("{name='number'}", "3"))"}},
    {"a slider",
     {value(slider, 1), press(slider), value(slider, 5), dragged, value(slider, 7), rest},
     {"waitForObject(\"{name='slider'}\").value = 7"}},
    {"a click on a slider that changes nothing, and a key that does",
     {value(slider, 1), press(slider), up, rest, key(slider, "Right"), value(slider, 2), rest},
     {"waitForObject(\"{name='slider'}\").value = 2"}},
    {"a shortcut that closes an open list",
     {text(box, "a"), press(box), up, text(box, "a", true), rest,
      ObservedShortcut{box, {"Escape"}, {}}, text(box, "a"), rest},
     {}},
    {"a slider of reals",
     {value(slider, 0.0), press(slider), up, value(slider, 0.5), rest},
     {"waitForObject(\"{name='slider'}\").value = 0.5"}},
    {"the wheel turns a value",
     {text(number, "1"), ObservedWheel{number}, text(number, "2"), rest, ObservedWheel{number},
      text(number, "3"), rest},
     {R"(fill("{name='number'}", "3"))"}},
    {"the wheel turns nothing", {text(number, "1"), ObservedWheel{number}, rest}, {}},
    {"keys on a slider",
     {value(slider, 1), key(slider, "Right"), value(slider, 2), rest, key(slider, "Right"),
      value(slider, 3), rest},
     {"waitForObject(\"{name='slider'}\").value = 3"}},

    {"an item", {pressItem(view, {"a", "b"}), up, rest}, {R"(selectItem("{name='view'}", "a.b"))"}},
    {"an item with a dot in its text",
     {pressItem(view, {"a", "v1.0"}), up, rest},
     {R"(selectItem("{name='view'}", ["a", "v1.0"]))"}},
    {"an item with keys held",
     {pressItem(view, {"a"}, Qt::ControlModifier), up, rest},
     {R"(click("{name='item'}", modifiers="Ctrl"))"}},
    {"an item that no way leads to", {pressItem(view, {}), up, rest}, {"click(\"{name='item'}\")"}},
    {"an item that is clicked twice",
     {pressItem(view, {"a"}), up, rest, pressItem(view, {"a"}), ObservedDoubleClick{}, up, rest},
     {"doubleClick(\"{name='item'}\")"}},
    {"the mark of an item",
     {check(item, 0), pressItem(view, {"a"}), up, check(item, 2), rest},
     {"check(\"{name='item'}\")"}},
    {"a menu",
     {ObservedChoice{menu, {"File", "Save As..."}}},
     {R"(selectItem("{name='menu'}", "File.Save As..."))"}},
    {"a menu behind a button",
     {press(button), rest, ObservedChoice{menu, {"v1.0"}}, up, rest},
     {"click(\"{name='button'}\")", R"(selectItem("{name='menu'}", ["v1.0"]))"}},

    {"a list that opens and closes",
     {text(box, "a"), press(box), text(box, "a", true), rest, up, rest, text(box, "a"), rest},
     {}},
    {"an item of a list",
     {text(box, "a"), press(box), text(box, "a", true), up, rest, pressItem(box, {"b"}), rest, up,
      text(box, "b"), rest},
     {R"(selectItem("{name='box'}", "b"))"}},
    {"the same item again",
     {text(box, "a"), press(box), text(box, "a", true), up, rest, pressItem(box, {"a"}), up,
      text(box, "a"), rest},
     {R"(selectItem("{name='box'}", "a"))"}},
    {"an item by keys, in a list that Return closes before it is pressed",
     {text(box, "a"), press(box), text(box, "a", true), up, rest, key(box, "Down"), rest,
      key(box, "Return"), text(box, "b"), rest},
     {R"(selectItem("{name='box'}", "b"))"}},
    {"keys on a closed box",
     {text(box, "a"), key(box, "Down"), text(box, "b"), rest},
     {R"(selectItem("{name='box'}", "b"))"}},
    {"keys that a box does not take",
     {text(box, "a"), key(box, "Return"), rest},
     {R"(press("{name='box'}", "Return"))"}},

    {"a field that is clicked and filled",
     {text(field, "x"), press(field), up, rest, typed(field, "a"), text(field, "xa"), rest,
      typed(field, "b"), text(field, "xab"), rest, press(button), up, rest},
     {R"(fill("{name='field'}", "xab"))", "click(\"{name='button'}\")"}},
    {"a field that is clicked",
     {text(field, "x"), press(field), up, rest, press(button), up, rest},
     {"click(\"{name='field'}\")", "click(\"{name='button'}\")"}},
    {"Return comes behind the text, whatever it does to it",
     {text(field, ""), typed(field, "a"), text(field, "a"), rest, key(field, "Return"),
      text(field, ""), rest},
     {R"(fill("{name='field'}", "a"))", R"(press("{name='field'}", "Return"))"}},
    {"a click within the text is part of the typing",
     {text(field, ""), typed(field, "a"), text(field, "a"), rest, press(field), up, rest,
      typed(field, "b"), text(field, "ba"), rest},
     {R"(fill("{name='field'}", "ba"))"}},
    {"keys that leave the text as it was",
     {text(field, "a"), key(field, "Down"), rest, key(field, "Ctrl+C"), rest},
     {R"(press("{name='field'}", "Down"))", R"(press("{name='field'}", "Ctrl+C"))"}},
    {"a text that was typed and taken back",
     {text(field, "a"), typed(field, "b"), text(field, "ab"), rest, key(field, "Backspace"),
      text(field, "a"), rest},
     {}},
    {"a completion",
     {text(field, ""), typed(field, "A"), text(field, "A"), rest, press(field), text(field, "Anna"),
      up, rest},
     {R"(fill("{name='field'}", "Anna"))"}},
    {"an emptied field",
     {text(field, "a"), key(field, "Delete"), text(field, ""), rest},
     {R"(fill("{name='field'}", ""))"}},
    {"a shortcut ends the typing",
     {text(field, ""), typed(field, "a"), text(field, "a"), rest,
      ObservedShortcut{field, {"Ctrl+K", "Ctrl+N"}, {}}},
     {R"(fill("{name='field'}", "a"))", R"(press("{name='field'}", "Ctrl+K"))",
      R"(press("{name='field'}", "Ctrl+N"))"}},
    {"a mnemonic", {ObservedShortcut{field, {"Alt+A"}, button}}, {"click(\"{name='button'}\")"}},
    {"a number that is typed",
     {text(number, "0"), typed(number, "7"), text(number, "7"), rest, key(number, "Tab"), rest},
     {R"(fill("{name='number'}", "7"))", R"(press("{name='number'}", "Tab"))"}},
    {"a new text in an area",
     {text(area, ""), typed(area, "a"), text(area, "a"), rest, key(area, "Return"),
      text(area, "a\n"), rest},
     {R"(typeText("{name='area'}", "a\n"))"}},
    {"a text that goes on",
     {text(area, "a"), typed(area, "b"), text(area, "ab"), rest},
     {R"(press("{name='area'}", "Ctrl+End"))", R"(typeText("{name='area'}", "b"))"}},
    {"a text that changes in its middle",
     {text(area, "ab"), typed(area, "x"), text(area, "axb"), rest},
     {R"(fill("{name='area'}", "axb"))"}},
    {"a password",
     {press(secret), up, rest, ObservedKey{secret, {}, {}}, rest, ObservedKey{secret, {}, {}}, rest,
      key(secret, "Return")},
     {"# The run gets this password from the variable TAMRIX_PASSWORD_secret_field.",
      R"(fill("{name='secret field'}", testSettings.getPassword("secret_field")))",
      R"(press("{name='secret field'}", "Return"))"}},
    {"keys for what is no field",
     {typed(view, "1"), rest, typed(view, "+"), rest, key(view, "Return"), rest, typed(view, "2")},
     {R"(typeText("{name='view'}", "1+"))", R"(press("{name='view'}", "Return"))",
      R"(typeText("{name='view'}", "2"))"}},
    {"a button by the keyboard",
     {ObservedKey{button, "Space", " "}, rest},
     {R"(press("{name='button'}", "Space"))"}},

    {"a window that is closed",
     {text(field, ""), typed(field, "a"), text(field, "a"), rest, ObservedClose{menu}},
     {R"(fill("{name='field'}", "a"))", "closeWindow(\"{name='menu'}\")"}},
    {"a verdict",
     {press(button), up, rest, ObservedMode{true},
      ObservedVerdict{field, {{"text", "a"}, {"checked", false}, {"value", 3}}}},
     {"click(\"{name='button'}\")",
      R"(test.expect("{name='field'}", {"checked": False, "text": "a", "value": 3}))"}},
    {"what no name finds",
     {press(nameless), up, rest},
     {"# Something was done here to an object that no name finds."}},
};

struct Merged {
    QStringList lines;
    ActionMerger merger{[this](const ScriptAction& action) {
                            lines.append(NotatedRecorder(PythonPlugin::recordingNotation, QString())
                                             .lines(action)
                                             .trimmed());
                        },
                        [](const Query& name) {
                            const ObjectName found = nameOfQuery(name);
                            return found.isValid() ? found.qualifiedName() : QString();
                        }};
};

TEST(ActionMerger, MakesLines) {
    for (const Row& row : rows) {
        Merged merged;
        for (const Observation& observation : row.observations)
            merged.merger.add(observation, 0);
        merged.merger.finish();
        EXPECT_EQ(merged.lines, row.lines) << row.name;
    }
}

TEST(ActionMerger, GivesWhatIsHeldInTime) {
    Merged merged;
    merged.merger.add(press(button), 0);
    merged.merger.add(up, 100);
    merged.merger.add(rest, 100);
    merged.merger.idle(600);
    EXPECT_EQ(merged.lines.size(), 0) << "it may become a double click";
    merged.merger.idle(700);
    EXPECT_EQ(merged.lines.size(), 1);
    merged.merger.add(value(slider, 1), 800);
    merged.merger.add(press(slider), 800);
    merged.merger.add(value(slider, 2), 900);
    merged.merger.add(up, 900);
    merged.merger.add(rest, 900);
    merged.merger.idle(1800);
    EXPECT_EQ(merged.lines.size(), 1);
    merged.merger.idle(1900);
    EXPECT_EQ(merged.lines.size(), 2);
    merged.merger.add(press(field), 2000);
    merged.merger.add(up, 2000);
    merged.merger.add(rest, 2000);
    merged.merger.idle(60000);
    EXPECT_EQ(merged.lines.size(), 2) << "it may only give the focus";
}

}  // namespace
}  // namespace Tamrix
