#include "interpreter/debugger/lineprotocol/protocoltext.h"

#include "base/stringconversion.h"

namespace Tamrix {

const char* linePrefix(ProtocolDialect dialect) {
    return dialect == ProtocolDialect::Terminal ? "" : "TDBG:";
}

QString escapeForVariablePrinting(QString text) {
    // The backslash comes first: the others add backslashes of their own.
    return text.replace('\\', QLatin1String("\\\\"))
        .replace('\n', QLatin1String("\\n"))
        .replace(',', QLatin1String("\\,"))
        .replace('#', QLatin1String("\\#"))
        .replace('=', QLatin1String("\\="));
}

QString escapeNonPrintable(const QString& text) {
    QString escaped;
    for (const QChar character : text) {
        const ushort code = character.unicode();
        if (character == '\\')
            escaped += QLatin1String("\\\\");
        else if (character == '\n')
            escaped += QLatin1String("\\n");
        else if (character == '\t')
            escaped += QLatin1String("\\t");
        else if (character == '"')
            escaped += QLatin1String("\\\"");
        else if (code >= 0x20 && code < 0x7f)
            escaped += character;
        else if (code < 0x100)
            escaped += QStringLiteral("\\x%1").arg(code, 2, 16, QLatin1Char('0'));
        else
            escaped += QStringLiteral("\\u%1").arg(code, 4, 16, QLatin1Char('0'));
    }
    return escaped;
}

std::string encodeForDialect(const QString& text, ProtocolDialect dialect) {
    return dialect == ProtocolDialect::Terminal ? utf8ToLocal8Bit(text.toStdString())
                                                : text.toStdString();
}

}  // namespace Tamrix
