#pragma once

#include <QString>
#include <memory>
#include <vector>

#include "runner/applications/applicationstart.h"
#include "runner/processes/childprocess.h"
#include "runner/processes/markedprocesses.h"

namespace Tamrix {

/// A program that a test case started, with all processes that came of it.
class StartedProgram {
public:
    /// The program's start has a mark.
    StartedProgram(ApplicationStart start, std::unique_ptr<ChildProcess> process);
    /// Ends what is left of it, without patience.
    ~StartedProgram();
    StartedProgram(const StartedProgram&) = delete;
    StartedProgram& operator=(const StartedProgram&) = delete;

    const ApplicationStart& start() const { return m_start; }
    ChildProcess& process() { return *m_process; }
    const ChildOutput& output() const { return *m_process->output(); }
    ChildOutput& output() { return *m_process->output(); }

    /// An application of this program is connected under a name; `isExitExpected` once the script
    /// wants it to end.
    void noteApplication(const QString& name, bool isExitExpected);
    bool hasApplication() const { return !m_applicationName.isEmpty(); }
    /// The script works with the program from now on: its end is of interest, whenever it was.
    void watch() { m_isWatched = true; }
    bool isWatched() const { return m_isWatched; }
    bool isExitExpected() const { return m_isExitExpected; }
    /// "The application 'x' has ended: it was ended by SIGSEGV (Segmentation fault)", with the last
    /// lines of its standard error.
    QString endText() const;

    /// A descriptor that becomes readable when the program ends, -1 when there is none to be had or
    /// it has ended.
    int endDescriptor() const { return m_endDescriptor; }

    /// All that run now.
    std::vector<pid_t> processes() const;
    /// Whether a process is the program or came of it.
    bool includes(pid_t process) const;
    /// Whether any of the processes still runs.
    bool isAlive();
    /// To be called now and then: gives back what a program that has ended needs no more. True once
    /// nothing of it runs any more and all its output has been read.
    bool settle();
    bool hasSettled() const { return m_hasSettled; }
    /// Keeps only the last lines of the output of a program that has settled.
    void keepLittleOutput();
    /// Ends all of them: asks first, kills after `patience` milliseconds. Returns the number of
    /// those that are left all the same.
    int end(int patience);
    /// end() has killed the program itself: asking was not enough.
    bool wasKilled() const { return m_wasKilled; }

    /// The last lines of standard error, in a form to be appended to a message; empty without any.
    QString lastErrorText() const;

private:
    ProcessFilter filter() const;
    bool isGone();

    ApplicationStart m_start;
    std::unique_ptr<ChildProcess> m_process;
    int m_endDescriptor;
    /// No process is left, so that the session's number may be somebody else's.
    bool m_isGone = false;
    bool m_wasKilled = false;
    bool m_hasSettled = false;
    /// Empty before one has connected.
    QString m_applicationName;
    bool m_isWatched = false;
    bool m_isExitExpected = false;
};

}  // namespace Tamrix
