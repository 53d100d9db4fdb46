#pragma once

#include <QDataStream>
#include <QIODevice>
#include <QtGlobal>

#include "wire/connection.h"

/// What runner and agent agree on. Every number that goes over the connection stands here once.
namespace Tamrix::Wire {

/// First number of every hello: anything else at the socket is no agent.
inline constexpr quint32 magicNumber = 0x544d5258;  // "TMRX"

/// Raised with every change of an encoding. Both sides must have the same.
inline constexpr quint16 protocolVersion = 6;

/// The encoding of Qt's own types, fixed whatever Qt the application uses.
inline constexpr QDataStream::Version streamVersion = QDataStream::Qt_5_12;

/// Longest body of a frame, in bytes. A longer one ends the connection.
inline constexpr quint32 maximalBodySize = 256U * 1024 * 1024;

/// Longest body that is read from a peer that has not shown its token yet.
inline constexpr quint32 maximalHelloSize = 64U * 1024;

/// How deep values and names may be nested in each other.
inline constexpr int maximalDepth = 16;

/// How many elements a list may have, and how many values a value, nested ones included.
inline constexpr quint32 maximalCount = 1'000'000;

/// Types of messages. The struct of the same name in messages.h is the body; "->" names that of the
/// reply. A request is answered by a Reply or a Failure with its sequence number, one with a target
/// perhaps by Missed.
enum class MessageType : quint16 {
    // Handshake. Sequence 0.
    Hello = 1,    ///< agent to runner, first message
    Welcome = 2,  ///< runner to agent, no body
    Refusal = 3,  ///< runner to agent: Text, then the connection is closed

    // Answers, agent to runner.
    Reply = 10,
    Failure = 11,  ///< Failure, its kind as the number of FailureKind
    Missed = 12,   ///< Missed: the target was not there, or not as wanted, in time

    // Without request, agent to runner. Sequence 0.
    EventFired = 20,  ///< EventFired
    Observed = 21,    ///< Observation

    // Requests, runner to agent.
    Ping = 30,                 ///< no body -> no body; answered at once when it is read
    Sync = 31,                 ///< no body -> no body; answered when the event loop is idle
    LookUp = 32,               ///< LookUp -> LookUpResult
    FindItem = 33,             ///< FindItem -> LookUpResult
    TopLevelObjects = 34,      ///< no body -> ObjectInfoList
    Children = 35,             ///< ObjectHandle -> ObjectInfoList
    Parent = 36,               ///< ObjectHandle -> ObjectInfo, handle 0 for none
    RealName = 37,             ///< ObjectHandle -> Text
    DescribeClass = 38,        ///< Text (name) -> ClassInfo, empty name for an unknown class
    ReadProperty = 39,         ///< PropertyAccess -> Value
    ReadProperties = 40,       ///< ObjectHandle -> Value (map)
    WriteProperty = 41,        ///< PropertyAccess -> no body
    Invoke = 42,               ///< Invoke -> Value
    GlobalBounds = 43,         ///< ObjectHandle -> Value (QRect)
    Snapshot = 44,             ///< Snapshot -> Value (QByteArray)
    MouseEvent = 45,           ///< MouseEvent -> no body, answered before the event is delivered
    KeyEvent = 46,             ///< KeyEvent -> no body, answered before the event is delivered
    Highlight = 47,            ///< Highlight -> no body
    StopHighlight = 48,        ///< no body -> no body
    NativeRequest = 49,        ///< NativeRequest -> Value
    InstallHandler = 50,       ///< EventHandler -> no body
    UninstallHandler = 51,     ///< EventHandler -> no body
    SendEvent = 52,            ///< SendEvent -> no body
    EnvironmentVariable = 53,  ///< Text (name) -> Text
    ListObjects = 55,          ///< no body -> ObjectListing
    Quit = 54,                 ///< no body -> no body; then the windows are asked to close
    Expect = 56,               ///< Expect -> LookUpResult
    Act = 57,                  ///< Act -> ActResult, answered before the input is delivered
    FindMatches = 58,          ///< Query -> MatchList
    ObjectAt = 59,             ///< ScreenPoint -> ObjectInfo, handle 0 for none
    ListNames = 60,            ///< ObjectHandle -> TextList, the best first; none is checked
    Record = 61,               ///< Record -> no body
    OutlineObjects = 70        ///< no body -> ObjectOutline
};

}  // namespace Tamrix::Wire
