#include <gtest/gtest.h>

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <map>

#include "platform/testresult/allurereport.h"
#include "platform/testresult/samplerun.h"
#include "platform/testresult/tapreport.h"
#include "support/files.h"
#include "support/golden.h"

using namespace Tamrix;
using namespace Tamrix::Test;

namespace {

TEST(TapReport, TellsRuns) {
    const QTemporaryDir directory;
    const QString path = directory.filePath("run.tap");
    QString text;
    for (void (*const add)(ReportGenerator*) : {addSampleRun, addRepeatedRun}) {
        TapReport report(path);
        add(&report);
        report.finish();
        EXPECT_EQ(report.errorText(), QString());
        text += QString::fromUtf8(readFile(path));
    }
    EXPECT_TRUE(compareWithGolden("testresult/run.tap", text));
}

/// The results in a folder, in the order of their times.
std::multimap<double, QJsonObject> allureResults(const QDir& folder) {
    std::multimap<double, QJsonObject> results;
    for (const QString& name : folder.entryList({"*-result.json"}, QDir::Files)) {
        const QJsonObject result =
            QJsonDocument::fromJson(readFile(folder.filePath(name))).object();
        EXPECT_EQ(name, result["uuid"].toString() + "-result.json");
        results.emplace(result["start"].toDouble(), result);
    }
    return results;
}

TEST(AllureReport, HasAResultForEachAttempt) {
    const QTemporaryDir directory;
    AllureReport report(directory.filePath("results"));
    addRepeatedRun(&report);
    report.finish();
    EXPECT_EQ(report.errorText(), QString());
    QStringList told;
    std::map<QString, QStringList> histories;
    for (const auto& [start, result] : allureResults(directory.filePath("results"))) {
        const QJsonObject details = result["statusDetails"].toObject();
        told += result["name"].toString() + ": " + result["status"].toString() +
                (details["flaky"].toBool() ? " (flaky)" : "");
        histories[result["historyId"].toString()] += result["name"].toString();
        EXPECT_LE(start, result["stop"].toDouble());
    }
    EXPECT_EQ(told, (QStringList{"tst_flaky: failed", "tst_failed: failed", "tst_flaky: passed",
                                 "tst_flaky: broken", "tst_failed: failed", "tst_lost: broken",
                                 "tst_lost: passed (flaky)", "tst_flaky: passed (flaky)"}));
    EXPECT_EQ(histories.size(), 3u);
}

TEST(AllureReport, HasStepsAndCopiesOfAttachments) {
    const QTemporaryDir directory;
    const QString file = directory.filePath("picture.png");
    ASSERT_TRUE(writeFile(file, "a picture"));
    AllureReport report(directory.filePath("results"));
    {
        TestResult result(&report);
        result.startSuite("s", "/s");
        result.startCase("one", "/s/one/test.py");
        result.startSection("outer", "", LineInfo());
        result.addAction("click", "ok", 100, false, LineInfo());
        result.addAttachment(TestResult::ImageAttachment, "Picture", file, {});
        result.addAttachment(TestResult::FileAttachment, "Missing", file + "x", {});
        result.endCase();
        result.addResult(TestResult::Fatal, "outside", "", LineInfo());
        result.endSuite();
    }
    report.finish();
    const QDir folder(directory.filePath("results"));
    std::map<QString, QJsonObject> byName;
    for (const auto& [start, result] : allureResults(folder))
        byName[result["name"].toString()] = result;
    ASSERT_EQ(byName.size(), 2u);
    EXPECT_EQ(byName["s"]["status"], "broken");
    const QJsonObject section = byName["one"]["steps"].toArray().at(0).toObject();
    EXPECT_EQ(section["name"], "outer");
    EXPECT_EQ(section["steps"].toArray().at(0).toObject()["name"], "click: ok (0.10 s)");
    const QJsonArray attachments = byName["one"]["attachments"].toArray();
    ASSERT_EQ(attachments.size(), 1);
    EXPECT_EQ(readFile(folder.filePath(attachments.at(0).toObject()["source"].toString())),
              "a picture");
}

}  // namespace
