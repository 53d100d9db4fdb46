#include "support/dapclient.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>

#include "support/files.h"

namespace Tamrix::Test {

QJsonObject DapClient::receive() {
    while (true) {
        const int headerEnd = m_buffer.indexOf("\r\n\r\n");
        if (headerEnd >= 0) {
            const QByteArray header = m_buffer.left(headerEnd);
            EXPECT_TRUE(header.startsWith("Content-Length: ")) << header.constData();
            const int length = header.mid(16).toInt();
            const int start = headerEnd + 4;
            if (m_buffer.size() >= start + length) {
                const QByteArray text = m_buffer.mid(start, length);
                m_buffer.remove(0, start + length);
                m_dialogue += text + '\n';
                QJsonObject message = QJsonDocument::fromJson(text).object();
                EXPECT_FALSE(message.isEmpty()) << text.constData();
                if (message["event"] == "output")
                    m_outputs.append(message["body"].toObject());
                return message;
            }
        }
        const QByteArray more = m_stream.read();
        if (more.isEmpty())
            return {};
        m_buffer += more;
    }
}

QJsonObject DapClient::request(const QString& command, const QJsonObject& arguments) {
    return answer(send(command, arguments));
}

int DapClient::send(const QString& command, const QJsonObject& arguments) {
    QJsonObject message{{"seq", ++m_seq}, {"type", "request"}, {"command", command}};
    if (!arguments.isEmpty())
        message["arguments"] = arguments;
    const QByteArray text = QJsonDocument(message).toJson(QJsonDocument::Compact);
    m_dialogue += text + '\n';
    m_stream.write("Content-Length: " + QByteArray::number(text.size()) + "\r\n\r\n" + text);
    return m_seq;
}

QJsonObject DapClient::answer(int seq) {
    while (true) {
        const QJsonObject message = receive();
        if (message.isEmpty() ||
            (message["type"] == "response" && message["request_seq"].toInt() == seq))
            return message;
        m_events.append(message);
    }
}

QJsonObject DapClient::body(const QString& command, const QJsonObject& arguments) {
    const QJsonObject response = request(command, arguments);
    EXPECT_TRUE(response["success"].toBool())
        << qPrintable(command) << ": " << qPrintable(response["message"].toString());
    return response["body"].toObject();
}

QString DapClient::error(const QString& command, const QJsonObject& arguments) {
    const QJsonObject response = request(command, arguments);
    EXPECT_TRUE(response.contains("success") && !response["success"].toBool())
        << qPrintable(command);
    return response["message"].toString();
}

QJsonObject DapClient::event(const QString& name) {
    while (true) {
        const QJsonObject message = m_events.isEmpty() ? receive() : m_events.takeFirst();
        if (message.isEmpty()) {
            ADD_FAILURE() << "no event " << qPrintable(name);
            return {};
        }
        if (message["event"] == name)
            return message.contains("body") ? message["body"].toObject()
                                            : QJsonObject{{"event", name}};
    }
}

QString DapClient::stop() {
    const QJsonObject stopped = event("stopped");
    if (stopped.isEmpty())
        return {};
    const QJsonArray frames = body("stackTrace", {{"threadId", 1}})["stackFrames"].toArray();
    const QJsonObject top = frames.at(0).toObject();
    return QStringLiteral("%1 %2:%3")
        .arg(stopped["reason"].toString(), top["source"].toObject()["name"].toString(),
             QString::number(top["line"].toInt()));
}

QString DapClient::output(const QString& category) {
    QString text;
    for (const QJsonObject& output : qAsConst(m_outputs)) {
        if (output["category"] != category)
            continue;
        if (output.contains("source"))
            text += QStringLiteral("%1:%2: ").arg(output["source"].toObject()["name"].toString(),
                                                  QString::number(output["line"].toInt()));
        text += output["output"].toString();
    }
    return text;
}

void DapClient::launch(const QJsonObject& arguments) {
    body("initialize", {{"adapterID", "tamrix"}, {"supportsInvalidatedEvent", true}});
    event("initialized");
    body("launch", arguments);
}

QJsonArray DapClient::setBreakPoints(const QString& path, const QJsonArray& breakPoints) {
    QJsonArray wanted;
    for (const QJsonValue& each : breakPoints)
        wanted.append(each.isObject() ? each.toObject() : QJsonObject{{"line", each.toInt()}});
    return body("setBreakpoints",
                {{"source", QJsonObject{{"path", path}}}, {"breakpoints", wanted}})["breakpoints"]
        .toArray();
}

QJsonObject DapClient::variables(int reference) {
    if (reference == 0) {
        const QJsonArray scopes = body("scopes", {{"frameId", 1}})["scopes"].toArray();
        reference = scopes.at(0).toObject()["variablesReference"].toInt();
    }
    QJsonObject byName;
    const QJsonObject answer = body("variables", {{"variablesReference", reference}});
    for (const auto& each : answer["variables"].toArray())
        byName.insert(each.toObject()["name"].toString(), each);
    return byName;
}

testing::AssertionResult DapClient::fitsProtocol() const {
    const QTemporaryDir folder;
    const QString messages = folder.filePath("messages");
    if (!writeFile(messages, m_dialogue))
        return testing::AssertionFailure() << "the messages can't be written";
    QProcess check;
    check.setProcessChannelMode(QProcess::MergedChannels);
    check.start("/usr/bin/python3",
                {TAMRIX_TEST_SOURCE_DIR "/tests/dap/debugprotocol/check.py", messages});
    if (check.waitForFinished() && check.exitStatus() == QProcess::NormalExit &&
        check.exitCode() == 0)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << check.readAll().constData();
}

}  // namespace Tamrix::Test
