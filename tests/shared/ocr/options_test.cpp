#include "shared/ocr/options.h"

#include <gtest/gtest.h>
#include <json/json.h>

#include <string>

#include "shared/ocr/language.h"
#include "shared/ocr/typedexception.h"
#include "support/printqt.h"

namespace Tamrix::OCR {
namespace {

std::string written(const Json::Value& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, value);
}

std::string reread(const char* text) {
    return written(Options::fromJson(QString(text)).toJson());
}

TEST(OcrOptions, Defaults) {
    EXPECT_EQ(written(Options::defaults().toJson()),
              R"({"engineLanguage":"","engineOptions":{},"engineProfiles":[],)"
              R"("ocrSpace":{"language":"English"},"scaleFactor":3.5,)"
              R"("tesseract":{"flavor":"","language":"","mode":3,"postprocessing":"default",)"
              R"("preprocessing":"default","psm":6}})");
    EXPECT_EQ(written(TesseractOptions().toJson()), "{}");
    EXPECT_EQ(written(toJson(TesseractOptions::Combined)), "2");
}

TEST(OcrOptions, JsonIsReadAsItIsWritten) {
    // What isn't said stays unsaid, but for the scale.
    EXPECT_EQ(reread("{}"), R"({"engineOptions":{},"engineProfiles":[],"scaleFactor":3.5})");
    const char* const whole =
        R"({"engineLanguage":"Français","engineOptions":{},"engineProfiles":["b","a","b"],)"
        R"("ocrSpace":{"language":"x"},"scaleFactor":0.20000000000000001,)"
        R"("tesseract":{"flavor":"fast","language":"deu","mode":0,"postprocessing":"none",)"
        R"("preprocessing":"invert_color","psm":12}})";
    EXPECT_EQ(QString::fromStdString(reread(whole)).replace("\\u00e7", "ç"), QString(whole));
    EXPECT_EQ(written(OCRSpaceOptions::fromJson(Json::Value(Json::objectValue)).toJson()), "{}");
    // Of the free options only those pass that are no strings, as text.
    const Options options =
        Options::fromJson(QString(R"({"engineOptions": {"a": 1, "b": true, "c": 0.5}})"));
    EXPECT_EQ(options.options, (QMap<QString, QString>{{"a", "1"}, {"b", "true"}, {"c", "0.5"}}));
}

TEST(OcrOptions, FaultyJsonIsRefused) {
    const struct {
        const char* json;
        const char* message;
    } rows[] = {
        {R"({"tesseract": {"mode": "1"}})", "tesseract mode must be a number"},
        {R"({"tesseract": {"mode": 1.5}})", "tesseract mode must be a number"},
        {R"({"tesseract": {"mode": true}})", "tesseract mode must be a number"},
        {R"({"tesseract": {"mode": 4}})", "invalid tesseract mode"},
        {R"({"tesseract": {"mode": -1}})", "invalid tesseract mode"},
        {R"({"tesseract": {"psm": null}})", "tesseract psm must be a number"},
        {R"({"tesseract": {"psm": 13}})", "invalid tesseract psm"},
        {R"({"tesseract": {"psm": -1}})", "invalid tesseract psm"},
        {R"({"tesseract": {"flavor": 1}})", "tesseract flavor name must be a string"},
        {R"({"tesseract": {"language": 1}})", "tesseract language name must be a string"},
        {R"({"tesseract": {"preprocessing": []}})",
         "tesseract preprocessing name must be a string"},
        {R"({"tesseract": {"postprocessing": {}}})",
         "tesseract postprocessing name must be a string"},
        {R"({"tesseract": {"engineLanguage": "x"}})", "Unknown keys: engineLanguage"},
        {R"({"tesseract": []})", "tesseract configuration must be an object"},
        {R"({"ocrSpace": {"language": 1}})", "OCR.Space language name must be a string"},
        {R"({"ocrSpace": null})", "OCR.Space configuration must be an object"},
        {R"({"ocrSpace": {"mode": 1}})", "Unknown keys: mode"},
        {R"({"scaleFactor": "3"})", "scaleFactor must be a number"},
        {R"({"scaleFactor": 0.19})", "scaleFactor must be at least 0.2"},
        {R"({"engineLanguage": 1})", "language must be a string"},
        {R"({"engineProfiles": {}})", "profiles must be an array"},
        {R"({"engineProfiles": ["a", 1]})", "profiles must be a string array"},
        {R"({"engineOptions": []})", "engineOptions must be an object"},
        {R"({"engineOptions": {"a": "b"}})", "engineOptions members must be strings"},
        {R"({"two": 1, "one": 1})", "Unknown keys: one,two"},
        // A wrong value is told before a name that nobody knows.
        {R"({"a": 1, "scaleFactor": 0})", "scaleFactor must be at least 0.2"},
        {"[]", "options must be an object"},
    };
    for (const auto& row : rows) {
        try {
            Options::fromJson(QString(row.json));
            ADD_FAILURE() << row.json;
        } catch (const InvalidInputs& error) {
            EXPECT_STREQ(error.what(), row.message) << row.json;
            EXPECT_EQ(error.type(), "InvalidInputs");
            EXPECT_EQ(written(error.toJson()),
                      "{\"message\":\"" + std::string(row.message) + "\"}");
        }
    }
}

TEST(OcrOptions, WhatIsNoJsonIsNoTypedFailure) {
    try {
        Options::fromJson(QString("{\"a\": }"));
        ADD_FAILURE();
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(dynamic_cast<const TypedException*>(&error), nullptr);
        const QString text = error.what();
        EXPECT_TRUE(text.startsWith("Invalid JSON: * Line 1, Column 7")) << error.what();
    }
    // No text can be made of an array, and nesting without end is no input.
    EXPECT_THROW(Options::fromJson(QString(R"({"engineOptions": {"a": []}})")), std::exception);
    EXPECT_THROW(Options::fromJson(QString(100000, '[')), std::exception);
}

TEST(OcrOptions, LayersAreStacked) {
    Options lower = Options::defaults();
    lower.profiles = QStringList{"a", "b"};
    lower.options = {{"x", "1"}, {"y", "1"}};
    lower.scaleFactor = 2;
    lower.language = "German";
    Options upper;
    upper.tesseract.mode = TesseractOptions::LstmOnly;
    upper.tesseract.postprocessing = "none";
    upper.profiles = QStringList("a");
    upper.options = {{"y", "2"}, {"z", "2"}};
    EXPECT_EQ(written(stack(lower, upper).toJson()),
              R"({"engineLanguage":"German","engineOptions":{"x":"1","y":"2","z":"2"},)"
              R"("engineProfiles":["a","b","a"],"ocrSpace":{"language":"English"},)"
              // An upper layer has a scale even when nobody set it.
              R"("scaleFactor":3.5,)"
              R"("tesseract":{"flavor":"","language":"","mode":1,"postprocessing":"none",)"
              R"("preprocessing":"default","psm":6}})");

    upper.scaleFactor.reset();
    upper.language = "French";
    upper.ocrSpace.language = "";
    const Options result = stack(lower, upper);
    EXPECT_EQ(result.scaleFactor, 2);
    EXPECT_EQ(result.language, QString("French"));
    EXPECT_EQ(result.ocrSpace.language, QString());
    // A lower layer that says the empty text has said something.
    EXPECT_EQ(stack(Optional<QString>(""), Optional<QString>()), Optional<QString>(""));
    EXPECT_EQ(stack(Optional<QString>(), Optional<QString>()), Optional<QString>());
    EXPECT_EQ(stack(TesseractOptions::Combined, TesseractOptions::LstmOnly),
              TesseractOptions::LstmOnly);
    EXPECT_EQ(stack(TesseractOptions::Auto, TesseractOptions::SingleLine),
              TesseractOptions::SingleLine);
}

TEST(OcrOptions, ALanguageHasThreeNames) {
    EXPECT_EQ(written(Language("deu", "German", "Deutsch").toJson()),
              R"({"code":"deu","displayName":"Deutsch","recordedName":"German"})");
    EXPECT_EQ(written(Language("eng").toJson()),
              R"({"code":"eng","displayName":"eng","recordedName":"eng"})");
}

}  // namespace
}  // namespace Tamrix::OCR
