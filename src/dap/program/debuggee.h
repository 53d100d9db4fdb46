#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QString>
#include <QTextCodec>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "base/outcome.h"
#include "dap/program/outputlines.h"
#include "dap/program/program.h"
#include "dap/program/stopline.h"

namespace Tamrix::Dap {

/// How a script goes on.
enum class Resume {
    Continue,   ///< to the next break point
    SkipError,  ///< the same, and the error for which it stopped takes its course
    Next,       ///< to the next line of this function, or of one that called it
    StepIn,     ///< to the next line
    StepOut     ///< until this function has returned
};

/// The debugged script at the other end of the line protocol. While it stands still, questions wait
/// for their answers; they fail when the script runs or has ended.
class Debuggee {
public:
    enum class Stream { Output, Error };
    struct Surroundings {
        /// Waits until something has come, from anywhere, or the time in milliseconds is over (-1
        /// for no limit). False to give a question up.
        std::function<bool(int milliseconds)> wait;
        /// Whether somebody wants the end of code that is evaluated.
        std::function<bool()> wantsEnd;
        /// Takes what the program writes beside the protocol.
        std::function<void(const QString& text, Stream stream)> output;
        /// Takes what the debugger tells unasked; what it tells about a stop comes before the stop.
        std::function<void(const Notice& notice)> notice;
    };

    /// How long code may run that is evaluated; nothing for as long as nobody wants its end.
    using Limit = std::optional<std::chrono::milliseconds>;
    static constexpr std::chrono::milliseconds usualLimit{5000};

    Debuggee(std::unique_ptr<Program> program, Surroundings surroundings);

    /// Reads what has come.
    void receive();
    /// A stop that has not been taken yet.
    std::optional<Stop> takeStop() { return std::exchange(m_newStop, std::nullopt); }
    bool isStopped() const { return m_isStopped; }
    /// Once the program has ended and all of its output was received.
    std::optional<int> exitCode() { return m_program->exitCode(); }
    const Program& program() const { return *m_program; }

    // Questions.
    /// Whether it takes effect only once the file is loaded.
    Outcome<bool> setBreakPoint(const ScriptPlace& place);
    Outcome<> deleteBreakPoint(const ScriptPlace& place);
    /// The text of what the code gave; a failure of kind BadArgument with the message of its error.
    /// Code that takes longer than the limit is ended, which is such a failure, too.
    Outcome<QString> evaluate(const QString& code, Limit limit = usualLimit);
    /// What stands below a path, everything at the top for the empty one.
    Outcome<std::vector<Binding>> variables(const QString& path);
    /// The file in which the script stands.
    Outcome<QString> currentFile();
    /// The state of the search that failed, as JSON; `kind` is "ImageLookup" or "FindText".
    Outcome<QByteArray> searchState(const QByteArray& kind);
    /// Changes it. What is wrong with the state is a failure.
    Outcome<> setSearchState(const QByteArray& kind, const QByteArray& state);
    /// From where the function in which the script stands was called, the innermost place first.
    Outcome<std::vector<ScriptPlace>> callers();

    /// Whether a step of a feature file without a definition stops.
    Outcome<> setMissingStepStops(bool on);

    // Commands, to a script that stands still.
    void setObjectNotFoundStops(bool on);
    void setImageNotFoundStops(bool on);
    void resume(Resume how);
    /// Ends the run.
    void quit();

    // At any time.
    /// Whether what was commanded last has its effect: a script that was let go on runs.
    bool hasTakenCommands() { return m_program->hasTakenInput(); }
    /// Asks a running script to stop at its next line.
    void interrupt();
    /// Asks the run to end: the script can clean up.
    void terminate();

private:
    /// Takes a line of an answer; true when the answer is whole.
    using AnswerReader = std::function<bool(const QByteArray& line)>;
    Outcome<> ask(const QByteArray& command, const AnswerReader& reader);
    int endCodeInTime();
    Outcome<QByteArray> askBreakPoint(const QByteArray& command, const ScriptPlace& place);
    /// What stands behind "COMMAND ok:" in the answer.
    Outcome<QByteArray> askSearch(const QByteArray& command, const QByteArray& arguments);
    void command(const QByteArray& line);
    void takeLine(const QByteArray& line);
    void takeOutput(const QByteArray& text, Stream stream);

    struct Channel {
        OutputLines lines;
        std::unique_ptr<QTextDecoder> decoder;
    };
    Channel& channel(Stream stream) { return m_channels[stream == Stream::Error ? 1 : 0]; }

    std::unique_ptr<Program> m_program;
    Surroundings m_surroundings;
    Channel m_channels[2];
    /// Code that is evaluated.
    struct RunningCode {
        Limit limit;
        /// Since the program has been told of it.
        QElapsedTimer time{};
        bool isEnded = false;
    };
    std::optional<RunningCode> m_code;
    /// Of the question that waits; null when none does.
    const AnswerReader* m_reader = nullptr;
    bool m_isStopped = false;
    /// A question was given up before its answer came.
    bool m_isAnswering = false;
    std::optional<Stop> m_newStop;
};

}  // namespace Tamrix::Dap
