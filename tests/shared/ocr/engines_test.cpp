#include <gtest/gtest.h>
#include <json/json.h>

#include <QCoreApplication>
#include <QTemporaryDir>

#include "shared/ocr/implementation.h"
#include "shared/ocr/rest/ocrspace.h"
#include "shared/ocr/settingsfile.h"
#include "shared/ocr/throwntext.h"
#include "shared/ocr/typedexception.h"
#include "support/environmentguard.h"
#include "support/printqt.h"

namespace Tamrix::OCR {
namespace {

/// No engines yet, and a folder for the user's settings.
class OcrEngines : public ::testing::Test {
public:
    OcrEngines() { implemenations.clear(); }
    ~OcrEngines() override { implemenations.clear(); }

    Settings userSettings(const QList<SettingsEntry>& entries) const {
        return settingsFile(m_folder.filePath("ver1/ocr.ini"), entries);
    }

protected:
    QTemporaryDir m_folder;
    Tamrix::Test::EnvironmentGuard m_user{"TAMRIX_USER_SETTINGS_DIR", m_folder.path()};

private:
    int m_argumentCount = 1;
    char m_program[5] = "test";
    char* m_arguments[1] = {m_program};
    QCoreApplication m_application{m_argumentCount, m_arguments};
};

TEST_F(OcrEngines, AreMadeOnce) {
    const Settings settings =
        userSettings({{"OCRSpace", "ApiKey", "k"}, {"General", "DefaultEngine", "OCRSpace"}});
    const auto engine = Implementation::get("OCRSpace", settings);
    EXPECT_TRUE(engine.dynamicCast<OcrSpace::Implementation>());
    EXPECT_EQ(Implementation::get("OCRSpace", Settings(m_folder.filePath("other.ini"))), engine);
    EXPECT_EQ(Implementation::get(), engine);
    EXPECT_EQ(Implementation::get("OCRSpace"), engine);
}

TEST_F(OcrEngines, ThatCannotBeMadeAreTriedAgain) {
    const struct {
        const char* engine;
        QList<SettingsEntry> entries;
        const char* text;
    } rows[] = {
        {"tesseract", {}, "Unknown OCR engine: tesseract"},
        {"Tesseract",
         {{"Tesseract", "InstallPath/40", ""}},
         "The path to the tesseract engine is not configured"},
        {"OCRSpace", {}, "OCR.Space API key is not set"},
        {"OCRSpace", {{"Proxy", "Type", "Ftp"}}, "Invalid proxy type: Ftp"},
        {"Rekognition", {}, "Rekognition API key ID is not set"},
        {"Rekognition",
         {{"Rekognition", "ApiKeyId", " x "}, {"Rekognition", "ApiKey", " "}},
         "Rekognition API key is not set"},
    };
    for (const auto& row : rows) {
        const Settings settings = userSettings(
            row.entries + QList<SettingsEntry>{{"General", "DefaultEngine", row.engine}});
        EXPECT_EQ(thrownText<SetupError>([&] { Implementation::get(settings); }), row.text);
        EXPECT_TRUE(implemenations.isEmpty());
    }
    EXPECT_TRUE(Implementation::get("Rekognition", userSettings({{"Rekognition", "ApiKeyId", "x"},
                                                                 {"Rekognition", "ApiKey", "y"},
                                                                 {"Proxy", "Type", "Socks"}})));
}

TEST_F(OcrEngines, SayWhatTheyCan) {
    const Settings settings = userSettings({{"OCRSpace", "ApiKey", "k"},
                                            {"Rekognition", "ApiKeyId", "x"},
                                            {"Rekognition", "ApiKey", "y"}});
    QStringList names;
    for (const auto& engine : Implementation::availableImplementations())
        names += engine.name + '/' + engine.displayName;
    EXPECT_EQ(names.join(' '),
              "Tesseract/Tesseract OCRSpace/OCR.Space Rekognition/Amazon Rekognition");

    const auto space = Implementation::get("OCRSpace", settings);
    const Json::Value data = space->getOptionData(Json::nullValue);
    EXPECT_EQ(data["displayName"].asString(), "OCR.Space");
    EXPECT_EQ(data["languages"].size(), 26U);
    EXPECT_EQ(data["languages"][0]["displayName"].asString(), "Default (English)");
    EXPECT_EQ(space->capabilities()["UsesLanguageHint"]->toJson()["languages"], data["languages"]);

    const auto rekognition = Implementation::get("Rekognition", settings);
    EXPECT_EQ(rekognition->getOptionData(Json::nullValue).size(), 2U);
    EXPECT_EQ(rekognition->capabilities()["AlwaysUseRegion"]->toJson(),
              Json::Value(Json::objectValue));
}

}  // namespace
}  // namespace Tamrix::OCR
