#pragma once

/// Environment variables by which a process finds its runner. No more than the C runtime is needed
/// here: they are read before anything else is loaded.
namespace Tamrix::Wire {

/// Where the agent finds its runner: the path of a local socket.
inline constexpr char connectVariable[] = "TAMRIX_AGENT_CONNECT";
/// The token by which the agent authenticates itself in the handshake.
inline constexpr char tokenVariable[] = "TAMRIX_AGENT_TOKEN";

}  // namespace Tamrix::Wire
