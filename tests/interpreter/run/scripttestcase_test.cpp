#include "interpreter/run/scripttestcase.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "interpreter/bridge/testsettingstype.h"
#include "platform/testresult/testvp.h"
#include "support/environmentguard.h"
#include "support/fakelanguage.h"
#include "support/fakerunner.h"
#include "support/files.h"
#include "support/printqt.h"
#include "support/recordingreport.h"

namespace Tamrix {
namespace {

using namespace Test;

class ScriptTestCaseTest : public testing::Test {
protected:
    ScriptTestCaseTest() {
        FakeInterpreter::s_calls.clear();
        FakeInterpreter::s_made = 0;
    }
    ~ScriptTestCaseTest() override {
        FakeInterpreter::s_duringCall = nullptr;
        TestSettingsType::s_vpOptions = VerificationOptions();
        TestVP::setScreenshotServices({});
        ScriptContext::setCurrent(nullptr);
    }

    QString script(const QString& name, const QByteArray& contents) {
        const QString path = folder.filePath("suite/tst/" + name);
        EXPECT_TRUE(writeFile(path, contents));
        return path;
    }

    std::unique_ptr<ScriptTestCase> testCase() {
        return std::make_unique<ScriptTestCase>(&result, QDir(folder.filePath("suite/tst")),
                                                &runner, QStringList{"-x"});
    }

    /// Loads, evaluates and runs a script as a runner does.
    bool run(const QByteArray& contents, const QString& name = "test.tcl") {
        const auto one = testCase();
        return one->load(script(name, contents), Debugger::Run) &&
               one->evaluate(QString::fromUtf8(contents)) && one->run();
    }

    /// All results as "type|message|detail|file:line ...".
    QStringList results() const {
        QStringList lines;
        for (const ResultAdded& entry : report.results()) {
            QStringList stack;
            for (const LineInfo& position : entry.callStack)
                stack.append(QString(position.fileName()).replace(folder.path(), "") + ":" +
                             QString::number(position.lineNumber()));
            lines.append(QStringLiteral("%1|%2|%3|%4")
                             .arg(entry.type)
                             .arg(entry.message, entry.detail, stack.join(' ')));
        }
        return lines;
    }

