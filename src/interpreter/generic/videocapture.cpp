#include "interpreter/generic/videocapture.h"

#include <QDir>
#include <QFile>
#include <memory>
#include <stdexcept>

#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/runneraccess.h"
#include "interpreter/generic/testfunctions.h"
#include "platform/testresult/testresult.h"

namespace Tamrix {

namespace {

using Self = SharedPtr<NativeScriptObject>;
using StartedTask = FunctionCallResult<QSharedPointer<BackgroundTask>>;

const char* const invalidContext = "The application context is not valid";

/// Set up, and alive.
bool isUsable(const SharedPtr<ApplicationContext>& context) {
    return context && context->valid;
}

bool refuse(ScriptContext* context, const QString& error) {
    context->setError(error);
    return false;
}

/// A result of type Log, at the line of the script.
void log(ScriptContext* context, const char* message) {
    if (TestResult* const result = context->testResult())
        result->addResult(TestResult::Log, message, QString(), context->lineInfoForResult());
}

/// The optional message of both functions; nothing with the error set when there is more.
bool takeMessage(ScriptContext* context, QString* message) {
    if (context->argumentCount() > 1)
        return refuse(context, QStringLiteral("Expected at most one argument"));
    if (context->argument(0))
        *message = context->argument(0)->toString();
    return true;
}

// --- The script class ---

SharedPtr<NativeScriptObject> construct(ScriptContext* context) {
    const auto refused = [context](const QString& error) {
        context->setError(error);
        return SharedPtr<NativeScriptObject>();
    };
    // 1. A file name.
    if (!context->argument(0))
        return refused(QStringLiteral("The VideoCapture() constructor requires filename argument"));
    RunnerInterface* const runner = runnerFor("VideoCapture");
    if (!runner)
        return {};
    // 2. An application: the one that is given, or the current one.
    SharedPtr<ApplicationContext> application;
    if (context->argument(1)) {
        application = context->argument(1)->toApplicationContext();
        if (!isUsable(application))
            return refused(QStringLiteral(
                "Second argument to VideoCapture() must be a valid application context"));
    } else {
        application = runner->applicationContext(QString());
        if (!isUsable(application))
            return refused(QStringLiteral("Current ApplicationContext is not valid"));
    }
    // 3. The file.
    auto file = std::make_unique<QFile>(context->argument(0)->toString());
    if (!file->open(QIODevice::WriteOnly))
        return refused(
            QStringLiteral("Failed opening '%1': %2").arg(file->fileName(), file->errorString()));
    // 4. The recording, which takes the file over.
    const StartedTask task = runner->startVideoCapture(application, file.get());
    if (!task.ok())
        return refused(task.errorText());
    static_cast<void>(file.release());
    return {new VideoCaptureScriptObject(task.value())};
}

/// Refuses arguments where a member takes none; `name` is the member's.
bool takesNothing(ScriptContext* context, const char* name) {
    return context->argumentCount() == 0 ||
           refuse(context,
                  QStringLiteral("VideoCapture.%1() takes no arguments").arg(QLatin1String(name)));
}

// Members take their object as NativeScriptType says.
// NOLINTBEGIN(performance-unnecessary-value-param)

/// That pausing succeeds and records on is meant: a task can only stop.
bool pause(Self, ScriptContext* context) {
    if (!takesNothing(context, "pause"))
        return false;
    context->setNullResult();
    return true;
}

bool resume(Self, ScriptContext* context) {
    if (!takesNothing(context, "resume"))
        return false;
    context->setNullResult();
    return true;
}

bool stop(Self self, ScriptContext* context) {
    if (!takesNothing(context, "stop"))
        return false;
    const VoidResult stopped = staticPointerCast<VideoCaptureScriptObject>(self)->task->stop(
        QStringLiteral("Video capture stopped"), context->callStackForResult(false));
    if (!stopped.ok())
        return refuse(context, stopped.errorText());
    context->setNullResult();
    return true;
}

// NOLINTEND(performance-unnecessary-value-param)

}  // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): as the slot is declared
void VideoCaptureCompleter::onStopped(VoidResult status, QString message, CallStack stack) {
    // 1. The result of the run.
    RunnerInterface* const runner = Interpreter::currentRunner();
    TestResult* const result = runner ? runner->testResult() : nullptr;
    // 2. What it is told, while it takes entries.
    if (result && !result->isComplete())
        tell(*result, status, message, stack);
    // 3. Nothing else is to come.
    deleteLater();
}

void VideoCaptureCompleter::tell(TestResult& result, const VoidResult& status,
                                 const QString& message, const CallStack& stack) const {
    result.addEndVideo(
        status.ok() ? message : QStringLiteral("Video capture failed: ") + status.errorText(),
        filePath, stack);
}

VideoCaptureScriptObject::VideoCaptureScriptObject(QIODevice* device,
                                                   const SharedPtr<ApplicationContext>& context) {
    RunnerInterface* const runner = Interpreter::currentRunner();
    const StartedTask started = runner ? runner->startVideoCapture(context, device)
                                       : StartedTask::error(QStringLiteral("There is no runner"));
    // The spelling is meant.
    if (!started.ok())
        throw std::runtime_error("Video capture initalization failed: " +
                                 started.errorText().toStdString());
    task = started.value();
}

char VideoCaptureScriptObject::s_marker = 0;

void* VideoCaptureScriptObject::staticTypeId() {
    return &s_marker;
}

NativeScriptType VideoCaptureScriptObject::type() {
    NativeScriptType type(nullptr, construct);
    type.setMethod("pause", pause, {}, {}, "Pauses the video stream capture");
    type.setMethod("resume", resume, {}, {}, "Resumes the video stream capture");
    type.setMethod("stop", stop, {}, {}, "Terminates the video stream capture");
    return type;
}

QString defaultStartVideoCaptureMessage(const SharedPtr<ApplicationContext>& context) {
    return QStringLiteral("Video Attachment for AUT: %1").arg(context ? context->name : QString());
}

StartedTask startVideoCaptureInternal(const SharedPtr<ApplicationContext>& context,
                                      const QString& message, const std::vector<LineInfo>& stack,
                                      RunnerInterface* runner, TestResult* result) {
    // 1. An application that is there.
    if (!isUsable(context))
        return StartedTask::error(QString::fromLatin1(invalidContext));
    // 2. The folder.
    QString error;
    const QFileInfo folder =
        attachmentResultsPath(runner->currentResultDirectory(), runner->testCasePath(), &error);
    if (error.isEmpty())
        error = ensureResultPathExists(folder);
    if (!error.isEmpty())
        return StartedTask::error(error);
    // 3. A name that is free in it.
    const QFileInfo ownName(QStringLiteral("%1_capture.mp4").arg(context->name));
    QFile target;
    if (!createTargetFile(folder.filePath(), ownName, &target))
        return StartedTask::error(QStringLiteral("Opening '%1' for writing failed: %2")
                                      .arg(target.fileName(), target.errorString()));
    target.close();
    const QString path = QFileInfo(target).absoluteFilePath();
    // 4. The device.
    ReportGenerator* const generator = result ? result->reportGenerator() : nullptr;
    if (!generator)
        error = QStringLiteral("No report generator available");
    std::unique_ptr<QIODevice> device(generator ? generator->openVideo(path, &error) : nullptr);
    if (!device) {
        QFile::remove(path);
        return StartedTask::error(error);
    }
    // 5. The recording, which takes the device over.
    const StartedTask task = runner->startVideoCapture(context, device.get());
    if (!task.ok()) {
        device.reset();
        // Nothing was recorded.
        QFile::remove(path);
        return task;
    }
    static_cast<void>(device.release());
    // 6. Its beginning is told,
    const QString nativePath = QDir::toNativeSeparators(path);
    result->addStartVideo(message, nativePath, stack);
    // 7. and its end will be.
    QObject* const completer = new VideoCaptureCompleter(task.value().data(), nativePath);
    task.value()->setProperty("completer", QVariant::fromValue(completer));
    QObject::connect(task.value().data(), SIGNAL(stopped(VoidResult, QString, CallStack)),
                     completer, SLOT(onStopped(VoidResult, QString, CallStack)));
    // 8. The task.
    return task;
}

QString startVideoCapture(const SharedPtr<ApplicationContext>& context, Interpreter* interpreter) {
    ScriptContext* const script = ScriptContext::current();
    if (!script || !script->testResult())
        return QStringLiteral(
            "Missing test result for logging. 'tamrixtest' users should call "
            "tamrixtest.setTestResult(format, file) first.");
    RunnerInterface* const runner = interpreter ? interpreter->runner() : nullptr;
    if (!runner)
        return QStringLiteral("There is no runner");
    return startVideoCaptureInternal(context, defaultStartVideoCaptureMessage(context),
                                     script->callStackForResult(false), runner,
                                     script->testResult())
        .errorText();
}

void testStartVideoCapture(ScriptContext* context) {
    // 1. The argument.
    QString message;
    if (!takeMessage(context, &message))
        return;
    RunnerInterface* const runner = runnerFor("startVideoCapture");
    if (!runner)
        return;
    // 2. The application, and what is told.
    const SharedPtr<ApplicationContext> application = runner->applicationContext(QString());
    if (message.isEmpty())
        message = defaultStartVideoCaptureMessage(application);
    // 3. One video is enough.
    if (runner->isVideoCaptureEnabled()) {
        log(context, "Video capture is globally enabled, skipping request for starting capture");
        context->setNullResult();
        return;
    }
    // 4. The recording.
    const StartedTask task = startVideoCaptureInternal(
        application, message, context->callStackForResult(false), runner, context->testResult());
    if (task.ok())
        context->setResult(context->createNative({new VideoCaptureScriptObject(task.value())}));
    else
        context->setError(task.errorText());
}

void testStopVideoCapture(ScriptContext* context) {
    // 1. The argument.
    QString message;
    if (!takeMessage(context, &message))
        return;
    RunnerInterface* const runner = runnerFor("stopVideoCapture");
    if (!runner)
        return;
    // 2. The application, and what is told.
    const SharedPtr<ApplicationContext> application = runner->applicationContext(QString());
    if (message.isEmpty())
        message = QStringLiteral("Video Capture Stopped");
    // 3. An application that is there.
    if (!isUsable(application)) {
        context->setError(QString::fromLatin1(invalidContext));
        return;
    }
    // 4. The run's own video goes on.
    if (runner->isVideoCaptureEnabled()) {
        log(context, "Video capture is globally enabled, skipping request for ending capture");
        context->setNullResult();
        return;
    }
    // 5. A recording.
    const QSharedPointer<BackgroundTask> task = application->videoCapture;
    if (!task) {
        context->setError(
            QStringLiteral("No active screen capture found for the application context"));
        return;
    }
    // 6. Its end.
    const VoidResult stopped = task->stop(message, context->callStackForResult(false));
    application->videoCapture.clear();
    if (stopped.ok())
        context->setNullResult();
    else
        context->setError(stopped.errorText());
}

}  // namespace Tamrix
