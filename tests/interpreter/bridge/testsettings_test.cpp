#include <gtest/gtest.h>

#include <limits>

#include "interpreter/bridge/testsettingstable.h"
#include "interpreter/bridge/testsettingstype.h"
#include "support/fakelanguage.h"
#include "support/printqt.h"
#include "support/recordingreport.h"

namespace Tamrix {
namespace {

using namespace Test;

class TestSettings : public testing::Test {
protected:
    TestSettings() { TestSettingsType::reset(); }
    ~TestSettings() override { TestSettingsType::reset(); }

    /// The property as a script says it, "tesseract.mode" for one of an object in testSettings.
    QString get(const QString& name) {
        call(name, {});
        return outcome();
    }

    /// The error, empty on success.
    QString set(const QString& name, const ScriptArgument::List& values) {
        call(name, values, true);
        if (!context.hasError()) {
            EXPECT_EQ(context.result->typeName(), context.createNull()->typeName());
        }
        return context.errorMessage();
    }

    QString callMethod(const char* name, const ScriptArgument::List& arguments) {
        context.call(type.staticMethods().value(name).function, arguments);
        return outcome();
    }

    /// Settings of a suite; the warnings.
    QStringList initialize(const QMap<QString, QString>& properties) {
        RecordingReport report;
        TestResult result(&report);
        TestSettingsType::initialize(&result, {}, properties, {});
        QStringList warnings;
        for (const ResultAdded& entry : report.results()) {
            EXPECT_EQ(entry.type, TestResult::Warning);
            EXPECT_EQ(entry.detail, "");
            warnings.append(entry.message);
        }
        return warnings;
    }

    NativeScriptType type = TestSettingsType::type();
    FakeContext context;

private:
    QString outcome() { return context.hasError() ? context.errorMessage() : resultText(); }
    QString resultText() { return context.result ? context.result->toString() : "no result"; }

