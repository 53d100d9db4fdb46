#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <optional>

#include "base/outcome.h"

// What is around every message, whatever it says.

namespace Tamrix::Dap {

struct Request {
    int seq = 0;
    QString command;
    QJsonObject arguments;
};

struct Response {
    int requestSeq = 0;
    QString command;
    /// Nothing for a success.
    std::optional<QString> error;
    /// Empty for a response without one.
    QJsonObject body;
};

struct Event {
    QString event;
    /// Empty for an event without one.
    QJsonObject body;
};

/// A message of a client that is no request that could be answered.
struct BadMessage {
    /// What is wrong with it, a whole sentence without full stop.
    QString problem;
    /// Its number, where it has one: it is answered then.
    std::optional<int> seq;
};

/// Reads what a client sends. Bytes that are no JSON, or JSON that is nested too deeply, are a
/// message without a number.
tl::expected<Request, BadMessage> readRequest(const QByteArray& message);

QByteArray written(const Response& response, int seq);
QByteArray written(const Event& event, int seq);

}  // namespace Tamrix::Dap
