// Feature files with step definitions in Python.

#include <QDir>

#include "interpreter/bridge/debugger.h"
#include "platform/testresult/resulttext.h"
#include "plugins/python/pythontest.h"
#include "support/golden.h"
#include "support/scriptedfrontend.h"

namespace Tamrix {
namespace {

using namespace Test;

class PythonFeatures : public PythonTest {
protected:
    PythonFeatures() {
        interpreter->setScriptArguments(script(), {});
        EXPECT_TRUE(QDir(folder.path()).mkpath("steps"));
    }

    void writeSteps(const QByteArray& text, const QString& name = "steps.py") {
        EXPECT_TRUE(writeFile(folder.filePath("steps/" + name), text));
    }
    void writeFeature(const QByteArray& text) { EXPECT_TRUE(writeFile(featureFile(), text)); }
    QString featureFile() const { return folder.filePath("x.feature"); }

    /// Runs scenario steps with step definitions; what became of them, see told().
    QString runSteps(const QByteArray& definitions, const QByteArray& steps) {
        // As for the next test case.
        interpreter->setScriptArguments(script(), {});
        writeSteps("import re\nfrom bdd import *\nfrom bdd import context\n" + definitions);
        writeFeature("Feature: f\n  Scenario: s\n" + steps);
        return runFeature();
    }

    QString runFeature() {
        report.entries.clear();
        const bool succeeded = interpreter->callLibraryFunction("runFeatureFile", {featureFile()});
        return told() + (succeeded ? "" : "error " + place() + interpreter->errorMessage());
    }

    QString place() const {
        const auto& stack = interpreter->errorCallStack();
        return stack.empty() ? QString() : shortened(positionText(stack.front())) + ": ";
    }

    QString shortened(QString text) const {
        return text.replace(QFileInfo(folder.path()).canonicalFilePath() + '/', "")
            .replace(folder.path() + '/', "");
    }

