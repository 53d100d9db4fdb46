#pragma once

#include <QMap>
#include <QObject>
#include <QString>
#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/export.h"
#include "base/outcome.h"
#include "interpreter/bridge/debuggerframe.h"
#include "platform/testresult/lineinfo.h"

namespace Tamrix {

class DebuggerFrontEnd;
class InternalDebugger;
class Interpreter;
struct ScriptPosition;
struct StopReason;

/// True means that a person drives the debugger at a terminal, false a program over a pipe. Read
/// when a Debugger is constructed: it selects the dialect of the line protocol.
extern TAMRIX_EXPORT bool tamrix_verbose_debugger;

/// Enables Debugger::stopAndRun(), with which a host highlights each line without halting.
extern TAMRIX_EXPORT bool tamrix_hl_debugger;

/// The language-neutral half of the script debugger: position, frame stack, sources, break points,
/// modes and the stop operations, which tell its front end and take commands from there. A language
/// plug-in derives from it and calls it from its trace hook. One per process at a time; script
/// thread only, except for the SIGINT handler of run().
class TAMRIX_EXPORT Debugger : public QObject {
public:
    /// One entry of a stack trace that scripts see.
    using Location = ScriptLocation;

    /// A printed binding: name, type, value (null: none).
    struct VariableBinding {
        QString name;
        QString type;
        QString value;
    };
    using VariableBindings = std::vector<VariableBinding>;

    enum DbgMode {
        None = 0,  ///< no stopping, while the debugger itself evaluates code
        Next = 1,  ///< stop at the next line at or above the step depth
        Step = 2,  ///< stop at every line
        Run = 3    ///< stop at break points only
    };

    /// Makes itself self(), with the line protocol as its front end. `interpreter` is not owned and
    /// may be null.
    explicit Debugger(Interpreter* interpreter);
    /// Clears self().
    ~Debugger() override;

    static Debugger* self();
    static void setSelf(Debugger* debugger);

    /// Whom the debugger tells of stops and takes commands from; not null. Not while a command loop
    /// runs.
    void setFrontEnd(std::unique_ptr<DebuggerFrontEnd> frontEnd);

    // Operations that a language's debugger overrides to mirror the state into its trace hook.
    virtual void setCurrentLine(int line);
    virtual void setCurrentColumn(int column);
    virtual void setCurrentSourceId(int sourceId);
    /// Tells the front end that the script stands here, and why, and runs the command loop if
    /// interactive. Does nothing without a source or outside any frame. Always true.
    virtual bool stop();
    /// As stop(), for an object that was not found. True only when a command has let the script go
    /// on: without a person or program to ask, a look-up fails at once.
    virtual bool stopWithObjectName(const QString& objectName, const QString& detail);
    /// Mode Run; the first SIGINT from now on enters interrupt(), the next one has the effect that
    /// it has without debugger.
    virtual bool run();
    /// Mode Next: stop at the next line whose frame depth is at most `depth`.
    virtual bool next(int depth);
    /// Mode Step.
    virtual bool step();
    /// The bindings below `path`, the top-level ones for an empty path.
    virtual VariableBindings variables(const QString& path) = 0;
    virtual void initVariableWatcher();
    /// Whether a stop runs the command loop.
    virtual void setInteractive(bool interactive);
    virtual void setDebuggerMode(DbgMode mode);
    /// Appends the break point, or removes all equal ones.
    virtual void setBreakPoint(int line, int sourceId, bool set);
    virtual int nextSourceId();
    /// The interpreter ends: forgets it, restores SIGINT as it was before the first run() and takes
    /// itself out of the signal handler. Does not delete: the plug-in that made the debugger does.
    virtual void shutDown();
    /// SIGINT has come during a run. Called in the signal handler, and stops there by default,
    /// which is safe only while the script thread is in nobody's code that must not be entered
    /// twice. A language that can stop at its next line overrides it with what a signal handler may
    /// do.
    virtual void interrupt();

    Interpreter* interpreter() const { return m_interpreter; }
    bool isInteractive() const { return m_interactive; }
    DbgMode debuggerMode() const { return m_mode; }
    int stepDepth() const { return m_stepDepth; }
    /// True until the front end lets the script run for the first time; for the subclass.
    bool startFlag() const { return m_startFlag; }
    bool objectNotFoundDebugging() const { return m_objectNotFoundDebugging; }
    bool imageNotFoundDebugging() const { return m_imageNotFoundDebugging; }
    bool textNotFoundDebugging() const { return m_textNotFoundDebugging; }
    /// 1 when the last stop was left by the wish that the error which it was for takes its course.
    int skipCurrentError() const { return m_skipCurrentError; }
    bool breakOnMissingStep() const { return m_breakOnMissingStep; }
    // What the front end sets.
    void setObjectNotFoundDebugging(bool on) { m_objectNotFoundDebugging = on; }
    void setImageNotFoundDebugging(bool on) { m_imageNotFoundDebugging = on; }
    void setTextNotFoundDebugging(bool on) { m_textNotFoundDebugging = on; }
    void setSkipCurrentError(int value) { m_skipCurrentError = value; }
    void setBreakOnMissingStep(bool on) { m_breakOnMissingStep = on; }
    void clearStartFlag() { m_startFlag = false; }
    /// Whether long searches report their progress with notify(). On for a program, off at a
    /// terminal, which would be flooded.
    bool progressNotification() const { return m_progressNotification; }

