#pragma once

#include <QByteArray>
#include <optional>

namespace Tamrix::Mcp {

/// Takes the lines out of a stream that comes in pieces. Of a line that is too long nothing is
/// kept; those behind it are read as ever.
class LineReader {
public:
    explicit LineReader(int longestLine) : m_longest(longestLine) {}

    void append(const QByteArray& bytes);
    struct Line {
        /// Without its line feed; empty when it is too long.
        QByteArray text;
        bool isTooLong = false;
    };
    /// The next whole line, nothing as long as there is none.
    std::optional<Line> take();
    /// Whether a line has begun and is not whole.
    bool isInsideLine() const { return m_isSkipping || m_start < m_buffer.size(); }

private:
    int m_longest;
    QByteArray m_buffer;
    /// Where the next line begins, and up to where no line feed was found.
    int m_start = 0;
    int m_searched = 0;
    bool m_isSkipping = false;
};

}  // namespace Tamrix::Mcp
