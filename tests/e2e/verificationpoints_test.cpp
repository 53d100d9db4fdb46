// Verification points of a real program, from their making to their renewal.

#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QTemporaryDir>

#include "e2e/journal.h"
#include "e2e/runnerprocess.h"
#include "platform/testresult/testresult.h"
#include "runner/suites/suitefolder.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Test::readFile;
using Test::RunnerProcess;

constexpr char calculator[] =
    "/usr/lib/x86_64-linux-gnu/qt5/examples/widgets/widgets/calculator/calculator";

class VerificationPointsTest : public testing::Test {
protected:
    VerificationPointsTest() {
        suite.write(
            "suite/config.xml",
            QByteArray("<suite><applications><application name='calculator' path='") + calculator +
                "'/><application name='views' path='" WIDGETS_TARGET "'/></applications></suite>");
        suite.write("suite/shared/objectnames.tsv",
                    ":Display\t{type='QLineEdit'}\n:Window\t{type='Calculator'}\n"
                    ":List\t{type='QListWidget'}\n");
        suite.write("suite/case/test.py", R"py(
def main():
    startApplication("calculator")
    test.vp("display")
    test.vp("window", "as it starts")
    click({"type": "Button", "text": "7"})
    test.vp("display")
    test.vp("window")
    test.xvp("display")
    test.vpWithObject("display", ":Display")
    createVisualVP(":Display", "made")
    test.vp("made")
)py");
        runner.setVariable("QT_QPA_PLATFORM", "offscreen");
        for (const char* name : {"HOME", "XDG_CONFIG_HOME"})
            runner.setVariable(name, results.path());
    }

    QString pointPath(const QString& name) const {
        return suite.path("suite/shared/verificationPoints/" + name);
    }
    int create(const QString& program, const QString& name, const QStringList& options) {
        runner.run(QStringList{"vp", "create", program, name, "--suite", suite.path("suite"),
                               "--wait", "0.2"} +
                   options);
        return runner.exitCode();
    }
    /// Runs the case; "type detail" of each result.
    QStringList runCase(const QStringList& options = {}) {
        QFile::remove(suite.path("suite/case/verificationPoints/made"));
        QFile::remove(suite.path("suite/case/verificationPoints/made.png"));
        runner.run(QStringList{"run", suite.path("suite"), "--result-dir", results.path()} +
                   options);
        QStringList texts;
        for (const Json::Value& entry :
             Tamrix::Test::readJournal(results.filePath("journal.jsonl"))) {
            if (entry["kind"] == "result")
                texts.append(entry["type"].asString().c_str() + QString(" ") +
                             QString::fromStdString(entry["detail"].asString()));
            if (entry["kind"] == "attachment")
                texts.append("attached " + QString::fromStdString(entry["message"].asString()));
        }
        return texts;
    }

    Tamrix::Test::SuiteFolder suite;
    QTemporaryDir results;
    RunnerProcess runner;
};

TEST_F(VerificationPointsTest, AreMadeComparedAndRenewed) {
    ASSERT_EQ(create("calculator", "display",
                     {"--object", ":Display", "--property", "text", "--property", "readOnly"}),
              0)
        << qPrintable(runner.errors());
    EXPECT_EQ(runner.takeOutput(), pointPath("display") + '\n');
    ASSERT_EQ(create("calculator", "window", {"--object", ":Window", "--kind", "visual"}), 0)
        << qPrintable(runner.errors());
    EXPECT_TRUE(QFile::exists(pointPath("window.png")));

    const QString differs = "Object ':Display': text is '7', expected '0'";
    QStringList told = runCase();
    EXPECT_EQ(runner.exitCode(), 1) << qPrintable(runner.errors());
    ASSERT_EQ(told.size(), 10) << qPrintable(told.join('\n'));
    EXPECT_EQ(told[0], "10 As expected: 2 properties");
    EXPECT_TRUE(QRegularExpression("^10 As expected: \\d\\d elements$").match(told[1]).hasMatch())
        << qPrintable(told[1]);
    EXPECT_EQ(told[2], "11 " + differs);
    EXPECT_EQ(told.mid(3, 3),
              (QStringList{"attached Expected", "attached Actual", "attached Difference"}));
    EXPECT_EQ(told[6], "11 QLineEdit \"0\" has the text \"7\"");
    EXPECT_EQ(told[7], "12 " + differs);
    EXPECT_EQ(told[8], "11 " + differs);
    EXPECT_TRUE(told[9].startsWith("10 As expected: "));

    // Only the files of what differs are written; the first comparison then fails in its turn.
    const QByteArray before = readFile(pointPath("display"));
    told = runCase({"--update-vps"});
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.output());
    EXPECT_TRUE(told.contains("14 " + pointPath("display"))) << qPrintable(told.join('\n'));
    EXPECT_TRUE(told.contains("14 " + pointPath("window")));
    EXPECT_EQ(readFile(pointPath("display")), QByteArray(before).replace("\"0\"", "\"7\""));
    EXPECT_TRUE(readFile(pointPath("window")).contains("\"text\": \"7\""));
    told = runCase();
    EXPECT_EQ(told.value(0), "11 Object ':Display': text is '0', expected '7'");
    EXPECT_TRUE(told.contains("10 As expected: 2 properties"));
}

