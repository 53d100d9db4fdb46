#include <QElapsedTimer>
#include <QTemporaryDir>

#include "platform/testresult/testvp.h"
#include "platform/verification/verificationpointfile.h"
#include "platform/verification/verificationtest.h"
#include "shared/testdata/testdataset.h"
#include "support/files.h"
#include "support/recordingreport.h"

namespace Tamrix {
namespace {

class VerifyTest : public Test::VerificationTest {
protected:
    VerifyTest() {
        TestVP::setScreenshotServices({[](RunnerInterface*) {
                                           QImage image(2, 2, QImage::Format_RGB32);
                                           image.fill(Qt::red);
                                           return image;
                                       },
                                       [this](RunnerInterface*) { return folder.path(); },
                                       {}});
    }
    ~VerifyTest() override {
        TestVP::setScreenshotServices({});
        TestVP::setRenewal(false);
    }

    void expect(const VerificationPoint& point) {
        EXPECT_TRUE(writeVerificationPoint(path, point));
    }
    void expectText(const ExpectedValue& text) {
        expect(PropertiesPoint{{{name, {{"text", text}, {"enabled", PlainValue{true}}}}}});
    }

    /// "summary|message|details" of the answer.
    QString verify(bool xMode = false) {
        const VPResult answer = TestVP("point", path)
                                    .verify(&result, {LineInfo("/suite/tst/test.fake", 7)}, runner,
                                            "why", &resolver, options, record, xMode);
        return QString("%1|%2|%3")
            .arg(QString::number(answer.summary()), answer.message(), answer.details());
    }
    /// "type|message|detail|comment|explanation" of the results since the last call.
    QStringList results() {
        QStringList texts;
        const auto all = report.results();
        for (; m_told < all.size(); ++m_told) {
            const ResultAdded& each = all[m_told];
            texts.append(QString("%1|%2|%3|%4|%5")
                             .arg(QString::number(each.type), each.message, each.detail,
                                  each.comment, each.explanation));
            EXPECT_EQ(each.callStack.size(), 1U);
        }
        return texts;
    }

