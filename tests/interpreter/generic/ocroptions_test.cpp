#include "interpreter/generic/ocroptions.h"

#include <gtest/gtest.h>
#include <json/json.h>

#include "support/fakelanguage.h"
#include "support/printqt.h"

namespace Tamrix::OCR {
namespace {

using namespace Tamrix::Test;

std::string read(const ScriptArgument::Map& options) {
    try {
        Json::StreamWriterBuilder builder;
        builder["indentation"] = "";
        return Json::writeString(builder, getOCROptions(options).toJson());
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

TEST(OcrOptionsOfScripts, AreRead) {
    EXPECT_EQ(read({}), R"({"engineOptions":{},"engineProfiles":[],"scaleFactor":3.5})");
    EXPECT_EQ(read({{"language", text("German")},
                    {"tesseract", map({{"mode", integer(0)},
                                       {"psm", integer(12)},
                                       {"flavor", text("f")},
                                       {"language", text("deu")},
                                       {"preprocessing", text("none")},
                                       {"postprocessing", text("raw")}})},
                    {"ocrSpace", map({{"language", text("ger")}})},
                    {"profiles", list({text("b"), integer(1), text("b")})},
                    {"options", map({{"a", text("x")}, {"b", integer(2)}})},
                    {"scaleFactor", integer(2)}}),
              R"({"engineLanguage":"German","engineOptions":{"a":"x","b":"2"},)"
              R"("engineProfiles":["b","1","b"],"ocrSpace":{"language":"ger"},"scaleFactor":2.0,)"
              R"("tesseract":{"flavor":"f","language":"deu","mode":0,"postprocessing":"raw",)"
              R"("preprocessing":"none","psm":12}})");
    EXPECT_EQ(getOCROptions({{"scaleFactor", number(0.2)}}).scaleFactor, 0.2);
}

TEST(OcrOptionsOfScripts, WhatIsWrongIsTold) {
    const auto tesseract = [](const char* key, SharedPtr<ScriptArgument> value) {
        return ScriptArgument::Map{{"tesseract", map({{key, value}})}};
    };
    const struct {
        ScriptArgument::Map options;
        const char* message;
    } rows[] = {
        {{{"tesseract", text("x")}}, "The tesseract options must be a map"},
        {tesseract("mode", text("1")), "The tesseract mode must be an integer"},
        {tesseract("mode", number(1)), "The tesseract mode must be an integer"},
        {tesseract("mode", integer(-1)), "Invalid tesseract mode"},
        {tesseract("mode", integer(4)), "Invalid tesseract mode"},
        {tesseract("mode", integer(1LL << 32)), "Invalid tesseract mode"},
        {tesseract("psm", boolean(true)), "The tesseract psm must be an integer"},
        {tesseract("psm", integer(13)), "Invalid tesseract psm"},
        {tesseract("Mode", integer(1)), "Unknown tesseract options keys: Mode"},
        {{{"ocrSpace", list({})}}, "The OCR.Space options must be a map"},
        {{{"ocrSpace", map({{"mode", integer(1)}, {"key", integer(1)}})}},
         "Unknown OCR.Options options keys: key,mode"},
        {{{"profiles", text("x")}}, "The profiles must be a list"},
        {{{"options", text("x")}}, "The options must be a map"},
        {{{"scaleFactor", number(0.19)}}, "The scaleFactor must be at least 0.2"},
        {{{"scaleFactor", text("big")}}, "The scaleFactor must be at least 0.2"},
        {{{"engineLanguage", text("x")}, {"%1", text("x")}},
         "Unknown options keys: %1,engineLanguage"},
        // A wrong value is told before a key that nobody knows.
        {{{"a", text("x")}, {"scaleFactor", integer(0)}}, "The scaleFactor must be at least 0.2"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(read(row.options), row.message);
}

}  // namespace
}  // namespace Tamrix::OCR
