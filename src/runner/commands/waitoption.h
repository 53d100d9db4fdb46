#pragma once

#include "runner/applications/applications.h"
#include "runner/commands/option.h"

namespace Tamrix {

/// Reads a number of seconds that a person may want to wait.
Outcome<double> readWaitSeconds(const QString& text);

/// The option of commands that look at a program: how long it gets to settle before.
template <typename Settings>
Option<Settings> waitOption(double Settings::*member) {
    return {"wait", "SECONDS", "Waits so long before it looks; %1 unless given.", "1",
            [member](const QStringList& values, Settings& settings) -> Outcome<> {
                const Outcome<double> seconds = readWaitSeconds(values.constLast());
                if (!seconds)
                    return fail(seconds.error());
                settings.*member = *seconds;
                return {};
            }};
}

/// Lets programs settle for that time, or until the user interrupts.
void letSettle(Applications& applications, double seconds);

}  // namespace Tamrix
