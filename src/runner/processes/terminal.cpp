#include "runner/processes/terminal.h"

#include "base/textescape.h"

namespace Tamrix {

bool writeBytes(FILE* stream, const QByteArray& bytes) {
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stream);
    return std::fflush(stream) == 0 && !std::ferror(stream);
}

void tell(const QString& text) {
    writeBytes(stderr,
               QStringLiteral("tamrixrunner: %1\n").arg(escapedForTerminal(text)).toLocal8Bit());
}

void escapeWarnings() {
    qInstallMessageHandler(
        [](QtMsgType type, const QMessageLogContext& context, const QString& message) {
            const QString text = qFormatLogMessage(type, context, escapedForTerminal(message));
            writeBytes(stderr, text.toLocal8Bit() + '\n');
        });
}

}  // namespace Tamrix
