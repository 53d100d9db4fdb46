#include "interpreter/generic/tamrixinfo.h"

#include <gtest/gtest.h>

#include "support/fakelanguage.h"
#include "support/fakerunner.h"
#include "support/printqt.h"
#include "support/warningrecorder.h"

namespace Tamrix {
namespace {

using namespace Test;

struct Row {
    ScriptContext::Function function;
    const char* value;
    /// What is warned of without a runner; null for functions that answer without one.
    const char* warning;
};

const Row rows[] = {
    {infoTestCase, "/suite/tst_one", "Without Runner interface no currentTestCase()"},
    {infoTestCaseName, "tst_fake", nullptr},
    {infoTestSuiteName, "suite_fake", nullptr},
    {infoVersionString, "7.1.0", nullptr},
    {infoVersion, "117506288", nullptr},
    {infoMajor, "7", nullptr},
    {infoMinor, "1", nullptr},
    {infoPatch, "0", nullptr},
    {infoSettingsGroup, "the group", "Without Runner interface no currentSettingsGroup()"},
    {infoDefaultDevice, "the device", "Without Runner interface no currentSettingsGroup()"},
    {infoResultDir, "/results", "Without Runner interface no currentResultDir()"},
};

TEST(TamrixInfo, FactsOfTheRun) {
    FakeRunner runner;
    runner.casePath = "/suite//other/../tst_one/test.py";
    runner.resultDirectory = "/results";
    FakeInterpreter interpreter(&runner, Interpreter::Tcl);
    FakeContext context;
    for (const Row& row : rows) {
        context.call(row.function);
        ASSERT_TRUE(context.result) << row.value;
        EXPECT_EQ(context.result->toString(), row.value);
    }
}

TEST(TamrixInfo, WithoutARunner) {
    FakeContext context;
    for (const Row& row : rows) {
        WarningRecorder warnings;
        context.call(row.function);
        EXPECT_FALSE(context.hasError());
        EXPECT_EQ(bool(context.result), row.warning == nullptr) << row.value;
        EXPECT_EQ(warnings.messages(), row.warning ? QStringList(row.warning) : QStringList());
    }
    context.call(infoTestCaseName);
    EXPECT_EQ(context.result->toString(), "");
}

}  // namespace
}  // namespace Tamrix
