#include "dap/program/outputlines.h"

#include <utility>

namespace Tamrix::Dap {

namespace {

constexpr char prefix[] = "TDBG:";
constexpr int prefixLength = sizeof prefix - 1;

/// How many bytes at the end may be the start of the prefix.
int possiblePrefixLength(const QByteArray& bytes) {
    for (int length = prefixLength - 1; length > 0; --length) {
        if (bytes.endsWith(QByteArray(prefix, length)))
            return length;
    }
    return 0;
}

}  // namespace

std::vector<OutputPart> OutputLines::add(const QByteArray& bytes) {
    std::vector<OutputPart> parts;
    const auto addOutput = [&](const QByteArray& text) {
        if (!text.isEmpty())
            parts.emplace_back(ProgramOutput{text});
    };
    m_buffer += bytes;
    while (true) {
        const int start = m_buffer.indexOf(prefix);
        if (start < 0) {
            const int kept = possiblePrefixLength(m_buffer);
            addOutput(m_buffer.left(m_buffer.size() - kept));
            m_buffer = m_buffer.right(kept);
            return parts;
        }
        addOutput(m_buffer.left(start));
        m_buffer.remove(0, start);
        const int end = m_buffer.indexOf('\n', m_searched);
        if (end < 0) {
            m_searched = m_buffer.size();
            if (m_buffer.size() > longestLine) {
                addOutput(std::exchange(m_buffer, {}));
                m_searched = 0;
            }
            return parts;
        }
        parts.emplace_back(ProtocolLine{m_buffer.mid(prefixLength, end - prefixLength)});
        m_buffer.remove(0, end + 1);
        m_searched = 0;
    }
}

}  // namespace Tamrix::Dap
