#pragma once

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QString>
#include <QStringList>
#include <functional>

#include "base/outcome.h"

namespace Tamrix {

/// Takes what was given for an option: its values in their order, none for a switch. A failure is
/// wrong usage.
template <typename Settings>
using OptionReader = std::function<Outcome<>(const QStringList& values, Settings& settings)>;

/// One option of a command whose settings are a `Settings`.
template <typename Settings>
struct Option {
    /// Without the dashes.
    const char* name;
    /// What stands for the value in the help; null for a switch.
    const char* valueName;
    /// "%1" stands for the default value.
    const char* help;
    /// What is read when the option is not given; null to read nothing then.
    const char* defaultValue;
    OptionReader<Settings> read;
};

/// A failure that tells of wrong usage.
[[nodiscard]] inline tl::unexpected<Failure> wrongUsage(QString text) {
    return fail(FailureKind::BadArgument, std::move(text));
}
[[nodiscard]] tl::unexpected<Failure> exclusionFailure(const char* left, const char* right);

// Readers for what needs no look at the value. Of several values the last one counts.

/// A switch that sets a member to a value.
template <typename Settings, typename Value>
OptionReader<Settings> setTo(Value Settings::*member, Value value) {
    return [member, value](const QStringList&, Settings& settings) -> Outcome<> {
        settings.*member = value;
        return {};
    };
}

template <typename Settings>
OptionReader<Settings> textTo(QString Settings::*member) {
    return [member](const QStringList& values, Settings& settings) -> Outcome<> {
        settings.*member = values.constLast();
        return {};
    };
}

/// For an option that may be given several times.
template <typename Settings>
OptionReader<Settings> allTo(QStringList Settings::*member) {
    return [member](const QStringList& values, Settings& settings) -> Outcome<> {
        settings.*member = values;
        return {};
    };
}

/// The option as the parser and the help know it.
template <typename Settings>
QCommandLineOption describedOption(const Option<Settings>& option) {
    const QString help = QString::fromLatin1(option.help)
                             .replace(QLatin1String("%1"), QLatin1String(option.defaultValue));
    return {QLatin1String(option.name), help, QLatin1String(option.valueName)};
}

/// Reads what was given for the option, or else its default value.
template <typename Settings>
Outcome<> readOption(const Option<Settings>& option, const QCommandLineParser& parser,
                     Settings& settings) {
    const QString name = QLatin1String(option.name);
    if (parser.isSet(name))
        return option.read(parser.values(name), settings);
    if (option.defaultValue)
        return option.read({QLatin1String(option.defaultValue)}, settings);
    return {};
}

}  // namespace Tamrix
