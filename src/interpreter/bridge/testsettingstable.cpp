#include "interpreter/bridge/testsettingstable.h"

#include <type_traits>

#include "interpreter/bridge/testsettingstype.h"

namespace Tamrix {

namespace {

using Vision::ImageLookupOptions;

// Where settings are kept

template <auto* variable>
constexpr auto variableAccess() {
    using T = std::remove_pointer_t<decltype(variable)>;
    return SettingAccess<T>{[](const OCR::Options&) { return *variable; },
                            [](OCR::Options&, const T& value) { *variable = value; }};
}

template <VerificationOptions::Flag flag>
constexpr SettingAccess<bool> flagAccess() {
    return {[](const OCR::Options&) { return TestSettingsType::s_vpOptions.testFlag(flag); },
            [](OCR::Options&, const bool& on) { TestSettingsType::s_vpOptions.setFlag(flag, on); }};
}

template <auto getter, auto setter>
constexpr SettingAccess<int> verificationAccess() {
    return {
        [](const OCR::Options&) { return (TestSettingsType::s_vpOptions.*getter)(); },
        [](OCR::Options&, const int& value) { (TestSettingsType::s_vpOptions.*setter)(value); }};
}

template <auto getter, auto setter>
constexpr auto imageAccess() {
    using T = decltype((TestSettingsType::s_image.*getter)());
    return SettingAccess<T>{
        [](const OCR::Options&) { return (TestSettingsType::s_image.*getter)(); },
        [](OCR::Options&, const T& value) { (TestSettingsType::s_image.*setter)(value); }};
}

/// A member of a record of recognition options. An enumeration is an integer to a script; whether
/// there is such a member of it, the engine finds out.
template <auto record, auto member>
constexpr auto recognitionAccess() {
    using Value =
        typename std::remove_reference_t<decltype((std::declval<OCR::Options&>().*record).*
                                                  member)>::value_type;
    using T = std::conditional_t<std::is_enum_v<Value>, int, Value>;
    return SettingAccess<T>{
        [](const OCR::Options& options) {
            return static_cast<T>(((options.*record).*member).value_or(Value()));
        },
        [](OCR::Options& options, const T& value) {
            (options.*record).*member = static_cast<Value>(value);
        }};
}

template <auto member>
constexpr auto tesseractAccess() {
    return recognitionAccess<&OCR::Options::tesseract, member>();
}

constexpr SettingAccess<QString> languageAccess = {
    [](const OCR::Options& options) { return options.language.value_or(QString()); },
    [](OCR::Options& options, const QString& value) { options.language = value; }};

}  // namespace

using enum SettingOwner;
using enum SettingRange;

constinit const std::array<TestSetting, testSettingCount> testSettings = {{
    {"waitForObjectTimeout", TestSettings,
     variableAccess<&TestSettingsType::s_waitForObjectTimeout>(),
     "how long functions wait for an object, in milliseconds, unless they are told otherwise",
     NotNegative, "The timeout value cannot be negative"},
    {"logStacktraceOnLog", TestSettings, variableAccess<&TestSettingsType::s_logStacktraceOnLog>(),
     "whether logged lines carry the whole stack of calls"},
    {"logStacktraceOnPass", TestSettings,
     variableAccess<&TestSettingsType::s_logStacktraceOnPass>(),
     "whether passed verdicts carry the whole stack of calls"},
    {"breakOnFailure", TestSettings, variableAccess<&TestSettingsType::s_breakOnFailure>(),
     "whether a failed verdict stops in the debugger"},
    {"objectNotFoundDebugging", TestSettings,
     variableAccess<&TestSettingsType::s_objectNotFoundDebugging>(),
     "whether an object that is not found stops in the debugger"},
    {"imageNotFoundDebugging", TestSettings,
     variableAccess<&TestSettingsType::s_imageNotFoundDebugging>(),
     "whether an image that is not found stops in the debugger"},
    {"textNotFoundDebugging", TestSettings,
     variableAccess<&TestSettingsType::s_textNotFoundDebugging>(),
     "whether a text that is not found on the screen stops in the debugger"},
    {"testCaseName", TestSettings, variableAccess<&TestSettingsType::s_testCaseName>(),
     "a name for the test case, for scripts that want one"},
    {"retryDuration", TestSettings,
     verificationAccess<&VerificationOptions::retryDuration,
                        &VerificationOptions::setRetryDuration>(),
     "how long a verification point is tried again, in milliseconds", NotNegative,
     "The duration value cannot be negative", TestSetting::FaultyText::IsTaken},
    {"vpScreenshotDelay", TestSettings,
     verificationAccess<&VerificationOptions::screenshotDelay,
                        &VerificationOptions::setScreenshotDelay>(),
     "how long to wait for the picture of a verification point, in milliseconds", NotNegative,
     "The delay value cannot be negative", TestSetting::FaultyText::IsTaken},
    {"silentVerifications", TestSettings, flagAccess<VerificationOptions::SilentVerifications>(),
     "whether verification points add no results"},
    {"logScreenshotOnWarning", TestSettings,
     flagAccess<VerificationOptions::LogScreenshotOnWarning>(),
     "whether warnings come with a picture of the desktop"},
    {"logScreenshotOnFail", TestSettings, flagAccess<VerificationOptions::LogScreenshotOnFail>(),
     "whether failed verdicts do"},
    {"logScreenshotOnError", TestSettings, flagAccess<VerificationOptions::LogScreenshotOnError>(),
     "whether script errors do"},
    {"logScreenshotOnPass", TestSettings, flagAccess<VerificationOptions::LogScreenshotOnPass>(),
     "whether passed verdicts do"},
    {"throwOnFailure", TestSettings, flagAccess<VerificationOptions::ThrowOnFailure>(),
     "whether a failed verdict ends the script"},
    {"imageSearchTolerant", TestSettings,
     imageAccess<&ImageLookupOptions::getTolerant, &ImageLookupOptions::setTolerant>(),
     "whether images are searched with tolerance instead of pixel by pixel"},
    {"imageSearchMultiscale", TestSettings,
     imageAccess<&ImageLookupOptions::getMultiscale, &ImageLookupOptions::setMultiscale>(),
     "whether a tolerant search tries other sizes of the image"},
    {"imageSearchThreshold", TestSettings,
     imageAccess<&ImageLookupOptions::getThreshold, &ImageLookupOptions::setThreshold>(),
     "least score of a tolerant search, in percent", Percent,
     "The threshold value must be between 0 and 100"},
    {"imageSearchMinScale", TestSettings,
     imageAccess<&ImageLookupOptions::getMinScaleFactor, &ImageLookupOptions::setMinScaleFactor>(),
     "smallest size that is tried, in percent", Positive,
     "The minScale value must be strictly positive"},
    {"imageSearchMaxScale", TestSettings,
     imageAccess<&ImageLookupOptions::getMaxScaleFactor, &ImageLookupOptions::setMaxScaleFactor>(),
     "largest size that is tried, in percent", Positive,
     "The maxScale value must be strictly positive"},
    {"defaultOcrLanguage", TestSettings, languageAccess,
     "language of text on the screen, for any recognition engine"},
    {"tesseract.mode", Tesseract, tesseractAccess<&OCR::TesseractOptions::mode>(),
     "mode of the Tesseract engine, 0 to 3"},
    {"tesseract.psm", Tesseract, tesseractAccess<&OCR::TesseractOptions::psm>(),
     "its page segmentation mode, 0 to 12"},
    {"tesseract.flavor", Tesseract, tesseractAccess<&OCR::TesseractOptions::flavor>(),
     "its set of engine data, empty for the main installation"},
    {"tesseract.postprocessing", Tesseract,
     tesseractAccess<&OCR::TesseractOptions::postprocessing>(),
     "profile of what is done to its result"},
    {"tesseract.preprocessing", Tesseract, tesseractAccess<&OCR::TesseractOptions::preprocessing>(),
     "profile of what is done to the picture before"},
    {"tesseract.language", Tesseract, tesseractAccess<&OCR::TesseractOptions::language>(),
     "language, as Tesseract names it"},
    {"ocrSpace.language", OcrSpace,
     recognitionAccess<&OCR::Options::ocrSpace, &OCR::OCRSpaceOptions::language>(),
     "language, as OCR.Space names it"},
}};

namespace {

template <typename T>
constexpr const char* typeNameOf = nullptr;
template <>
constexpr const char* typeNameOf<int> = "integer";
template <>
constexpr const char* typeNameOf<bool> = "boolean";
template <>
constexpr const char* typeNameOf<double> = "number";
template <>
constexpr const char* typeNameOf<QString> = "text";

QString textOf(int value) {
    return QString::number(value);
}
QString textOf(bool value) {
    return value ? QStringLiteral("true") : QStringLiteral("false");
}
QString textOf(double value) {
    return QString::number(value);
}
QString textOf(const QString& value) {
    return value;
}

}  // namespace

QString settingTypeName(const TestSetting& setting) {
    return std::visit(
        []<typename T>(const SettingAccess<T>&) { return QString(QLatin1String(typeNameOf<T>)); },
        setting.access);
}

QString settingText(const TestSetting& setting, const OCR::Options& options) {
    return std::visit([&](const auto& access) { return textOf(access.read(options)); },
                      setting.access);
}

}  // namespace Tamrix
