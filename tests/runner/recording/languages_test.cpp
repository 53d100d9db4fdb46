// Recordings in the languages beside Python: the lines that are written, and that they run.

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "runner/recording/recordedscript.h"
#include "runner/recording/recordedsteps.h"
#include "support/environmentguard.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Test::RecordedProgram;
using Test::RecordedStep;

struct Written {
    ScriptAction action;
    /// In the order of the languages below.
    QString lines[4];
};

const char* const languages[] = {"javascript", "perl", "ruby", "tcl"};

bool isBuilt(const QString& language) {
    return QString(TAMRIX_TEST_LANGUAGES).split(' ').contains(language);
}

/// Nothing of a text may mean something to the language: not its variables, code or quotes.
const QString hostile = "\"$a @b #{c} [d] \\e\n\x1b'";

const Written rows[] = {
    {FunctionAction{"click", "{text='it\\'s' type='A'}", {}},
     {R"(click("{text='it\\'s' type='A'}");)", R"(click("{text='it\\'s' type='A'}");)",
      R"(click("{text='it\\'s' type='A'}"))", R"(click "\{text='it\\'s' type='A'\}")"}},
    {FunctionAction{"click", "{a='b'}", {qint64(3), qint64(-4)}, {{"modifiers", QString("Ctrl")}}},
     {R"(click("{a='b'}", 3, -4, undefined, "Ctrl");)",
      R"(click("{a='b'}", 3, -4, -modifiers => "Ctrl");)",
      R"(click("{a='b'}", 3, -4, modifiers: "Ctrl"))", R"(click {a='b'} 3 -4 -modifiers Ctrl)"}},
    {FunctionAction{"click", ":Box", {}, {{"button", QString("right")}}},
     {R"(click(":Box", undefined, undefined, "right");)", R"(click(":Box", -button => "right");)",
      R"(click(":Box", button: "right"))", R"(click :Box -button right)"}},
    {FunctionAction{"selectItem", ":List", {QStringList{"v1.0", "a b"}}},
     {R"(selectItem(":List", ["v1.0", "a b"]);)", R"(selectItem(":List", ["v1.0", "a b"]);)",
      R"(selectItem(":List", ["v1.0", "a b"]))", R"(selectItem :List [list v1.0 {a b}])"}},
    {FunctionAction{"setApplicationContext", {}, {LaunchedContext{}}},
     {"setApplicationContext(waitForApplicationLaunch());",
      "setApplicationContext(waitForApplicationLaunch());",
      "setApplicationContext(waitForApplicationLaunch())",
      "setApplicationContext [waitForApplicationLaunch]"}},
    {FunctionAction{"setApplicationContext", {}, {NamedContext{"my shop"}}},
     {R"(setApplicationContext(applicationContext("my shop"));)",
      R"(setApplicationContext(applicationContext("my shop"));)",
      R"(setApplicationContext(applicationContext("my shop")))",
      "setApplicationContext [applicationContext {my shop}]"}},
    {FunctionAction{"fill", ":Key", {PasswordKey{"login"}}},
     {R"(fill(":Key", testSettings.getPassword("login"));)",
      R"(fill(":Key", testSettings->getPassword("login"));)",
      R"(fill(":Key", testSettings.getPassword("login")))",
      R"(fill :Key [testSettings getPassword login])"}},
    {FunctionAction{"fill", ":Text", {hostile}},
     {R"(fill(":Text", "\"$a @b #{c} [d] \\e\n\u001b'");)",
      R"(fill(":Text", "\"\$a \@b #{c} [d] \\e\n\x{001b}'");)",
      R"(fill(":Text", "\"$a @b \#{c} [d] \\e\n\u{001b}'"))",
      R"(fill :Text "\"\$a @b #\{c\} \[d\] \\e\n\u001b'")"}},
    {FunctionAction{"fill", ":Text", {QString("")}},
     {R"(fill(":Text", "");)", R"(fill(":Text", "");)", R"(fill(":Text", ""))",
      R"(fill :Text {})"}},
    {FunctionAction{"typeText", ":Text", {QString("-keys")}},
     {R"(typeText(":Text", "-keys");)", R"(typeText(":Text", "-keys");)",
      R"(typeText(":Text", "-keys"))", R"(typeText :Text -- -keys)"}},
    {AssignmentAction{":Slider", "value", 2.0},
     {R"(waitForObject(":Slider").value = 2.0;)", R"(waitForObject(":Slider")->value(2.0);)",
      R"(waitForObject(":Slider").value = 2.0)",
      R"([waitForObject :Slider] configure -value 2.0)"}},
    {ExpectAction{":Box", {{"checked", true}, {"text*", QString("On")}}},
     {R"(test.expect(":Box", {checked: true, "text*": "On"});)",
      R"(test::expect(":Box", {checked => !!1, "text*" => "On"});)",
      R"(test.expect(":Box", { checked: true, "text*": "On" }))",
      R"(test expect :Box [dict create checked true text* On])"}},
    {CommentAction{"two\nlines {\\"},
     {"// two lines {\\", "# two lines {\\", "# two lines {\\", R"(# two lines \{\\)"}},
};

