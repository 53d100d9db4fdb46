#pragma once

#include <QMap>
#include <QString>

namespace Tamrix {

class TestResult;
struct SuiteConfig;

/// Gives the settings of the run the values with which each test case starts, whatever the case
/// before has set: the defaults of a run, and above them what the suite says. A setting that is not
/// known and a faulty value are warnings in `result`, or on standard error for null. `passwords`
/// are what scripts get by key.
void startRunSettings(const SuiteConfig& config, const QMap<QString, QString>& passwords,
                      TestResult* result);

}  // namespace Tamrix
