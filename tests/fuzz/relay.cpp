// What the other end of a relay sends.

#include "runner/relay/relaymessages.h"

#include "fuzz/fuzztarget.h"
#include "fuzz/quietqt.h"

using namespace Tamrix;

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    Fuzz::silenceQt();
    Relay::Inbox inbox;
    inbox.append(reinterpret_cast<const char*>(data), static_cast<int>(size));
    for (auto frame = inbox.take(); frame && *frame; frame = inbox.take()) {
        Relay::End end;
        if (Relay::decode((*frame)->body, &end))
            fuzzRequire(Relay::encode(end) == (*frame)->body, "what was read is written the same");
    }
    return 0;
}
