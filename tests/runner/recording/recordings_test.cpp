// A person at a display: what is done there by mouse and keyboard, the lines that it becomes, and
// that these do the same once more, in every language.

#include <gtest/gtest.h>

#include <QThread>

#include "runner/recording/recordedsteps.h"
#include "support/printqt.h"
#include "support/qtversions.h"

namespace Tamrix {
namespace {

using Test::RecordedProgram;
using Test::RecordedStep;

void openTab(RecordedProgram& program, const char* text) {
    program.click(program.itemAt({"name=tabs"}, text));
}

QPoint editorOf(RecordedProgram& program, const char* name) {
    return program.at({QStringLiteral("name=%1").arg(QString::fromLatin1(name))});
}

const std::vector<RecordedStep> steps{
    {"a field by its label, and Tab",
     [](RecordedProgram& program) {
         program.click({"type=QLineEdit", "buddy=Name:"});
         program.type("Bob");
         program.press("Tab");
     },
     {R"(fill("{buddy='Name:' type='QLineEdit'}", "Bob"))",
      R"(press("{buddy='Name:' type='QLineEdit'}", "Tab"))"}},
    {"a completion",
     [](RecordedProgram& program) {
         program.click({"type=QLineEdit", "buddy=Name:"});
         program.press("Ctrl+A");
         program.type("Be");
         program.press("Down");
         program.press("Return");
         program.press("Tab");
     },
     {R"(fill("{buddy='Name:' type='QLineEdit'}", "Berta"))",
      R"(press("{buddy='Name:' type='QLineEdit'}", "Tab"))"}},
    {"a field with a mask",
     [](RecordedProgram& program) {
         program.click({"name=code"});
         program.press("Home");
         program.type("12x34");
         program.press("Tab");
     },
     {R"(fill("{name='code' type='QLineEdit'}", "12-34"))",
      R"(press("{name='code' type='QLineEdit'}", "Tab"))"}},
    {"a text that goes on",
     [](RecordedProgram& program) {
         program.click({"name=notes"});
         program.press("Ctrl+End");
         program.type(" and\nsecond");
     },
     {R"(press("{name='notes' type='QPlainTextEdit'}", "Ctrl+End"))",
      R"(typeText("{name='notes' type='QPlainTextEdit'}", " and\nsecond"))"}},
    {"a password",
     [](RecordedProgram& program) {
         program.click({"type=QLineEdit", "buddy=Password:"});
         program.type("topsecret");
         program.press("Return");
     },
     {"# The run gets this password from the variable TAMRIX_PASSWORD_Password.",
      R"(fill("{buddy='Password:' type='QLineEdit'}", testSettings.getPassword("Password")))",
      R"(press("{buddy='Password:' type='QLineEdit'}", "Return"))"}},
    {"the arrow of a spin box, and the wheel over it",
     [](RecordedProgram& program) {
         const QPoint middle = program.at({"type=QSpinBox"});
         program.click({"type=QSpinBox"});
         program.press("Up");
         program.wheel(middle, true);
     },
     {R"(fill("{buddy='Amount:' type='QSpinBox'}", "2"))"}},
    {"a slider by the mouse",
     [](RecordedProgram& program) {
         const QPoint middle = program.at({"name=volume"});
         program.click(middle + QPoint(60, 0));
     },
     {R"(waitForObject("{name='volume' type='QSlider'}").value = 10)"}},
    {"a shortcut",
     [](RecordedProgram& program) { program.press("Ctrl+N"); },
     {R"(press("{name='volume' type='QSlider'}", "Ctrl+N"))"}},
    {"an entry of a menu",
     [](RecordedProgram& program) {
         program.click({"type=QAction", "text=File"});
         program.click({"type=QAction", "text=Save As..."});
     },
     {R"(selectItem("{type='QMenuBar'}", "File.Save As..."))"}},
    {"an entry of a menu below, by keys",
     [](RecordedProgram& program) {
         program.press("Alt+F");
         program.press("R");
         program.press("Return");
     },
     {R"(selectItem("{type='QMenuBar'}", ["File", "Recent", "v1.0"]))"}},
    {"a menu that is closed again",
     [](RecordedProgram& program) {
         program.click({"type=QAction", "text=File"});
         program.press("Escape");
     },
     {}},
    {"another page",
     [](RecordedProgram& program) { openTab(program, "Choices"); },
     {R"(selectItem("{name='tabs' type='QTabWidget'}", "Choices"))"}},
    {"a check box, and back by its mnemonic",
     [](RecordedProgram& program) {
         program.click(program.leftOf({"type=QCheckBox"}));
         program.press("Alt+L");
     },
     {R"(check("{text='Loud' type='QCheckBox'}"))", R"(click("{text='Loud' type='QCheckBox'}"))"}},
    {"a radio button",
     [](RecordedProgram& program) {
         program.click(program.leftOf({"type=QRadioButton", "text=Blue"}));
     },
     {R"(check("{text='Blue' type='QRadioButton'}"))"}},
    {"a combo box by the mouse",
     [](RecordedProgram& program) {
         program.click({"name=size"});
         program.wait(1000);
         program.click(program.itemAt({"name=size"}, "large"));
     },
     {R"(selectItem("{name='size' type='QComboBox'}", "large"))"}},
    {"a combo box by keys",
     [](RecordedProgram& program) {
         program.click({"name=size"});
         program.press("Down");
         program.press("Return");
     },
     {R"(selectItem("{name='size' type='QComboBox'}", ["v1.0"]))"}},
    {"the field of a combo box",
     [](RecordedProgram& program) {
         program.click({"name=town"});
         program.press("Ctrl+A");
         program.type("Oslo");
     },
     {R"(fill("{name='town' type='QComboBox'}", "Oslo"))"}},
    {"a place",
     [](RecordedProgram& program) { program.click({"name=canvas"}); },
     {R"(click("{name='canvas' type='QWidget'}", PLACE))"}},
    {"a menu of a place",
     [](RecordedProgram& program) {
         program.click(program.at({"name=canvas"}) + QPoint(10, 10), Qt::RightButton);
         program.click({"type=QAction", "text=Paint"});
     },
     {R"(click("{name='canvas' type='QWidget'}", PLACE, button="right"))",
      R"(selectItem("{type='QMenu'}", "Paint"))"}},
    {"a menu of a place that is closed again",
     [](RecordedProgram& program) {
         program.click(program.at({"name=canvas"}) + QPoint(10, 10), Qt::RightButton);
         program.press("Escape");
         program.click(program.at({"name=canvas"}) + QPoint(10, 10), Qt::RightButton);
         program.click(program.at({"name=canvas"}) - QPoint(20, 20));
     },
     {R"(click("{name='canvas' type='QWidget'}", PLACE, button="right"))",
      R"(press("{type='QMenu'}", "Escape"))",
      R"(click("{name='canvas' type='QWidget'}", PLACE, button="right"))",
      R"(press("{type='QMenu'}", "Escape"))"}},
    {"the menu of a button",
     [](RecordedProgram& program) {
         program.click({"text=More"});
         program.click({"type=QAction", "text=Hide"});
         program.click({"text=More"});
         program.press("Escape");
     },
     {R"(click("{text='More' type='QPushButton'}"))", R"(selectItem("{type='QMenu'}", "Hide"))",
      R"(click("{text='More' type='QPushButton'}"))", R"(press("{type='QMenu'}", "Escape"))"}},
    {"what the mouse reveals",
     [](RecordedProgram& program) {
         program.move(program.at({"name=hidden"}));
         program.click({"text=Revealed"});
         program.move(program.at({"name=canvas"}));
     },
     {R"(hover("{name='hidden' type='QFrame'}"))",
      R"(click("{text='Revealed' type='QPushButton'}"))"}},
    {"a button by its mnemonic, and one without a text",
     [](RecordedProgram& program) {
         program.press("Alt+G");
         program.click({"toolTip=Bold"});
     },
     {R"(click("{text='Go' type='QPushButton'}"))",
      R"(click("{toolTip='Bold' type='QToolButton'}"))"}},
    {"a dialog",
     [](RecordedProgram& program) {
         program.click({"text=Ask"});
         program.click({"name=answer"});
         program.type("yes");
         program.click({"text=Accept"});
     },
     {R"(click("{text='Ask' type='QPushButton'}"))",
      R"(fill("{name='answer' type='QLineEdit'}", "yes"))",
      R"(click("{text='Accept' type='QPushButton'}"))"}},
    {"a window that the program closes itself",
     [](RecordedProgram& program) {
         program.click({"text=Notify"});
         for (int round = 0; round < 250 && program.client().find({"text=Done"}).handle != 0;
              ++round)
             QThread::msleep(20);
     },
     {R"(click("{text='Notify' type='QPushButton'}"))"}},
    {"items",
     [](RecordedProgram& program) {
         openTab(program, "Views");
         program.click(program.itemAt({"name=list"}, "one"));
         program.wait(1000);
         program.click(program.itemAt({"name=list"}, "two"), Qt::LeftButton, Qt::ControlModifier);
         program.click(program.itemAt({"name=list"}, "two"), Qt::LeftButton, Qt::NoModifier, 2);
         program.click(program.itemAt({"name=tree"}, "top.v1\\.0"));
     },
     {R"(selectItem("{name='tabs' type='QTabWidget'}", "Views"))",
      R"(selectItem("{name='list' type='QListWidget'}", "one"))",
      R"(click("{text='two' type='QListViewItem'}", modifiers="Ctrl"))",
      R"(doubleClick("{text='two' type='QListViewItem'}"))",
      R"(selectItem("{name='tree' type='QTreeWidget'}", ["top", "v1.0"]))"}},
    {"the mark of an item",
     [](RecordedProgram& program) {
         const QPoint middle = program.itemAt({"name=list"}, "three");
         const QPoint left =
             program.client()
                 .request<Wire::Value>(
                     Wire::MessageType::GlobalBounds,
                     Wire::ObjectHandle{program.client().find({"name=list"}).handle})
                 .value.toRect()
                 .topLeft();
         program.click(QPoint(left.x() + 12, middle.y()));
     },
     {R"(check("{text='three' type='QListViewItem'}"))"}},
    {"a cell without a text, and a header",
     [](RecordedProgram& program) {
         const QPoint key = program.at({"type=QHeaderViewItem", "text=Key"});
         program.click(key);
         program.click(key + QPoint(0, 25));
     },
     {R"(click("{text='Key' type='QHeaderViewItem'}"))",
      R"(click("{column='0' row='0' type='QTableViewItem'}"))"}},
    {"a cell that tells a time",
     [](RecordedProgram& program) {
         program.click(program.at({"type=QHeaderViewItem", "text=Value"}) + QPoint(0, 25));
     },
     {R"(click("{column='1' row='0' type='QTableViewItem'}"))"}},
    {"what is dragged and dropped",
     [](RecordedProgram& program) {
         program.drag(program.itemAt({"name=list"}, "one"), editorOf(program, "target"));
     },
     {R"(drag("{text='one' type='QListViewItem'}", PLACE))"}},
    {"a verdict",
     [](RecordedProgram& program) {
         program.press("Ctrl+F12");
         openTab(program, "Choices");
         program.press("Ctrl+F12");
         openTab(program, "Choices");
         program.press("Ctrl+F12");
         program.click({"type=QCheckBox"});
         program.press("Ctrl+F12");
     },
     {R"(test.expect("{text='Choices' type='QTabBarItem'}", {"text": "Choices"}))",
      R"(selectItem("{name='tabs' type='QTabWidget'}", "Choices"))",
      R"(test.expect("{text='Loud' type='QCheckBox'}", {"checked": False, "text": "Loud"}))"}},
    {"the window is closed",
     [](RecordedProgram& program) { program.closeWindow(); },
     {R"(closeWindow("{type='QMainWindow'}"))"}},
};

class Recordings : public QtTest {};
TAMRIX_FOR_EACH_QT(Recordings);

TEST_P(Recordings, DoTheSameOnceMore) {
    Tamrix::Test::recordAndReplay(forQt("recorder_target", GetParam()), steps,
                                  {{"TAMRIX_PASSWORD_Password", "topsecret"}});
}

}  // namespace
}  // namespace Tamrix