    /// Results with their call stacks, a line each; a skipped step as "skipped TEXT".
    QString told() const {
        QString text;
        for (const ResultAdded& result : report.results()) {
            if (result.type == TestResult::Skipped) {
                text += "skipped " + result.message + '\n';
                continue;
            }
            text += QStringLiteral("%1: %2\n").arg(result.message, result.detail);
            for (const LineInfo& position : result.callStack)
                text += "  " + positionText(position) + '\n';
            if (!result.explanation.isEmpty())
                text += result.explanation + '\n';
        }
        return shortened(text);
    }
};

TEST_F(PythonFeatures, HandsValuesToSteps) {
    EXPECT_EQ(runSteps("class Colour(str): pass\n"
                       "parameter_type('colour', ['red|blue', 'dark (?:red|blue)'], Colour)\n"
                       "@parameter_type('flag', re.compile('on|off'))\n"
                       "def flag(text): return text == 'on'\n"
                       "@given('{int}, {float}, {word}, {string}, {}, {bigdecimal}')\n"
                       "def builtin(context, *values): test.log(repr(values))\n"
                       "@when('{colour} item(s) is/are {flag}')\n"
                       "def own(context, colour, isOn):\n"
                       "    test.log(type(colour).__name__ + ' ' + colour + ' ' + repr(isOn))\n"
                       "@then(re.compile(r'^total (\\d+)(?: of (\\d+))?$'))\n"
                       "def regular(context, *values): test.log(repr(values))\n"
                       "@step(re.compile('^NAMED (?P<who>.*)$', re.I))\n"
                       "def named(context, who): test.log(who)\n",
                       "    Given -3, 1.5, w, \"a \\\" b\", rest of it, 2.50\n"
                       "    When red items are on\n"
                       "    When blue item is off\n"
                       "    Then total 4\n"
                       "    Then named Ann\n")
                  .replace(QRegularExpression("  steps.*\n"), ""),
              "(-3, 1.5, 'w', 'a \" b', 'rest of it', Decimal('2.50')): \n"
              "Colour red True: \n"
              "Colour blue False: \n"
              "('4', None): \n"
              "Ann: \n");
}

TEST_F(PythonFeatures, HandsTablesAndTextsToSteps) {
    EXPECT_EQ(
        runSteps("@step('table')\n"
                 "def table(context):\n"
                 "    t = context.table\n"
                 "    test.log(repr([t.headers, t.raw, t.rows == list(t), len(t), t[1]['b']]))\n"
                 "    test.log(repr(context.text))\n"
                 "@step('text')\n"
                 "def text(context): test.log(repr([context.text, context.table]))\n",
                 "    * table\n      | a | b |\n      | 1 | 2 |\n      | 3 | x\\|y |\n"
                 "    * text\n      \"\"\"\n      one\n        two\n      \"\"\"\n")
            .replace(QRegularExpression("  steps.*\n"), ""),
        "[['a', 'b'], [['a', 'b'], ['1', '2'], ['3', 'x|y']], True, 2, 'x|y']: \n"
        "None: \n"
        "['one\\n  two', None]: \n");
}

TEST_F(PythonFeatures, KeepsValuesByScope) {
    writeSteps(
        "from bdd import *\n"
        "from bdd import context as shared\n"
        "@before_feature\n"
        "def feature(context): context.count = 1\n"
        "@before_scenario\n"
        "def scenario(context): context.own = context.scenario + str(context.tags)\n"
        "@step('add')\n"
        "def add(context):\n"
        "    context.count += 1\n"
        "    test.log(str(context.count) + shared.own)\n"
        "    del context.count\n"
        "    test.log(str(context.count) + str(hasattr(context, 'other')))\n"
        "    context.other = 1\n"
        "    try:\n"
        "        del context.nothing\n"
        "    except AttributeError as error: test.log(repr(error))\n");
    writeFeature("@f\nFeature: f\n  @s\n  Scenario: one\n    * add\n  Scenario: two\n    * add\n");
    EXPECT_EQ(runFeature().replace(QRegularExpression("  steps.*\n"), ""),
              "2one['f', 's']: \n1False: \nAttributeError('nothing'): \n"
              "2two['f']: \n1False: \nAttributeError('nothing'): \n");
}

TEST_F(PythonFeatures, TellsWhatBecomesOfSteps) {
    EXPECT_TRUE(compareWithGolden(
        "python/steps.txt",
        runSteps("", "    Given \"3\" things of 4.5 (big) ones\n    * later\n") + "--\n" +
            runSteps("@given('a')\ndef one(context): pass\n"
                     "@given('a(b)')\ndef two(context): pass\n",
                     "    Given a\n    Then later\n") +
            "--\n" +
            runSteps("@given('a')\ndef one(context): helper()\ndef helper(): 1 / 0\n",
                     "    Given a\n    Then later\n") +
            "--\n" + runSteps("@given('a')\ndef one(context): pending()\n", "    Given a\n") +
            "--\n" + runSteps("@given('a {int}')\ndef one(context): pass\n", "    Given a 1\n") +
            "--\n" + runSteps("@given('a')\nasync def one(context): pass\n", "    Given a\n") +
            "--\n" +
            runSteps("@parameter_type('odd', '.*')\ndef odd(text): raise ValueError(text)\n"
                     "@given('a {odd}')\ndef one(context, x): pass\n",
                     "    Given a 1\n") +
            "--\n" +
            runSteps("@given('a')\ndef one(context): test.fail('no')\n",
                     "    Given a\n    Then later\n") +
            "--\n" +
            runSteps("@before_scenario\ndef before(context): 1 / 0\n"
                     "@after_scenario\ndef first(context): raise KeyError('k')\n"
                     "@after_scenario\ndef second(context): test.log('runs')\n",
                     "    Given a\n") +
            "--\n" +
            runSteps("@given('a')\ndef one(context): test.log('ok')\n"
                     "@before_step('@slow or not @f')\ndef b(context): test.log(context.step)\n"
                     "@after_step('@slow')\ndef c(context): test.log('never')\n",
                     "    Given a\n")));
}

TEST_F(PythonFeatures, RefusesWrongRegistrations) {
    const struct {
        const char* code;
        const char* error;
    } rows[] = {
        {"given('a {nothing}')(print)", "Undefined parameter type 'nothing'"},
        {"given('a {int')(print)", "steps.py:4"},
        {"given(re.compile('(?<=a)b'))(print)", "ValueError"},
        {"given(re.compile('a', re.X))(print)", "re.I, re.M and re.S"},
        {"given(3)", "as a text or as a compiled regular expression"},
        {"given(re.compile(b'a'))", "as a text or as a compiled regular expression"},
        {"given('a')(3)", "what is registered has to be a function"},
        {"before_scenario('@a and')(print)", "ValueError"},
        {"parameter_type('int', 'x', int)", "There is already a parameter type 'int'"},
        {"parameter_type('new', '(', int)", "ValueError"},
        {"parameter_type('new')", "TypeError"},
        {"1 / 0", "steps.py:4: ZeroDivisionError"},
    };
    for (const auto& row : rows) {
        const QString told = runSteps(row.code, "    Given a\n");
        EXPECT_TRUE(told.startsWith("error ") && told.contains("steps/steps.py:4: ") &&
                    told.contains(row.error))
            << row.code << ": " << told.toStdString();
    }
}

TEST_F(PythonFeatures, EndsWithTheScript) {
    for (const char* code : {"test.skip('not here')", "import sys; sys.exit()"}) {
        const QString told = runSteps(QByteArray("@given('a')\ndef one(context): ") + code +
                                          "\n@after_scenario\ndef after(context): test.log('no')\n",
                                      "    Given a\n    Given a\n");
        EXPECT_FALSE(told.contains("no: ")) << told.toStdString();
        EXPECT_FALSE(told.contains("Script Error")) << told.toStdString();
    }
    EXPECT_EQ(interpreter->errorMessage(), "");
}

TEST_F(PythonFeatures, TakesStepsFromAllPlaces) {
    // The folder of the suite is that above the case.
    QTemporaryDir suite;
    EXPECT_TRUE(QDir(suite.path()).mkpath("tst/steps"));
    EXPECT_TRUE(QDir(suite.path()).mkpath("shared/steps"));
    const auto write = [&](const QString& name, const QByteArray& text) {
        EXPECT_TRUE(writeFile(suite.filePath(name), text));
    };
    write("tst/steps/b.py",
          "import helper\nfrom bdd import step\n"
          "@step('case')\ndef f(context): test.log(helper.name)\n");
    // What others import is loaded once.
    write("tst/steps/helper.py",
          "from bdd import step\nname = 'case step'\n"
          "@step('once')\ndef f(context): test.log('once')\n");
    // One of the same name is another one.
    write("shared/steps/b.py",
          "from bdd import step\n@step('twin')\ndef f(context): test.log('twin step')\n");
    write("shared/steps/c.py",
          "from bdd import step\n@step('shared')\ndef f(context): test.log('shared step')\n");
    write(
        "tst/x.feature",
        "Feature: f\n  Scenario: s\n    * case\n    * shared\n    * own\n    * once\n    * twin\n");
    const QString test = suite.filePath("tst/test.py");
    interpreter->setScriptArguments(test, {});
    EXPECT_TRUE(
        interpreter->evaluate("from bdd import step\n"
                              "@step('own')\n"
                              "def own(context): test.log('own step')\n"
                              "def main():\n"
                              "    runFeatureFile('" +
                                  suite.filePath("tst/x.feature") + "')\n",
                              test));
    EXPECT_TRUE(interpreter->callFunction("main", ObjectList()));
    EXPECT_EQ(results().join("|"),
              "7 case step: |7 shared step: |7 own step: |7 once: |7 twin step: ");
}

TEST_F(PythonFeatures, TellsWhereAFileIsWrong) {
    writeFeature("Feature: f\n  Scenario: s\n    * a\n    Givven a\n");
    EXPECT_TRUE(runFeature().startsWith("error x.feature:4: tamrix.Error: Syntax error in "))
        << runFeature().toStdString();
    EXPECT_EQ(run("def main():\n    runFeatureFile('" + featureFile() + "')\n"), "");
    EXPECT_FALSE(interpreter->callFunction("main", ObjectList()));
    const std::vector<LineInfo>& stack = interpreter->errorCallStack();
    ASSERT_EQ(stack.size(), 2u);
    EXPECT_EQ(shortened(positionText(stack[0])), "x.feature:4");
    EXPECT_EQ(shortened(positionText(stack[1])), "test.py:2");
}

/// With the debugger, seen through a front end that tells the stack at each stop.
class PythonFeatureDebugging : public PythonFeatures {
protected:
    class StackFrontEnd : public ScriptedFrontEnd {
    public:
        void stopped(const ScriptPosition& position, const StopReason& reason) override {
            if (std::holds_alternative<StepMissing>(reason)) {
                ScriptedFrontEnd::stopped(position, reason);
                return;
            }
            QStringList stack;
            for (const LineInfo& place : Debugger::self()->callStack())
                stack += QStringLiteral("%1:%2")
                             .arg(QFileInfo(place.fileName()).fileName())
                             .arg(place.lineNumber());
            told += stack.join(" < ");
        }
    };

