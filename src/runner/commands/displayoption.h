#pragma once

#include "runner/commands/option.h"

namespace Tamrix {

/// Fails for what is no display that applications can be sent to.
Outcome<> checkDisplay(const QString& display);

/// The option of commands that start applications: where these appear.
template <typename Settings>
Option<Settings> displayOption(QString Settings::*member, const char* otherwise = "inherit") {
    return {"aut-display", "auto|inherit|:N",
            "Where applications appear: auto (a display and session bus of their own), inherit or "
            ":N; default %1.",
            otherwise, [member](const QStringList& values, Settings& settings) {
                settings.*member = values.constLast();
                return checkDisplay(values.constLast());
            }};
}

}  // namespace Tamrix
