#pragma once

#include <QString>
#include <QStringList>

#include "base/outcome.h"
#include "interpreter/generic/testinteraction.h"

namespace Tamrix {

/// What a person has answered.
struct InteractionAnswer {
    TestInteraction::Button button = TestInteraction::None;
    /// Without blanks around it.
    QString text;
};

/// Runs the program of the dialogs until the person has answered, however long that takes. The
/// program ends with this process. A failure says what the program wrote to standard error.
Outcome<InteractionAnswer> executeTestInteractionTool(const QStringList& arguments);

/// Starts the program of the dialogs and leaves it alone.
Outcome<> startTestInteractionTool(const QStringList& arguments);

}  // namespace Tamrix
