#include "runner/video/displayrecorder.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QStandardPaths>
#include <cerrno>
#include <csignal>
#include <cstring>

#include "base/blocking.h"

namespace Tamrix {

namespace {

/// How long ffmpeg may take to write the end of a video.
constexpr int endPatience = 5000;
constexpr int killPatience = 2000;
/// How long a video that is stopped at once may take to have something in it.
constexpr int firstPicturePatience = 2000;
constexpr int pollMicroseconds = 2000;
/// Added to the priority of this process: what is tested comes first.
constexpr int niceness = 10;
/// What ffmpeg exits with when a signal asked it to finish.
constexpr int exitCodeOfSignal = 255;
/// Lines of its standard error that are told.
constexpr int errorLines = 5;

constexpr int picturesPerSecond = 10;

QStringList recorderArguments(const RecorderStart& start) {
    const QString rate = QString::number(picturesPerSecond);
    return {
        QStringLiteral("-hide_banner"),
        QStringLiteral("-nostdin"),
        QStringLiteral("-nostats"),
        QStringLiteral("-loglevel"),
        QStringLiteral("error"),
        // The whole display.
        QStringLiteral("-f"),
        QStringLiteral("x11grab"),
        QStringLiteral("-framerate"),
        rate,
        QStringLiteral("-draw_mouse"),
        QString::number(start.showsPointer),
        // Nothing has to be found out about its pictures.
        QStringLiteral("-probesize"),
        QStringLiteral("32"),
        QStringLiteral("-analyzeduration"),
        QStringLiteral("0"),
        QStringLiteral("-i"),
        start.display,
        QStringLiteral("-an"),
        // Colours at half the resolution need even sizes.
        QStringLiteral("-vf"),
        QStringLiteral("pad=ceil(iw/2)*2:ceil(ih/2)*2"),
        QStringLiteral("-pix_fmt"),
        QStringLiteral("yuv420p"),
        // What every browser plays, made with as little time as can be and written at once.
        QStringLiteral("-c:v"),
        QStringLiteral("libx264"),
        QStringLiteral("-preset"),
        QStringLiteral("ultrafast"),
        QStringLiteral("-tune"),
        QStringLiteral("zerolatency"),
        QStringLiteral("-crf"),
        QStringLiteral("25"),
        QStringLiteral("-threads"),
        QStringLiteral("1"),
        // A player can go to any of these.
        QStringLiteral("-g"),
        QString::number(picturesPerSecond * 2),
        // The head of the file stands in front, and each fragment can be read without the next.
        QStringLiteral("-movflags"),
        QStringLiteral("empty_moov+default_base_moof+frag_keyframe"),
        QStringLiteral("-frag_duration"),
        QString::number(DisplayRecorder::fragmentMilliseconds * 1000),
        QStringLiteral("-flush_packets"),
        QStringLiteral("1"),
        QStringLiteral("-f"),
        QStringLiteral("mp4"),
        QStringLiteral("pipe:1"),
    };
}

}  // namespace

Outcome<QString> DisplayRecorder::findProgram() {
    const QString path = QStandardPaths::findExecutable(QStringLiteral("ffmpeg"));
    if (!path.isEmpty())
        return path;
    return fail(FailureKind::NotFound,
                QStringLiteral("videos need the program 'ffmpeg', which is not in PATH (Debian "
                               "package ffmpeg)"));
}

Outcome<std::unique_ptr<DisplayRecorder>> DisplayRecorder::start(const RecorderStart& start) {
    const int descriptor = ::fcntl(start.descriptor, F_DUPFD_CLOEXEC, 0);
    if (descriptor < 0)
        return fail(FailureKind::Failed, QStringLiteral("the video's file can't be used: %1")
                                             .arg(QString::fromLocal8Bit(std::strerror(errno))));
    ProgramStart program;
    program.program = start.program;
    program.arguments = recorderArguments(start);
    program.environment = start.environment;
    program.mark = start.mark;
    program.outputDescriptor = descriptor;
    program.signalAtRunnersEnd = SIGTERM;
    Outcome<std::unique_ptr<ChildProcess>> process = ChildProcess::start(program);
    if (!process) {
        ::close(descriptor);
        return fail(process.error());
    }
    const auto id = static_cast<id_t>((*process)->pid());
    // A video that costs more than it should is better than none.
    [[maybe_unused]] const int ignored =
        ::setpriority(PRIO_PROCESS, id, ::getpriority(PRIO_PROCESS, 0) + niceness);
    return std::unique_ptr<DisplayRecorder>(new DisplayRecorder(std::move(*process), descriptor));
}

DisplayRecorder::DisplayRecorder(std::unique_ptr<ChildProcess> process, int descriptor)
    : m_process(std::move(process)), m_descriptor(descriptor) {}

DisplayRecorder::~DisplayRecorder() {
    if (!m_process->hasEnded()) {
        ::kill(m_process->pid(), SIGKILL);
        m_process->waitForEnd(killPatience);
    }
    ::close(m_descriptor);
}

bool DisplayRecorder::hasPicture() const {
    // The head of the file is written with the first picture.
    struct stat status;
    return ::fstat(m_descriptor, &status) == 0 && status.st_size > 0;
}

Outcome<> DisplayRecorder::waitForPicture(int milliseconds) {
    const QDeadlineTimer deadline(milliseconds);
    while (!hasPicture()) {
        if (m_process->hasEnded())
            return fail(FailureKind::Ended, endText());
        if (deadline.hasExpired()) {
            return fail(
                FailureKind::TimedOut,
                QStringLiteral("ffmpeg has recorded nothing within %1 ms").arg(milliseconds));
        }
        blockingSleep(pollMicroseconds);
    }
    return {};
}

QString DisplayRecorder::endText() {
    m_process->output()->waitForEnd(500);
    QString text = QStringLiteral("ffmpeg has ended: %1").arg(m_process->endText());
    const QString errors = m_process->output()->lastErrorLines(errorLines);
    if (!errors.isEmpty())
        text += QStringLiteral(": ") + errors;
    return text;
}

Outcome<> DisplayRecorder::stop() {
    // 1. It may have ended by itself.
    if (m_process->hasEnded())
        return fail(FailureKind::Ended, endText());
    // 2. A video without pictures is none.
    if (const Outcome<> begun = waitForPicture(firstPicturePatience);
        !begun && m_process->hasEnded())
        return begun;
    // 3. Asked to, it finishes the file.
    ::kill(m_process->pid(), SIGTERM);
    if (!m_process->waitForEnd(endPatience)) {
        ::kill(m_process->pid(), SIGKILL);
        m_process->waitForEnd(killPatience);
        return fail(FailureKind::TimedOut,
                    QStringLiteral("ffmpeg did not finish the video within %1 ms and was killed")
                        .arg(endPatience));
    }
    // 4. What it could not write, it says with another exit code.
    const bool isOrderly = m_process->exitCode() == 0 || m_process->exitCode() == exitCodeOfSignal;
    if (!isOrderly)
        return fail(FailureKind::Ended, endText());
    if (!hasPicture())
        return fail(FailureKind::Failed, QStringLiteral("ffmpeg has recorded nothing"));
    return {};
}

void DisplayRecorder::pushToDisk() const {
    // Not every file system has it, and what it can't do is no failure of the recording.
    [[maybe_unused]] const int ignored =
        ::sync_file_range(m_descriptor, 0, 0, SYNC_FILE_RANGE_WRITE);
}

}  // namespace Tamrix
