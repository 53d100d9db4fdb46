#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <utility>

namespace Tamrix::Test {

/// One run of the program tamrixrunner as a user starts it, with the environment of the test but
/// for what could change a run. Blocking; the process goes with the object.
class RunnerProcess {
public:
    RunnerProcess();
    ~RunnerProcess();

    // Before the start.
    /// Another copy of the program.
    void setProgram(const QString& path) { m_process.setProgram(path); }
    void setWorkingDirectory(const QString& path) { m_process.setWorkingDirectory(path); }
    /// A null value removes the variable.
    void setVariable(const QString& name, const QString& value);

    /// Starts the program and waits for its end.
    RunnerProcess& run(const QStringList& arguments);

    void start(const QStringList& arguments);
    /// The same with a pipe as standard input, for type() and closeInput().
    void startDialogue(const QStringList& arguments);
    void type(const QByteArray& text);
    void closeInput() { m_process.closeWriteChannel(); }
    /// Waits until the program has written the text to standard output; false when it ends or
    /// some minutes pass without.
    bool waitForOutput(const QString& text);
    bool waitForErrors(const QString& text);
    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    // To one that runs.
    void sendSignal(int signal);
    /// To the whole group of a program that leads one.
    void sendSignalToGroup(int signal);
    /// Waits for the end.
    void finish();

    /// The exit code; -1 and the number of the signal below that when a signal ended the program,
    /// so that -10 stands for SIGKILL.
    int exitCode() const { return m_exitCode; }
    QString output() const { return m_output; }
    /// What was written since the last call.
    QString takeOutput() { return std::exchange(m_output, QString()); }
    QString errors() const { return m_errors; }

private:
    void start(const QStringList& arguments, QIODevice::OpenMode mode);
    bool waitFor(const QString& text, const QString& stream);
    void readAll();

    QTemporaryDir m_settings;
    QProcess m_process;
    QString m_output;
    QString m_errors;
    int m_exitCode = -1;
};

}  // namespace Tamrix::Test
