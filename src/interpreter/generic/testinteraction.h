#pragma once

#include <QString>

#include "base/export.h"

namespace Tamrix {

class ScriptContext;

/// The namespace testInteraction of scripts: questions to the person at the machine. A program of
/// its own, lib/exec/testinteraction, shows the dialogs. Since a dialog would hang a run that
/// nobody watches, the functions work in an interactive run only. Script thread only.
class TAMRIX_EXPORT TestInteraction {
public:
    /// The numbers that scripts get for the button that was pressed.
    enum Button { None = 0, Ok = 1, Cancel = 2, Yes = 4, No = 8 };

    /// Whether somebody is there; not so at first.
    static void setInteractive(bool isInteractive) { s_isInteractive = isInteractive; }
    static bool isInteractive() { return s_isInteractive; }

    /// Registers the functions and constants.
    static void initFunctions(ScriptContext* context);

private:
    static bool s_isInteractive;
};

// The script functions of the namespace. Those that ask wait for the answer without limit.
TAMRIX_EXPORT void interactionChoice(ScriptContext* context);
TAMRIX_EXPORT void interactionInformation(ScriptContext* context);
TAMRIX_EXPORT void interactionInput(ScriptContext* context);
TAMRIX_EXPORT void interactionIsAvailable(ScriptContext* context);
TAMRIX_EXPORT void interactionNotification(ScriptContext* context);
TAMRIX_EXPORT void interactionPassword(ScriptContext* context);
TAMRIX_EXPORT void interactionQuestion(ScriptContext* context);
TAMRIX_EXPORT void interactionShowImage(ScriptContext* context);
TAMRIX_EXPORT void interactionWarning(ScriptContext* context);

/// The program that shows the dialogs.
TAMRIX_EXPORT QString testInteractionBinary();
/// What stands above a dialog: "Tamrix - %1:%2" with file and line of the script.
TAMRIX_EXPORT QString messageBoxTitleFromContext(const ScriptContext& context);

}  // namespace Tamrix
