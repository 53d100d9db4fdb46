#pragma once

#include <gtest/gtest.h>

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <functional>

namespace Tamrix::Test {

/// A client of the Debug Adapter Protocol, as an editor is one, over any stream. Blocking: a
/// request waits for its response, and keeps the events that come before.
class DapClient {
public:
    struct Stream {
        std::function<void(const QByteArray& bytes)> write;
        /// Waits for more; empty bytes when none will come.
        std::function<QByteArray()> read;
    };
    explicit DapClient(Stream stream) : m_stream(std::move(stream)) {}

    /// The response, an empty object when none comes.
    QJsonObject request(const QString& command, const QJsonObject& arguments = {});
    /// Writes a request, and gives its number.
    int send(const QString& command, const QJsonObject& arguments = {});
    /// The response to the request with that number, which was sent.
    QJsonObject answer(int seq);
    /// The body of the response of a request that is to succeed.
    QJsonObject body(const QString& command, const QJsonObject& arguments = {});
    /// The error of one that is to fail.
    QString error(const QString& command, const QJsonObject& arguments = {});
    /// The body of the next such event, waiting for it; earlier events are passed over. An event
    /// without a body gives {"event": name}, the end of the stream a failure and an empty object.
    QJsonObject event(const QString& name);
    /// What a stop is told with, and where the script stands then: "breakpoint test.py:3".
    QString stop();
    /// The texts of all output so far with a category, each with its line: "test.py:3: text".
    QString output(const QString& category);

    /// Writes the initial requests up to the launch.
    void launch(const QJsonObject& arguments);
    /// Sets break points by lines, or by objects.
    QJsonArray setBreakPoints(const QString& path, const QJsonArray& breakPoints);
    /// The variables below a reference, or at the top for 0, by name.
    QJsonObject variables(int reference = 0);

    /// Every message that was sent or received, one a line.
    const QByteArray& dialogue() const { return m_dialogue; }
    /// Whether all of them are what the protocol knows, by its schema.
    testing::AssertionResult fitsProtocol() const;
    /// Writes bytes that may be no message.
    void writeRaw(const QByteArray& bytes) { m_stream.write(bytes); }
    /// The next message, whatever it is; an empty object at the end of the stream.
    QJsonObject receive();

private:
    Stream m_stream;
    QByteArray m_buffer;
    QByteArray m_dialogue;
    QList<QJsonObject> m_events;
    QList<QJsonObject> m_outputs;
    int m_seq = 0;
};

}  // namespace Tamrix::Test