    QTemporaryDir folder;
    QString path = folder.filePath("point");
    Tamrix::Test::RecordingReport report;
    TestResult result{&report};
    Tamrix::Test::ModelResolver resolver{model};
    VerificationOptions options;
    const TestDataRecord* record = nullptr;
    /// No operation of it is called here.
    RunnerInterface* runner = reinterpret_cast<RunnerInterface*>(this);

private:
    std::size_t m_told = 0;
};

TEST_F(VerifyTest, BecomesTheVerdictThatWasWantedOrNot) {
    const QString same = "As expected: 2 properties";
    const QString differs = "Object '" + name + "': text is '12.50', expected 'x'";
    expectText(PlainValue{"12.50"});
    EXPECT_EQ(verify(), "1|Verification point 'point'|" + same);
    EXPECT_EQ(verify(true), "1|Verification point 'point'|" + same);
    expectText(PlainValue{"x"});
    EXPECT_EQ(verify(), "2|Verification point 'point'|" + differs);
    EXPECT_EQ(verify(true), "2|Verification point 'point'|" + differs);
    EXPECT_EQ(results(), (QStringList{"10|Verification point 'point'|" + same + "|why|",
                                      "13|Verification point 'point'|" + same + "|why|",
                                      "11|Verification point 'point'|" + differs + "|why|",
                                      "12|Verification point 'point'|" + differs + "|why|"}));
}

TEST_F(VerifyTest, ExplainsSeveralDifferences) {
    expect(PropertiesPoint{{{":None", {{"text", PlainValue{"x"}}}},
                            {name, {{"width", PlainValue{1}}, {"text", PlainValue{"x"}}}}}});
    const QString first = "Object ':None' is not there";
    verify();
    EXPECT_EQ(results(),
              QStringList{"11|Verification point 'point'|3 differences in 3 properties, the first "
                          "one: " +
                          first + "|why|" + first + "\nObject '" + name +
                          "': width is 120, expected 1\nObject '" + name +
                          "': text is '12.50', expected 'x'"});
}

TEST_F(VerifyTest, LooksAgainUntilTheTimeIsOver) {
    expectText(PlainValue{"later"});
    options.setRetryDuration(60000);
    resolver.onLook = [this](int look) {
        if (look == 3)
            field->setProperty("text", "later");
    };
    EXPECT_TRUE(verify().startsWith("1|"));

    int looks = 0;
    resolver.onLook = [&looks](int) { ++looks; };
    field->setProperty("text", "never");
    options.setRetryDuration(1000);
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(verify().startsWith("2|"));
    EXPECT_GE(timer.elapsed(), 1000);
    EXPECT_GE(looks, 2);

    // An object that is missing was waited for by the resolver.
    looks = 0;
    options.setRetryDuration(60000);
    expect(PropertiesPoint{{{":None", {{"text", PlainValue{"x"}}}}}});
    EXPECT_TRUE(verify().startsWith("2|"));
    EXPECT_EQ(looks, 1);
}

TEST_F(VerifyTest, TakesColumnsFromTheRecord) {
    TestDataSet set("data.tsv", '\t', true);
    auto* const header = new TestDataRecord(&set, -1, {"Name", "Amount"});
    set.setHeader(header);
    set.addRecord(new TestDataRecord(&set, 0, {"a", "12.50"}));
    expectText(ColumnValue{"Amount"});
    record = set.record(0);
    EXPECT_TRUE(verify().startsWith("1|"));
    expectText(ColumnValue{"Price"});
    EXPECT_EQ(verify(),
              "0|Verification point 'point': The test data has no column 'Price', but "
              "these: Name, Amount|");
    record = nullptr;
    EXPECT_EQ(verify(),
              "0|Verification point 'point': The column 'Price' is expected, but the "
              "verification point was given no record of test data|");
    EXPECT_EQ(results().size(), 1) << "an error is no verdict";
}

TEST_F(VerifyTest, GivesNoVerdictWhenItCanNotCompare) {
    EXPECT_EQ(verify(),
              "0|The verification point '" + path + "' can't be read: No such file or directory|");
    expect(PropertiesPoint{
        {{name, {{"text", PlainValue{"x"}}}}, {otherName, {{"text", PlainValue{"x"}}}}}});
    resolver.canResolveMultiple = false;
    resolver.onLook = [](int) {};
    EXPECT_EQ(verify(), "0|Object '" + otherName + "' is not there|");
    EXPECT_EQ(results(), QStringList());
}

TEST_F(VerifyTest, AttachesPicturesAndScreenshots) {
    model.snapshotBytes = snapshotOf("OK", Qt::green);
    VisualPoint point;
    point.name = name;
    point.root = {
        "Window", "", "Title", {0, 0, 40, 30}, {{"Button", "ok", "OK", {10, 10, 20, 10}, {}}}};
    point.picture = QImage(40, 30, QImage::Format_RGB32);
    point.picture.fill(Qt::blue);
    point.pictureFile = "point.png";
    expect(point);
    options.setFlag(VerificationOptions::LogScreenshotOnFail, true);
    const QString note =
        QString(" (Screenshot in '%1')").arg(folder.filePath("screenshot_fail_1.png"));
    EXPECT_EQ(verify(), "2|Verification point 'point'" + note +
                            "|2 differences in 2 elements, the first one: Window \"Title\" looks "
                            "different in 1000 of 1000 pixels, which are 100 %");
    QStringList attached;
    for (const FileAttached& file : report.all<FileAttached>()) {
        EXPECT_TRUE(file.belongsToResult);
        EXPECT_EQ(QImage(file.path).size(), QSize(40, 30)) << qPrintable(file.path);
        attached.append(file.message + " " + QFileInfo(file.path).fileName());
    }
    EXPECT_EQ(attached, (QStringList{"Expected expected_1.png", "Actual actual_1.png",
                                     "Difference difference_1.png"}));
}

TEST_F(VerifyTest, RenewsWithAWarning) {
    TestVP::setRenewal(true);
    expectText(PlainValue{"x"});
    const QByteArray before = Tamrix::Test::readFile(path);
    // What is expected to differ goes on to do so.
    verify(true);
    EXPECT_EQ(Tamrix::Test::readFile(path), before);
    results();

    EXPECT_TRUE(verify().startsWith("1|"));
    EXPECT_EQ(results(),
              (QStringList{"14|Verification point 'point' was renewed|" + path + "|why|Object '" +
                               name + "': text is '12.50', expected 'x'",
                           "10|Verification point 'point'|As expected: 2 properties|"
                           "why|"}));
    EXPECT_EQ(Tamrix::Test::readFile(path), QByteArray(before).replace("\"x\"", "\"12.50\""));

    // A pattern stays, and stays a failure.
    expect(PropertiesPoint{{{name, {{"text", WildcardText{"x*"}}, {"width", PlainValue{1}}}}}});
    EXPECT_TRUE(verify().startsWith("2|"));
    EXPECT_EQ(results().size(), 2);
    EXPECT_TRUE(Tamrix::Test::readFile(path).contains("\"wildcard\": \"x*\""));
    EXPECT_TRUE(Tamrix::Test::readFile(path).contains("\"value\": 120"));
    // What is as expected is not written.
    TestVP::setRenewal(false);
    expectText(PlainValue{"12.50"});
    TestVP::setRenewal(true);
    EXPECT_TRUE(verify().startsWith("1|"));
    EXPECT_EQ(results().size(), 1);
}

TEST_F(VerifyTest, CanBeSilent) {
    options.setFlag(VerificationOptions::SilentVerifications, true);
    options.setFlag(VerificationOptions::LogScreenshotOnFail, true);
    expectText(PlainValue{"x"});
    EXPECT_TRUE(verify().startsWith("2|Verification point 'point'|"));
    EXPECT_TRUE(report.entries.empty());
}

}  // namespace
}  // namespace Tamrix
