// Feature files with step definitions in JavaScript.

#include <QDir>
#include <QRegularExpression>

#include "platform/testresult/resulttext.h"
#include "plugins/javascript/javascripttest.h"

namespace Tamrix {
namespace {

using namespace Test;

class JavaScriptFeatures : public JavaScriptTest {
protected:
    JavaScriptFeatures() { EXPECT_TRUE(QDir(folder.path()).mkpath("steps")); }

    void writeSteps(const QByteArray& text, const QString& name = "steps.js") {
        EXPECT_TRUE(writeFile(folder.filePath("steps/" + name), text));
    }

    /// Runs scenario steps with step definitions; what became of them, see told().
    QString runSteps(const QByteArray& definitions, const QByteArray& steps) {
        // As for the next test case.
        interpreter->setScriptArguments(script(), {});
        writeSteps(definitions);
        return runFeature("Feature: f\n  Scenario: s\n" + steps);
    }

    QString runFeature(const QByteArray& text) {
        const QString file = folder.filePath("x.feature");
        EXPECT_TRUE(writeFile(file, text));
        report.entries.clear();
        const bool succeeded = interpreter->callLibraryFunction("runFeatureFile", {file});
        return told() + (succeeded ? "" : "error " + interpreter->errorMessage());
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
        return text.replace(QFileInfo(folder.path()).canonicalFilePath() + '/', "")
            .replace(folder.path() + '/', "");
    }

