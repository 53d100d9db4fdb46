// "tamrixrunner dap": editors that speak the Debug Adapter Protocol debug scripts.

#include <fcntl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <atomic>
#include <csignal>

#include "dap/listener.h"
#include "dap/program/childprogram.h"
#include "dap/server.h"
#include "runner/commands/command.h"
#include "runner/processes/terminal.h"

namespace Tamrix {

namespace {

constexpr int noPort = -1;

struct DapSettings {
    /// 0 for any free one; noPort for standard input and output.
    int port = noPort;
};

Outcome<> readPort(const QStringList& values, DapSettings& settings) {
    const int highestPort = 65535;
    bool isNumber = false;
    settings.port = values.constLast().toInt(&isNumber);
    if (!isNumber || settings.port < 0 || settings.port > highestPort)
        return wrongUsage(QStringLiteral("--port takes a number from 0 to 65535, not '%1'")
                              .arg(values.constLast()));
    return {};
}

Outcome<> readArguments(const CommandArguments&, DapSettings&) {
    return {};
}

/// The client's stream, and an empty one in its place once a signal asks this process to end.
std::atomic<int> s_input{-1};
std::atomic<int> s_empty{-1};

void endInput(int) {
    ::dup2(s_empty, s_input);
}

/// From the first signal on the client counts as gone, so that the run ends in order. The second
/// one ends this process.
void endInputBySignals(int input) {
    s_input = input;
    s_empty = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    struct sigaction action = {};
    action.sa_handler = endInput;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigemptyset(&action.sa_mask);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        ::sigaction(signal, &action, nullptr);
}

int serve(int input, int output) {
    endInputBySignals(input);
    DescriptorReader reader(input);
    DescriptorWriter writer(output);
    Dap::Server server(reader, writer, QCoreApplication::applicationFilePath(),
                       Dap::startChildProgram);
    server.serveToTheEnd();
    if (!server.problem().isEmpty())
        return failWith(QStringLiteral("the client can't be understood: %1").arg(server.problem()));
    return ExitSuccess;
}

int runServer(const DapSettings& settings) {
    if (settings.port == noPort)
        return serve(STDIN_FILENO, STDOUT_FILENO);
    const Outcome<Dap::Listener> listener = Dap::Listener::open(settings.port);
    if (!listener)
        return failWith(listener.error().text);
    tell(QStringLiteral("listening on port %1").arg(listener->port()));
    const Outcome<int> connection = listener->accept();
    if (!connection)
        return failWith(connection.error().text);
    const int exitCode = serve(*connection, *connection);
    ::close(*connection);
    return exitCode;
}

}  // namespace

Command dapCommand() {
    return makeCommand<DapSettings>({{"dap", "",
                                      "Debugs test cases for an editor: a server of the Debug "
                                      "Adapter Protocol for one client, on "
                                      "standard input and output.",
                                      0, 0},
                                     {{"port", "PORT",
                                       "Waits for the client at this port of the loopback instead; "
                                       "0 takes a free one and tells "
                                       "it.",
                                       nullptr, readPort}},
                                     {},
                                     readArguments,
                                     runServer});
}

}  // namespace Tamrix
