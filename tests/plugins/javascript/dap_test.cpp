// An editor debugs scripts in JavaScript, over the Debug Adapter Protocol.

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QJsonArray>
#include <QTemporaryDir>

#include "support/dapclient.h"
#include "support/dapprocess.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

class JavaScriptDap : public testing::Test {
protected:
    void write(const QString& name, const QByteArray& text) {
        ASSERT_TRUE(writeFile(path(name), text));
    }
    QString path(const QString& name) const {
        return QFileInfo(folder.path()).canonicalFilePath() + "/suite_shop/" + name;
    }
    QString after(const QString& request) {
        client.body(request, {{"threadId", 1}});
        return client.stop();
    }
    /// The functions of the stack, the innermost first, each with its line.
    QString stack() {
        QStringList frames;
        for (const auto& each :
             client.body("stackTrace", {{"threadId", 1}})["stackFrames"].toArray()) {
            const QJsonObject frame = each.toObject();
            frames.append(QStringLiteral("%1:%2").arg(
                QFileInfo(frame["source"].toObject()["path"].toString()).fileName(),
                QString::number(frame["line"].toInt())));
        }
        return frames.join(' ');
    }
    QString evaluated(const QString& expression) {
        return client.body("evaluate", {{"expression", expression}, {"context", "watch"}})["result"]
            .toString();
    }
    static QString value(const QJsonValue& variable) {
        return variable.toObject()["value"].toString();
    }
    static int reference(const QJsonValue& variable) {
        return variable.toObject()["variablesReference"].toInt();
    }
    int exitCodeOfRun() {
        const int exitCode = client.event("exited")["exitCode"].toInt(-1);
        client.event("terminated");
        return exitCode;
    }

    QTemporaryDir folder;
    DapProcess process{
        TAMRIX_TEST_PREFIX "/bin/tamrixrunner", {"dap"}, {{"QT_QPA_PLATFORM", "offscreen"}}};
    DapClient client{process.stream()};
};

TEST_F(JavaScriptDap, BreakPointsStepsAndVariables) {
    write("shared/scripts/sums.js",
          "export function add(list) {\n"   // 1
          "    let total = 0;\n"            // 2
          "    for (const each of list)\n"  // 3
          "        total += each.price;\n"  // 4
          "    return total;\n"             // 5
          "}\n");
    write("order/test.js",
          "import {add} from 'sums';\n"                   // 1
          "export async function main() {\n"              // 2
          "    const list = [{price: 2}, {price: 3}];\n"  // 3
          "    await null;\n"                             // 4
          "    const sum = add(list);\n"                  // 5
          "    test.compare(sum, 6, 'the sum');\n"        // 6
          "    throw new Error('at last');\n"             // 7
          "}\n");
    client.launch({{"suite", path("")}, {"cases", QJsonArray{"order"}}});
    client.setBreakPoints(path("shared/scripts/sums.js"),
                          {QJsonObject{{"line", 4}, {"condition", "each.price > 2"}}});
    client.body("setExceptionBreakpoints", {{"filters", QJsonArray{"scriptError"}}});
    client.body("configurationDone");

    EXPECT_EQ(client.stop(), "breakpoint sums.js:4");
    EXPECT_EQ(stack(), "sums.js:4 test.js:5");
    const QJsonObject variables = client.variables();
    EXPECT_EQ(value(variables["total"]), "2");
    EXPECT_EQ(value(variables["list"]), "[{price: 2}, {price: 3}]");
    const QJsonObject elements = client.variables(reference(variables["list"]));
    EXPECT_EQ(value(elements["1"]), "{price: 3}");
    EXPECT_EQ(evaluated("total + each.price"), "5");
    evaluated("total = 10");
    // The engine does not come to the head of a loop any more when there is nothing left.
    EXPECT_EQ(after("next"), "step sums.js:5");
    EXPECT_EQ(after("stepOut"), "step test.js:6");
    EXPECT_EQ(evaluated("sum"), "13");
    client.body("continue", {{"threadId", 1}});
    EXPECT_EQ(client.stop(), "exception test.js:7");
    client.body("continue", {{"threadId", 1}});
    EXPECT_EQ(exitCodeOfRun(), 1);
    client.body("disconnect");
    EXPECT_EQ(process.exitCode(), 0) << process.errors().constData();
    EXPECT_TRUE(client.fitsProtocol());
}

TEST_F(JavaScriptDap, AFeatureFileAndItsSteps) {
    write("order/test.feature",
          "Feature: orders\n"
          "  Scenario: pies\n"
          "    Given 2 pies\n"
          "    When they are eaten\n");
    write("order/steps/order.js",
          "Given('{int} pies', (context, count) => {\n"  // 1
          "    context.count = count;\n"                 // 2
          "});\n"                                        // 3
          "When('they are eaten', context => {\n"        // 4
          "    context.count = 0;\n"                     // 5
          "});\n");
    client.launch({{"suite", path("")}});
    client.setBreakPoints(path("order/test.feature"), {4});
    client.body("configurationDone");

    EXPECT_EQ(client.stop(), "breakpoint test.feature:4");
    EXPECT_EQ(after("stepIn"), "step order.js:5");
    EXPECT_EQ(stack(), "order.js:5 test.feature:4");
    EXPECT_EQ(evaluated("context.count"), "2");
    client.body("continue", {{"threadId", 1}});
    EXPECT_EQ(exitCodeOfRun(), 0);
    client.body("disconnect");
    EXPECT_EQ(process.exitCode(), 0) << process.errors().constData();
}

}  // namespace
}  // namespace Tamrix
