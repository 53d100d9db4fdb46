#include "wire/textmatch.h"

namespace Tamrix::Wire {

namespace {

/// The expression of one set, "[a-z]", whose content is `content`.
QString setExpression(QString content) {
    const bool isNegated = content.startsWith('!') || content.startsWith('^');
    if (isNegated)
        content.remove(0, 1);
    // What an expression would read as something else than a character of the set.
    content.replace('\\', QLatin1String("\\\\"))
        .replace('[', QLatin1String("\\["))
        .replace(']', QLatin1String("\\]"))
        .replace('^', QLatin1String("\\^"));
    return (isNegated ? QStringLiteral("[^") : QStringLiteral("[")) + content + ']';
}

/// Unlike Qt's conversion, "*" matches any character, slashes and line feeds included.
QString wildcardExpression(const QString& wildcard, QString* error) {
    QString expression;
    for (int index = 0; index < wildcard.size(); ++index) {
        const QChar character = wildcard[index];
        if (character == '*') {
            expression += QLatin1String(".*");
        } else if (character == '?') {
            expression += '.';
        } else if (character == '[') {
            const bool isNegated =
                index + 1 < wildcard.size() && (wildcard[index + 1] == QLatin1Char('!') ||
                                                wildcard[index + 1] == QLatin1Char('^'));
            // A "]" that stands first is one of the set.
            const int end = wildcard.indexOf(']', index + (isNegated ? 3 : 2));
            if (end < 0) {
                *error = QStringLiteral("the wildcard '%1' has a '[' without ']' at character ")
                             .arg(wildcard) +
                         QString::number(index + 1);
                return {};
            }
            expression += setExpression(wildcard.mid(index + 1, end - index - 1));
            index = end;
        } else if (character.isSurrogate()) {
            // Half of a character, which nothing may stand in.
            expression += character;
        } else {
            expression += QRegularExpression::escape(character);
        }
    }
    return QLatin1String("\\A(?:") + expression + QLatin1String(")\\z");
}

}  // namespace

TextMatch::TextMatch(const QString& wanted, int mode) : m_wanted(wanted), m_isPlain(mode == Plain) {
    if (m_isPlain)
        return;
    if (mode == Wildcard) {
        m_expression.setPattern(wildcardExpression(wanted, &m_errorText));
        m_expression.setPatternOptions(QRegularExpression::DotMatchesEverythingOption);
    } else if (mode == Pattern) {
        m_expression.setPattern(wanted);
    } else {
        m_errorText = QStringLiteral("there is no way %1 to compare texts").arg(mode);
    }
    if (m_errorText.isEmpty() && !m_expression.isValid()) {
        m_errorText = QStringLiteral("'%1' is no valid %2: %3 at character ")
                          .arg(wanted, mode == Wildcard ? "wildcard" : "regular expression",
                               m_expression.errorString()) +
                      QString::number(m_expression.patternErrorOffset() + 1);
    }
    m_expression.optimize();
}

bool TextMatch::matches(const QString& text) const {
    if (m_isPlain)
        return text == m_wanted;
    return m_errorText.isEmpty() && m_expression.match(text).hasMatch();
}

QString modeMarker(int mode) {
    switch (mode) {
        case TextMatch::Wildcard:
            return QStringLiteral("*");
        case TextMatch::Pattern:
            return QStringLiteral("~");
        default:
            return {};
    }
}

}  // namespace Tamrix::Wire
