// The bytes of a connection: frames, and the bodies of all messages.

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>

#include "fuzz/fuzztarget.h"
#include "fuzz/quietqt.h"
#include "wire/framechannel.h"
#include "wire/messages.h"
#include "wire/observations.h"

using namespace Tamrix::Wire;

namespace {

/// What was read is written and read again as the same.
template <typename Body>
void tryBody(const QByteArray& bytes) {
    Body body;
    if (!decode(bytes, &body))
        return;
    const QByteArray written = encode(body);
    Body again;
    fuzzRequire(decode(written, &again), "what was read can be written and read again");
    fuzzRequire(encode(again) == written, "a body stays as it was");
}

void tryFrame(const Frame& frame) {
    switch (frame.type) {
        case MessageType::Hello:
            return tryBody<Hello>(frame.body);
        case MessageType::Failure:
            return tryBody<Failure>(frame.body);
        case MessageType::EventFired:
            return tryBody<EventFired>(frame.body);
        case MessageType::Observed:
            return tryBody<Observation>(frame.body);
        case MessageType::LookUp:
            return tryBody<LookUp>(frame.body);
        case MessageType::Expect:
            return tryBody<Expect>(frame.body);
        case MessageType::Missed:
            return tryBody<Missed>(frame.body);
        case MessageType::Act:
            return tryBody<Act>(frame.body);
        case MessageType::FindMatches:
            return tryBody<Query>(frame.body);
        case MessageType::FindItem:
            return tryBody<FindItem>(frame.body);
        case MessageType::WriteProperty:
            return tryBody<PropertyAccess>(frame.body);
        case MessageType::Invoke:
            return tryBody<Invoke>(frame.body);
        case MessageType::MouseEvent:
            return tryBody<MouseEvent>(frame.body);
        case MessageType::KeyEvent:
            return tryBody<KeyEvent>(frame.body);
        case MessageType::NativeRequest:
            return tryBody<NativeRequest>(frame.body);
        case MessageType::InstallHandler:
            return tryBody<EventHandler>(frame.body);
        case MessageType::SendEvent:
            return tryBody<SendEvent>(frame.body);
        case MessageType::Record:
            return tryBody<Record>(frame.body);
        default:
            // An answer is read as what the request says.
            tryBody<Value>(frame.body);
            tryBody<Text>(frame.body);
            tryBody<ObjectInfoList>(frame.body);
            tryBody<LookUpResult>(frame.body);
            tryBody<ClassInfo>(frame.body);
            tryBody<ActResult>(frame.body);
            tryBody<MatchList>(frame.body);
            tryBody<ObjectOutline>(frame.body);
            tryBody<TextList>(frame.body);
    }
}

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    Tamrix::Fuzz::silenceQt();
    int ends[2];
    fuzzRequire(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends) == 0, "there are sockets");
    FrameChannel channel(ends[0]);
    constexpr std::size_t chunkSize = 4096;
    for (std::size_t sent = 0; sent < size && channel.isOpen(); sent += chunkSize) {
        const std::size_t count = std::min(chunkSize, size - sent);
        fuzzRequire(::write(ends[1], data + sent, count) == static_cast<ssize_t>(count),
                    "the socket takes a block");
        channel.receive();
        while (const auto frame = channel.takeFrame())
            tryFrame(*frame);
    }
    ::close(ends[1]);
    return 0;
}
