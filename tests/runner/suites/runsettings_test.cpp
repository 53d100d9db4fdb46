#include "runner/suites/runsettings.h"

#include <gtest/gtest.h>

#include "interpreter/bridge/testsettingstable.h"
#include "interpreter/bridge/testsettingstype.h"
#include "runner/suites/passwords.h"
#include "runner/suites/suiteconfig.h"
#include "support/environmentguard.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

class RunSettings : public testing::Test {
protected:
    ~RunSettings() override { TestSettingsType::reset(); }
};

TEST_F(RunSettings, EachCaseStartsWithThoseOfTheSuite) {
    SuiteConfig config;
    config.settings = {{"waitForObjectTimeout", "500"}, {"logScreenshotOnFail", "no"}};
    for (int testCase = 0; testCase < 2; ++testCase) {
        startRunSettings(config, {}, nullptr);
        EXPECT_EQ(TestSettingsType::s_waitForObjectTimeout, 500);
        EXPECT_FALSE(TestSettingsType::s_breakOnFailure);
        EXPECT_EQ(TestSettingsType::getAUTWrappers("shop"), QStringList());
        using Options = VerificationOptions;
        EXPECT_FALSE(TestSettingsType::s_vpOptions.testFlag(Options::LogScreenshotOnFail));
        EXPECT_TRUE(TestSettingsType::s_vpOptions.testFlag(Options::LogScreenshotOnError));
        // What a script leaves.
        TestSettingsType::s_waitForObjectTimeout = 1;
        TestSettingsType::s_breakOnFailure = true;
        TestSettingsType::s_wrappers.insert("shop", QStringList("web"));
        TestSettingsType::s_vpOptions.setFlag(Options::LogScreenshotOnFail, true);
    }
}

TEST_F(RunSettings, PasswordsLeaveTheEnvironment) {
    const QString password = QStringLiteral("t\u00e4st = 1");
    const Tamrix::Test::EnvironmentGuard ofShop("TAMRIX_PASSWORD_shop", password);
    const Tamrix::Test::EnvironmentGuard withoutKey("TAMRIX_PASSWORD_", "x");
    startRunSettings({}, takePasswords(), nullptr);
    QString error;
    EXPECT_EQ(TestSettingsType::getPassword("shop", &error), password);
    EXPECT_EQ(error, "");
    TestSettingsType::getPassword("", &error);
    EXPECT_EQ(error, "No password available for key ''");
    EXPECT_FALSE(qEnvironmentVariableIsSet("TAMRIX_PASSWORD_shop"));
    EXPECT_EQ(takePasswords().size(), 0);
}

/// The rows of the table with this head in a document.
QStringList tableOf(const QString& document, const QString& head) {
    const QStringList lines = QString::fromUtf8(Test::readFile(document)).split('\n');
    QStringList rows;
    for (int line = lines.indexOf(head) + 2; line < lines.size() && lines[line].startsWith('|');
         ++line)
        rows.append(lines[line]);
    return rows;
}

TEST_F(RunSettings, TheDocumentListsThemAll) {
    startRunSettings({}, {}, nullptr);
    QStringList rows;
    for (const TestSetting& setting : testSettings) {
        const QString type = settingTypeName(setting);
        const QString value = settingText(setting, TestSettingsType::s_ocr);
        rows.append(
            QStringLiteral("| `%1` | %2 | %3 | %4 |")
                .arg(setting.name, type, value.isEmpty() ? "empty" : value, setting.meaning));
    }
    EXPECT_EQ(
        tableOf(TAMRIX_TEST_SOURCE_DIR "/docs/suites.md", "| Setting | Type | Default | Tells |"),
        rows)
        << "The table is to be:\n"
        << qPrintable(rows.join('\n'));
}

}  // namespace
}  // namespace Tamrix
