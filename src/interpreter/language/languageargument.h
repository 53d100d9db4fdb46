#pragma once

#include <QByteArray>
#include <QDateTime>
#include <cmath>
#include <optional>

#include "interpreter/bridge/scriptargument.h"
#include "interpreter/language/heldrecord.h"
#include "interpreter/language/languageinterpreter.h"
#include "interpreter/language/nativeclasses.h"
#include "platform/objectmodel/inspector.h"

namespace Tamrix {

/// A number without its fraction; nothing for one that an integer of 64 bits can't hold.
inline std::optional<long long> wholePart(double number) {
    constexpr double limit = 9223372036854775808.0;  // 2^63
    if (std::isnan(number) || number < -limit || number >= limit)
        return std::nullopt;
    return static_cast<long long>(number);
}

/// What the arguments of all languages have alike in which an object of the script holds what is
/// the library's. `Own`, the plug-in's class, derives from it and has beside what is left to
/// override:
///
///     template <typename T> SharedPtr<T> held() const;  // T an Object, NativeScriptObject,
///                                // TestDataSet, ApplicationContext, HeldRecord; null for others
///     std::optional<QByteArray> bytes() const;   // of a value that is made for bytes
///     QDateTime time() const;                    // invalid for what is no time
///     SharedPtr<ScriptArgument> called(const List& arguments) const;   // throws ScriptErrorSet
///     static LanguageInterpreter* active();      // whose scripts run; null when there is none
template <typename Own>
class LanguageArgument : public ScriptArgument {
public:
    bool isObject() const override { return bool(toObject()); }
    /// A class of the application is given by its name.
    bool isClass() const override { return toClass() != nullptr; }
    bool isNative(void* typeId) const override { return bool(toNative(typeId)); }

    SharedPtr<Object> toObject() const override { return own().template held<Object>(); }
    const Class* toClass() const override {
        return isString() ? Inspector::self()->classByName(toString()) : nullptr;
    }
    SharedPtr<NativeScriptObject> toNative(void* typeId) const override {
        SharedPtr<NativeScriptObject> native = own().template held<NativeScriptObject>();
        return native && isNativeTypeDerivedFrom(native->typeId(), typeId)
                   ? native
                   : SharedPtr<NativeScriptObject>();
    }
    SharedPtr<TestDataSet> toTestDataSet() const override {
        return own().template held<TestDataSet>();
    }
    SharedPtr<ApplicationContext> toApplicationContext() const override {
        return own().template held<ApplicationContext>();
    }
    const TestDataRecord* toTestDataRecord() const override {
        const SharedPtr<HeldRecord> row = own().template held<HeldRecord>();
        return row ? row->record : nullptr;
    }
    /// Also the language's null, bytes and times.
    std::optional<QVariant> toVariant() const override {
        if (isNull())
            return QVariant();
        if (const std::optional<QByteArray> bytes = own().bytes())
            return *bytes;
        const QDateTime time = own().time();
        return time.isValid() ? std::optional<QVariant>(time) : ScriptArgument::toVariant();
    }
    SharedPtr<ScriptArgument> call(const List& arguments, QString* error) override {
        LanguageInterpreter* const interpreter = Own::active();
        if (!interpreter)
            return own().called(arguments);
        SharedPtr<ScriptArgument> result;
        // What ends the script is not the caller's to report.
        const std::optional<ScriptError> raised =
            interpreter->attempt([&] { result = own().called(arguments); });
        if (!raised)
            return result;
        interpreter->setCallErrorStack(raised->callStack);
        *error = raised->message;
        return {};
    }

    using ScriptArgument::toNative;

private:
    const Own& own() const { return static_cast<const Own&>(*this); }
};

}  // namespace Tamrix