    QTemporaryDir folder;
    EnvironmentGuard prefix{"TAMRIX_PREFIX", TAMRIX_FAKE_PREFIX};
    FakeRunner runner;
    RecordingReport report;
    TestResult result{&report};
};

TEST_F(ScriptTestCaseTest, RunsTheFunctionsThatThereAre) {
    EXPECT_TRUE(run("main\n"));
    EXPECT_EQ(FakeInterpreter::s_calls,
              (QStringList{"initTestFunctions", "initUtilFunctions", "evaluate", "call main"}));
    FakeInterpreter::s_calls.clear();
    EXPECT_TRUE(run("init\nmain\ncleanup\n"));
    EXPECT_EQ(FakeInterpreter::s_calls.mid(3),
              (QStringList{"call init", "call main", "call cleanup"}));
    FakeInterpreter::s_calls.clear();
    // A failed init skips main, a failed main does not skip cleanup.
    EXPECT_FALSE(run("init error 2 no\nmain\ncleanup\n"));
    EXPECT_EQ(FakeInterpreter::s_calls.mid(3), (QStringList{"call init", "call cleanup"}));
    EXPECT_EQ(results().size(), 1);
}

TEST_F(ScriptTestCaseTest, LoadFailuresAreResults) {
    const auto one = testCase();
    const WorkingDirectory inFolder(folder.path());
    EXPECT_FALSE(one->load("none.tcl", Debugger::Run));
    EXPECT_FALSE(one->load(script("test.xyz", "main"), Debugger::Run));
    EXPECT_FALSE(one->load(script("test.rb", "main"), Debugger::Run));
    EXPECT_EQ(results(),
              (QStringList{"8|Missing file|Test script file none.tcl does not exist|/none.tcl:-1",
                           "8|Unidentified language|Wasn't able to deduce type of language|"
                           "/suite/tst/test.xyz:-1",
                           "8|Failed to load script language plugin|Missing script language "
                           "plugin 'tamrixruby'|/suite/tst/test.rb:-1"}));
    EXPECT_EQ(one->testScriptName(), "");
    EXPECT_FALSE(one->exec());
    EXPECT_EQ(results().last(), "8|No interpreter|Can't run 'main' without interpreter|:-1");
}

TEST_F(ScriptTestCaseTest, LoadPreparesTheInterpreter) {
    QDir(folder.path()).mkpath("suite/shared/scripts");
    const auto one = testCase();
    ASSERT_TRUE(one->load(script("test.tcl", "main"), Debugger::Step));
    EXPECT_EQ(one->testScriptName(), "test.tcl");
    auto* const interpreter = static_cast<FakeInterpreter*>(ScriptTestCase::ip);
    EXPECT_EQ(Interpreter::self(), interpreter);
    EXPECT_EQ(interpreter->runner(), &runner);
    EXPECT_EQ(interpreter->searchPath.value(0), folder.filePath("suite/shared/scripts"));
    EXPECT_EQ(interpreter->scriptArguments(), QStringList("-x"));
}

TEST_F(ScriptTestCaseTest, OneInterpreterForEachLanguageInARow) {
    {
        const auto first = testCase();
        const auto second = testCase();
        ASSERT_TRUE(first->load(script("test.tcl", "main"), Debugger::Run));
        Interpreter* const tcl = ScriptTestCase::ip;
        ASSERT_TRUE(second->load(script("other.tcl", "main"), Debugger::Run));
        EXPECT_EQ(ScriptTestCase::ip, tcl);
        EXPECT_EQ(Interpreter::self(), tcl);
        EXPECT_EQ(FakeInterpreter::s_made, 2);
        EXPECT_EQ(FakeInterpreter::s_alive, 1);
        ASSERT_TRUE(second->load(script("other.pl", "main"), Debugger::Run));
        EXPECT_EQ(ScriptTestCase::ip->language(), Interpreter::Perl);
        EXPECT_EQ(ScriptTestCase::defip, ScriptTestCase::ip);
        EXPECT_EQ(FakeInterpreter::s_alive, 1);
    }
    EXPECT_EQ(FakeInterpreter::s_alive, 0);
    EXPECT_EQ(ScriptTestCase::ip, nullptr);
    EXPECT_EQ(ScriptTestCase::defip, nullptr);
}

TEST_F(ScriptTestCaseTest, EvaluationFailuresAreResults) {
    EXPECT_FALSE(run("syntax error 3 bad token\n"));
    EXPECT_FALSE(run("evaluation error 4 boom\n"));
    EXPECT_EQ(results(), (QStringList{"8|Syntax error|bad token|/suite/tst/test.tcl:3",
                                      "8|Evaluation error|boom|"
                                      "/suite/tst/test.tcl:4 /scripts/caller.fake:99"}));
}

TEST_F(ScriptTestCaseTest, TellsOfAMissingFunction) {
    const QString empty =
        "8|Missing function|The test script is empty or does not have a 'main' function. Please "
        "record a test case (via Run > Record Test Case) to create a test script first.|"
        "/suite/tst/test.tcl:0";
    const QString missing =
        "8|Missing function|The test script does not have a 'main' function|/suite/tst/test.tcl:0";
    // A script too short to hold "main" and five characters more counts as never written.
    for (const auto& [size, expected] : {std::pair(0, empty), std::pair(8, empty),
                                         std::pair(9, missing), std::pair(100, missing)}) {
        EXPECT_FALSE(run(QByteArray(size, '\n')));
        EXPECT_EQ(results().last(), expected) << size;
    }
}

TEST_F(ScriptTestCaseTest, ScriptErrorsAreResults) {
    EXPECT_FALSE(run("main error 5 boom\n"));
    EXPECT_EQ(results().last(),
              "9|Script Error|boom|/suite/tst/test.tcl:5 /scripts/caller.fake:99");

    // A fixated position stands for the whole stack.
    FakeContext context;
    FakeInterpreter::s_duringCall = [&](FakeInterpreter&, const QString&) {
        ScriptContext::setCurrent(&context);
        context.setArguments({integer(1)});
        context.fixateResultContext();
    };
    EXPECT_FALSE(run("main error 5 boom\n"));
    EXPECT_EQ(results().last(), "9|Script Error|boom|/suite/tst/test.fake:20");
    // It ends with the function that left it open.
    EXPECT_TRUE(context.fixatedResultContexts().empty());
}

TEST_F(ScriptTestCaseTest, OnlyTheErrorOfASkipIsItsEcho) {
    bool isSkip = true;
    FakeInterpreter::s_duringCall = [&](FakeInterpreter& interpreter, const QString&) {
        interpreter.setErrorIsSkip(isSkip);
    };
    EXPECT_FALSE(run("main error 5 no printer: here\n"));
    EXPECT_TRUE(report.results().back().isEcho);
    isSkip = false;
    EXPECT_FALSE(run("main error 5 broken while handling no printer: here\n"));
    EXPECT_FALSE(report.results().back().isEcho);
    EXPECT_EQ(result.count("errors"), 1);
}

TEST_F(ScriptTestCaseTest, ScreenshotOfAScriptError) {
    TestSettingsType::s_vpOptions.setFlag(VerificationOptions::LogScreenshotOnError, true);
    QImage ownImage(3, 3, QImage::Format_RGB32);
    ownImage.fill(Qt::red);
    QImage desktop(5, 5, QImage::Format_RGB32);
    desktop.fill(Qt::green);
    TestVP::setScreenshotServices({[&](RunnerInterface*) { return desktop; },
                                   [&](RunnerInterface*) { return folder.filePath("screenshots"); },
                                   {}});
    FakeInterpreter::s_duringCall = [&](FakeInterpreter& interpreter, const QString&) {
        interpreter.setErrorImage(ownImage);
    };
    const auto widthOfScreenshot = [&](const QByteArray& message) {
        EXPECT_FALSE(run("main error 5 " + message + "\n"));
        const QString text = report.results().back().message;
        EXPECT_TRUE(text.startsWith("Script Error (Screenshot in '")) << text.toStdString();
        return QImage(text.section('\'', 1, 1)).width();
    };
    EXPECT_EQ(widthOfScreenshot("Could not find image 'x' on the screen(s)."), 3);
    EXPECT_EQ(widthOfScreenshot("Could not find text 'x' on the screen(s)."), 3);
    EXPECT_EQ(widthOfScreenshot("Could not find image 'x' in a region"), 5);
}

TEST_F(ScriptTestCaseTest, WorksWithoutASink) {
    ScriptTestCase silent(nullptr, QDir(folder.filePath("suite/tst")), nullptr, {});
    EXPECT_FALSE(silent.load("none.tcl", Debugger::Run));
    EXPECT_FALSE(silent.exec());
    ASSERT_TRUE(silent.load(script("test.tcl", ""), Debugger::Run));
    EXPECT_FALSE(silent.exec());
    EXPECT_FALSE(silent.evaluate("syntax error 1 x"));
    ASSERT_TRUE(silent.evaluate("main error 1 x"));
    EXPECT_FALSE(silent.exec());
}

TEST_F(ScriptTestCaseTest, RunsAFeatureInTheLanguageOfItsSteps) {
    const QString feature = script("test.feature", "Feature: f\n");
    script("steps/a.tcl", "");
    const auto one = testCase();
    ASSERT_TRUE(one->loadFeature(feature, Debugger::Run));
    EXPECT_EQ(ScriptTestCase::ip->language(), Interpreter::Tcl);
    EXPECT_EQ(one->testScriptName(), "test.feature");
    EXPECT_TRUE(one->init());
    // This language knows steps in scripts only.
    EXPECT_FALSE(one->exec());
    EXPECT_TRUE(one->cleanup());
    EXPECT_EQ(results().join("; "),
              "9|Script Error|The language of the test case can't call 'runFeatureFile' without a "
              "script|");
}

}  // namespace
}  // namespace Tamrix
