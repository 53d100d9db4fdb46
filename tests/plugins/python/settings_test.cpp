#include "interpreter/bridge/testsettingstype.h"
#include "plugins/python/pythontest.h"

namespace Tamrix {
namespace {

class PythonSettings : public Test::PythonTest {
protected:
    ~PythonSettings() override { TestSettingsType::reset(); }
};

TEST_F(PythonSettings, AreProperties) {
    EXPECT_EQ(run(R"py(
assert testSettings.waitForObjectTimeout == 20000
testSettings.waitForObjectTimeout = 500
testSettings.imageSearchThreshold = 80
testSettings.tesseract.language = 'deu'
testSettings.tesseract.psm += 1
testSettings.throwOnFailure = True
assert testSettings.imageSearchThreshold == 80.0 and testSettings.throwOnFailure is True
assert (testSettings.tesseract.psm, testSettings.ocrSpace.language) == (7, 'English')
assert type(testSettings.tesseract) is TesseractTestSettings
testSettings.setWrappersForApplication('shop', ['web'])
assert testSettings.getWrappersForApplication('shop') == ['web']
)py"),
              "");
    EXPECT_EQ(TestSettingsType::s_waitForObjectTimeout, 500);
    EXPECT_EQ(TestSettingsType::s_ocr.tesseract.language, QString("deu"));

    const struct {
        const char* script;
        const char* error;
    } rows[] = {
        {"testSettings.waitForObjectTimeout = -1",
         "tamrix.Error: The timeout value cannot be negative"},
        {"testSettings.waitForObjectTimeout = None",
         "tamrix.Error: testSettings.waitForObjectTimeout must be an integer of at most 32 bits, "
         "not None"},
        {"testSettings.waitForObjectTimeout = 0.5",
         "tamrix.Error: testSettings.waitForObjectTimeout must be an integer of at most 32 bits, "
         "not 0.5"},
        {"testSettings.breakOnFailure = 'yes'",
         "tamrix.Error: testSettings.breakOnFailure must be true or false, not yes"},
        // A slip in a name is no new attribute.
        {"testSettings.waitForObjecTimeout = 1",
         "AttributeError: testSettings has no property 'waitForObjecTimeout'"},
        {"testSettings.tesseract.lang = 'deu'",
         "AttributeError: 'TesseractTestSettings' object has no attribute 'lang'"},
        {"testSettings()", "TypeError: testSettings objects can't be made by scripts"},
        {"testSettings.getPassword('x')", "tamrix.Error: No password available for key 'x'"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(run(row.script), row.error) << row.script;
    EXPECT_EQ(run("testSettings.tesseract = None").left(15), "AttributeError:");
    EXPECT_EQ(run("del testSettings.breakOnFailure").left(15), "AttributeError:");
    // A class of the script is the script's.
    EXPECT_EQ(run("class Own(testSettings):\n    pass\nOwn.extra = 1\nassert Own.extra == 1"), "");
}

}  // namespace
}  // namespace Tamrix
