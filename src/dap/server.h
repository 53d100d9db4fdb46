#pragma once

#include <QString>

#include "dap/protocol/client.h"
#include "dap/session/session.h"

namespace Tamrix::Dap {

/// Serves one client: answers its requests in their order, and tells it what the run does. Single
/// thread; whatever has to wait for the run waits here, with the client's stream read meanwhile.
class Server {
public:
    /// `reader` and `writer` are not owned.
    Server(ByteReader& reader, ByteWriter& writer, const QString& runner, ProgramStarter start);

    /// Waits at most so many milliseconds (-1 for no limit) for something to happen and does it.
    /// False once the session is over or the client has gone.
    bool serve(int milliseconds);
    /// Until then. Ends the run.
    void serveToTheEnd();
    /// Why the client's stream could not be read to its end; empty when it could.
    QString problem() const { return m_client.problem(); }

private:
    void wait(int milliseconds);
    void answer(const Request& request);

    Client m_client;
    Session m_session;
};

}  // namespace Tamrix::Dap
