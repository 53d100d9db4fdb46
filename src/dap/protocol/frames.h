#pragma once

#include <QByteArray>
#include <optional>

#include "base/outcome.h"

// How messages follow one another in a stream: each behind a header of lines that end in CR LF,
// one of which is "Content-Length: N", and an empty line.

namespace Tamrix::Dap {

/// The message with its header in front.
QByteArray framed(const QByteArray& message);

/// Takes the messages out of a stream that comes in pieces. A stream that is not framed as it is to
/// be can't be read on: the first failure is for good.
class FrameReader {
public:
    /// The longest message that is taken; a longer one is a failure before any of it is kept.
    static constexpr int longestMessage = 64 * 1024 * 1024;
    static constexpr int longestHeader = 4096;

    void append(const QByteArray& bytes) { m_buffer += bytes; }
    /// The next whole message, nothing as long as there is none.
    Outcome<std::optional<QByteArray>> take();
    /// Whether a message has begun and is not whole.
    bool isInsideMessage() const { return !m_buffer.isEmpty() || m_length >= 0; }

private:
    Outcome<> readHeader(const QByteArray& header);

    QByteArray m_buffer;
    /// Of the message whose header was read, -1 before that.
    int m_length = -1;
};

}  // namespace Tamrix::Dap
