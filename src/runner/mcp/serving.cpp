#include "runner/mcp/serving.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QDeadlineTimer>

#include "runner/applications/usersockets.h"
#include "runner/mcp/server.h"
#include "runner/mcp/session/session.h"
#include "runner/mcp/tools/arguments.h"
#include "runner/processes/interrupt.h"

namespace Tamrix::Mcp {

namespace {

/// Between two looks at what the programs tell without being asked, in ms.
constexpr int pollInterval = 200;
/// How long a session without a client is kept.
constexpr int clientPatience = 60 * 60 * 1000;

/// A session, and the client that it serves at the moment.
class Serving {
public:
    explicit Serving(const QString& display)
        : m_session(display, [this] { return !m_server || m_server->serveMeanwhile(); }) {}

    /// Until the client has gone.
    void serve(ByteReader& reader, ByteWriter& writer) {
        Server server(
            reader, writer, allTools(),
            [this](const Tool& tool, const Json::Value& values) { return call(tool, values); });
        m_server = &server;
        while (Interrupt::signalNumber() == 0 && server.serve())
            rest(server.descriptor());
        m_server = nullptr;
    }
    /// Waits a moment until the descriptor is readable. Whether it is.
    bool rest(int descriptor) {
        pollfd watched{descriptor, POLLIN, 0};
        const bool isReadable = ::poll(&watched, 1, pollInterval) > 0;
        m_session.applications().work();
        return isReadable;
    }

private:
    Outcome<ToolAnswer> call(const Tool& tool, const Json::Value& values) {
        const Outcome<Arguments> arguments = Arguments::read(tool, values);
        if (!arguments)
            return fail(arguments.error());
        return tool.call(m_session, *arguments);
    }

    Server* m_server = nullptr;
    Session m_session;
};

Outcome<> serveAt(const QString& socket, Serving& serving) {
    UserSocketListener listener;
    if (const Outcome<> listening = listener.takeOver(socket); !listening)
        return listening;
    QDeadlineTimer patience(clientPatience);
    while (Interrupt::signalNumber() == 0 && !patience.hasExpired()) {
        if (!serving.rest(listener.descriptor()))
            continue;
        const int descriptor = ::accept4(listener.descriptor(), nullptr, nullptr, SOCK_CLOEXEC);
        if (descriptor < 0)
            continue;
        DescriptorReader reader(descriptor);
        DescriptorWriter writer(descriptor);
        serving.serve(reader, writer);
        // Whoever asked for the end sees it by the end of the connection, behind the programs'.
        if (Interrupt::signalNumber() == 0)
            ::close(descriptor);
        patience = QDeadlineTimer(clientPatience);
    }
    return {};
}

}  // namespace

Outcome<int> serveClients(const ServingOptions& options) {
    Interrupt::install();
    Serving serving(options.display);
    if (options.socket.isEmpty()) {
        DescriptorReader reader(STDIN_FILENO);
        DescriptorWriter writer(STDOUT_FILENO);
        serving.serve(reader, writer);
    } else if (const Outcome<> served = serveAt(options.socket, serving); !served) {
        return fail(served.error());
    }
    const int signal = Interrupt::signalNumber();
    return signal == 0 ? 0 : Interrupt::exitCode(signal);
}

}  // namespace Tamrix::Mcp
