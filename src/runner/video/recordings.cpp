#include "runner/video/recordings.h"

#include "base/environment.h"

namespace Tamrix {

namespace {

/// How long the recorder may take to begin.
constexpr int startPatience = 10000;

/// The variables that lead to a display.
const char* const displayVariables[] = {"DISPLAY", "XAUTHORITY"};

/// What leads to the display of an application: as the application itself has it, or else as the
/// run gave it.
ProgramEnvironment displayOf(Applications& applications, Application& application) {
    ProgramEnvironment environment;
    for (const char* const variable : displayVariables) {
        const QString name = QString::fromLatin1(variable);
        const Outcome<QString> own = application.access().environmentVariable(name);
        const QString value = own ? *own : applications.environmentVariable(name);
        // Without the file of the display's cookie it is looked for in its usual place.
        environment.append({name, value.isEmpty() ? QString() : value});
    }
    return environment;
}

/// How an application that is driven without an agent names its platform: the display itself.
bool isDisplayItself(const QString& platform) {
    return platform.startsWith(QLatin1String("display "));
}

/// Videos are made of X displays.
Outcome<> checkPlatform(const Application& application, const QString& platform,
                        const QString& display) {
    if (platform != QLatin1String("xcb") && !isDisplayItself(platform)) {
        return fail(FailureKind::Refused,
                    QStringLiteral("a video can be made of an X display only, and the application "
                                   "'%1' shows its windows on '%2'")
                        .arg(application.name, platform));
    }
    if (display.isEmpty()) {
        return fail(FailureKind::NotFound,
                    QStringLiteral("the display of the application '%1' is not known")
                        .arg(application.name));
    }
    return {};
}

}  // namespace

Outcome<QSharedPointer<BackgroundTask>> Recordings::start(Applications& applications,
                                                          const SharedPtr<Application>& application,
                                                          QIODevice* device, Start kind) {
    // 1. The program that records.
    const Outcome<QString> program = DisplayRecorder::findProgram();
    if (!program)
        return fail(program.error());
    // 2. The display.
    RecorderStart start;
    start.program = *program;
    start.environment = displayOf(applications, *application);
    start.display = start.environment.constFirst().second;
    const QString platform = application->access().facts().platform;
    start.showsPointer = isDisplayItself(platform);
    const Outcome<> checked = checkPlatform(*application, platform, start.display);
    if (!checked)
        return fail(checked.error());
    // 3. The file.
    auto* const file = qobject_cast<QFileDevice*>(device);
    start.descriptor = file ? file->handle() : -1;
    if (start.descriptor < 0)
        return fail(FailureKind::BadArgument, QStringLiteral("a video can be written to an open "
                                                             "file only"));
    // 4. The recorder.
    const Outcome<QString> mark = applications.helperMark();
    if (!mark)
        return fail(mark.error());
    start.mark = *mark;
    Outcome<std::unique_ptr<DisplayRecorder>> recorder = DisplayRecorder::start(start);
    if (!recorder)
        return fail(recorder.error());
    if (kind == Start::AtFirstPicture) {
        if (const Outcome<> begun = (*recorder)->waitForPicture(startPatience); !begun)
            return fail(begun.error());
    }
    // 5. The task, which takes the file over.
    const auto recording = QSharedPointer<VideoRecording>::create(
        std::move(*recorder), std::unique_ptr<QFileDevice>(file));
    m_running.push_back(recording);
    application->videoCapture = recording;
    return QSharedPointer<BackgroundTask>(recording);
}

QStringList Recordings::work() {
    QStringList failures;
    if (m_running.empty())
        return failures;
    // What is told may start or stop recordings.
    const auto running = m_running;
    for (const auto& recording : running) {
        if (!recording->work())
            failures.append(recording->failureText());
    }
    std::erase_if(m_running, [](const auto& recording) { return recording->hasEnded(); });
    return failures;
}

}  // namespace Tamrix
