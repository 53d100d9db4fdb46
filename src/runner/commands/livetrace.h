#pragma once

#include <QString>
#include <memory>

#include "base/outcome.h"
#include "runner/processes/childprocess.h"

namespace Tamrix {

/// Shows the trace of a run while it goes on: "tamrixrunner trace" as a child, which ends with this
/// object, or with the process however that ends.
class LiveTrace {
public:
    LiveTrace() = default;
    ~LiveTrace();
    LiveTrace(const LiveTrace&) = delete;
    LiveTrace& operator=(const LiveTrace&) = delete;

    /// Nothing for port 0. Fails when the port is not to be had. Tells where the page is.
    Outcome<> show(const QString& folder, quint16 port);

private:
    std::unique_ptr<ChildProcess> m_server;
};

}  // namespace Tamrix
