#pragma once

#include <poll.h>

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "base/outcome.h"
#include "dap/protocol/json.h"

namespace Tamrix::Dap {

/// How a debugged program is started.
struct ProgramStart {
    QString program;
    QStringList arguments;
    /// On top of the environment of this process.
    TextMap environment;
};

/// A running program with a debugger in it. Nothing waits here.
class Program {
public:
    virtual ~Program() = default;

    /// A piece of what the program wrote.
    struct Piece {
        QByteArray bytes;
        bool isError = false;
    };
    /// What has come since the last call, in the order in which it was read.
    virtual std::vector<Piece> receive() = 0;
    /// Hands over what the program is to read. What an ended program would have read is dropped.
    virtual void write(const QByteArray& bytes) = 0;
    /// Whether the program has read all of that, and had the time to do what it says.
    virtual bool hasTakenInput() = 0;
    /// Sends a signal.
    virtual void signal(int number) = 0;
    /// The exit code, or 128 and the number of the signal that ended the program. Nothing as long
    /// as it runs, or something that it wrote was not received.
    virtual std::optional<int> exitCode() = 0;
    /// Adds what poll() is to watch.
    virtual void watch(std::vector<pollfd>* watched) const = 0;
};

/// Starts a program.
using ProgramStarter = std::function<Outcome<std::unique_ptr<Program>>(const ProgramStart& start)>;

}  // namespace Tamrix::Dap
