#include "runner/processes/childprocess.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QMap>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <vector>

#include "base/blocking.h"
#include "base/nativebytes.h"
#include "runner/processes/markedprocesses.h"

namespace Tamrix {

namespace {

/// Texts as the null-terminated array that the system takes.
class TextArray {
public:
    explicit TextArray(const QList<QByteArray>& texts) : m_texts(texts) {
        for (const QByteArray& text : qAsConst(m_texts))
            m_pointers.push_back(const_cast<char*>(text.constData()));
        m_pointers.push_back(nullptr);
    }
    char* const* data() const { return m_pointers.data(); }

private:
    QList<QByteArray> m_texts;
    std::vector<char*> m_pointers;
};

/// A pipe whose ends are closed with the object unless they were taken.
class Pipe {
public:
    Pipe() {
        if (::pipe2(m_ends.data(), O_CLOEXEC) != 0)
            m_ends = {-1, -1};
    }
    ~Pipe() {
        closeEnd(0);
        closeEnd(1);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    bool isOpen() const { return m_ends[0] >= 0; }
    int readEnd() const { return m_ends[0]; }
    int writeEnd() const { return m_ends[1]; }
    int takeReadEnd() { return std::exchange(m_ends[0], -1); }
    void closeWriteEnd() { closeEnd(1); }

private:
    void closeEnd(size_t index) {
        if (m_ends[index] >= 0)
            ::close(m_ends[index]);
        m_ends[index] = -1;
    }
    std::array<int, 2> m_ends{};
};

QList<QByteArray> environmentEntries(const ProgramStart& start) {
    QMap<QByteArray, QByteArray> variables;
    for (char** entry = environ; entry && *entry; ++entry) {
        const QByteArray text(*entry);
        const int separator = text.indexOf('=');
        if (separator > 0)
            variables.insert(text.left(separator), text.mid(separator + 1));
    }
    for (const auto& [name, value] : start.environment) {
        if (value.isNull())
            variables.remove(toNativeBytes(name));
        else
            variables.insert(toNativeBytes(name), toNativeBytes(value));
    }
    if (!start.mark.isEmpty())
        variables.insert(runMarkVariable, start.mark.toLatin1());
    QList<QByteArray> entries;
    for (auto variable = variables.cbegin(); variable != variables.cend(); ++variable)
        entries.append(variable.key() + '=' + variable.value());
    return entries;
}

QList<QByteArray> commandLine(const ProgramStart& start) {
    QList<QByteArray> words{start.program.toLocal8Bit()};
    for (const QString& argument : start.arguments)
        words.append(argument.toLocal8Bit());
    return words;
}

/// Where the program's standard output goes, -1 for where that of this process does.
int outputOf(const ProgramStart& start, int pipe) {
    if (start.outputDescriptor >= 0)
        return start.outputDescriptor;
    return start.keepsOutput ? pipe : -1;
}

/// What the child tells when it does not come to run the program.
struct StartFailure {
    int number = 0;
    bool isDirectory = false;
};

/// Everything that the child needs, ready before the fork: behind it only what is safe in a signal
/// handler may be called.
struct ChildPlan {
    const char* program;
    char* const* arguments;
    char* const* environment;
    const char* workingDirectory;
    int input;
    // -1 for where those of this process go.
    int output;
    int error;
    int failure;
    pid_t parent;
    int signalAtRunnersEnd;
    /// 0 for none.
    unsigned long long markLimit;
};

[[noreturn]] void runChild(const ChildPlan& plan) {
    StartFailure failure;
    ::setsid();
    // Whatever ends this process, the program does not outlive it.
    ::prctl(PR_SET_PDEATHSIG, plan.signalAtRunnersEnd);
    if (::getppid() != plan.parent)
        ::_exit(1);
    if (plan.markLimit != 0)
        markThisProcess(plan.markLimit);
    for (int signal = 1; signal < NSIG; ++signal)
        ::signal(signal, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    ::dup2(plan.input, STDIN_FILENO);
    if (plan.output >= 0)
        ::dup2(plan.output, STDOUT_FILENO);
    if (plan.error >= 0)
        ::dup2(plan.error, STDERR_FILENO);
    if (*plan.workingDirectory && ::chdir(plan.workingDirectory) != 0) {
        failure = {errno, true};
    } else {
        ::execve(plan.program, plan.arguments, plan.environment);
        failure = {errno, false};
    }
    [[maybe_unused]] const ssize_t written = ::write(plan.failure, &failure, sizeof(failure));
    ::_exit(127);
}

}  // namespace

Outcome<std::unique_ptr<ChildProcess>> ChildProcess::start(const ProgramStart& start) {
    const auto startFailure = [&start](int number) {
        return fail(FailureKind::Failed,
                    QStringLiteral("'%1' can't be started: %2")
                        .arg(start.program, QString::fromLocal8Bit(std::strerror(number))));
    };
    const TextArray arguments(commandLine(start));
    const TextArray environment(environmentEntries(start));
    const QByteArray workingDirectory = start.workingDirectory.toLocal8Bit();
    Pipe output;
    Pipe errors;
    Pipe failurePipe;
    const int input = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (!output.isOpen() || !errors.isOpen() || !failurePipe.isOpen() || input < 0) {
        const int openError = errno;
        if (input >= 0)
            ::close(input);
        return startFailure(openError);
    }

    const ChildPlan plan{arguments.data()[0],
                         arguments.data(),
                         environment.data(),
                         workingDirectory.constData(),
                         input,
                         outputOf(start, output.writeEnd()),
                         start.keepsOutput ? errors.writeEnd() : -1,
                         failurePipe.writeEnd(),
                         ::getpid(),
                         start.signalAtRunnersEnd,
                         start.mark.isEmpty() ? 0 : limitOfMark(start.mark.toStdString())};
    const pid_t pid = ::fork();
    if (pid == 0)
        runChild(plan);
    const int forkError = errno;
    ::close(input);
    output.closeWriteEnd();
    errors.closeWriteEnd();
    failurePipe.closeWriteEnd();
    if (pid < 0)
        return startFailure(forkError);

    // The pipe closes when the program runs.
    StartFailure failure;
    ssize_t size = 0;
    while ((size = ::read(failurePipe.readEnd(), &failure, sizeof(failure))) < 0 && errno == EINTR)
        continue;
    if (size == sizeof(failure)) {
        ::waitpid(pid, nullptr, 0);
        const QString reason = QString::fromLocal8Bit(std::strerror(failure.number));
        return fail(FailureKind::Failed,
                    failure.isDirectory
                        ? QStringLiteral("'%1' can't be started in the folder '%2': %3")
                              .arg(start.program, start.workingDirectory, reason)
                        : QStringLiteral("'%1' can't be executed: %2").arg(start.program, reason));
    }
    std::unique_ptr<ChildProcess> process(new ChildProcess(pid));
    if (start.keepsOutput) {
        process->m_output =
            std::make_unique<ChildOutput>(output.takeReadEnd(), errors.takeReadEnd());
    }
    return process;
}

ChildProcess::~ChildProcess() = default;

bool ChildProcess::hasEnded() {
    if (m_hasEnded)
        return true;
    // A fork of this process may ask, too, whose child it is not.
    if (::getpid() != m_parent)
        return ::kill(m_pid, 0) != 0;
    siginfo_t info;
    std::memset(&info, 0, sizeof(info));
    if (::waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED | WNOHANG) != 0) {
        if (errno == EINTR)
            return false;
        // Someone else in this process, as a script's os.wait(), took how it ended.
        m_hasEnded = true;
    } else if (info.si_pid != 0) {
        m_hasEnded = true;
        m_end =
            info.si_code == CLD_EXITED ? endByExit(info.si_status) : endBySignal(info.si_status);
    }
    return m_hasEnded;
}

bool ChildProcess::waitForEnd(int milliseconds) {
    QElapsedTimer timer;
    timer.start();
    while (!hasEnded()) {
        if (timer.elapsed() >= milliseconds)
            return false;
        blockingSleep(5000);
    }
    return true;
}

}  // namespace Tamrix