    /// The search state behind a not-found stop; not owned.
    void setInternalDebugger(InternalDebugger* debugger) { m_internalDebugger = debugger; }
    void clearInternalDebugger() { m_internalDebugger = nullptr; }
    InternalDebugger* internalDebugger() const { return m_internalDebugger; }

    DebuggerFrame currentFrame() const;
    void pushFrame(const DebuggerFrame& frame);
    /// Takes the top frame; a frame of -1 when there is none.
    DebuggerFrame popFrame();
    /// Pushes the current position as a frame and makes the given one current. A language that
    /// keeps its frames elsewhere overrides these two, so that it knows those of other files.
    virtual void pushFrameAndSetCurrent(int line, int column, int sourceId);
    /// Pops a frame and makes it the current position.
    virtual void popFrameAndSetCurrent();
    int frameDepth() const { return static_cast<int>(m_frames.size()); }

    /// Enters a source that was loaded; an id that is known keeps its first path. Break points that
    /// were set for the path before are set for the id.
    void setCode(int sourceId, const QString& file);
    /// The first source, in id order, with this path or with this as its bare file name; -1 when
    /// there is none.
    int findSourceId(const QString& file) const;
    /// The path of a source, the null string when unknown.
    QString findSourceId(int sourceId) const;
    /// The path of the current source of self(); the null string without one.
    static QString currentFile();

    bool hasBreakPoint(int line, int sourceId) const;
    /// Keeps a break point for a file that has no source id yet. One with a bare file name is for
    /// every file of that name.
    void bufferBreakPoint(const QString& file, int line);

    /// Positions for results, innermost first, without the bottom frame; empty outside any frame.
    std::vector<LineInfo> callStack();
    /// Locations for scripts. `skip` 0 starts with the current position, a larger one passes over
    /// skip - 1 frames from the top. Values of `maxDepth` below 1 mean no limit.
    std::vector<Location> stackTrace(int skip, int maxDepth);

    // What the front end is told of beside stop() and stopWithObjectName(). True only when a
    // command has let the script go on, as there.
    bool stopWithSearchImage(const QString& imageName, int target, const QString& screenshotFile);
    bool stopWithSearchText(const QString& screenshotFile);
    /// Tells the front end of a line that the script passes, if the host asked for that.
    void stopAndRun();
    virtual void missingStep(int line, const std::string& text);
    void notify(const QString& key, const QString& value);
    void checkForPauseMessage();

    /// The command loop: performs what the front end commands until a command lets the script go
    /// on, which it returns, or no more commands come.
    bool prompt();

    // What front ends command.
    /// How the script goes on.
    enum class Resume {
        Next,    ///< to the next line that is not in a function called from here
        Return,  ///< until the current function has returned
        Step,    ///< to the next line
        Run      ///< to the next break point
    };
    void resume(Resume mode);
    /// Where a break point is, or was.
    struct BreakPointPlace {
        /// The path of the source, or for a file that is not loaded yet the path made absolute.
        QString file;
        int line = 0;
        /// It takes effect once the file is loaded.
        bool isBuffered = false;
    };
    /// `file` as findSourceId() takes it.
    BreakPointPlace addBreakPoint(const QString& file, int line);
    /// Break points of files that are not loaded yet can't be deleted.
    Outcome<BreakPointPlace> deleteBreakPoint(const QString& file, int line);
    /// Runs code of the script's language in the script that stands still, without stops, and gives
    /// what became of it: the text of a result or of a failure. A SIGINT enters interrupt()
    /// meanwhile.
    QString evaluate(const QString& code);

    /// The path made absolute against the working folder, with links resolved.
    static QString sanitizedFilePath(const QString& path);

protected:
    /// Called before the position or the frame stack is read. A language whose trace hook is not
    /// installed brings them up to date here.
    virtual void updateFrames();

    void clearFrames() { m_frames.clear(); }

private:
    bool canStop();
    ScriptPosition currentPosition() const;
    /// Tells the front end and runs the command loop if interactive. Whether a command has let the
    /// script go on.
    bool stopWith(const StopReason& reason);
    bool promptIfInteractive();

    int m_line = -1;
    int m_column = -1;
    int m_sourceId = -1;
    bool m_interactive = false;
    DbgMode m_mode = Run;
    Interpreter* m_interpreter;
    std::deque<DebuggerFrame> m_frames;
    std::vector<std::pair<int, int>> m_breakPoints;
    /// By sanitized path.
    QMap<QString, std::vector<int>> m_bufferedBreakPoints;
    QMap<QString, std::vector<int>> m_breakPointsByFileName;
    QMap<int, QString> m_sources;
    int m_stepDepth = 0;
    std::unique_ptr<DebuggerFrontEnd> m_frontEnd;
    bool m_startFlag = true;
    bool m_objectNotFoundDebugging = false;
    bool m_imageNotFoundDebugging = false;
    bool m_textNotFoundDebugging = false;
    int m_skipCurrentError = 0;
    bool m_breakOnMissingStep = false;
    bool m_progressNotification;
    InternalDebugger* m_internalDebugger = nullptr;
};

}  // namespace Tamrix
