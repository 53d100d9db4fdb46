#pragma once

#include <json/json.h>

#include <QByteArray>
#include <QString>
#include <optional>
#include <string>
#include <vector>

#include "runner/mcp/protocol/json.h"

// The messages of JSON-RPC 2.0, one a line.

namespace Tamrix::Mcp {

/// The numbers of errors.
enum class ErrorCode {
    ParseError = -32700,
    InvalidRequest = -32600,
    MethodNotFound = -32601,
    InvalidParams = -32602
};

/// A request, or a notification, which nobody answers.
struct Request {
    /// A number or a text.
    Json::Value id;
    bool isNotification = false;
    std::string method;
    /// An object; empty when there are none.
    Json::Value params{Json::objectValue};
};

Json::Value response(const Json::Value& id, const Json::Value& result);
Json::Value errorResponse(const Json::Value& id, ErrorCode code, const QString& text);

/// What stands in a line.
struct Message {
    /// In their order; of a single one there is one.
    std::vector<Request> requests;
    /// What is answered at once to what is no request.
    std::vector<Json::Value> errors;
    /// Whether it is a list, which is answered by a list.
    bool isBatch = false;
};

/// Reads a line. Whatever it holds, there is an answer: responses of the client, of which none is
/// waited for, are passed over.
Message readMessage(const QByteArray& line);

}  // namespace Tamrix::Mcp
