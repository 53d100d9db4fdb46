#include "interpreter/language/valuepath.h"

#include <QUrl>

namespace Tamrix {

namespace {

/// Where the part in brackets at the beginning of the text ends, behind its bracket; the end of the
/// text when it does not.
int endOfBrackets(const QString& text, int begin) {
    int depth = 0;
    QChar quote;
    for (int index = begin; index < text.size(); ++index) {
        const QChar character = text.at(index);
        if (!quote.isNull()) {
            if (character == '\\')
                ++index;
            else if (character == quote)
                quote = QChar();
        } else if (character == '\'' || character == '"') {
            quote = character;
        } else if (character == '[' || character == '(') {
            ++depth;
        } else if ((character == ']' || character == ')') && --depth == 0) {
            return index + 1;
        }
    }
    return text.size();
}

}  // namespace

QStringList partsOfPath(const QString& path) {
    QStringList parts;
    int begin = 0;
    while (begin <= path.size()) {
        int end = path.indexOf('.', begin);
        if (begin < path.size() && path.at(begin) == '[')
            end = path.indexOf('.', endOfBrackets(path, begin));
        if (end < 0)
            end = path.size();
        parts.append(path.mid(begin, end - begin));
        begin = end + 1;
    }
    return parts;
}

QString pathPart(const QString& text, const QByteArray& furtherMarks) {
    // What begins a part that is no name.
    const QString marks = QStringLiteral("[@^+");
    QString part;
    for (int index = 0; index < text.size(); ++index) {
        const QChar character = text.at(index);
        const bool isInnerBlank = character == ' ' && index > 0 && index + 1 < text.size() &&
                                  !text.at(index - 1).isSpace();
        const bool isEscaped = character == '%' || character == '.' ||
                               (character.isSpace() && !isInnerBlank) ||
                               character.category() == QChar::Other_Control ||
                               (index == 0 && marks.contains(character)) ||
                               furtherMarks.contains(character.toLatin1());
        part +=
            isEscaped
                ? QString::fromLatin1(QUrl::toPercentEncoding(character, {}, ".+" + furtherMarks))
                : QString(character);
    }
    return part;
}

QString textOfPathPart(const QString& part) {
    return QUrl::fromPercentEncoding(part.toUtf8());
}

std::optional<int> markedNumber(const QString& part, QChar mark) {
    bool isNumber = false;
    const int number = part.midRef(1).toInt(&isNumber);
    if (!part.startsWith(mark) || !isNumber || number < 0)
        return std::nullopt;
    return number;
}

}  // namespace Tamrix