    void call(const QString& name, const ScriptArgument::List& values, bool writes = false) {
        context.result = {};
        if (!name.contains('.')) {
            const auto property = type.staticProperties().value(name);
            context.call(writes ? property.setter : property.getter, values);
            return;
        }
        // The object comes out of testSettings, its class is known by its type identifier.
        context.call(type.staticProperties().value(name.section('.', 0, 0)).getter);
        const auto object = std::get<SharedPtr<NativeScriptObject>>(
            static_cast<FakeArgument&>(*context.result).value());
        const NativeScriptType objectType =
            object->typeId() == TesseractTestSettings::staticTypeId()
                ? TesseractTestSettings::type()
                : OCRSpaceTestSettings::type();
        const auto property = objectType.properties().value(name.section('.', 1));
        context.result = {};
        context.setArguments(values);
        context.execute(writes ? property.setter : property.getter, object);
    }
};

TEST_F(TestSettings, EveryPropertyKeepsWhatAScriptSets) {
    const auto values =
        [this](const TestSetting& setting) -> std::pair<ScriptArgument::List, QString> {
        const QString kind = settingTypeName(setting);
        if (kind == "integer")
            return {{integer(7)}, "7"};
        if (kind == "boolean") {
            const bool value = get(setting.name) != "true";
            return {{boolean(value)}, value ? "true" : "false"};
        }
        if (kind == "number")
            return {{number(62.5)}, "62.5"};
        return {{text("w")}, "w"};
    };
    for (const TestSetting& setting : testSettings) {
        const QString name = setting.name;
        // As a script reads it, and as the table does.
        EXPECT_EQ(get(name), settingText(setting, TestSettingsType::s_ocr)) << setting.name;
        const auto [value, shown] = values(setting);
        EXPECT_NE(get(name), shown) << setting.name;
        EXPECT_EQ(set(name, value), "") << setting.name;
        EXPECT_EQ(get(name), shown) << setting.name;
        TestSettingsType::reset();
        EXPECT_NE(get(name), shown) << setting.name;
        // config.xml sets the same thing.
        EXPECT_EQ(initialize({{name, shown}}), QStringList()) << setting.name;
        EXPECT_EQ(get(name), shown) << setting.name;
        TestSettingsType::reset();
    }
    EXPECT_EQ(type.staticProperties().size(), 24);
    EXPECT_EQ(TesseractTestSettings::type().properties().size(), 6);
    EXPECT_EQ(OCRSpaceTestSettings::type().properties().size(), 1);
    EXPECT_EQ(type.constructor(), nullptr);
    EXPECT_EQ(type.staticProperties().value("tesseract").setter, nullptr);
}

TEST_F(TestSettings, ArriveWhereTheyAreRead) {
    using Options = VerificationOptions;
    const std::pair<const char*, Options::Flag> flags[] = {
        {"silentVerifications", Options::SilentVerifications},
        {"logScreenshotOnWarning", Options::LogScreenshotOnWarning},
        {"logScreenshotOnFail", Options::LogScreenshotOnFail},
        {"logScreenshotOnError", Options::LogScreenshotOnError},
        {"logScreenshotOnPass", Options::LogScreenshotOnPass},
        {"throwOnFailure", Options::ThrowOnFailure}};
    for (const auto& [name, flag] : flags) {
        EXPECT_FALSE(TestSettingsType::s_vpOptions.testFlag(flag));
        set(name, {boolean(true)});
        EXPECT_TRUE(TestSettingsType::s_vpOptions.testFlag(flag)) << name;
        set(name, {boolean(false)});
    }
    set("retryDuration", {integer(1)});
    set("vpScreenshotDelay", {integer(2)});
    EXPECT_EQ(TestSettingsType::s_vpOptions.retryDuration(), 1);
    EXPECT_EQ(TestSettingsType::s_vpOptions.screenshotDelay(), 2);
    set("imageSearchTolerant", {boolean(true)});
    set("imageSearchMinScale", {number(62.5)});
    EXPECT_EQ(TestSettingsType::s_image.description(), "minScale: 62.500, tolerant: true");
    set("defaultOcrLanguage", {text("German")});
    set("tesseract.language", {text("deu")});
    set("ocrSpace.language", {text("ger")});
    set("tesseract.mode", {integer(99)});
    EXPECT_EQ(TestSettingsType::s_ocr.language, QString("German"));
    EXPECT_EQ(TestSettingsType::s_ocr.tesseract.language, QString("deu"));
    EXPECT_EQ(TestSettingsType::s_ocr.ocrSpace.language, QString("ger"));
    // An engine that reads it refuses it.
    EXPECT_EQ(TestSettingsType::s_ocr.tesseract.mode, OCR::TesseractOptions::Mode(99));
    EXPECT_EQ(TestSettingsType::s_tesseract->options().ocrSpace.language, QString("ger"));
}

TEST_F(TestSettings, WhatScriptsMayNotSet) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const struct {
        const char* name;
        ScriptArgument::List values;
        const char* error;
    } rows[] = {
        {"waitForObjectTimeout", {integer(0)}, ""},
        {"waitForObjectTimeout", {integer(-1)}, "The timeout value cannot be negative"},
        {"retryDuration", {integer(-1)}, "The duration value cannot be negative"},
        {"vpScreenshotDelay", {integer(-1)}, "The delay value cannot be negative"},
        {"imageSearchThreshold", {integer(0)}, ""},
        {"imageSearchThreshold", {integer(100)}, ""},
        {"imageSearchThreshold", {number(100.5)}, "The threshold value must be between 0 and 100"},
        {"imageSearchThreshold", {number(-1)}, "The threshold value must be between 0 and 100"},
        {"imageSearchMinScale", {integer(0)}, "The minScale value must be strictly positive"},
        {"imageSearchMaxScale", {number(-0.5)}, "The maxScale value must be strictly positive"},
        {"imageSearchMaxScale",
         {number(infinity)},
         "testSettings.imageSearchMaxScale must be a finite number, not inf"},
        {"imageSearchMaxScale",
         {text("1")},
         "testSettings.imageSearchMaxScale must be a finite number, not 1"},
        {"waitForObjectTimeout",
         {text("soon")},
         "testSettings.waitForObjectTimeout must be an integer of at most 32 bits, not soon"},
        {"waitForObjectTimeout",
         {integer(1LL << 32)},
         "testSettings.waitForObjectTimeout must be an integer of at most 32 bits, not 4294967296"},
        {"breakOnFailure", {integer(1)}, ""},
        {"breakOnFailure",
         {integer(2)},
         "testSettings.breakOnFailure must be true or false, not 2"},
        {"breakOnFailure",
         {text("yes")},
         "testSettings.breakOnFailure must be true or false, not yes"},
        {"testCaseName", {integer(1)}, "testSettings.testCaseName must be a text, not 1"},
        {"tesseract.mode",
         {text("1")},
         "testSettings.tesseract.mode must be an integer of at most 32 bits, not 1"},
        {"ocrSpace.language", {}, "testSettings.ocrSpace.language takes exactly one value"},
        {"logStacktraceOnLog",
         {boolean(true), boolean(true)},
         "testSettings.logStacktraceOnLog takes exactly one value"},
    };
    for (const auto& row : rows) {
        const QString before = get(row.name);
        EXPECT_EQ(set(row.name, row.values), row.error) << row.name;
        if (*row.error) {
            EXPECT_EQ(get(row.name), before) << row.name;
        }
    }
}

TEST_F(TestSettings, AnObjectOfAnotherClassHasNoneOfThem) {
    struct Other : NativeScriptObject {
        void* typeId() const override { return nullptr; }
    };
    const auto mode = TesseractTestSettings::type().properties().value("mode");
    for (const auto function : {mode.getter, mode.setter}) {
        context.execute(function, SharedPtr<NativeScriptObject>(new Other));
        EXPECT_EQ(context.errorMessage(),
                  "testSettings.tesseract.mode is no property of this object");
    }
}

TEST_F(TestSettings, FaultyValuesOfASuiteAreTold) {
    const struct {
        const char* name;
        const char* value;
        const char* taken;
        const char* warning;
    } rows[] = {
        {"waitForObjectTimeout", "12s", "0",
         "Unexpected integer value for TestSettings property 'waitForObjectTimeout'. '12s' was "
         "evaluated to '0'."},
        {"waitForObjectTimeout", "-5", "-5", ""},
        {"tesseract.mode", "0x1", "0",
         "Unexpected integer value for TestSettings property 'tesseract.mode'. '0x1' was evaluated "
         "to '0'."},
        {"retryDuration", "much", "0", ""},
        {"imageSearchThreshold", "500", "500", ""},
        {"imageSearchMinScale", "1,5", "0",
         "Unexpected numeric value for TestSettings property 'imageSearchMinScale'. '1,5' was "
         "evaluated to '0'."},
        {"breakOnFailure", "YES", "true", ""},
        {"breakOnFailure", "0", "false", ""},
        {"breakOnFailure", "on", "false",
         "Unexpected boolean value for TestSettings property 'breakOnFailure'. 'on' was evaluated "
         "to 'false'."},
        {"silentVerifications", "truly", "true",
         "Unexpected boolean value for TestSettings property 'silentVerifications'. 'truly' was "
         "evaluated to 'true'."},
        {"throwOnFailure", "", "false",
         "Unexpected boolean value for TestSettings property 'throwOnFailure'. '' was evaluated to "
         "'false'."},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(initialize({{row.name, row.value}}).join('\n'), row.warning) << row.value;
        EXPECT_EQ(get(row.name), row.taken) << row.name;
    }
    EXPECT_EQ(
        initialize({{"waitForObjectTimeOut", "1"}, {"tesseract", "1"}, {"testCaseName", "a"}}),
        QStringList(
            {"TestSettings property 'tesseract' in config.xml could not be found.",
             "TestSettings property 'waitForObjectTimeOut' in config.xml could not be found."}));
    EXPECT_EQ(get("testCaseName"), "a");

    testing::internal::CaptureStderr();
    TestSettingsType::initialize(nullptr, {}, {{"no%1", "1"}}, {});
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Warning: TestSettings property 'no%1' in config.xml could not be found.\n");
}

TEST_F(TestSettings, PasswordsAndWrappers) {
    TestSettingsType::initialize(nullptr, {"qt"}, {}, {{"db", "secret"}});
    EXPECT_EQ(callMethod("getPassword", {text("db")}), "secret");
    EXPECT_EQ(callMethod("getPassword", {text("x")}), "No password available for key 'x'");
    EXPECT_EQ(callMethod("getPassword", {}), "getPassword() takes exactly one argument");

    const auto wrappers = [&] {
        context.call(type.staticMethods().value("getWrappersForApplication").function,
                     {text("shop")});
        QStringList names;
        for (const auto& name : context.result->toList())
            names.append(name->toString());
        return names;
    };
    EXPECT_EQ(wrappers(), QStringList("qt"));
    EXPECT_FALSE(TestSettingsType::haveAUTWrappers("shop"));
    EXPECT_EQ(
        callMethod("setWrappersForApplication", {text("shop"), list({text("web"), text("qt")})}),
        context.createNull()->toString());
    EXPECT_EQ(wrappers(), QStringList({"web", "qt"}));
    EXPECT_TRUE(TestSettingsType::haveAUTWrappers("shop"));
    const struct {
        const char* method;
        ScriptArgument::List arguments;
        const char* error;
    } rows[] = {
        {"getWrappersForApplication", {}, "getWrappersForApplication() takes exactly one argument"},
        {"setWrappersForApplication",
         {text("shop")},
         "setWrappersForApplication() takes exactly two arguments"},
        {"setWrappersForApplication",
         {text("shop"), text("web")},
         "The wrappers argument needs to be a list"},
        {"setWrappersForApplication",
         {text("shop"), list({})},
         "The wrappers list cannot be empty"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(callMethod(row.method, row.arguments), row.error);

    TestSettingsType::reset();
    EXPECT_EQ(wrappers(), QStringList());
    EXPECT_EQ(callMethod("getPassword", {text("db")}), "No password available for key 'db'");
}

}  // namespace
}  // namespace Tamrix
