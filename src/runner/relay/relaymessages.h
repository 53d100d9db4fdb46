#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>
#include <optional>

#include "base/outcome.h"

/// What the two helpers tell each other between which a program on another machine stands:
/// tamrixremote here, tamrixrelay there.
namespace Tamrix::Relay {

/// Raised with every change; the agent's own version is part of the greeting, too.
inline constexpr int protocolVersion = 1;
/// What a greeting is: both sides must be of the same build of the protocol.
QByteArray greeting();

/// The longest body, in bytes.
inline constexpr quint32 longestBody = 1024 * 1024;
/// How often the helper here gives a sign of life, and for how long that there goes on without, in
/// milliseconds.
inline constexpr int aliveInterval = 5000;
inline constexpr int alivePatience = 60000;

enum class Type : quint8 {
    Hello = 1,   ///< from there, first: greeting()
    Start = 2,   ///< from here, first: encode(Start)
    Failed = 3,  ///< from there: the program could not be started, and why
    Open = 4,    ///< from there: an agent has connected; it gets the number of a link
    Data = 5,    ///< bytes of a link
    Close = 6,   ///< a link has ended
    Output = 7,  ///< from there: what the program wrote
    Errors = 8,  ///< the same to standard error
    Ended = 9,   ///< from there, last: encode(End)
    Stop = 10,   ///< from here: end the program
    Alive = 11   ///< from here, now and then
};

struct Frame {
    Type type = Type::Alive;
    /// 0 for what is of no link.
    quint32 link = 0;
    QByteArray body;
};
QByteArray encode(const Frame& frame);

/// Cuts a stream into frames.
class Inbox {
public:
    void append(const char* bytes, int size) { m_bytes.append(bytes, size); }
    /// Fails for what can be no frame; the stream is of no use then.
    Outcome<std::optional<Frame>> take();

private:
    QByteArray m_bytes;
};

/// What is to be started there.
struct Start {
    /// Program and arguments; the program is looked for there.
    QStringList words;
    /// The name of the launcher.
    QString hook;
    /// Empty for the user's home folder.
    QString workingDirectory;
    QList<QPair<QString, QString>> environment;
    /// By which the agent authenticates itself.
    QString token;
};
QByteArray encode(const Start& start);
bool decode(const QByteArray& bytes, Start* start);

struct End {
    qint32 exitCode = 0;
    /// 0 for none.
    qint32 signal = 0;
};
QByteArray encode(const End& end);
bool decode(const QByteArray& bytes, End* end);

}  // namespace Tamrix::Relay
