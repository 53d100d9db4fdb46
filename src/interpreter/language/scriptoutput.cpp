#include "interpreter/language/scriptoutput.h"

#include <cstdio>

#include "platform/testresult/testresult.h"

namespace Tamrix {

void ScriptOutput::writeToProcess(Stream stream, const QString& text) {
    std::FILE* const file = stream == Stdout ? stdout : stderr;
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), file);
    std::fflush(file);
}

void ScriptOutput::write(Stream stream, const QString& text) {
    if (stream != m_stream)
        flush();
    m_stream = stream;
    m_pending += text;
    const int lastLineEnd = m_pending.lastIndexOf('\n');
    if (lastLineEnd >= 0)
        pass(lastLineEnd + 1);
}

void ScriptOutput::pass(int length) {
    const QString text = m_pending.left(length);
    m_pending.remove(0, length);
    if (m_result)
        m_result->addOutput(
            m_stream == Stdout ? OutputStream::StandardOutput : OutputStream::StandardError, text);
    else
        writeToProcess(m_stream, text);
}

}  // namespace Tamrix
