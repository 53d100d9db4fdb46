#include "runner/mcp/protocol/linereader.h"

namespace Tamrix::Mcp {

void LineReader::append(const QByteArray& bytes) {
    m_buffer.remove(0, m_start);
    m_searched -= m_start;
    m_start = 0;
    m_buffer += bytes;
}

std::optional<LineReader::Line> LineReader::take() {
    const int end = m_buffer.indexOf('\n', m_searched);
    const int length = (end < 0 ? m_buffer.size() : end) - m_start;
    m_isSkipping = m_isSkipping || length > m_longest;
    if (end < 0) {
        if (m_isSkipping) {
            m_buffer.clear();
            m_start = 0;
        }
        m_searched = m_buffer.size();
        return std::nullopt;
    }
    Line line;
    line.isTooLong = m_isSkipping;
    if (!line.isTooLong)
        line.text = m_buffer.mid(m_start, length);
    m_start = end + 1;
    m_searched = m_start;
    m_isSkipping = false;
    return line;
}

}  // namespace Tamrix::Mcp
