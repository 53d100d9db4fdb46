#pragma once

#include <QSharedPointer>
#include <QString>
#include <vector>

#include "base/export.h"
#include "base/functioncallresult.h"
#include "interpreter/bridge/backgroundtask.h"
#include "interpreter/bridge/nativescripttype.h"
#include "platform/objectmodel/applicationcontext.h"

class QIODevice;

namespace Tamrix {

class Interpreter;
class RunnerInterface;
class ScriptContext;
class TestResult;

/// Tells the result of the run that a video is at its end, unless that result is complete by then.
class TAMRIX_EXPORT VideoCaptureCompleter : public TaskCompleter {
    Q_OBJECT

public:
    VideoCaptureCompleter(QObject* parent, const QString& filePath)
        : TaskCompleter(parent), filePath(filePath) {}

    /// Tells a result, which is not complete yet, that the video is at its end.
    void tell(TestResult& result, const VoidResult& status, const QString& message,
              const CallStack& stack) const;

    /// In native separators.
    QString filePath;

public Q_SLOTS:
    void onStopped(VoidResult status, QString message, CallStack stack) override;
};

/// A recording in a script's hands, the script class VideoCapture. It goes on without the object
/// until somebody stops it or the test case ends. Script thread only.
class TAMRIX_EXPORT VideoCaptureScriptObject : public NativeScriptObject {
public:
    explicit VideoCaptureScriptObject(QSharedPointer<BackgroundTask> task)
        : task(std::move(task)) {}
    /// Starts a recording to the device, which the task owns then. Throws std::runtime_error, and
    /// the device stays the caller's.
    VideoCaptureScriptObject(QIODevice* device, const SharedPtr<ApplicationContext>& context);

    static NativeScriptType type();
    static void* staticTypeId();
    void* typeId() const override { return staticTypeId(); }

    QSharedPointer<BackgroundTask> task;

private:
    static char s_marker;
};

// The script functions test.startVideoCapture and test.stopVideoCapture.
TAMRIX_EXPORT void testStartVideoCapture(ScriptContext* context);
TAMRIX_EXPORT void testStopVideoCapture(ScriptContext* context);

/// "Video Attachment for AUT: %1"
TAMRIX_EXPORT QString defaultStartVideoCaptureMessage(const SharedPtr<ApplicationContext>& context);

/// Starts a recording of an application to a new file among the attachments, and tells the result,
/// at its start and, by a VideoCaptureCompleter, at its end. `context` may be null.
TAMRIX_EXPORT FunctionCallResult<QSharedPointer<BackgroundTask>> startVideoCaptureInternal(
    const SharedPtr<ApplicationContext>& context, const QString& message,
    const std::vector<LineInfo>& stack, RunnerInterface* runner, TestResult* result);

/// The same for a recording that the run itself wants, with the default message. Returns an error
/// text, empty on success.
TAMRIX_EXPORT QString startVideoCapture(const SharedPtr<ApplicationContext>& context,
                                        Interpreter* interpreter);

}  // namespace Tamrix
