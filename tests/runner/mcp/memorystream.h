#pragma once

#include <json/json.h>

#include <utility>

#include "base/bytestream.h"
#include "runner/mcp/protocol/json.h"

namespace Tamrix::Test {

/// Both directions of a client's stream, in memory.
struct ClientStream : ByteReader, ByteWriter {
    State read(QByteArray* bytes) override {
        bytes->append(std::exchange(toServer, {}));
        return isClosed ? State::Ended : State::Open;
    }
    bool write(const QByteArray& bytes) override {
        toClient += bytes;
        return true;
    }
    bool isOpen() const override { return !isGone; }

    /// The messages since the last call, in their order.
    Json::Value takeMessages() {
        Json::Value messages(Json::arrayValue);
        for (const QByteArray& line : std::exchange(toClient, {}).split('\n')) {
            if (!line.isEmpty())
                messages.append(Mcp::parseJson(line).value_or(Json::Value("no JSON")));
        }
        return messages;
    }

    QByteArray toServer;
    QByteArray toClient;
    bool isClosed = false;
    bool isGone = false;
};

}  // namespace Tamrix::Test
