#include "runner/mcp/protocol/message.h"

#include <cmath>

namespace Tamrix::Mcp {

namespace {

Json::Value envelope(const Json::Value& id) {
    Json::Value message(Json::objectValue);
    message["jsonrpc"] = "2.0";
    message["id"] = id;
    return message;
}

/// A number is one that comes back as it came.
bool isId(const Json::Value& id) {
    constexpr double largest = 1e15;
    return id.isString() || id.isIntegral() || (id.isDouble() && std::abs(id.asDouble()) < largest);
}

/// Takes one message of a line.
void readOne(const Json::Value& value, Message* message) {
    const auto refuse = [&](const Json::Value& id, const QString& text) {
        message->errors.push_back(errorResponse(id, ErrorCode::InvalidRequest, text));
    };
    if (!value.isObject())
        return refuse(Json::nullValue, QStringLiteral("the message is no object"));
    const Json::Value id = isId(value["id"]) ? value["id"] : Json::Value();
    if (value["jsonrpc"] != "2.0")
        return refuse(id, QStringLiteral("the message's \"jsonrpc\" is not \"2.0\""));
    if (!value.isMember("method")) {
        // The answer to a request: there was none.
        if (value.isMember("result") || value.isMember("error"))
            return;
        return refuse(id, QStringLiteral("the message has no \"method\""));
    }
    if (!value["method"].isString())
        return refuse(id, QStringLiteral("the message's \"method\" is no text"));
    Request request;
    request.method = value["method"].asString();
    request.isNotification = !value.isMember("id");
    if (!request.isNotification && !isId(value["id"]))
        return refuse(id, QStringLiteral("the message's \"id\" is neither a text nor a number that comes "
                                         "back as it came"));
    request.id = id;
    if (value.isMember("params") && !value["params"].isNull())
        request.params = value["params"];
    if (!request.params.isObject()) {
        if (!request.isNotification)
            message->errors.push_back(
                errorResponse(id, ErrorCode::InvalidParams,
                              QStringLiteral("the message's \"params\" is no object")));
        return;
    }
    message->requests.push_back(std::move(request));
}

}  // namespace

Json::Value response(const Json::Value& id, const Json::Value& result) {
    Json::Value message = envelope(id);
    message["result"] = result;
    return message;
}

Json::Value errorResponse(const Json::Value& id, ErrorCode code, const QString& text) {
    Json::Value message = envelope(id);
    message["error"]["code"] = static_cast<int>(code);
    message["error"]["message"] = jsonText(text);
    return message;
}

Message readMessage(const QByteArray& line) {
    Message message;
    const Outcome<Json::Value> value = parseJson(line);
    if (!value) {
        message.errors.push_back(
            errorResponse(Json::nullValue, ErrorCode::ParseError, value.error().text));
        return message;
    }
    if (!value->isArray()) {
        readOne(*value, &message);
        return message;
    }
    message.isBatch = true;
    for (const Json::Value& each : *value)
        readOne(each, &message);
    if (value->empty()) {
        message.isBatch = false;
        message.errors.push_back(errorResponse(Json::nullValue, ErrorCode::InvalidRequest,
                                               QStringLiteral("the list of messages is empty")));
    }
    return message;
}

}  // namespace Tamrix::Mcp
