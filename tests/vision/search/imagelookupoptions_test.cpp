#include "vision/search/imagelookupoptions.h"

#include <gtest/gtest.h>
#include <json/json.h>

#include <functional>
#include <stdexcept>

#include "support/printqt.h"
#include "vision/search/failuretext.h"

namespace Tamrix::Vision {
namespace {

using Tamrix::Test::failureText;
using Tamrix::Test::jsonOf;

TEST(ImageLookupOptions, WhatIsAbsentHasDefaults) {
    ImageLookupOptions options;
    EXPECT_TRUE(options.isNull());
    EXPECT_TRUE(options.hasField({}));
    options.setThreshold(50);
    options.setTolerant(true);
    EXPECT_TRUE(options.hasField(ImageLookupOptions::Threshold | ImageLookupOptions::Tolerant));
    EXPECT_FALSE(options.hasField(ImageLookupOptions::Threshold | ImageLookupOptions::Multiscale));
    EXPECT_FALSE(options.hasField({}));
    options.resetThreshold();
    options.resetTolerant();
    EXPECT_TRUE(options.isNull());
    EXPECT_EQ(options.description(), QString());
    // Nothing of the old values is seen.
    EXPECT_EQ(options.getThreshold(), 99.5);
    EXPECT_FALSE(options.getTolerant());
    EXPECT_EQ(options.getMinScaleFactor(), 50.0);
    EXPECT_EQ(options.getMaxScaleFactor(), 200.0);
}

TEST(ImageLookupOptions, LayersAreLaidOverEachOther) {
    const auto base = ImageLookupOptions::fromDescription("threshold: 80, multiscale: true");
    auto over = ImageLookupOptions::fromDescription("threshold: 10, tolerant: 1, maxScale: 150");
    over.resetThreshold();
    EXPECT_EQ(ImageLookupOptions::overlay(base, over).description(),
              QString("maxScale: 150.000, multiscale: true, threshold: 80.000, tolerant: true"));
}

TEST(ImageLookupOptions, FormsAreReadAsTheyAreWritten) {
    const auto options = ImageLookupOptions::fromDescription(
        " tolerant : TRUE,,threshold:95,minScale: 62.5, threshold: 150 ,multiscale:0");
    const QString text = "minScale: 62.500, multiscale: false, threshold: 150.000, tolerant: true";
    // The later entry counts, and texts have no range.
    EXPECT_EQ(options.description(), text);
    EXPECT_EQ(ImageLookupOptions::fromDescription(text).description(), text);
    EXPECT_EQ(ImageLookupOptions(options.toValueMap()).description(), text);
    EXPECT_EQ(ImageLookupOptions(QString("threshold = 150\n\ntolerant=true\nminScale=62.5\n"
                                         "multiscale=False"))
                  .description(),
              text);
    auto inRange = options;
    inRange.setThreshold(0);
    EXPECT_EQ(ImageLookupOptions::fromJson(inRange.toJson()).description(), inRange.description());
    EXPECT_EQ(ImageLookupOptions().toJson(), Json::Value(Json::objectValue));
}

TEST(ImageLookupOptions, FaultyTextsAreNamed) {
    const struct {
        const char* text;
        const char* failure;
    } rows[] = {
        {"tolerant", "Key without a value: tolerant"},
        {"  , ,", "Key without a value:   "},
        {"threshold: 99,5", "Key without a value: 5"},
        {"threshold: 9x", "Invalid number: 9x"},
        {"multiscale: yes", "Invalid boolean: yes"},
        {"tolerant: yes, maxScale: wide", "Invalid number: wide"},
        {"treshold: 9", "Unknown key: treshold"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(failureText([&] { ImageLookupOptions::fromDescription(row.text); }), row.failure);
    EXPECT_EQ(failureText([] { ImageLookupOptions(QString("tolerant: true")); }),
              "Key without a value: tolerant: true");
    EXPECT_EQ(failureText([] { parseInt("1.5"); }), "Invalid number: 1.5");
}

TEST(ImageLookupOptions, FaultyJsonIsNamed) {
    const struct {
        const char* json;
        const char* failure;
    } rows[] = {
        {R"({"maxScale": "1", "x": 1})", "maxScale must be a number"},
        {R"({"maxScale": -1})", "maxScale must be positive"},
        {R"({"minScale": 0})", "minScale must be positive"},
        {R"({"minScale": true})", "minScale must be a number"},
        {R"({"multiscale": 1})", "multiscale must be a boolean"},
        {R"({"threshold": null})", "threshold must be a number"},
        {R"({"threshold": 150})", "threshold must lie in the [0,100] range"},
        {R"({"tolerant": "true"})", "tolerant must be a boolean"},
        {R"({"scale": 1, "tolerant": true, "Tolerant": 1})", "Unknown keys: Tolerant,scale"},
        {"[]", "Image lookup options must be an object"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(failureText([&] { ImageLookupOptions::fromJson(jsonOf(row.json)); }),
                  row.failure);
}

TEST(ImageLookupOptions, WhatCanStillBeLoosened) {
    const struct {
        const char* defaults;
        const char* options;
        bool canRelax;
    } rows[] = {
        {"tolerant: true", "tolerant: false", false},
        {"", "threshold: 1", true},
        {"tolerant: true", "", true},
        {"tolerant: true", "threshold: 1", true},
        {"multiscale: true", "tolerant: true, threshold: 1", false},
        {"tolerant: true", "threshold: 1, multiscale: false", false},
        {"minScale: 51", "tolerant: true, threshold: 1, multiscale: true", true},
        {"minScale: 50", "tolerant: true, threshold: 1, multiscale: true", false},
        {"minScale: 51", "tolerant: true, threshold: 1, multiscale: true, minScale: 60", false},
        {"maxScale: 199", "tolerant: true, threshold: 1, multiscale: true", true},
        {"maxScale: 200", "tolerant: true, threshold: 1, multiscale: true", false},
        {"maxScale: 199", "tolerant: true, threshold: 1, multiscale: true, maxScale: 9", false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(
            ImageLookupOptions::canRelaxDefaults(ImageLookupOptions::fromDescription(row.defaults),
                                                 ImageLookupOptions::fromDescription(row.options)),
            row.canRelax)
            << row.defaults << " / " << row.options;
    }
}

}  // namespace
}  // namespace Tamrix::Vision
