#pragma once

#include <QString>
#include <memory>

#include "runner/applicationstart.h"
#include "runner/childprocess.h"
#include "runner/markedprocesses.h"

namespace Tamrix {

/// A program that a test case started, with all processes that came of it.
class StartedProgram {
public:
    /// `mark` is the value of runMarkVariable in the program's environment.
    StartedProgram(ApplicationStart start, std::unique_ptr<ChildProcess> process,
                   const QString& mark);
    /// Ends what is left of it, without patience.
    ~StartedProgram();
    StartedProgram(const StartedProgram&) = delete;
    StartedProgram& operator=(const StartedProgram&) = delete;

    const ApplicationStart& start() const { return m_start; }
    ChildProcess& process() { return *m_process; }
    const ChildOutput& output() const { return *m_process->output(); }
    /// A descriptor that becomes readable when the program ends, -1 when there is none to be had.
    int endDescriptor() const { return m_endDescriptor; }

    /// Whether a process is the program or came of it.
    bool includes(pid_t process) const;
    /// Whether any of the processes still runs.
    bool isAlive();
    /// Ends all of them: asks first, kills after `patience` milliseconds. Returns the number of
    /// those that are left all the same.
    int end(int patience);

    /// The last lines of standard error, in a form to be appended to a message; empty without any.
    QString lastErrorText() const;

private:
    ProcessFilter filter() const;

    ApplicationStart m_start;
    std::unique_ptr<ChildProcess> m_process;
    std::string m_mark;
    int m_endDescriptor;
};

}  // namespace Tamrix
