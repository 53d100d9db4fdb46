#include "runner/processes/shellwords.h"

namespace Tamrix {

Outcome<QStringList> splitShellWords(const QString& text) {
    QStringList words;
    QString word;
    // A word may be empty when it is quoted.
    bool inWord = false;
    QChar quote;
    for (int position = 0; position < text.size(); ++position) {
        const QChar character = text.at(position);
        const QChar next = position + 1 < text.size() ? text.at(position + 1) : QChar();
        if (!quote.isNull() && character == quote) {
            quote = QChar();
        } else if (quote.isNull() &&
                   (character == QLatin1Char('\'') || character == QLatin1Char('"'))) {
            quote = character;
            inWord = true;
        } else if (character == QLatin1Char('\\') && quote != QLatin1Char('\'') &&
                   (quote.isNull() ? !next.isNull()
                                   : next == QLatin1Char('"') || next == QLatin1Char('\\'))) {
            word += next;
            inWord = true;
            ++position;
        } else if (quote.isNull() && character.isSpace()) {
            if (inWord)
                words.append(word);
            word.clear();
            inWord = false;
        } else {
            word += character;
            inWord = true;
        }
    }
    if (!quote.isNull()) {
        return fail(FailureKind::BadArgument,
                    QStringLiteral("a quote (%1) is not closed in '%2'").arg(quote, text));
    }
    if (inWord)
        words.append(word);
    return words;
}

QString quotedShellWord(const QString& word) {
    bool isPlain = !word.isEmpty();
    for (const QChar character : word) {
        isPlain = isPlain && !character.isSpace() && character != QLatin1Char('\'') &&
                  character != QLatin1Char('"') && character != QLatin1Char('\\');
    }
    if (isPlain)
        return word;
    QString quoted = word;
    quoted.replace(QLatin1Char('\''), QLatin1String("'\\''"));
    return QLatin1Char('\'') + quoted + QLatin1Char('\'');
}

QString quotedShellWords(const QStringList& words) {
    QStringList quoted;
    for (const QString& word : words)
        quoted.append(quotedShellWord(word));
    return quoted.join(QLatin1Char(' '));
}

}  // namespace Tamrix
