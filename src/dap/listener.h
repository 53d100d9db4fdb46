#pragma once

#include "base/outcome.h"

namespace Tamrix::Dap {

/// Waits for one client on the loopback.
class Listener {
public:
    /// Port 0 takes a free one. A port that can't be had is a failure.
    static Outcome<Listener> open(int port);
    ~Listener();
    Listener(Listener&& other) noexcept;
    Listener& operator=(Listener&&) = delete;

    int port() const { return m_port; }
    /// The connection's descriptor, which the caller owns.
    Outcome<int> accept() const;

private:
    Listener(int descriptor, int port) : m_descriptor(descriptor), m_port(port) {}

    int m_descriptor;
    int m_port;
};

}  // namespace Tamrix::Dap
