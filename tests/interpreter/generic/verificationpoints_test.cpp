#include "interpreter/generic/verificationpoints.h"

#include <QTemporaryDir>

#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/generic/apitest.h"
#include "interpreter/generic/objectnameresolver.h"
#include "interpreter/generic/visualverification.h"
#include "platform/testresult/testvp.h"
#include "shared/testdata/testdataset.h"
#include "shared/uiabstraction/uielement.h"
#include "support/files.h"
#include "support/recordingreport.h"

namespace Tamrix {
namespace {

using namespace Test;

/// The first row of a table as a script's value.
class FirstRow : public FakeArgument {
public:
    explicit FirstRow(SharedPtr<TestDataSet> set) : m_set(std::move(set)) {}
    const TestDataRecord* toTestDataRecord() const override { return m_set->record(0); }

private:
    SharedPtr<TestDataSet> m_set;
};

class VerificationPoints : public ApiTest {
protected:
    VerificationPoints() {
        runner.casePath = folder.filePath("suite/tst/test.fake");
        runner.result = &result;
        runner.found = field;
        field->setProperty("text", "right");
        write("suite/tst/verificationPoints/right", R"("value": "right")");
        write("suite/shared/verificationPoints/wrong", R"("value": "wrong")");
        write("suite/shared/verificationPoints/column", R"("column": "Text")");
    }
    ~VerificationPoints() override { TestSettingsType::reset(); }

    static QByteArray point(const QByteArray& expected) {
        return R"({"tamrixVerificationPoint": 1, "kind": "properties", "objects": [{"name": )"
               R"("Field", "properties": [{"property": "text", )" +
               expected + "}]}]}";
    }
    void write(const QString& path, const QByteArray& expected) {
        EXPECT_TRUE(writeFile(folder.filePath(path), point(expected)));
    }

    QString callReporting(ScriptContext::Function function, const ScriptArgument::List& arguments) {
        reporting.call(function, arguments);
        if (reporting.hasError())
            return QString("%1: %2").arg(QString::number(reporting.errorType()),
                                         reporting.errorMessage());
        return reporting.result ? reporting.result->toString() : QString("no result");
    }
    /// "type detail (comment)" of the last result.
    QString lastResult() const {
        if (report.results().empty())
            return "none";
        const ResultAdded entry = report.results().back();
        return QString("%1 %2 (%3)").arg(QString::number(entry.type), entry.detail, entry.comment);
    }

