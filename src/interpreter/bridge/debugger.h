#pragma once

#include <QMap>
#include <QObject>
#include <QString>
#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "base/export.h"
#include "interpreter/bridge/debuggerframe.h"
#include "platform/testresult/lineinfo.h"

namespace Tamrix {

class InternalDebugger;
class Interpreter;

/// True means that a person drives the debugger at a terminal, false a front end over a pipe.
/// It selects the prefix, the prompt and the encoding; read when a Debugger is constructed.
extern TAMRIX_EXPORT bool tamrix_verbose_debugger;

/// Enables Debugger::stopAndRun(), with which a host highlights each line without halting.
extern TAMRIX_EXPORT bool tamrix_hl_debugger;

/// The language-neutral half of the script debugger: position, frame stack, sources, break points,
/// modes and the stop operations. A language plug-in derives from it and calls it from its trace
/// hook. One per process at a time; script thread only, except for the SIGINT handler of run().
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

    /// Makes itself self(). `interpreter` is not owned and may be null.
    explicit Debugger(Interpreter* interpreter);
    /// Clears self().
    ~Debugger() override;

    static Debugger* self();
    static void setSelf(Debugger* debugger);

    // Operations that a language's debugger overrides to mirror the state into its trace hook.
    virtual void setCurrentLine(int line);
    virtual void setCurrentColumn(int column);
    virtual void setCurrentSourceId(int sourceId);
    /// Tells the front end where the script stands and runs the command loop if interactive. Does
    /// nothing without a source or outside any frame. Always true.
    virtual bool stop();
    /// As stop(), for an object that was not found.
    virtual bool stopWithObjectName(const QString& objectName, const QString& detail);
    /// Mode Run; the first SIGINT from now on enters stop(), the next one ends the process.
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

    Interpreter* interpreter() const { return m_interpreter; }
    bool isInteractive() const { return m_interactive; }
    DbgMode debuggerMode() const { return m_mode; }
    int stepDepth() const { return m_stepDepth; }
    bool isVerbose() const { return m_verbose; }
    /// What stands in front of every printed line.
    QString prefix() const { return m_prefix; }
    /// True until the front end lets the script run for the first time; for the subclass.
    bool startFlag() const { return m_startFlag; }
    bool objectNotFoundDebugging() const { return m_objectNotFoundDebugging; }
    bool imageNotFoundDebugging() const { return m_imageNotFoundDebugging; }
    bool textNotFoundDebugging() const { return m_textNotFoundDebugging; }
    int skipCurrentError() const { return m_skipCurrentError; }
    bool breakOnMissingStep() const { return m_breakOnMissingStep; }
    /// Whether long searches report their progress with notify(). On for a front end, off at a
    /// terminal, which would be flooded.
    bool progressNotification() const { return m_progressNotification; }
    void setProgressNotification(bool on) { m_progressNotification = on; }

    /// The search state behind a not-found stop; not owned.
    void setInternalDebugger(InternalDebugger* debugger) { m_internalDebugger = debugger; }
    void clearInternalDebugger() { m_internalDebugger = nullptr; }
    InternalDebugger* internalDebugger() const { return m_internalDebugger; }

    DebuggerFrame currentFrame() const;
    void pushFrame(const DebuggerFrame& frame);
    /// Takes the top frame; a frame of -1 when there is none.
    DebuggerFrame popFrame();
    /// Pushes the current position as a frame and makes the given one current.
    void pushFrameAndSetCurrent(int line, int column, int sourceId);
    /// Pops a frame and makes it the current position.
    void popFrameAndSetCurrent();
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
    /// Whether the mode, or a break point, wants the script to stop at a line that it has reached.
    bool wantsStop(const DebuggerFrame& position) const;
    /// Keeps a break point for a file that has no source id yet.
    void bufferBreakPoint(const QString& file, int line);

    /// Positions for results, innermost first, without the bottom frame; empty outside any frame.
    std::vector<LineInfo> callStack();
    /// Locations for scripts. `skip` 0 starts with the current position, a larger one passes over
    /// skip - 1 frames from the top. Values of `maxDepth` below 1 mean no limit.
    std::vector<Location> stackTrace(int skip, int maxDepth);

    // Events that are printed for the front end.
    bool stopWithSearchImage(const QString& imageName, int target, const QString& screenshotFile);
    bool stopWithSearchText(const QString& screenshotFile);
    void stopAndRun();
    void missingStep(int line, const std::string& text);
    void notify(const QString& key, const QString& value);
    void checkForPauseMessage();

    /// The command loop. Until there are commands it returns at once.
    void prompt();

    /// The path made absolute against the working folder, with links resolved.
    static QString sanitizedFilePath(const QString& path);

protected:
    /// Called before the position or the frame stack is read. A language whose trace hook is not
    /// installed brings them up to date here.
    virtual void updateFrames();

    void setStartFlag(bool on) { m_startFlag = on; }
    void clearFrames() { m_frames.clear(); }

private:
    bool canStop();
    void stopAtCurrentLine(const QString& name, const QString& detail);
    /// Prints the position; with a name the object that was not found, and the detail if there is
    /// one.
    void printCurrentLine(char marker, const QString& name, const QString& detail);
    void promptIfInteractive();
    /// The text in the dialect's encoding, as it is or with escapes.
    std::string encoded(const QString& text) const;
    std::string escaped(const QString& text) const;
    std::string currentPath() const;

    int m_line = -1;
    int m_column = -1;
    int m_sourceId = -1;
    bool m_interactive = false;
    DbgMode m_mode = Run;
    Interpreter* m_interpreter;
    std::deque<DebuggerFrame> m_frames;
    std::vector<std::pair<int, int>> m_breakPoints;
    QMap<QString, std::vector<int>> m_bufferedBreakPoints;
    QMap<int, QString> m_sources;
    int m_stepDepth = 0;
    bool m_verbose;
    QString m_prefix;
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
