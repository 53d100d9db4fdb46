// Feature files with step definitions in Ruby.

#include <QDir>
#include <QRegularExpression>

#include "platform/testresult/resulttext.h"
#include "plugins/ruby/rubytest.h"

namespace Tamrix {
namespace {

using namespace Test;

class RubyFeatures : public RubyTest {
protected:
    RubyFeatures() { EXPECT_TRUE(QDir(folder.path()).mkpath("steps")); }

    /// Runs scenario steps with step definitions; what became of them, a line each.
    QString runSteps(const QByteArray& definitions, const QByteArray& steps) {
        interpreter->setScriptArguments(script(), {});
        EXPECT_TRUE(writeFile(folder.filePath("steps/steps.rb"), definitions));
        EXPECT_TRUE(writeFile(folder.filePath("x.feature"), "Feature: f\n  Scenario: s\n" + steps));
        report.entries.clear();
        const bool succeeded =
            interpreter->callLibraryFunction("runFeatureFile", {folder.filePath("x.feature")});
        QString text;
        for (const ResultAdded& result : report.results()) {
            text += QStringLiteral("%1: %2").arg(result.message, result.detail);
            for (const LineInfo& position : result.callStack)
                text += " " + QFileInfo(position.fileName()).fileName() + ":" +
                        QString::number(position.lineNumber());
            text += '\n' + result.explanation;
        }
        return text + (succeeded ? "" : "error " + interpreter->errorMessage());
    }
};

TEST_F(RubyFeatures, HandsValuesToSteps) {
    EXPECT_EQ(
        runSteps(
            "class Colour < String; end\n"
            "parameter_type('colour', ['red|blue', 'dark (?:red|blue)']) { |t| Colour.new(t) }\n"
            "parameter_type('flag', /on|off/) { |text| text == 'on' }\n"
            "Given('{int}, {float}, {word}, {string}, {}, {bigdecimal}, {biginteger}') do "
            "|context, *values|\n"
            "  test.log(values.inspect)\n"
            "end\n"
            "When('{colour} item(s) is/are {flag}') do |context, colour, is_on|\n"
            "  test.log([colour.class, colour, is_on].inspect)\n"
            "end\n"
            "Then(/^total (\\d+)(?: of (\\d+))?$/) { |context, *values| test.log(values.inspect) "
            "}\n"
            "Step('table') do |context|\n"
            "  t = context.table\n"
            "  test.log([t.headers, t.raw.size, t.rows == t.to_a, t[1]['b']].inspect)\n"
            "end\n"
            "Step('text') { |context| test.log([context.text, context.table].inspect) }\n",
            "    Given -3, 1.5, w, \"a b\", rest of it, 2.50, 99999999999999999999\n"
            "    When red items are on\n"
            "    Then total 4\n"
            "    * table\n      | a | b |\n      | 1 | 2 |\n      | 3 | x |\n"
            "    * text\n      \"\"\"\n      one\n      \"\"\"\n")
            .replace(QRegularExpression(" steps.rb.*\n"), "\n"),
        "[-3, 1.5, \"w\", \"a b\", \"rest of it\", (5/2), 99999999999999999999]: \n"
        "[Colour, \"red\", true]: \n"
        "[\"4\", nil]: \n"
        "[[\"a\", \"b\"], 3, true, \"x\"]: \n"
        "[\"one\", nil]: \n");
}

TEST_F(RubyFeatures, KeepsValuesByScopeAndRunsHooks) {
    EXPECT_EQ(
        runSteps("before_feature { |context| context.kept = 'feature' }\n"
                 "before_scenario { |context| context.own = [context.kept, context.scenario] }\n"
                 "before_scenario('@other') { |context| test.fail('not tagged') }\n"
                 "after_scenario { |context| test.log('after ' + context.own.inspect) }\n"
                 "Given('one') { |context| context.count = 1 }\n"
                 "When('two') do |context|\n"
                 "  raise 'hash' unless context.to_h[:count] == 1 && context.respond_to?(:count)\n"
                 "  test.log(context.nothing)\n"
                 "end\n",
                 "    Given one\n    When two\n")
            .section('\n', 0, 1)
            .replace(QRegularExpression("#<.*>"), "#<>"),
        "Script Error: NoMethodError: undefined method `nothing' for #<> steps.rb:8 "
        "x.feature:4\n"
        "after [\"feature\", \"s\"]:  steps.rb:4");
}

TEST_F(RubyFeatures, TellsErrorsPendingAndMissingSteps) {
    EXPECT_EQ(runSteps("Given('a failing step') { |context| raise 'broken' }\n",
                       "    Given a failing step\n")
                  .section('\n', 0, 0),
              "Script Error: RuntimeError: broken steps.rb:1 x.feature:3");
    EXPECT_TRUE(runSteps("Given('later') { pending 'not yet' }\n", "    Given later\n")
                    .contains("not yet"));
    EXPECT_TRUE(runSteps("", "    Given 3 apples\n")
                    .contains("Given('{int} apples') do |context, int_1|\n  pending\nend"));
    EXPECT_TRUE(runSteps("\n\nGiven('x'\n", "    Given x\n").contains("steps.rb:3: SyntaxError"));
    EXPECT_TRUE(runSteps("Given('{nothing}') { }\n", "    Given x\n").contains("steps.rb:1: "));
    EXPECT_TRUE(runSteps("Given(/x/x) { }\n", "    Given x\n")
                    .contains("steps know no extended regular expressions"));
}

}  // namespace
}  // namespace Tamrix
