// The settings of a suite's config.xml.

#include <cstdio>

#include "interpreter/bridge/testsettingstable.h"
#include "interpreter/bridge/testsettingstype.h"
#include "platform/testresult/testresult.h"

namespace Tamrix {

namespace {

void reportTestSettingsProblem(TestResult* result, const QString& message) {
    if (result)
        result->addResult(TestResult::Warning, message, QString(), LineInfo());
    else
        std::fprintf(stderr, "Warning: %s\n", message.toLocal8Bit().constData());
}

// Texts as values. Each stores a value in any case and returns whether the text was one.

bool parse(const QString& text, int* value) {
    bool isGood = false;
    *value = text.toInt(&isGood, 10);
    return isGood;
}

bool parse(const QString& text, double* value) {
    bool isGood = false;
    *value = text.toDouble(&isGood);
    return isGood;
}

/// What begins with a letter of a true word is true, known or not.
bool parse(const QString& text, bool* value) {
    const QString lower = text.toLower();
    *value = !lower.isEmpty() && QStringLiteral("ty1").contains(lower.at(0));
    const QStringList words{QStringLiteral("true"), QStringLiteral("false"), QStringLiteral("yes"),
                            QStringLiteral("no"),   QStringLiteral("1"),     QStringLiteral("0")};
    return words.contains(lower);
}

bool parse(const QString& text, QString* value) {
    *value = text;
    return true;
}

constexpr const char* kindOf(const SettingAccess<int>&) {
    return "integer";
}
constexpr const char* kindOf(const SettingAccess<double>&) {
    return "numeric";
}
constexpr const char* kindOf(const SettingAccess<bool>&) {
    return "boolean";
}
constexpr const char* kindOf(const SettingAccess<QString>&) {
    return "text";
}

template <typename T>
void takeText(const TestSetting& setting, const SettingAccess<T>& access, const QString& text,
              TestResult* result) {
    T value{};
    const bool isGood = parse(text, &value);
    access.write(TestSettingsType::s_ocr, value);
    if (isGood || setting.faultyText == TestSetting::FaultyText::IsTaken)
        return;
    reportTestSettingsProblem(
        result, QStringLiteral("Unexpected %1 value for TestSettings property '%2'. '%3' was "
                               "evaluated to '%4'.")
                    .arg(kindOf(access), setting.name, text,
                         settingText(setting, TestSettingsType::s_ocr)));
}

}  // namespace

void TestSettingsType::initialize(TestResult* result, const QStringList& defaultWrappers,
                                  QMap<QString, QString> properties,
                                  const QMap<QString, QString>& passwords) {
    s_defaultWrappers = defaultWrappers;
    s_passwords = passwords;
    for (const TestSetting& setting : testSettings) {
        const auto property = properties.find(QLatin1String(setting.name));
        if (property == properties.end())
            continue;
        const QString text = *property;
        properties.erase(property);
        std::visit([&](const auto& access) { takeText(setting, access, text, result); },
                   setting.access);
    }
    for (auto it = properties.cbegin(); it != properties.cend(); ++it) {
        reportTestSettingsProblem(
            result, QStringLiteral("TestSettings property '%1' in config.xml could not be found.")
                        .arg(it.key()));
    }
}

}  // namespace Tamrix
