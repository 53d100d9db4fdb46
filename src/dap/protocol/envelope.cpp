#include "dap/protocol/envelope.h"

#include <QJsonDocument>
#include <cmath>

#include "base/utf8.h"

namespace Tamrix::Dap {

namespace {

/// Requests are numbered from 1 on; whatever else stands there is no number of a request.
std::optional<int> numberOf(const QJsonObject& object) {
    const double number = object.value(QLatin1String("seq")).toDouble(-1);
    if (number < 0 || number > 2'000'000'000 || std::trunc(number) != number)
        return std::nullopt;
    return static_cast<int>(number);
}

QByteArray compact(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

}  // namespace

tl::expected<Request, BadMessage> readRequest(const QByteArray& message) {
    const auto bad = [](const QString& problem, std::optional<int> seq = {}) {
        return tl::unexpected<BadMessage>({problem, seq});
    };
    // The parser would take other bytes in texts and drop them.
    if (validUtf8Length(message.constData(), message.constData() + message.size()) !=
        message.size())
        return bad(QStringLiteral("a message is not UTF-8"));
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(message, &error);
    if (error.error != QJsonParseError::NoError)
        return bad(QStringLiteral("a message is no JSON: %1 at byte %2")
                       .arg(error.errorString(), QString::number(error.offset)));
    if (!document.isObject())
        return bad(QStringLiteral("a message is no JSON object"));

    const QJsonObject object = document.object();
    const std::optional<int> seq = numberOf(object);
    if (!seq)
        return bad(QStringLiteral("a message has no number 'seq'"));
    const QJsonValue type = object.value(QLatin1String("type"));
    if (type != QLatin1String("request"))
        return bad(
            QStringLiteral("a message is no request, but its 'type' is '%1'").arg(type.toString()),
            seq);
    const QJsonValue command = object.value(QLatin1String("command"));
    if (!command.isString())
        return bad(QStringLiteral("a request has no text 'command'"), seq);
    const QJsonValue arguments = object.value(QLatin1String("arguments"));
    if (!arguments.isUndefined() && !arguments.isNull() && !arguments.isObject())
        return bad(QStringLiteral("the 'arguments' of '%1' are no object").arg(command.toString()),
                   seq);
    return Request{*seq, command.toString(), arguments.toObject()};
}

QByteArray written(const Response& response, int seq) {
    QJsonObject object{{"seq", seq},
                       {"type", "response"},
                       {"request_seq", response.requestSeq},
                       {"command", response.command},
                       {"success", !response.error}};
    // A failure always has a body, even if there is nothing to say in it.
    if (response.error)
        object.insert("message", *response.error);
    if (response.error || !response.body.isEmpty())
        object.insert("body", response.body);
    return compact(object);
}

QByteArray written(const Event& event, int seq) {
    QJsonObject object{{"seq", seq}, {"type", "event"}, {"event", event.event}};
    if (!event.body.isEmpty())
        object.insert("body", event.body);
    return compact(object);
}

}  // namespace Tamrix::Dap
