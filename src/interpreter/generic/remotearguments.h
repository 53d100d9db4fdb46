#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <QVariant>

#include "base/export.h"
#include "interpreter/bridge/scriptargument.h"
#include "interpreter/bridge/scriptcontext.h"

namespace Tamrix {

class RunnerInterface;

/// The arguments of one call of a function of remote systems. They are taken in order; the first
/// one that is wrong becomes the error of the context, and what is taken behind it is worth
/// nothing.
class RemoteCall {
public:
    /// `usage` is how the function is called, as the message tells it.
    RemoteCall(ScriptContext* context, int leastArguments, int mostArguments, const char* usage);

    int handle(
        const char* error = "remote system handle needs to be specified as integral number.");
    QString text(int index, const char* error);
    /// The optional flag of functions on paths: a bool, or a text that begins with "T", "t" or "1".
    bool flag(int index);

    /// Where the call goes to; null when an argument was wrong, and with a warning when there is no
    /// runner.
    RunnerInterface* runner();
    void refuse(const QString& error);

private:
    ScriptContext* m_context;
    bool m_isRefused = false;
};

// What commands are called with: true or false, numbers and texts. `*error` is set for any other
// value.

QVariant convertScriptArgumentPrimitive(const SharedPtr<ScriptArgument>& argument, QString* error);
QList<QVariant> convertScriptArgumentListOfPrimitives(const SharedPtr<ScriptArgument>& argument,
                                                      QString* error);
QMap<QString, QVariant> convertScriptArgument1DPrimitiveToMap(
    const SharedPtr<ScriptArgument>& argument, QString* error);

/// Inserts the default of an option that is missing; `*error` is set when the one that is there
/// can't be converted to the type.
TAMRIX_EXPORT void executeCommandCheckOptionsMapField(const QString& name, QVariant::Type type,
                                                      const QVariant& defaultValue,
                                                      QMap<QString, QVariant>* options,
                                                      QString* error);

}  // namespace Tamrix
