#pragma once

#include <deque>
#include <memory>
#include <optional>

#include "base/bytestream.h"
#include "runner/mcp/protocol/linereader.h"
#include "runner/mcp/protocol/message.h"

namespace Tamrix::Mcp {

/// The other end of a stream. While a call is at work, serveMeanwhile() reads on: pings are
/// answered at once, cancellations are noted, all else waits for its turn. Single thread.
class Client {
public:
    /// A longer message is refused.
    static constexpr int longestMessage = 8 * 1024 * 1024;
    /// While so many messages wait for their turn, no more are read.
    static constexpr size_t mostWaiting = 1000;

    /// Neither is owned.
    Client(ByteReader& reader, ByteWriter& writer) : m_reader(reader), m_writer(writer) {}

    /// Reads what has come, without waiting. What is no request is answered here.
    void receive();
    /// The next request or notification, none as long as there is none. It is at work until the
    /// next call of answer().
    std::optional<Request> take();
    /// Answers what was taken last; a notification, and what was cancelled, gets no answer.
    void answer(const Json::Value& response);

    /// receive() while a request is at work. False once that was cancelled or the client has gone.
    bool serveMeanwhile();

    /// Whether nothing more will come, or nobody reads any more.
    bool hasEnded() const { return m_isGone || (m_hasReadAll && m_waiting.empty()); }
    /// For poll(), when more is to be read; -1 when there is nothing to watch.
    int descriptor() const;

private:
    /// The answers to a list of requests, which are given together.
    struct Batch {
        Json::Value answers{Json::arrayValue};
        int open = 0;
    };
    struct Pending {
        Request request;
        /// Null for a single one.
        std::shared_ptr<Batch> batch;
        bool isCancelled = false;
    };

    void takeLine(const LineReader::Line& line);
    void takeRequest(Pending pending);
    void cancel(const Json::Value& id);
    /// Hands an answer on, null for none.
    void finish(const Pending& pending, const Json::Value& response);
    void write(const Json::Value& message);

    ByteReader& m_reader;
    ByteWriter& m_writer;
    LineReader m_lines{longestMessage};
    std::deque<Pending> m_waiting;
    std::optional<Pending> m_current;
    bool m_hasReadAll = false;
    bool m_isGone = false;
};

}  // namespace Tamrix::Mcp
