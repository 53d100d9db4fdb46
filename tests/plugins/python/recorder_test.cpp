// The lines that a recording is written in.

#include <gtest/gtest.h>

#include <memory>

#include "interpreter/bridge/eventrecorder.h"
#include "interpreter/bridge/scriptlanguage.h"
#include "support/environmentguard.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

TEST(PythonRecorder, WritesLines) {
    const Tamrix::Test::EnvironmentGuard prefix("TAMRIX_PREFIX", TAMRIX_TEST_PREFIX);
    const ScriptLanguagePlugin plugin("tamrixpython-3");
    ASSERT_EQ(plugin.lastErrorMessage(), QString());
    const std::unique_ptr<EventRecorder> recorder(
        plugin.eventRecorder(false, false, false, QString()));
    ASSERT_NE(recorder, nullptr);

    const QString name = "{text='\"it\\'s\"' type='A'}";
    const struct {
        ScriptAction action;
        QString line;
    } rows[] = {
        {FunctionAction{"startApplication", {}, {QString("editor --new")}},
         R"(startApplication("editor --new"))"},
        {FunctionAction{"click", name, {}}, R"(click("{text='\"it\\'s\"' type='A'}"))"},
        {FunctionAction{
             "click", "{a='b'}", {qint64(3), qint64(-4)}, {{"button", QString("right")}}},
         R"py(click("{a='b'}", 3, -4, button="right"))py"},
        {FunctionAction{"selectItem", ":List", {QStringList{"v1.0", "a"}}},
         R"(selectItem(":List", ["v1.0", "a"]))"},
        {FunctionAction{"fill", ":Key", {PasswordKey{"login"}}},
         R"(fill(":Key", testSettings.getPassword("login")))"},
        {FunctionAction{"fill", ":Text", {QString("a\n\tb\x1b\u00e4\U0001f600\u200b")}},
         "fill(\":Text\", \"a\\n\\tb\\u001b\u00e4\U0001f600\\u200b\")"},
        {AssignmentAction{":Slider", "value", qint64(7)}, R"(waitForObject(":Slider").value = 7)"},
        {AssignmentAction{":Slider", "value", 2.0}, R"(waitForObject(":Slider").value = 2.0)"},
        {AssignmentAction{":Slider", "value", 0.1}, R"(waitForObject(":Slider").value = 0.1)"},
        {ExpectAction{":Box", {{"checked", true}, {"text", QString("On")}}},
         R"(test.expect(":Box", {"checked": True, "text": "On"}))"},
        {CommentAction{"two\nlines"}, "# two lines"},
    };
    for (const auto& [action, line] : rows)
        EXPECT_EQ(recorder->lines(action), "    " + line + "\n");
    EXPECT_EQ(recorder->header(), QString("def main():\n"));
    EXPECT_EQ(recorder->footer(), QString());
}

}  // namespace
}  // namespace Tamrix
