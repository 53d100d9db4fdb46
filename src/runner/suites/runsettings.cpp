#include "runner/suites/runsettings.h"

#include "interpreter/bridge/testsettingstype.h"
#include "runner/suites/suiteconfig.h"

namespace Tamrix {

void startRunSettings(const SuiteConfig& config, const QMap<QString, QString>& passwords,
                      TestResult* result) {
    TestSettingsType::reset();
    // A failure shows the moment in which it happened unless somebody asks otherwise.
    TestSettingsType::s_vpOptions.setFlag(VerificationOptions::LogScreenshotOnFail, true);
    TestSettingsType::s_vpOptions.setFlag(VerificationOptions::LogScreenshotOnError, true);
    QMap<QString, QString> properties;
    for (const SuiteConfig::Setting& setting : config.settings)
        properties.insert(setting.name, setting.value);
    TestSettingsType::initialize(result, {}, properties, passwords);
}

}  // namespace Tamrix
