#include "support/dapprocess.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <QProcessEnvironment>
#include <csignal>

#include "dap/program/childprogram.h"

namespace Tamrix::Test {

namespace {

constexpr int patienceMilliseconds = 60'000;

}  // namespace

DapProcess::DapProcess(const QString& program, const QStringList& arguments,
                       const Dap::TextMap& environment) {
    std::signal(SIGPIPE, SIG_IGN);
    Dap::TextMap changes = environment;
    for (const QString& name : QProcessEnvironment::systemEnvironment().keys()) {
        // The choice of Python's allocator is that of the tests as a whole.
        if (name.startsWith("TAMRIX_") || (name.startsWith("PYTHON") && name != "PYTHONMALLOC"))
            changes.try_emplace(name, std::nullopt);
    }
    changes["TAMRIX_USER_SETTINGS_DIR"] = m_settings.path();
    Outcome<std::unique_ptr<Dap::Program>> started =
        Dap::startChildProgram({program, arguments, changes});
    EXPECT_TRUE(started) << qPrintable(started ? QString() : started.error().text);
    if (started)
        m_program = std::move(*started);
}

DapClient::Stream DapProcess::stream() {
    return {[this](const QByteArray& bytes) { m_program->write(bytes); },
            [this] { return read(); }};
}

QByteArray DapProcess::readOnce() {
    std::vector<pollfd> watched;
    m_program->watch(&watched);
    if (::poll(watched.data(), watched.size(), patienceMilliseconds) <= 0) {
        ADD_FAILURE() << "the program says nothing: " << m_errors.constData();
        m_program->signal(SIGKILL);
    }
    QByteArray output;
    for (const Dap::Program::Piece& piece : m_program->receive())
        (piece.isError ? m_errors : output) += piece.bytes;
    return output;
}

QByteArray DapProcess::read() {
    QByteArray output;
    while (output.isEmpty() && !m_program->exitCode())
        output = readOnce();
    return output;
}

int DapProcess::exitCode() {
    while (!m_program->exitCode())
        readOnce();
    return *m_program->exitCode();
}

}  // namespace Tamrix::Test
