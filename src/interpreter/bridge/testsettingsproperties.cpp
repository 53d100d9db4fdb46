// The table of settings as properties of script objects.

#include <cmath>
#include <type_traits>
#include <utility>

#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/testsettingstable.h"
#include "interpreter/bridge/testsettingstype.h"

namespace Tamrix {

namespace {

// Values of scripts. Each returns whether the argument was one of its type.

bool take(const ScriptArgument& argument, int* value) {
    if (!argument.isInteger())
        return false;
    const long long number = argument.toInt();
    *value = static_cast<int>(number);
    return *value == number;
}

/// Languages without a type for truth have 0 and 1 for it.
bool take(const ScriptArgument& argument, bool* value) {
    const long long number = argument.isInteger() ? argument.toInt() : -1;
    *value = argument.isBool() ? argument.toBool() : number == 1;
    return argument.isBool() || number == 0 || number == 1;
}

bool take(const ScriptArgument& argument, double* value) {
    *value = argument.isNumber() ? argument.toDouble() : 0;
    return argument.isNumber() && std::isfinite(*value);
}

bool take(const ScriptArgument& argument, QString* value) {
    *value = argument.isString() ? argument.toString() : QString();
    return argument.isString();
}

constexpr const char* wantedType(const SettingAccess<int>&) {
    return "an integer of at most 32 bits";
}
constexpr const char* wantedType(const SettingAccess<bool>&) {
    return "true or false";
}
constexpr const char* wantedType(const SettingAccess<double>&) {
    return "a finite number";
}
constexpr const char* wantedType(const SettingAccess<QString>&) {
    return "a text";
}

bool isInRange(double value, SettingRange range) {
    switch (range) {
        case SettingRange::NotNegative:
            return value >= 0;
        case SettingRange::Percent:
            return value >= 0 && value <= 100;
        case SettingRange::Positive:
            return value > 0;
        case SettingRange::Any:
            break;
    }
    return true;
}

/// Only numbers have ranges.
template <typename T>
bool isAllowed(const T& value, SettingRange range) {
    if constexpr (std::is_same_v<T, int> || std::is_same_v<T, double>)
        return isInRange(value, range);
    else
        return true;
}

// Results of scripts

void setResult(ScriptContext* context, int value) {
    context->setIntegerResult(value);
}
void setResult(ScriptContext* context, bool value) {
    context->setBoolResult(value);
}
void setResult(ScriptContext* context, double value) {
    context->setDoubleResult(value);
}
void setResult(ScriptContext* context, const QString& value) {
    context->setStringResult(value);
}

// Reading and writing

bool readSetting(const TestSetting& setting, const OCR::Options& options, ScriptContext* context) {
    std::visit([&](const auto& access) { setResult(context, access.read(options)); },
               setting.access);
    return !context->hasError();
}

template <typename T>
void writeValue(const TestSetting& setting, const SettingAccess<T>& access, OCR::Options& options,
                ScriptContext* context) {
    const SharedPtr<ScriptArgument> argument = context->argument(0);
    T value{};
    if (!argument || !take(*argument, &value)) {
        context->setError(QStringLiteral("testSettings.%1 must be %2, not %3")
                              .arg(setting.name, wantedType(access),
                                   argument ? argument->toString() : QStringLiteral("null")));
    } else if (!isAllowed(value, setting.range)) {
        context->setError(setting.rangeMessage);
    } else {
        access.write(options, value);
        context->setNullResult();
    }
}

bool writeSetting(const TestSetting& setting, OCR::Options& options, ScriptContext* context) {
    if (context->argumentCount() != 1) {
        context->setError(
            QStringLiteral("testSettings.%1 takes exactly one value").arg(setting.name));
        return false;
    }
    std::visit([&](const auto& access) { writeValue(setting, access, options, context); },
               setting.access);
    return !context->hasError();
}

// One function for each setting, since a property is a plain function

template <std::size_t index>
bool readStatic(ScriptContext* context) {
    return readSetting(testSettings[index], TestSettingsType::s_ocr, context);
}

template <std::size_t index>
bool writeStatic(ScriptContext* context) {
    return writeSetting(testSettings[index], TestSettingsType::s_ocr, context);
}

/// The record behind the object of an engine; null, with an error set, for another object.
OCR::Options* optionsOf(const SharedPtr<NativeScriptObject>& object, const TestSetting& setting,
                        ScriptContext* context) {
    auto* const settings = dynamic_cast<OCRTestSettings*>(object.get());
    if (settings)
        return &settings->target();
    context->setError(
        QStringLiteral("testSettings.%1 is no property of this object").arg(setting.name));
    return nullptr;
}

template <std::size_t index>
bool readMember(SharedPtr<NativeScriptObject> object, ScriptContext* context) {
    const OCR::Options* const options = optionsOf(object, testSettings[index], context);
    return options && readSetting(testSettings[index], *options, context);
}

template <std::size_t index>
bool writeMember(SharedPtr<NativeScriptObject> object, ScriptContext* context) {
    OCR::Options* const options = optionsOf(object, testSettings[index], context);
    return options && writeSetting(testSettings[index], *options, context);
}

template <std::size_t index>
void addSettingProperty(NativeScriptType& type, SettingOwner owner) {
    const TestSetting& setting = testSettings[index];
    if (setting.owner != owner)
        return;
    const QString name = QString(QLatin1String(setting.name)).section(QLatin1Char('.'), -1);
    if (owner == SettingOwner::TestSettings)
        type.setStaticProperty(name, readStatic<index>, writeStatic<index>);
    else
        type.setProperty(name, readMember<index>, writeMember<index>);
}

}  // namespace

void addSettingProperties(NativeScriptType& type, SettingOwner owner) {
    [&]<std::size_t... index>(std::index_sequence<index...>) {
        (addSettingProperty<index>(type, owner), ...);
    }
    (std::make_index_sequence<testSettingCount>());
}

}  // namespace Tamrix