    static QString withoutPlaces(QString text) {
        return text.replace(QRegularExpression("  (steps|x).*\n"), "");
    }
};

TEST_F(JavaScriptFeatures, HandsValuesToSteps) {
    EXPECT_EQ(withoutPlaces(runSteps(
                  "ParameterType('colour', ['red|blue', /dark (?:red|blue)/], text => ({text}));\n"
                  "ParameterType('flag', /on|off/, text => text === 'on');\n"
                  "const show = (context, ...values) => test.log(JSON.stringify(values));\n"
                  "Given('{int}, {float}, {word}, {string}, {}, {bigdecimal}', show);\n"
                  "Given('large {biginteger}', (context, n) => test.log(String(n + 1n)));\n"
                  "When('{colour} item(s) is/are {flag}', show);\n"
                  "Then(/^total (\\d+)(?: of (\\d+))?$/, show);\n"
                  "Step(/^NAMED (?<who>.*)$/i, show);\n",
                  "    Given -3, 1.5, w, \"a \\\" b\", rest of it, 2.50\n"
                  "    Given large 123456789012345678901234567890\n"
                  "    When red items are on\n"
                  "    When blue item is off\n"
                  "    Then total 4\n"
                  "    Then named Ann\n")),
              "[-3,1.5,\"w\",\"a \\\" b\",\"rest of it\",2.5]: \n"
              "123456789012345678901234567891: \n"
              "[{\"text\":\"red\"},true]: \n"
              "[{\"text\":\"blue\"},false]: \n"
              "[\"4\",null]: \n"
              "[{\"who\":\"Ann\"}]: \n");
}

TEST_F(JavaScriptFeatures, HandsTablesAndTextsToSteps) {
    EXPECT_EQ(withoutPlaces(runSteps(
                  "Step('table', ({table, text}) => test.log(JSON.stringify(\n"
                  "    [table.headers, table.raw, table.length, table[1].b, table.rows, text])));\n"
                  "Step('text', async context => {\n"
                  "    await null;\n"
                  "    test.log(JSON.stringify([context.text, context.table]));\n"
                  "});\n",
                  "    * table\n      | a | b |\n      | 1 | 2 |\n      | 3 | x\\|y |\n"
                  "    * text\n      \"\"\"\n      one\n        two\n      \"\"\"\n")),
              "[[\"a\",\"b\"],[[\"a\",\"b\"],[\"1\",\"2\"],[\"3\",\"x|y\"]],2,\"x|y\","
              "[{\"a\":\"1\",\"b\":\"2\"},{\"a\":\"3\",\"b\":\"x|y\"}],null]: \n"
              "[\"one\\n  two\",null]: \n");
}

TEST_F(JavaScriptFeatures, KeepsValuesByScope) {
    interpreter->setScriptArguments(script(), {});
    writeSteps(
        "BeforeFeature(context => { context.count = 1; });\n"
        "BeforeScenario('@s', context => { context.own = context.scenario + context.tags; });\n"
        "AfterScenario(context => test.log('after ' + Object.keys(context).join()));\n"
        "Step('add', context => {\n"
        "    context.count += 1;\n"
        "    test.log(context.count + String(context.own));\n"
        "    delete context.count;\n"
        "    test.log(context.count + String('other' in context));\n"
        "    context.other = 1;\n"
        "});\n");
    EXPECT_EQ(
        withoutPlaces(runFeature(
            "@f\nFeature: f\n  @s\n  Scenario: one\n    * add\n  Scenario: two\n    * add\n")),
        "2onef,s: \n1false: \n"
        "after count,feature,other,own,scenario,step,table,tags,text: \n"
        "2undefined: \n1false: \n"
        "after count,feature,other,scenario,step,table,tags,text: \n");
}

TEST_F(JavaScriptFeatures, TellsWhatBecomesOfSteps) {
    EXPECT_EQ(
        runSteps("", "    Given \"3\" things of 4.5 (big) ones\n    * later\n"),
        "No Matching Step Definition: \"3\" things of 4.5 (big) ones\n"
        "  x.feature:3\n"
        "A definition could begin so:\n"
        "Given('{string} things of {float} \\\\(big\\\\) ones', (context, string1, float2) => {\n"
        "    pending();\n"
        "});\n"
        "skipped later\n");
    EXPECT_EQ(runSteps("const helper = () => null.x;\n"
                       "Given('a', () => {\n    helper();\n});\n",
                       "    Given a\n    Then later\n"),
              "Script Error: TypeError: null has no properties\n"
              "  steps/steps.js:1\n"
              "  steps/steps.js:3\n"
              "  x.feature:3\n"
              "skipped later\n");
    EXPECT_EQ(withoutPlaces(runSteps("Given('a', () => pending('soon'));\n", "    Given a\n")),
              "Pending Step Definition: tamrix.PendingStepError: soon\n");
    EXPECT_EQ(withoutPlaces(runSteps("Given('a', async () => {\n"
                                     "    await null;\n"
                                     "    throw new Error('late');\n"
                                     "});\n",
                                     "    Given a\n")),
              "Script Error: Error: late\n");
}

TEST_F(JavaScriptFeatures, RefusesWhatItCantRegister) {
    const std::pair<const char*, const char*> rows[] = {
        {"\nGiven('{nothing}', () => {});", "Error: "},
        {"\nGiven('a');", "TypeError: what is registered has to be a function"},
        {"\nGiven(5, () => {});",
         "TypeError: a step is given as a text or as a regular expression"},
        {"\nGiven(/a/g, () => {});",
         "TypeError: steps know the flags i, m, s and u of regular expressions only"},
    };
    for (const auto& [code, error] : rows) {
        const QString told = runSteps(code, "    Given a\n");
        EXPECT_TRUE(told.contains(error)) << qPrintable(told);
        EXPECT_TRUE(told.contains("steps/steps.js:2: ") || told.contains("steps.js:2"))
            << qPrintable(told);
    }
}

TEST_F(JavaScriptFeatures, FilesWithStepsAreModules) {
    interpreter->setScriptArguments(script(), {});
    writeSteps(
        "import {words} from './words.js';\nconst name = 1;\n"
        "Given('a', () => test.log(words.join()));\n",
        "a.js");
    writeSteps(
        "export const words = ['x'];\nconst name = 2;\n"
        "Given('b', () => { words.push('y'); });\n",
        "words.js");
    EXPECT_EQ(withoutPlaces(runFeature("Feature: f\n  Scenario: s\n    Given b\n    Given a\n")),
              "x,y: \n");
}

}  // namespace
}  // namespace Tamrix
