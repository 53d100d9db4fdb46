// The same as with widgets in a scene of Qt Quick: what is done there, the lines that it becomes,
// and that these do the same once more.

#include <gtest/gtest.h>

#include "runner/recording/recordedsteps.h"
#include "support/printqt.h"
#include "support/qtversions.h"

namespace Tamrix {
namespace {

using Test::RecordedProgram;
using Test::RecordedStep;

const std::vector<RecordedStep> steps{
    {"a button",
     [](RecordedProgram& program) { program.click({"text=Order"}); },
     {R"(click("{text='Order' type='Button'}"))"}},
    {"a field that is left by Tab",
     [](RecordedProgram& program) {
         program.click({"name=who"});
         program.type("Bob");
         program.press("Tab");
     },
     {R"(fill("{name='who' type='TextField'}", "Bob"))",
      R"(press("{name='who' type='TextField'}", "Tab"))"}},
    {"a password",
     [](RecordedProgram& program) {
         program.click({"name=secret"});
         program.type("topsecret");
         program.press("Return");
     },
     {"# The run gets this password from the variable TAMRIX_PASSWORD_secret.",
      R"(fill("{name='secret' type='TextField'}", testSettings.getPassword("secret")))",
      R"(press("{name='secret' type='TextField'}", "Return"))"}},
    {"a check box, and back",
     [](RecordedProgram& program) {
         program.click({"text=Fast", "type=CheckBox"});
         program.wait(1000);
         program.click({"text=Fast", "type=CheckBox"});
     },
     {R"(check("{text='Fast' type='CheckBox'}"))", R"(uncheck("{text='Fast' type='CheckBox'}"))"}},
    {"a combo box by the mouse",
     [](RecordedProgram& program) {
         program.click({"name=size"});
         program.wait(1000);
         program.click(program.itemAt({"name=size"}, "large"));
     },
     {R"(selectItem("{name='size' type='ComboBox'}", "large"))"}},
    {"a combo box by keys",
     [](RecordedProgram& program) {
         program.click({"name=size"});
         program.press("End");
         program.press("Return");
     },
     {R"(selectItem("{name='size' type='ComboBox'}", ["v1.0"]))"}},
    {"a combo box that is closed again",
     [](RecordedProgram& program) {
         program.click({"name=size"});
         program.press("Escape");
     },
     {}},
    {"a slider",
     [](RecordedProgram& program) {
         program.click(program.at({"name=volume"}));
         program.press("Right");
     },
     {R"(waitForObject("{name='volume' type='Slider'}").value = 6.0)"}},
    {"a spin box",
     [](RecordedProgram& program) {
         program.click(program.at({"name=amount"}));
         program.press("Up");
         program.press("Up");
     },
     {R"(waitForObject("{name='amount' type='SpinBox'}").value = 2)"}},
    {"an item of a list",
     [](RecordedProgram& program) { program.click(program.itemAt({"name=list"}, "two")); },
     {R"(selectItem("{name='list' type='QQuickListView'}", "two"))"}},
    {"a text that goes on",
     [](RecordedProgram& program) {
         program.click({"name=notes"});
         program.press("Ctrl+End");
         program.type(" and\nsecond");
     },
     {R"(press("{name='notes' type='TextArea'}", "Ctrl+End"))",
      R"(typeText("{name='notes' type='TextArea'}", " and\nsecond"))"}},
    {"an entry of a menu",
     [](RecordedProgram& program) {
         program.click({"type=MenuBarItem", "text=File"});
         program.click({"type=MenuItem", "text=Save As..."});
     },
     {R"(selectItem("{type='MenuBar'}", "File.Save As..."))"}},
    {"an entry of a menu below",
     [](RecordedProgram& program) {
         program.click({"type=MenuBarItem", "text=File"});
         program.click({"type=MenuItem", "text=Recent"});
         program.click({"type=MenuItem", "text=v1.0"});
     },
     {R"(selectItem("{type='MenuBar'}", ["File", "Recent", "v1.0"]))"}},
    {"a menu that is closed again",
     [](RecordedProgram& program) {
         program.click({"type=MenuBarItem", "text=File"});
         program.press("Escape");
     },
     {}},
    {"a menu of a place",
     [](RecordedProgram& program) {
         program.click(program.at({"name=pad"}), Qt::RightButton);
         program.click({"type=MenuItem", "text=Paint"});
     },
     {R"(click("{name='pad' type='QQuickMouseArea'}", PLACE, button="right"))",
      R"(selectItem("{type='QQuickPopupItem'}", "Paint"))"}},
    {"a menu of a place that is closed again",
     [](RecordedProgram& program) {
         program.click(program.at({"name=pad"}), Qt::RightButton);
         program.press("Escape");
     },
     {R"(click("{name='pad' type='QQuickMouseArea'}", PLACE, button="right"))",
      R"(press("{type='QQuickPopupItem'}", "Escape"))"}},
    {"a verdict",
     [](RecordedProgram& program) {
         program.press("Ctrl+F12");
         program.click({"text=Fast", "type=CheckBox"});
         program.press("Ctrl+F12");
     },
     {R"(test.expect("{text='Fast' type='CheckBox'}", {"checked": False, "text": "Fast"}))"}},
    {"the window is closed",
     [](RecordedProgram& program) { program.closeWindow(); },
     {R"(closeWindow("{name='window' type='ApplicationWindow'}"))"}},
};

class QuickRecordings : public QtTest {};
TAMRIX_FOR_EACH_QT(QuickRecordings);

TEST_P(QuickRecordings, DoTheSameOnceMore) {
    Tamrix::Test::recordAndReplay(forQt("recorderquick_target", GetParam()), steps,
                                  {{"TAMRIX_PASSWORD_secret", "topsecret"}});
}

}  // namespace
}  // namespace Tamrix
