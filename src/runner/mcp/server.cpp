#include "runner/mcp/server.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Tamrix::Mcp {

namespace {

/// The versions of the protocol that are spoken, the newest first.
constexpr const char* protocolVersions[] = {"2025-06-18", "2025-03-26", "2024-11-05"};

constexpr char instructions[] =
    "Drives programs with graphical user interfaces and writes tests for them. Start a program, "
    "look at it with snapshot, act by refs; each act answers with what changed and with the script "
    "line that does the same. wait with properties states what must hold. record_to makes a test "
    "case of it all, run_case runs it.";

/// Of a failure, which may quote what it was given.
constexpr int longestFailure = 2000;

QString shortened(const QString& failure) {
    return failure.size() <= longestFailure
               ? failure
               : QStringLiteral("%1... (%2 characters)")
                     .arg(failure.left(longestFailure), QString::number(failure.size()));
}

Json::Value textContent(const QString& text) {
    Json::Value content(Json::objectValue);
    content["type"] = "text";
    content["text"] = jsonText(text);
    return content;
}

}  // namespace

Json::Value toolResult(const Outcome<ToolAnswer>& answer) {
    Json::Value result(Json::objectValue);
    Json::Value& content = result["content"];
    content = Json::Value(Json::arrayValue);
    result["isError"] = !answer.has_value();
    content.append(textContent(answer ? answer->text : shortened(answer.error().text)));
    if (answer && !answer->picture.isEmpty()) {
        Json::Value picture(Json::objectValue);
        picture["type"] = "image";
        picture["data"] = answer->picture.toBase64().toStdString();
        picture["mimeType"] = "image/png";
        content.append(picture);
    }
    return result;
}

Server::Server(ByteReader& reader, ByteWriter& writer, const std::vector<Tool>& tools, Call call)
    : m_client(reader, writer), m_tools(tools), m_call(std::move(call)) {}

bool Server::serve() {
    m_client.receive();
    while (const std::optional<Request> request = m_client.take()) {
        m_client.answer(answerTo(*request));
        // What waited while there was no room.
        m_client.receive();
    }
    return !m_client.hasEnded();
}

Json::Value Server::initialize(const Json::Value& params) const {
    const Json::Value& wanted = params["protocolVersion"];
    const auto version = std::find_if(std::begin(protocolVersions), std::end(protocolVersions),
                                      [&](const char* each) { return wanted == each; });
    Json::Value result(Json::objectValue);
    // A client that speaks none of them gets the newest, and decides.
    result["protocolVersion"] =
        version == std::end(protocolVersions) ? protocolVersions[0] : *version;
    result["capabilities"]["tools"] = Json::Value(Json::objectValue);
    result["serverInfo"]["name"] = "tamrix";
    result["serverInfo"]["version"] = TAMRIX_VERSION;
    result["instructions"] = instructions;
    return result;
}

Json::Value Server::callTool(const Request& request) {
    const Json::Value& name = request.params["name"];
    if (!name.isString())
        return errorResponse(request.id, ErrorCode::InvalidParams,
                             QStringLiteral("tools/call: \"name\" is no text"));
    const Tool* const tool = findTool(m_tools, textOf(name));
    if (!tool)
        return errorResponse(request.id, ErrorCode::InvalidParams,
                             QStringLiteral("there is no tool '%1'").arg(textOf(name)));
    return response(request.id, toolResult(m_call(*tool, request.params["arguments"])));
}

Json::Value Server::answerTo(const Request& request) {
    if (request.method == "initialize")
        return response(request.id, initialize(request.params));
    if (request.method == "tools/list") {
        Json::Value result(Json::objectValue);
        result["tools"] = describeTools(m_tools);
        return response(request.id, result);
    }
    if (request.method == "tools/call")
        return callTool(request);
    return errorResponse(
        request.id, ErrorCode::MethodNotFound,
        QStringLiteral("there is no method '%1'").arg(QString::fromStdString(request.method)));
}

}  // namespace Tamrix::Mcp
