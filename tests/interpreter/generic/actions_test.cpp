// What scripts do to applications, as the results tell it.

#include "interpreter/bridge/actionrecord.h"
#include "interpreter/generic/apitest.h"
#include "interpreter/generic/applicationfunctions.h"
#include "interpreter/generic/inputfunctions.h"
#include "interpreter/generic/objectfunctions.h"
#include "support/recordingreport.h"

namespace Tamrix {
namespace {

using namespace Test;
using List = ScriptArgument::List;

class Actions : public ApiTest {
protected:
    /// "FUNCTION|ARGUMENTS|failed|LINE" of what was recorded since the last call, each on a line.
    QString taken() {
        QStringList lines;
        const std::vector<ActionEnded> actions = report.all<ActionEnded>();
        EXPECT_EQ(actions.size(), report.entries.size());
        for (const ActionEnded& action : actions) {
            EXPECT_GE(action.milliseconds, 0);
            lines +=
                QStringList{action.function, action.arguments, action.hasFailed ? "failed" : "",
                            QString::number(action.position.lineNumber())}
                    .join('|');
        }
        report.entries.clear();
        return lines.join('\n');
    }

    SharedPtr<Object> button(const QString& foundAs) {
        SharedPtr<Object> made = model.addObject("QPushButton", "ok", nullptr);
        made->setFoundAs(foundAs);
        return made;
    }

    RecordingReport report;
    TestResult result{&report};
    FakeContext context{&result};
};

TEST_F(Actions, AreToldWithTheirObjectsAndOutcomes) {
    runner.takesInput = true;
    runner.found = button({});
    const auto done = [](const List&, QString*) { return boolean(true); };
    context.initFunctions();
    // A list that seems to hold itself.
    SharedPtr<ScriptArgument> endless = list({});
    for (int level = 0; level < 100; ++level)
        endless = list({endless, endless});
    const struct {
        ScriptContext::Function function;
        List arguments;
        const char* action;
    } rows[] = {
        {waitForObject,
         {text("{text='OK'}"), integer(500)},
         "waitForObject|\"{text='OK'}\", 500||7"},
        {waitForObject, {object(button("{text='Save'}"))}, "waitForObject|{text='Save'}||7"},
        {waitForObject, {object(button(""))}, "waitForObject|QPushButton 'ok'||7"},
        {waitForObjectExists, {map({{"name", text("ok")}})}, "waitForObjectExists|{name='ok'}||7"},
        {waitForObjectItem,
         {text("list"), integer(2), integer(1)},
         "waitForObjectItem|\"list\", 2, 1||7"},
        {waitFor, {text("true"), integer(10)}, "waitFor|\"true\", 10||7"},
        {waitFor, {callable(done)}, "waitFor|function||7"},
        {mousePress,
         {object(button("b")), integer(3), integer(4), integer(1)},
         "mousePress|b, 3, 4, 1||7"},
        {plain<keyPress>, {text("Ctrl")}, "keyPress|\"Ctrl\"||7"},
        {plain<snooze>, {number(0.5)}, "snooze|0.5||7"},
        {startApplication, {text("shop %1 --x")}, "startApplication|\"shop %1 --x\"|failed|7"},
        {waitForApplicationLaunch, {}, "waitForApplicationLaunch||failed|7"},
        {plain<keyPress>, {integer(1)}, "keyPress|1|failed|7"},
        // Lists and the language's null as they were written.
        {sendEvent,
         {text("QWheelEvent"), object(button("b")),
          list({text("a"), integer(1), list({boolean(false), new FakeArgument})})},
         "sendEvent|\"QWheelEvent\", b, [\"a\", 1, [false, null]]|failed|7"},
        // What stands behind a gap is told with the name of its parameter.
        {waitForObjectItem,
         {text("list"), text("item"), nullptr, integer(50)},
         "waitForObjectItem|\"list\", \"item\", timeout=50||7"},
        {waitForObject, {text(QString(1000, 'n'))}, nullptr},
        {waitForObject, {list(List(1000, list({text("n")})))}, nullptr},
        {waitForObject, {endless}, nullptr},
    };
    for (const auto& row : rows) {
        context.call(row.function, row.arguments);
        if (row.action)
            EXPECT_EQ(taken(), row.action);
        else
            EXPECT_LT(taken().size(), 400);
    }
    runner.found = nullptr;
    context.call(waitForObject, {text("{text='gone'}")});
    EXPECT_EQ(taken(), "waitForObject|\"{text='gone'}\"|failed|7");
}

TEST_F(Actions, OfAWaitStandBehindThoseInsideIt) {
    runner.takesInput = true;
    const auto press = [this](const List&, QString*) {
        FakeContext inner(&result);
        inner.call(keyPress, {text("A")});
        return boolean(true);
    };
    context.call(waitFor, {callable(press)});
    EXPECT_EQ(taken(), "keyPress|\"A\"||7\nwaitFor|function||7");
}

TEST_F(Actions, StandAtTheFixatedPositionAndAreNotToldUnlessWanted) {
    context.call([](ScriptContext* c) { c->fixateResultContext(); }, {integer(1)});
    context.call(snooze, {number(0)});
    EXPECT_EQ(taken(), "snooze|0||20");
    result.setRecordsActions(false);
    context.call(snooze, {number(0)});
    EXPECT_EQ(taken(), "");
    result.setRecordsActions(true);
    FakeContext without;
    without.call(snooze, {number(0)});
    EXPECT_EQ(taken(), "");
}

TEST_F(Actions, OfAnApplicationsFunctionsFailByAnException) {
    try {
        ActionRecord record(&context, QString("click"));
        record.setArguments({object(button("{text='OK'}")), text("Ctrl")});
        throw 1;
    } catch (int) {
        EXPECT_EQ(taken(), "click|{text='OK'}, \"Ctrl\"|failed|7");
        // An exception that was there before is none of the action's.
        ActionRecord(&context, QString("hover"));
    }
    EXPECT_EQ(taken(), "hover|||7");
}

}  // namespace
}  // namespace Tamrix
