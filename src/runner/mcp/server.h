#pragma once

#include <functional>
#include <optional>

#include "runner/mcp/protocol/client.h"
#include "runner/mcp/tools/tool.h"

namespace Tamrix::Mcp {

/// Serves one client of the Model Context Protocol: tells it of the tools and calls them. Single
/// thread.
class Server {
public:
    /// Calls a tool; what goes wrong is told to the client.
    using Call = std::function<Outcome<ToolAnswer>(const Tool& tool, const Json::Value& arguments)>;

    /// `reader` and `writer` are not owned, nor is the list of tools.
    Server(ByteReader& reader, ByteWriter& writer, const std::vector<Tool>& tools, Call call);

    /// Answers what has come, in its order. False once the client has gone.
    bool serve();
    /// For poll(): readable when serve() has something to do; -1 when there is nothing to watch.
    int descriptor() const { return m_client.descriptor(); }
    /// To be called while a tool waits. False when the wait is to be given up.
    bool serveMeanwhile() { return m_client.serveMeanwhile(); }

private:
    Json::Value answerTo(const Request& request);
    Json::Value initialize(const Json::Value& params) const;
    Json::Value callTool(const Request& request);

    Client m_client;
    const std::vector<Tool>& m_tools;
    Call m_call;
};

/// An answer, or a failure, as the result of a call.
Json::Value toolResult(const Outcome<ToolAnswer>& answer);

}  // namespace Tamrix::Mcp
