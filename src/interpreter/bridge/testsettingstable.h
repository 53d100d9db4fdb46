#pragma once

#include <QString>
#include <array>
#include <variant>

#include "base/export.h"
#include "interpreter/bridge/nativescripttype.h"
#include "shared/ocr/options.h"

namespace Tamrix {

// The settings of a run that scripts and config.xml can set: one table, from which the script
// properties, the reading of config.xml and the list in the documentation come.

/// The script object that has a setting as its property.
enum class SettingOwner { TestSettings, Tesseract, OcrSpace };

/// How a setting is read and written. `options` are the recognition options that the owner holds;
/// settings that are kept elsewhere have no use for them.
template <typename T>
struct SettingAccess {
    T (*read)(const OCR::Options& options);
    void (*write)(OCR::Options& options, const T& value);
};

/// What a script may set; config.xml is not held to it.
enum class SettingRange { Any, NotNegative, Percent, Positive };

struct TestSetting {
    /// As in config.xml: the owner, unless it is testSettings itself, a dot, and the property.
    const char* name;
    SettingOwner owner;
    std::variant<SettingAccess<int>, SettingAccess<bool>, SettingAccess<double>,
                 SettingAccess<QString>>
        access;
    /// For people, in Markdown.
    const char* meaning;
    SettingRange range = SettingRange::Any;
    /// What a script is told that sets a value out of range.
    const char* rangeMessage = nullptr;
    /// Whether a faulty value in config.xml is told.
    enum class FaultyText { IsTold, IsTaken } faultyText = FaultyText::IsTold;
};

/// The number of settings.
inline constexpr std::size_t testSettingCount = 29;

/// In the order in which config.xml is read.
TAMRIX_EXPORT extern const std::array<TestSetting, testSettingCount> testSettings;

/// "integer", "boolean", "number" or "text".
TAMRIX_EXPORT QString settingTypeName(const TestSetting& setting);
/// The present value; `options` as for SettingAccess.
TAMRIX_EXPORT QString settingText(const TestSetting& setting, const OCR::Options& options);

/// Adds the properties of this owner to its class; those of testSettings are static ones.
void addSettingProperties(NativeScriptType& type, SettingOwner owner);

}  // namespace Tamrix
