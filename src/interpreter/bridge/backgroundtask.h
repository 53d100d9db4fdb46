#pragma once

#include <QMetaType>
#include <QObject>
#include <QString>

#include "base/export.h"
#include "base/functioncallresult.h"
#include "platform/testresult/lineinfo.h"

namespace Tamrix {

/// Empty on success, else an error text.
using VoidResult = FunctionCallResult<void>;

/// Something that the runner keeps running beside the script, as the recording of a video. Made by
/// the runner; whoever holds it may ask it to stop.
///
/// stopped() is emitted once, when the task has come to its end: because of stop(), or on its own
/// account, possibly on another thread. The types of its arguments are known to the meta-object
/// system as "VoidResult" and "CallStack".
class TAMRIX_EXPORT BackgroundTask : public QObject {
    Q_OBJECT

public:
    BackgroundTask();
    ~BackgroundTask() override;

    /// Ends the task. `message` and `stack`, the position of the stopper, come back with stopped().
    /// Returns why it did not end in order, also when it had ended by itself before; stopping it
    /// again changes nothing.
    Q_INVOKABLE virtual VoidResult stop(QString message, CallStack stack) = 0;

Q_SIGNALS:
    /// `status` holds an error when the task did not come to its end in order.
    void stopped(VoidResult status, QString message, CallStack stack);
};

/// Writes the last words about a task: connected to its stopped(), a child of it, and kept in its
/// dynamic property "completer" as QObject*.
class TAMRIX_EXPORT TaskCompleter : public QObject {
    Q_OBJECT

public:
    explicit TaskCompleter(QObject* parent);
    ~TaskCompleter() override;

public Q_SLOTS:
    virtual void onStopped(VoidResult status, QString message, CallStack stack) = 0;
};

}  // namespace Tamrix

Q_DECLARE_METATYPE(Tamrix::VoidResult)
Q_DECLARE_METATYPE(Tamrix::CallStack)