TEST(RecordedLanguages, WriteLines) {
    const Tamrix::Test::EnvironmentGuard prefix("TAMRIX_PREFIX", TAMRIX_TEST_PREFIX);
    for (std::size_t index = 0; index < std::size(languages); ++index) {
        if (!isBuilt(languages[index]))
            continue;
        const auto writer = scriptWriter(languages[index]);
        ASSERT_TRUE(writer) << qPrintable(writer.error().text);
        for (const Written& row : rows)
            EXPECT_EQ((*writer)->lines(row.action).trimmed(), row.lines[index]);
    }
}

const std::vector<RecordedStep> steps{
    {"texts",
     [](RecordedProgram& program) {
         program.click({"type=QLineEdit", "buddy=Name:"});
         program.type("$a [b] #{c} \"d\" \\ @e -f{");
         program.press("Tab");
         program.click({"name=notes"});
         program.press("Ctrl+End");
         program.type("-keys\n}");
     },
     {R"(fill("{buddy='Name:' type='QLineEdit'}", "$a [b] #{c} \"d\" \\ @e -f{"))",
      R"(press("{buddy='Name:' type='QLineEdit'}", "Tab"))",
      R"(press("{name='notes' type='QPlainTextEdit'}", "Ctrl+End"))",
      R"(typeText("{name='notes' type='QPlainTextEdit'}", "-keys\n}"))"}},
    {"a password",
     [](RecordedProgram& program) {
         program.click({"type=QLineEdit", "buddy=Password:"});
         program.type("topsecret");
         program.press("Return");
     },
     {"# The run gets this password from the variable TAMRIX_PASSWORD_Password.",
      R"(fill("{buddy='Password:' type='QLineEdit'}", testSettings.getPassword("Password")))",
      R"(press("{buddy='Password:' type='QLineEdit'}", "Return"))"}},
    {"a value",
     [](RecordedProgram& program) { program.click(program.at({"name=volume"}) + QPoint(60, 0)); },
     {R"(waitForObject("{name='volume' type='QSlider'}").value = 10)"}},
    {"menus",
     [](RecordedProgram& program) {
         program.press("Alt+F");
         program.press("R");
         program.press("Return");
     },
     {R"(selectItem("{type='QMenuBar'}", ["File", "Recent", "v1.0"]))"}},
    {"items, and a button with keys held",
     [](RecordedProgram& program) {
         program.click(program.itemAt({"name=tabs"}, "Views"));
         program.click(program.itemAt({"name=list"}, "one"));
         program.wait(1000);
         program.click(program.itemAt({"name=list"}, "two"), Qt::LeftButton, Qt::ControlModifier);
     },
     {R"(selectItem("{name='tabs' type='QTabWidget'}", "Views"))",
      R"(selectItem("{name='list' type='QListWidget'}", "one"))",
      R"(click("{text='two' type='QListViewItem'}", modifiers="Ctrl"))"}},
    {"a verdict",
     [](RecordedProgram& program) {
         program.click(program.itemAt({"name=tabs"}, "Choices"));
         program.press("Ctrl+F12");
         program.click({"type=QCheckBox"});
         program.press("Ctrl+F12");
     },
     {R"(selectItem("{name='tabs' type='QTabWidget'}", "Choices"))",
      R"(test.expect("{text='Loud' type='QCheckBox'}", {"checked": False, "text": "Loud"}))"}},
    {"the window is closed",
     [](RecordedProgram& program) { program.closeWindow(); },
     {R"(closeWindow("{type='QMainWindow'}"))"}},
};

TEST(RecordedLanguages, Run) {
    QStringList built;
    std::copy_if(std::begin(languages), std::end(languages), std::back_inserter(built), isBuilt);
    Tamrix::Test::recordAndReplay("recorder_target", steps,
                                  {{"TAMRIX_PASSWORD_Password", "topsecret"}}, built);
}

}  // namespace
}  // namespace Tamrix
