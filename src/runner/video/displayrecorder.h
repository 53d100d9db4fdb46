#pragma once

#include <QString>
#include <memory>

#include "base/outcome.h"
#include "runner/processes/childprocess.h"

namespace Tamrix {

/// What is recorded, and with what.
struct RecorderStart {
    /// Path of ffmpeg.
    QString program;
    /// ":99"
    QString display;
    /// What brings a program to that display.
    ProgramEnvironment environment;
    /// By which the process is found: see ProgramStart.
    QString mark;
    /// A regular file, open for writing. Not owned; closing it later does not end the recording.
    int descriptor = -1;
    /// Whether the pointer belongs to what is to be seen: the agent does not move it.
    bool showsPointer = false;
};

/// The program ffmpeg recording a display. It writes to the file by itself, so that nothing is lost
/// on the way when this process dies, and in fragments, so that the file is a whole video up to the
/// last of them at any moment. Script thread only.
///
/// It gets less of the processor than the test, and ends with this process.
class DisplayRecorder {
public:
    /// How much of a video is missing at most when everything dies, in milliseconds.
    static constexpr int fragmentMilliseconds = 500;

    /// Path of ffmpeg, or a failure that tells where to get it.
    static Outcome<QString> findProgram();

    /// Starts recording without waiting for the first picture.
    static Outcome<std::unique_ptr<DisplayRecorder>> start(const RecorderStart& start);
    /// Kills the program if it runs.
    ~DisplayRecorder();
    DisplayRecorder(const DisplayRecorder&) = delete;
    DisplayRecorder& operator=(const DisplayRecorder&) = delete;

    /// Waits until there is something to see, at most this long.
    Outcome<> waitForPicture(int milliseconds);
    /// Lets the program finish the video, and kills it when it doesn't: bounded by some seconds.
    /// A failure tells what is wrong with the video.
    Outcome<> stop();
    /// Whether the program has ended, without waiting.
    bool hasEnded() { return m_process->hasEnded(); }
    /// Why it ended when it was not asked to.
    QString endText();
    /// Has the system write what it has of the file, so that little is lost when the machine dies.
    /// Does not wait for that.
    void pushToDisk() const;

private:
    DisplayRecorder(std::unique_ptr<ChildProcess> process, int descriptor);
    bool hasPicture() const;

    std::unique_ptr<ChildProcess> m_process;
    int m_descriptor;
};

}  // namespace Tamrix
