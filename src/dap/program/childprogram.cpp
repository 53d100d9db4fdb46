#include "dap/program/childprogram.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <array>
#include <cerrno>
#include <csignal>

#include "base/filewriting.h"
#include "base/nativebytes.h"

extern char** environ;

namespace Tamrix::Dap {

namespace {

/// Closes a descriptor at the end of the scope.
class Descriptor {
public:
    explicit Descriptor(int descriptor = -1) : m_descriptor(descriptor) {}
    ~Descriptor() { close(); }
    Descriptor(Descriptor&& other) noexcept : m_descriptor(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        if (this != &other) {
            close();
            m_descriptor = other.release();
        }
        return *this;
    }

    int get() const { return m_descriptor; }
    bool isOpen() const { return m_descriptor >= 0; }
    void close() {
        if (isOpen())
            ::close(release());
    }

private:
    int release() { return std::exchange(m_descriptor, -1); }

    int m_descriptor;
};

struct Pipe {
    Descriptor readEnd;
    Descriptor writeEnd;
};

Outcome<Pipe> makePipe() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return fail(FailureKind::Failed,
                    QStringLiteral("a pipe can't be made: %1").arg(qt_error_string(errno)));
    return Pipe{Descriptor(ends[0]), Descriptor(ends[1])};
}

/// Texts as exec takes them.
class TextArray {
public:
    void append(const QByteArray& text) { m_texts.push_back(text); }
    char** get() {
        m_pointers.clear();
        for (QByteArray& text : m_texts)
            m_pointers.push_back(text.data());
        m_pointers.push_back(nullptr);
        return m_pointers.data();
    }

private:
    std::vector<QByteArray> m_texts;
    std::vector<char*> m_pointers;
};

TextArray environmentOf(const TextMap& changes) {
    TextArray variables;
    std::map<QByteArray, std::optional<QByteArray>> changed;
    for (const auto& [name, value] : changes) {
        changed[toNativeBytes(name)] =
            value ? std::optional<QByteArray>(toNativeBytes(*value)) : std::nullopt;
    }
    for (char** variable = environ; *variable; ++variable) {
        const QByteArray text(*variable);
        if (!changed.contains(text.left(text.indexOf('='))))
            variables.append(text);
    }
    for (const auto& [name, value] : changed) {
        if (value)
            variables.append(name + '=' + *value);
    }
    return variables;
}

class ChildProgram final : public Program {
public:
    ChildProgram(pid_t pid, Descriptor input, Descriptor output, Descriptor errors)
        : m_pid(pid),
          m_end(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0))),
          m_input(std::move(input)),
          m_streams{Stream{std::move(output), false}, Stream{std::move(errors), true}} {}
    ~ChildProgram() override;
    ChildProgram(const ChildProgram&) = delete;
    ChildProgram& operator=(const ChildProgram&) = delete;

    std::vector<Piece> receive() override;
    void write(const QByteArray& bytes) override;
    bool hasTakenInput() override;
    void signal(int number) override;
    std::optional<int> exitCode() override;
    void watch(std::vector<pollfd>* watched) const override;

private:
    struct Stream {
        Descriptor descriptor;
        bool isError;
    };
    void look();

    pid_t m_pid;
    Descriptor m_end;
    Descriptor m_input;
    std::array<Stream, 2> m_streams;
    /// Since it had read what was written last; invalid before that.
    QElapsedTimer m_sinceTaken;
    std::optional<int> m_exitCode;
    /// Its last words were received.
    bool m_isDrained = false;
};

ChildProgram::~ChildProgram() {
    look();
    if (m_exitCode)
        return;
    ::kill(m_pid, SIGKILL);
    ::waitpid(m_pid, nullptr, 0);
}

void ChildProgram::look() {
    int status = 0;
    if (m_exitCode || ::waitpid(m_pid, &status, WNOHANG) != m_pid)
        return;
    const int signalBase = 128;
    m_exitCode =
        WIFSIGNALED(status) ? signalBase + WTERMSIG(status) : static_cast<int>(WEXITSTATUS(status));
}

std::vector<Program::Piece> ChildProgram::receive() {
    // Looked at before the streams are read: what an ended program wrote is all there then.
    look();
    const bool hasEnded = m_exitCode.has_value();
    std::vector<Piece> pieces;
    for (Stream& stream : m_streams) {
        while (stream.descriptor.isOpen()) {
            std::array<char, 65536> buffer;
            const ssize_t count = ::read(stream.descriptor.get(), buffer.data(), buffer.size());
            if (count > 0)
                pieces.push_back(
                    {QByteArray(buffer.data(), static_cast<int>(count)), stream.isError});
            else if (count == 0)
                stream.descriptor.close();
            else if (errno != EINTR)
                break;
        }
    }
    m_isDrained = hasEnded;
    return pieces;
}