    PythonFeatureDebugging() {
        auto installed = std::make_unique<StackFrontEnd>();
        frontEnd = installed.get();
        debugger.setFrontEnd(std::move(installed));
        debugger.setInteractive(true);
        writeSteps(
            "from bdd import *\n"          // 1
            "@given('a')\n"                // 2
            "def a(context):\n"            // 3
            "    value = 1\n"              // 4
            "    return helper(value)\n"   // 5
            "def helper(value):\n"         // 6
            "    return value\n"           // 7
            "@then('b')\n"                 // 8
            "def b(context):\n"            // 9
            "    context.done = True\n");  // 10
        writeFeature("Feature: f\n  Scenario: s\n    Given a\n    Then b\n      | x |\n    * a\n");
        EXPECT_EQ(run("def main():\n    runFeatureFile('" + featureFile() + "')\n"), "");
    }

    /// Runs main() from a mode on; the stops, a line each.
    QString stops(Debugger::DbgMode mode) {
        debugger.setDebuggerMode(mode);
        EXPECT_TRUE(interpreter->callFunction("main", ObjectList()));
        return frontEnd->take("\n");
    }

    Debugger& debugger = *interpreter->debugger();
    StackFrontEnd* frontEnd = nullptr;
};

TEST_F(PythonFeatureDebugging, StepsThroughFeatureAndScript) {
    debugger.addBreakPoint("x.feature", 3);
    frontEnd->commands = {Resume::Step, Resume::Next,   Resume::Next, Resume::Next,
                          Resume::Step, Resume::Return, Resume::Next, Resume::Run};
    EXPECT_EQ(stops(Debugger::Run),
              "x.feature:3 < test.py:2\n"
              "steps.py:4 < x.feature:3 < test.py:2\n"
              "steps.py:5 < x.feature:3 < test.py:2\n"
              "x.feature:4 < test.py:2\n"
              "x.feature:6 < test.py:2\n"
              "steps.py:4 < x.feature:6 < test.py:2");
}

TEST_F(PythonFeatureDebugging, StopsAtBreakPointsOfBoth) {
    debugger.addBreakPoint("x.feature", 5);
    debugger.addBreakPoint("steps.py", 7);
    frontEnd->commands = {Resume::Return, Resume::Run, Resume::Run};
    EXPECT_EQ(stops(Debugger::Run),
              "steps.py:7 < steps.py:5 < x.feature:3 < test.py:2\n"
              "x.feature:4 < test.py:2\n"
              "steps.py:7 < steps.py:5 < x.feature:6 < test.py:2");
}

TEST_F(PythonFeatureDebugging, EvaluatesWhereItStands) {
    debugger.addBreakPoint("x.feature", 4);
    debugger.addBreakPoint("steps.py", 5);
    QStringList seen;
    const auto look = [&seen](const char* code) {
        return DebuggerCommand([&seen, code](Debugger& halted) { seen += halted.evaluate(code); });
    };
    frontEnd->commands = {look("value + 1"), look("^2 callable(main)"), look("^1 callable(main)"),
                          Resume::Run,       look("callable(main)"),    Resume::Run,
                          Resume::Run};
    stops(Debugger::Run);
    EXPECT_EQ(seen.join("|"), "2|True|True|True");
}

TEST_F(PythonFeatureDebugging, LetsAMissingStepBeWritten) {
    writeFeature(
        "Feature: f\n  Scenario: s\n    Given a\n    Then new\n    * newer\n    * newest\n");
    debugger.setBreakOnMissingStep(true);
    const auto write = [this](const char* name, const char* step) {
        return DebuggerCommand([=, this](Debugger&) {
            writeSteps(QByteArray("from bdd import *\n@step('") + step +
                           "')\ndef f(context): test.log('" + step + "')\n",
                       name);
        });
    };
    // A new file and one that has changed are found; others are read by a command.
    EXPECT_TRUE(
        writeFile(folder.filePath("elsewhere.py"),
                  "from bdd import *\n@step('newest')\ndef f(context): test.log('newest')\n"));
    frontEnd->commands = {write("new.py", "new"),
                          Resume::Run,
                          write("new.py", "newer"),
                          Resume::Run,
                          DebuggerCommand([this](Debugger& halted) {
                              halted.setDebuggerMode(Debugger::None);
                              EXPECT_TRUE(interpreter->evaluate(
                                  "source('" + folder.filePath("elsewhere.py") + "')", QString()))
                                  << interpreter->errorMessage().toStdString();
                          }),
                          Resume::Run};
    EXPECT_EQ(stops(Debugger::Run), "4 no step new\n5 no step newer\n6 no step newest");
    EXPECT_EQ(results().join("|"), "7 new: |7 newer: |7 newest: ");
}

}  // namespace
}  // namespace Tamrix