TEST_F(VerificationPointsTest, OfTablesHaveTheCellsOfViews) {
    ASSERT_EQ(create("views", "list", {"--object", ":List", "--kind", "table", "--backgrounds"}), 0)
        << qPrintable(runner.errors());
    runner.takeOutput();
    runner.run({"vp", "show", pointPath("list")});
    EXPECT_EQ(runner.exitCode(), 0);
    EXPECT_EQ(runner.output(),
              "All cells of :List, 3 rows and 1 columns from row 0, column 0\n"
              "  row 0, column 0 is 'one', on none\n"
              "  row 1, column 0 is 'two', on none\n"
              "  row 2, column 0 is 'three', on #FFFFFF00\n");
    suite.write("suite/case/test.py", R"py(
def main():
    startApplication("views")
    test.vp("list")
    window = waitForObjectExists({"type": "Window"})
    window.insertBeforeFirst()
    test.vp("list")
)py");
    const QStringList told = runCase();
    ASSERT_EQ(told.size(), 2);
    EXPECT_EQ(told[0], "10 As expected: 3 cells");
    EXPECT_EQ(told[1],
              "11 4 differences in 3 cells, the first one: Object ':List': there are 4 "
              "rows, expected 3");
}

TEST_F(VerificationPointsTest, AreRefusedWithAReason) {
    suite.write("suite/shared/verificationPoints/faulty", "{\n\"kind\": 1}");
    const struct {
        QStringList arguments;
        QString error;
    } rows[] = {
        {{"vp", "show", pointPath("faulty")},
         "The verification point '" + pointPath("faulty") +
             "' can't be read: the member \"tamrixVerificationPoint\" is missing"},
        {{"vp", "create", "calculator", "faulty", "--object", ":Display", "--suite",
          suite.path("suite")},
         "File '" + pointPath("faulty") + "' already exists"},
        {{"vp", "create", "none", "new", "--object", ":Display", "--suite", suite.path("suite")},
         "none"},
        {{"vp", "create", "calculator", "new", "--object", ":None", "--suite", suite.path("suite")},
         "The object map has no name ':None'"},
        {{"vp", "create", "calculator", "new", "--object", ":Display", "--kind", "table", "--suite",
          suite.path("suite")},
         "QLineEdit '0' has no cells"},
    };
    for (const auto& row : rows) {
        runner.run(row.arguments);
        EXPECT_EQ(runner.exitCode(), 2) << qPrintable(row.error);
        EXPECT_TRUE(runner.errors().contains(row.error))
            << qPrintable(runner.errors()) << " instead of " << qPrintable(row.error);
    }
    EXPECT_FALSE(QFile::exists(pointPath("new")));
    suite.write("suite/case/test.py", "def main():\n    test.vp('faulty')\n");
    const QStringList told = runCase();
    EXPECT_EQ(runner.exitCode(), 1);
    EXPECT_TRUE(told.join('\n').contains("\"tamrixVerificationPoint\" is missing"))
        << qPrintable(told.join('\n'));
}

}  // namespace
}  // namespace Tamrix
