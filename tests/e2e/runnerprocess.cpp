#include "e2e/runnerprocess.h"

#include <gtest/gtest.h>
#include <sys/types.h>

#include <QElapsedTimer>
#include <QProcessEnvironment>
#include <csignal>

#include "runner/coreapplication.h"

namespace Tamrix::Test {

namespace {

/// Only a program that hangs takes as long; a busy machine takes a minute for what is a second's
/// work elsewhere.
constexpr int patienceMilliseconds = 300'000;

}  // namespace

RunnerProcess::RunnerProcess() {
    coreApplication();
    m_process.setProgram(QStringLiteral(TAMRIX_TEST_PREFIX "/bin/tamrixrunner"));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString& name : environment.keys()) {
        // The choice of Python's allocator is that of the tests as a whole.
        if (name.startsWith("TAMRIX_") || (name.startsWith("PYTHON") && name != "PYTHONMALLOC"))
            environment.remove(name);
    }
    environment.insert("TAMRIX_USER_SETTINGS_DIR", m_settings.path());
    m_process.setProcessEnvironment(environment);
}

RunnerProcess::~RunnerProcess() {
    if (m_process.state() != QProcess::NotRunning) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

void RunnerProcess::setVariable(const QString& name, const QString& value) {
    QProcessEnvironment environment = m_process.processEnvironment();
    if (value.isNull())
        environment.remove(name);
    else
        environment.insert(name, value);
    m_process.setProcessEnvironment(environment);
}

RunnerProcess& RunnerProcess::run(const QStringList& arguments) {
    start(arguments);
    finish();
    return *this;
}

void RunnerProcess::start(const QStringList& arguments) {
    start(arguments, QIODevice::ReadOnly);
}

void RunnerProcess::startDialogue(const QStringList& arguments) {
    start(arguments, QIODevice::ReadWrite);
}

void RunnerProcess::type(const QByteArray& text) {
    m_process.write(text);
    m_process.waitForBytesWritten(patienceMilliseconds);
}

void RunnerProcess::start(const QStringList& arguments, QIODevice::OpenMode mode) {
    m_process.setArguments(arguments);
    m_process.start(mode);
    if (!m_process.waitForStarted(patienceMilliseconds))
        ADD_FAILURE() << "can't start: " << qPrintable(m_process.errorString());
}

bool RunnerProcess::waitForOutput(const QString& text) {
    return waitFor(text, m_output);
}

bool RunnerProcess::waitForErrors(const QString& text) {
    return waitFor(text, m_errors);
}

bool RunnerProcess::waitFor(const QString& text, const QString& stream) {
    QElapsedTimer timer;
    timer.start();
    readAll();
    while (!stream.contains(text)) {
        if (m_process.state() == QProcess::NotRunning || timer.elapsed() > patienceMilliseconds)
            return false;
        // Either stream may have something.
        m_process.waitForReadyRead(50);
        readAll();
    }
    return true;
}

void RunnerProcess::sendSignal(int signal) {
    // To 0 it would go to the tests themselves.
    ASSERT_NE(m_process.processId(), 0) << "the program has ended";
    ::kill(static_cast<pid_t>(m_process.processId()), signal);
}

void RunnerProcess::sendSignalToGroup(int signal) {
    ASSERT_NE(m_process.processId(), 0) << "the program has ended";
    ::kill(-static_cast<pid_t>(m_process.processId()), signal);
}

void RunnerProcess::finish() {
    if (m_process.state() != QProcess::NotRunning &&
        !m_process.waitForFinished(patienceMilliseconds)) {
        ADD_FAILURE() << "the program does not end";
        m_process.kill();
        m_process.waitForFinished();
    }
    readAll();
    m_exitCode = m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode()
                                                                : -1 - m_process.exitCode();
}

void RunnerProcess::readAll() {
    m_output += QString::fromUtf8(m_process.readAllStandardOutput());
    m_errors += QString::fromUtf8(m_process.readAllStandardError());
}

}  // namespace Tamrix::Test
