#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/generic/apitest.h"
#include "interpreter/generic/testfunctions.h"
#include "support/recordingreport.h"

namespace Tamrix {
namespace {

using namespace Test;

class Expectations : public ApiTest {
protected:
    ~Expectations() override { TestSettingsType::s_vpOptions = VerificationOptions(); }

    /// What the script gets of an expectation: its error or its result as text.
    QString expect(const ScriptArgument::List& arguments) {
        reporting.call(testExpect, arguments);
        return reporting.hasError() ? reporting.errorMessage() : reporting.result->toString();
    }
    /// The last result as "type|message|detail|comment".
    QString lastResult() const {
        if (report.results().empty())
            return "none";
        const ResultAdded entry = report.results().back();
        return QString("%1|%2|%3|%4")
            .arg(QString::number(entry.type), entry.message, entry.detail, entry.comment);
    }

    RecordingReport report;
    TestResult result{&report};
    FakeContext reporting{&result};
    SharedPtr<InMemoryObject> button = model.addObject("Button", "ok");
    SharedPtr<ScriptArgument> name = text("{type='Button'}");
    SharedPtr<ScriptArgument> properties =
        map({{"enabled", boolean(true)}, {"text*", text("O%1*")}});
};

TEST_F(Expectations, WaitAndBecomeVerdicts) {
    runner.found = button;
    EXPECT_EQ(expect({name, properties, number(1500.5), text("why")}), "true");
    EXPECT_EQ(lastResult(),
              "10|Expectation|Object '{type='Button'}' has {enabled='true' text*='O%1*'}|why");
    // The properties may be written as in a name.
    EXPECT_EQ(expect({object(button), text("{text~='^O'}")}), "true");
    EXPECT_EQ(lastResult(), "10|Expectation|The Button has {text~='^O'}|");

    runner.found.reset();
    EXPECT_EQ(expect({map({{"type", text("Button")}}), properties, integer(0)}), "false");
    EXPECT_EQ(lastResult(), "11|Expectation|it is not there|");
    const QString time = QString::number(TestSettingsType::s_waitForObjectTimeout);
    EXPECT_EQ(
        runner.calls,
        (QStringList{"wait until {type='Button'} has {enabled='true' text*='O%1*'} for 1501 ms",
                     "wait until {name='ok' type='Button'} has {text~='^O'} for " + time + " ms",
                     "wait until {type='Button'} has {enabled='true' text*='O%1*'} for 0 ms"}));

    TestSettingsType::s_vpOptions.setFlag(VerificationOptions::ThrowOnFailure, true);
    EXPECT_EQ(expect({name, properties, integer(0), text("why")}),
              "Expectation: why, it is not there");
    EXPECT_EQ(reporting.errorType(), ScriptContext::VerificationError);
}

TEST_F(Expectations, RefuseWhatNoObjectCouldHave) {
    const auto one = integer(1);
    const struct {
        ScriptArgument::List arguments;
        QString error;
    } rows[] = {
        {{name}, "expect() expects 2-4 arguments"},
        {{name, properties, one, one, one}, "expect() expects 2-4 arguments"},
        {{one, properties}, "expect() requires an object or an object name argument"},
        {{name, one}, "expect() requires the expected properties as its second argument"},
        {{name, map({})}, "expect() requires at least one expected property"},
        {{name, properties, text("1")}, "Invalid type of timeout value"},
        {{name, map({{"occurrence", one}})},
         "expect(): The expected properties must not contain 'occurrence'"},
        {{name, map({{"text~", text("(")}})},
         "The property 'text' of the name {text~='('}: '(' is no valid regular expression: missing "
         "closing parenthesis at character 2"},
        {{name, text(":None")}, "The object map has no name ':None'"},
        {{text("{type='A' occurrence='0'}"), properties},
         "The occurrence in a name is a number from 1, not '0'"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(expect(row.arguments), row.error);
    Inspector::self()->setModel(nullptr);
    EXPECT_EQ(expect({name, properties}), Inspector::noApplicationText);
    EXPECT_EQ(runner.calls, QStringList());
    EXPECT_TRUE(report.results().empty());
}

TEST_F(Expectations, FailWithARunnerThatDoesNotWait) {
    EXPECT_FALSE(runner.RunnerInterface::waitForProperties(button, {}, ObjectName("{a='1'}"), 0));
    EXPECT_EQ(Inspector::self()->lastError(),
              "This runner does not wait for the properties of objects");
}

}  // namespace
}  // namespace Tamrix
