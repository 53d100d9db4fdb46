#pragma once

#include "support/fakecalls.h"

namespace Tamrix::Test {

/// Facts of a run without a suite, and time that passes at once.
class FakeFacts : public virtual FakeCalls {
public:
    QString casePath;
    QString caseName = "tst_fake";
    QString suiteName = "suite_fake";
    QString resultDirectory;
    QString group = "the group";
    QString device = "the device";
    QStringList tagFilters;
    std::vector<unsigned> wantedScenarios;
    bool ideMode = false;
    bool hasObjectModel = false;
    bool recordsVideo = false;
    TestResult* result = nullptr;
    int fixTarget = 0;

    int acquired = 0;
    int released = 0;
    int processedEvents = 0;

    void snooze(double seconds) override { calls.append(QString("snooze %1").arg(seconds)); }
    void processEvents() override { ++processedEvents; }
    QString testCasePath() override { return casePath; }
    QString settingsGroup() override { return group; }
    QString defaultDevice() override { return device; }
    QString testCaseName() override { return caseName; }
    QString testSuiteName() override { return suiteName; }
    void setImageSearchFixTarget(int target) override { fixTarget = target; }
    int imageSearchFixTarget() override { return fixTarget; }
    QString objectMapPath() override { return {}; }
    QString currentResultDirectory() override { return resultDirectory; }
    QStringList filterArguments() override { return tagFilters; }
    std::vector<unsigned> scenarioIndices() override { return wantedScenarios; }
    bool isIDEMode() override { return ideMode; }
    unsigned runLevel() override { return 0; }
    TestResult* testResult() override { return result; }
    bool isVideoCaptureEnabled() override { return recordsVideo; }
    bool acquireRemoteObjectModel() override {
        ++acquired;
        return hasObjectModel;
    }
    void releaseRemoteObjectModel() override { ++released; }
};

}  // namespace Tamrix::Test
