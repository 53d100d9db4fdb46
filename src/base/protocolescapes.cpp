#include "base/protocolescapes.h"

namespace Tamrix {

namespace {

/// The characters that stand behind a backslash for another one.
struct ShortEscape {
    char written;
    char meant;
};

constexpr ShortEscape variableEscapes[] = {
    {'\\', '\\'}, {'n', '\n'}, {',', ','}, {'#', '#'}, {'=', '='}};
constexpr ShortEscape nonPrintableEscapes[] = {
    {'\\', '\\'}, {'n', '\n'}, {'t', '\t'}, {'"', '"'}, {' ', ' '}};

/// Null when the character begins no such escape.
template <std::size_t Size>
const ShortEscape* findEscape(const ShortEscape (&escapes)[Size], QChar written) {
    for (const ShortEscape& escape : escapes) {
        if (written == QLatin1Char(escape.written))
            return &escape;
    }
    return nullptr;
}

int hexadecimalDigit(QChar character) {
    const ushort code = character.unicode();
    if (code >= '0' && code <= '9')
        return code - '0';
    if (code >= 'a' && code <= 'f')
        return code - 'a' + 10;
    return code >= 'A' && code <= 'F' ? code - 'A' + 10 : -1;
}

/// The character of `count` hexadecimal digits from `start` on; -1 when these are not there.
int characterOfDigits(const QString& text, int start, int count) {
    if (start + count > text.size())
        return -1;
    int code = 0;
    for (int index = start; index < start + count; ++index) {
        const int digit = hexadecimalDigit(text[index]);
        if (digit < 0)
            return -1;
        code = code * 16 + digit;
    }
    return code;
}

}  // namespace

QString escapeForVariablePrinting(QString text) {
    // The backslash comes first: the others add backslashes of their own.
    return text.replace('\\', QLatin1String("\\\\"))
        .replace('\n', QLatin1String("\\n"))
        .replace(',', QLatin1String("\\,"))
        .replace('#', QLatin1String("\\#"))
        .replace('=', QLatin1String("\\="));
}

QString unescapeVariablePrinting(const QString& text) {
    QString result;
    for (int index = 0; index < text.size(); ++index) {
        const ShortEscape* const escape = text[index] == '\\' && index + 1 < text.size()
                                              ? findEscape(variableEscapes, text[index + 1])
                                              : nullptr;
        result += escape ? QLatin1Char(escape->meant) : text[index];
        if (escape)
            ++index;
    }
    return result;
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

QString unescapeNonPrintable(const QString& text) {
    QString result;
    for (int index = 0; index < text.size(); ++index) {
        if (text[index] != '\\' || index + 1 == text.size()) {
            result += text[index];
            continue;
        }
        const QChar kind = text[index + 1];
        if (const ShortEscape* const escape = findEscape(nonPrintableEscapes, kind)) {
            result += QLatin1Char(escape->meant);
            ++index;
            continue;
        }
        const int digits = kind == 'u' ? 4 : kind == 'x' ? 2 : 0;
        const int code = digits > 0 ? characterOfDigits(text, index + 2, digits) : -1;
        if (code < 0) {
            result += text[index];
            continue;
        }
        result += QChar(static_cast<ushort>(code));
        index += 1 + digits;
    }
    return result;
}

}  // namespace Tamrix
