#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>

#include "dap/program/program.h"
#include "support/dapclient.h"

namespace Tamrix::Test {

/// A program that speaks over its standard input and output, started as an editor starts it, with
/// the environment of the test but for what could change a run. Ends with the object.
class DapProcess {
public:
    DapProcess(const QString& program, const QStringList& arguments,
               const Dap::TextMap& environment = {});

    /// What speaks with it.
    DapClient::Stream stream();
    void sendSignal(int signal) { m_program->signal(signal); }
    /// Waits for the end and returns the exit code.
    int exitCode();
    /// What it has written to standard error.
    QByteArray errors() const { return m_errors; }

private:
    /// Waits for what it writes; nothing once it has ended, or for a minute nothing came.
    QByteArray read();
    QByteArray readOnce();

    QTemporaryDir m_settings;
    std::unique_ptr<Dap::Program> m_program;
    QByteArray m_errors;
};

}  // namespace Tamrix::Test