void ChildProgram::write(const QByteArray& bytes) {
    QString reason;
    m_sinceTaken.invalidate();
    // A program that does not read any more has ended, or is about to.
    if (m_input.isOpen() && !writeAll(m_input.get(), bytes, &reason))
        m_input.close();
}

bool ChildProgram::hasTakenInput() {
    const int millisecondsToAct = 100;
    int left = 0;
    if (m_input.isOpen() && ::ioctl(m_input.get(), FIONREAD, &left) == 0 && left > 0)
        return false;
    if (!m_sinceTaken.isValid())
        m_sinceTaken.start();
    return m_sinceTaken.elapsed() >= millisecondsToAct;
}

void ChildProgram::signal(int number) {
    look();
    if (!m_exitCode)
        ::kill(m_pid, number);
}

std::optional<int> ChildProgram::exitCode() {
    return m_isDrained ? m_exitCode : std::nullopt;
}

void ChildProgram::watch(std::vector<pollfd>* watched) const {
    for (const Stream& stream : m_streams) {
        if (stream.descriptor.isOpen())
            watched->push_back({stream.descriptor.get(), POLLIN, 0});
    }
    if (m_end.isOpen())
        watched->push_back({m_end.get(), POLLIN, 0});
}

/// In the child, between fork and exec: nothing but calls that are safe there.
[[noreturn]] void becomeProgram(const char* program, char** arguments, char** environment,
                                const std::array<int, 3>& streams, int failure, pid_t parent) {
    ::setpgid(0, 0);
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    for (int stream = 0; stream < 3; ++stream)
        ::dup2(streams[static_cast<std::size_t>(stream)], stream);
    ::signal(SIGPIPE, SIG_DFL);
    if (::getppid() == parent)
        ::execve(program, arguments, environment);
    const int error = errno;
    [[maybe_unused]] const ssize_t told = ::write(failure, &error, sizeof error);
    ::_exit(127);
}

/// The error of exec, 0 when there was none.
int readFailure(int descriptor) {
    int error = 0;
    ssize_t count = 0;
    do {
        count = ::read(descriptor, &error, sizeof error);
    } while (count < 0 && errno == EINTR);
    return count == sizeof error ? error : 0;
}

}  // namespace

Outcome<std::unique_ptr<Program>> startChildProgram(const ProgramStart& start) {
    Outcome<Pipe> input = makePipe();
    Outcome<Pipe> output = makePipe();
    Outcome<Pipe> errors = makePipe();
    Outcome<Pipe> failure = makePipe();
    for (const Outcome<Pipe>* const pipe : {&input, &output, &errors, &failure}) {
        if (!*pipe)
            return fail(pipe->error());
    }
    TextArray arguments;
    const QByteArray program = toNativeBytes(start.program);
    arguments.append(program);
    for (const QString& argument : start.arguments)
        arguments.append(toNativeBytes(argument));
    TextArray environment = environmentOf(start.environment);
    char** const argumentTexts = arguments.get();
    char** const environmentTexts = environment.get();

    const pid_t parent = ::getpid();
    const pid_t child = ::fork();
    if (child == 0) {
        becomeProgram(program.constData(), argumentTexts, environmentTexts,
                      {input->readEnd.get(), output->writeEnd.get(), errors->writeEnd.get()},
                      failure->writeEnd.get(), parent);
    }
    failure->writeEnd.close();
    const int error = child < 0 ? errno : readFailure(failure->readEnd.get());
    if (error != 0) {
        if (child > 0)
            ::waitpid(child, nullptr, 0);
        return fail(
            FailureKind::Failed,
            QStringLiteral("'%1' can't be started: %2").arg(start.program, qt_error_string(error)));
    }
    for (const int descriptor : {output->readEnd.get(), errors->readEnd.get()})
        ::fcntl(descriptor, F_SETFL, O_NONBLOCK);
    return std::unique_ptr<Program>(std::make_unique<ChildProgram>(
        child, std::move(input->writeEnd), std::move(output->readEnd), std::move(errors->readEnd)));
}

}  // namespace Tamrix::Dap
