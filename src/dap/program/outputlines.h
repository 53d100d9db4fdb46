#pragma once

#include <QByteArray>
#include <variant>
#include <vector>

namespace Tamrix::Dap {

/// A line of the debugger's protocol, without prefix and line feed.
struct ProtocolLine {
    QByteArray text;
};

/// What else a program wrote, as it came: any part of lines.
struct ProgramOutput {
    QByteArray text;
};

using OutputPart = std::variant<ProtocolLine, ProgramOutput>;

/// Tells the lines of the debugger's protocol in a stream from what a script writes beside them.
/// The prefix counts anywhere in a line, since a script's text need not end with a line feed.
class OutputLines {
public:
    /// A longer line of the protocol is taken for output: nothing that is asked for is that long.
    static constexpr int longestLine = 64 * 1024 * 1024;

    /// What the bytes complete. Output goes out as soon as it can't be the start of a prefix.
    std::vector<OutputPart> add(const QByteArray& bytes);
    /// What is left at the end of the stream, which may be empty.
    QByteArray takeRest() { return std::exchange(m_buffer, {}); }

private:
    QByteArray m_buffer;
    /// How much of the buffer was searched for a line feed.
    int m_searched = 0;
};

}  // namespace Tamrix::Dap