    QTemporaryDir folder;
    RecordingReport report;
    TestResult result{&report};
    FakeContext reporting{&result};
    SharedPtr<InMemoryObject> field = model.addObject("Field", "field");
    QString same = "As expected: 1 properties";
    QString differs = "Object 'Field': text is 'right', expected 'wrong'";
};

TEST_F(VerificationPoints, BecomeVerdicts) {
    SharedPtr<TestDataSet> set(new TestDataSet("data.tsv", '\t', true));
    set->setHeader(new TestDataRecord(set.get(), -1, {"Text"}));
    set->addRecord(new TestDataRecord(set.get(), 0, {"right"}));
    const SharedPtr<ScriptArgument> record(new FirstRow(set));
    const struct {
        ScriptContext::Function function;
        ScriptArgument::List arguments;
        QString value;
        QString result;
    } rows[] = {
        {testVP, {text("right")}, "true", "10 " + same + " ()"},
        {testVP, {text("right"), text("why")}, "true", "10 " + same + " (why)"},
        {testVP, {text("wrong")}, "false", "11 " + differs + " ()"},
        {testXVP, {text("wrong")}, "false", "12 " + differs + " ()"},
        {testXVP, {text("right")}, "true", "13 " + same + " ()"},
        {testVP, {text("column"), record}, "true", "10 " + same + " ()"},
        {testVPWithObject, {text("right"), object(field)}, "true", "10 " + same + " ()"},
        {testVPWithObject, {text("wrong"), text(":Any")}, "false", "11 " + differs + " ()"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(callReporting(row.function, row.arguments), row.value);
        EXPECT_EQ(lastResult(), row.result);
    }
    const QString time = QString::number(TestSettingsType::s_waitForObjectTimeout);
    EXPECT_EQ(runner.calls.first(), "wait until exists :Field for " + time + " ms");
    EXPECT_EQ(runner.calls.last(), "wait for :Any for " + time + " ms");
}

TEST_F(VerificationPoints, EndTheScriptWhenAFailureIsTo) {
    TestSettingsType::s_vpOptions.setFlag(VerificationOptions::ThrowOnFailure, true);
    EXPECT_EQ(callReporting(testVP, {text("wrong")}), "1: Verification point 'wrong': " + differs);
    EXPECT_EQ(callReporting(testXVP, {text("right")}), "1: Verification point 'right': " + same);
    // What was wanted has no consequences.
    EXPECT_EQ(callReporting(testVP, {text("right")}), "true");
    EXPECT_EQ(callReporting(testXVP, {text("wrong")}), "false");
}

TEST_F(VerificationPoints, RefuseWhatTheyCanNotCompare) {
    const auto one = integer(1);
    expectRefusals({
        {testVP, {}, "vp() expects 1-2 arguments"},
        {testXVP, {one, one, one}, "xvp() expects 1-2 arguments"},
        {testVP, {one}, "Expected verification point name"},
        {testVP, {text("right"), integer(5)}, "Expected test data record or message text"},
        {testVP, {text("none")}, "Verification point 'none' cannot be found"},
        {testVP,
         {text("column"), text("why")},
         "Verification point 'column': The column 'Text' is expected, but the verification point "
         "was given no record of test data"},
        {testVPWithObject, {text("right")}, "Expected two arguments, 1"},
        {testVPWithObject, {one, text("{}")}, "Expected verification point name"},
        {testVPWithObject, {text("right"), one}, "Unable to find object '1'"},
        {testVPWithObject,
         {text("none"), object(field)},
         "Verification point 'none' cannot be found"},
    });
    runner.found.reset();
    EXPECT_EQ(call(testVPWithObject, {text("right"), text(":Gone")}),
              "Unable to find object ':Gone'");
    ASSERT_TRUE(writeFile(folder.filePath("suite/tst/verificationPoints/two"),
                          R"({"tamrixVerificationPoint": 1, "kind": "properties", "objects": [)"
                          R"({"name": "a", "properties": [{"property": "text", "value": 1}]},)"
                          R"({"name": "b", "properties": [{"property": "text", "value": 1}]}]})"));
    EXPECT_EQ(call(testVPWithObject, {text("two"), object(field)}),
              "Unable to perform verification point with object, VP file contains more than 1 "
              "object");
    EXPECT_TRUE(report.entries.empty());
}

TEST_F(VerificationPoints, MissObjectsAsAllFunctionsDo) {
    runner.found.reset();
    runner.lookupError = "Object ':Field' not found";
    // It was given without colon.
    EXPECT_EQ(callReporting(testVP, {text("right")}), "false");
    EXPECT_EQ(lastResult(), "11 Object 'Field' not found ()");
    EXPECT_EQ(runner.misses, QStringList{":Field in test.vp: Object ':Field' not found"});
    runner.furtherLooks = 1;
    runner.foundLater = field;
    EXPECT_EQ(callReporting(testVP, {text("right")}), "true");
}

TEST_F(VerificationPoints, AreFoundFromTheScript) {
    const QString script = runner.casePath;
    const QString root = folder.path();
    write("suite/shared/verificationPoints/both", "");
    write("suite/tst/verificationPoints/both", "");
    write("shared/verificationPoints/outer", "");
    ASSERT_TRUE(writeFile(folder.filePath("suite/shared/scripts/deep/a.fake")));
    const struct {
        QString name;
        QString script;
        QString path;
    } rows[] = {
        {"right", script, root + "/suite/tst/verificationPoints/right"},
        {"both", script, root + "/suite/tst/verificationPoints/both"},
        {"wrong", script, root + "/suite/tst/../shared/verificationPoints/wrong"},
        {"none", script, root + "/suite/tst/../shared/verificationPoints/none"},
        {"wrong", root + "/suite/shared/scripts/deep/a.fake",
         root + "/suite/shared/verificationPoints/wrong"},
        {root + "/shared/verificationPoints/outer", script,
         root + "/shared/verificationPoints/outer"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(locateVP(row.name, row.script), row.path);
}

TEST_F(VerificationPoints, AreMadeOfWhatAnObjectLooksLike) {
    using UIAbstraction::UIElement;
    UIElement window("Window");
    window.setRealName("{name='field'}");
    window.setGeometry({QRect(0, 0, 4, 3), false});
    QImage picture(4, 3, QImage::Format_RGB32);
    picture.fill(Qt::green);
    window.setImage(picture);
    model.snapshotBytes = UIElement::elementsToByteArray({&window});
    const auto name = text("{name='field'}");
    const QString path = folder.filePath("suite/tst/verificationPoints/look.vp");

    const auto create = plain<createVisualVP>;
    EXPECT_EQ(call(create, {name, text("look.vp")}), "no result");
    EXPECT_FALSE(context.hasError());
    EXPECT_TRUE(readFile(path).contains("\"type\": \"Window\""));
    EXPECT_EQ(call(testVP, {text("look.vp")}), "true");
    EXPECT_EQ(call(create, {object(field), text(folder.filePath("other.vp"))}), "no result");
    EXPECT_TRUE(QFile::exists(folder.filePath("other.vp.png")));

    expectRefusals({
        {create, {name}, "Function createVisualVP() requires at least 2 arguments"},
        {create,
         {name, integer(1)},
         "Second argument must be a string with VP file location to write"},
        {create, {integer(1), text("new")}, "First argument must be an object name or reference"},
        {create, {text("{name='x'}"), text("new")}, "Unable to find object: '{name='x'}'"},
    });
    EXPECT_EQ(call(create, {name, text("look.vp")}), "File '" + path + "' already exists");
    model.snapshotBytes = QByteArray();
    EXPECT_EQ(call(create, {name, text("new")}), "There is no snapshot");
}

TEST_F(VerificationPoints, OfPicturesEndInOneWay) {
    QImage picture(3, 3, QImage::Format_RGB32);
    picture.fill(Qt::red);
    TestVP::setScreenshotServices(
        {{}, [this](RunnerInterface*) { return folder.filePath("pictures"); }, {}});
    TestSettingsType::s_vpOptions.setFlag(VerificationOptions::LogScreenshotOnFail, true);
    const auto verdict = [&](bool passed) {
        FakeContext script;
        script.setError(QString());
        const bool hasResult =
            visualVerificationResult(&script, &runner, passed, "detail", "comment", picture);
        EXPECT_EQ(hasResult, !script.hasError());
        return hasResult ? script.result->toString() : script.errorMessage();
    };
    EXPECT_EQ(verdict(true), "true");
    EXPECT_EQ(report.results().back().message, "Verified");
    EXPECT_EQ(verdict(false), "false");
    const QString note =
        QString(" (Screenshot in '%1')").arg(folder.filePath("pictures/screenshot_fail_1.png"));
    EXPECT_EQ(report.results().back().message, "Not verified" + note);
    EXPECT_EQ(lastResult(), "11 detail (comment)");
    EXPECT_EQ(QImage(folder.filePath("pictures/screenshot_fail_1.png")).width(), 3);
    TestSettingsType::s_vpOptions.setFlag(VerificationOptions::ThrowOnFailure, true);
    TestSettingsType::s_vpOptions.setFlag(VerificationOptions::LogScreenshotOnFail, false);
    EXPECT_EQ(verdict(false), "Not verified: comment, detail");
    // Without a place for results there is still an answer.
    runner.result = nullptr;
    EXPECT_EQ(verdict(true), "true");
    TestVP::setScreenshotServices({});
}

TEST_F(VerificationPoints, ResolveOneObjectForOneName) {
    ShadowObjectResolver resolver(field);
    QString error;
    for (QString name : {"a", "a"})
        EXPECT_EQ(resolver.resolveObjectName(&name, &error), field);
    EXPECT_EQ(error, "");
    QString other = "b";
    EXPECT_FALSE(resolver.resolveObjectName(&other, &error));
    EXPECT_TRUE(error.contains("more than 1 object"));
    EXPECT_FALSE(resolver.canResolveMultipleObjects());
}

}  // namespace
}  // namespace Tamrix
