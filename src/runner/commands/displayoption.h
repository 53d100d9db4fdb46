#pragma once

#include "runner/commands/option.h"

namespace Tamrix {

/// Fails for what is no display that applications can be sent to.
Outcome<> checkDisplay(const QString& display);

/// The option of commands that start applications: where these appear.
template <typename Settings>
Option<Settings> displayOption(QString Settings::*member) {
    return {"aut-display", "auto|inherit|:N",
            "Where applications appear: auto (a display and session bus of its own), %1 (the "
            "default) or :N.",
            "inherit", [member](const QStringList& values, Settings& settings) {
                settings.*member = values.constLast();
                return checkDisplay(values.constLast());
            }};
}

}  // namespace Tamrix
