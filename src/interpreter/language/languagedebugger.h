#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <any>
#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/export.h"
#include "interpreter/bridge/debugger.h"
#include "interpreter/language/valuetexts.h"

namespace Tamrix {

class SourceFiles;
class TimeLimit;
class VariableWatcher;

/// A frame of a script's code and where it stands.
struct ScriptFrame {
    /// What the language knows it by; empty for a place in a file that is none of the language's,
    /// such as a step of a feature.
    std::any own;
    QString file;
    /// Counted from 1.
    int line = -1;
    /// Counted from 1; -1 when unknown.
    int column = -1;
    /// The debugger's number of a file that is none of the language's.
    int sourceId = -1;

    bool isOfLanguage() const { return own.has_value(); }
};

/// What the debuggers of all languages have alike: the decision to stop, the frames with places in
/// feature files between them, the time of a stop, the error that was stopped for. A plug-in's
/// debugger derives from it, and has the hook into its runtime: installed while the debugger is
/// interactive, it calls lineReached() for the lines of scripts.
class TAMRIX_EXPORT LanguageDebugger : public Debugger {
public:
    explicit LanguageDebugger(Interpreter* interpreter);
    ~LanguageDebugger() override;

    /// A line of a script is about to run: stops if mode or a break point want it. `sourceId` is
    /// sourceIdOf() the file.
    void lineReached(int sourceId, int line);
    /// The debugger's number of a file, which becomes known.
    int sourceIdOf(const QString& path);
    /// Those that have a number.
    QStringList knownFiles() const { return m_sourceIds.keys(); }
    /// The same of a file by the name that the runtime has for it; -1 for one that is no script.
    int sourceIdOf(const char* name, SourceFiles& files);
    /// The lines of the file that have a break point, in no order, each as often as it was set.
    const std::vector<int>& breakLines(int sourceId) const;
    /// Changes whenever break points do; no other state of a debugger in the process has the same.
    unsigned breakPointState() const { return m_state; }

    /// Whether the mode wants to stop at each line of a frame that has `framesBelow` frames of
    /// scripts outwards from it.
    bool stopsAtEachLine(int framesBelow) const {
        return debuggerMode() == Step ||
               (debuggerMode() == Next &&
                framesBelow + 1 + static_cast<int>(m_foreignPlaces.size()) <= stepDepth());
    }
    bool stopsForErrors() const { return isInteractive() && debuggerMode() != None; }
    /// The script stands still, or the debugger looks at values: the hook is to do nothing.
    bool isSilent() const { return m_silences > 0; }

    /// Errors are caught by a native function as long as this exists.
    class CatchesErrors {
    public:
        explicit CatchesErrors(LanguageDebugger& debugger) : m_debugger(debugger) {
            ++m_debugger.m_catching;
        }
        ~CatchesErrors() { --m_debugger.m_catching; }
        CatchesErrors(const CatchesErrors&) = delete;
        CatchesErrors& operator=(const CatchesErrors&) = delete;

    private:
        LanguageDebugger& m_debugger;
    };

    /// The frames at which the debugger looks, the innermost first: of an error that it has stopped
    /// for, else those that run.
    std::vector<ScriptFrame> frames();

    /// The variables of a frame of the language, those of its function first, then those of its
    /// module. Runs no code of the script.
    virtual std::vector<ValueTexts::Part> variablesOf(const ScriptFrame& frame) = 0;

    /// Where the running frame of a script stands that is `level` levels outwards from the
    /// innermost one; invalid without one.
    LineInfo placeOfFrame(int level);

    /// Nothing will catch an error: tells its text and stops, in `frames`, the innermost first,
    /// which it has not left, or which it has left by now. Nothing happens without frames.
    void stopForError(const QString& text, std::vector<ScriptFrame> frames);

    /// Whether the text tells of the error that was stopped for last, as that of an error does
    /// which a native function has made of it.
    bool hasTold(const QString& text) const {
        return !m_toldText.isEmpty() && text.contains(m_toldText);
    }
    /// What comes is another error, whatever its text is.
    void forgetTold() { m_toldText.clear(); }

    /// SIGINT ends the code that is evaluated, else it stops the script at its next line. At a stop
    /// nothing is to be done.
    void interrupt() final;
    /// What interrupt() ends from now on, null for nothing; gives what it was before.
    TimeLimit* exchangeEvaluation(TimeLimit* evaluation) {
        return m_evaluation.exchange(evaluation);
    }

    bool stop() override;
    bool stopWithObjectName(const QString& objectName, const QString& detail) override;
    void missingStep(int line, const std::string& text) override;
    VariableBindings variables(const QString& path) override;
    void initVariableWatcher() override;
    void setInteractive(bool interactive) override;
    void setDebuggerMode(DbgMode mode) override;
    void setBreakPoint(int line, int sourceId, bool set) override;
    void shutDown() override;
    /// A place in a file that is none of the language's, over what runs now: a step of a feature.
    void pushFrameAndSetCurrent(int line, int column, int sourceId) override;
    void popFrameAndSetCurrent() override;

protected:
    void updateFrames() override;
    /// While a CatchesErrors exists.
    bool areErrorsCaught() const { return m_catching > 0; }

    // For the language.
    /// Stops at the next line. Called in the handler of a signal.
    virtual void stopSoon() = 0;
    /// The frames that run code of scripts, the innermost first. Frames of the language's library
    /// are left out.
    virtual std::vector<ScriptFrame> runningFrames() = 0;
    /// How many they are.
    virtual int runningDepth() { return static_cast<int>(runningFrames().size()); }
    /// Writes values of the language.
    virtual std::unique_ptr<ValueTexts> makeValueTexts() = 0;
    /// The time of isSilent() begins and ends. By default nothing else is to be done.
    virtual void enterSilence() {}
    virtual void leaveSilence() {}
    /// Break points have changed; the mode, or whether it is interactive.
    virtual void breakPointsChanged() {}
    virtual void modeChanged() {}

private:
    class Silence;
    class Standstill;
    void showFrames(const std::vector<ScriptFrame>& frames);
    /// The frames with the places of other files between them.
    std::vector<ScriptFrame> withForeignPlaces(std::vector<ScriptFrame> frames) const;

    std::unique_ptr<VariableWatcher> m_watcher;
    QHash<QString, int> m_sourceIds;
    QHash<QByteArray, int> m_idsOfNames;
    /// Lines with break points, by source id.
    QHash<int, std::vector<int>> m_breakLines;
    unsigned m_state;

    struct ForeignPlace {
        ScriptFrame place;
        /// Frames of scripts outwards from it.
        int framesBelow;
    };
    /// The innermost last.
    std::vector<ForeignPlace> m_foreignPlaces;

    /// One in another when code that is evaluated at a stop stops.
    std::atomic<int> m_standstills{0};
    std::atomic<TimeLimit*> m_evaluation{nullptr};
    int m_silences = 0;
    int m_catching = 0;
    QString m_toldText;
    /// Where the error was raised for which the debugger is stopped.
    std::optional<std::vector<ScriptFrame>> m_errorFrames;
};

}  // namespace Tamrix
