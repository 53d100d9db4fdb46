#include "platform/objectmodel/objectname.h"

namespace Tamrix {

namespace {

using Properties = QMap<QString, PropertyValue>;

/// Reads one real name, with the names nested in it, from left to right. The first fault ends it.
class NameParser {
public:
    explicit NameParser(const QString& text) : m_text(text) {}

    bool parse(Properties* properties) {
        skipBlanks();
        if (!parseName(properties, 0))
            return false;
        skipBlanks();
        return atEnd() || fail(QStringLiteral("unexpected text after the name's '}'"));
    }

    QString errorText() const { return m_errorText; }

private:
    bool atEnd() const { return m_position >= m_text.size(); }
    bool isNext(char character) const {
        return !atEnd() && m_text[m_position] == QLatin1Char(character);
    }
    bool take(char character) {
        if (!isNext(character))
            return false;
        ++m_position;
        return true;
    }
    void skipBlanks() {
        while (!atEnd() && m_text[m_position].isSpace())
            ++m_position;
    }
    bool fail(const QString& what) {
        m_errorText = what + QStringLiteral(" at character ") + QString::number(m_position + 1);
        return false;
    }

    bool parseName(Properties* properties, int depth) {
        if (depth >= maximalNameDepth) {
            return fail(QStringLiteral("names are nested deeper than %1").arg(maximalNameDepth));
        }
        if (!take('{'))
            return fail(QStringLiteral("expected '{'"));
        skipBlanks();
        while (!take('}')) {
            if (!parseProperty(properties, depth))
                return false;
            skipBlanks();
        }
        if (properties->isEmpty()) {
            --m_position;
            return fail(QStringLiteral("expected a property, such as type='QLabel',"));
        }
        return true;
    }

    /// name='text', name*='text', name~='text' or name={...}
    bool parseProperty(Properties* properties, int depth) {
        if (atEnd())
            return fail(QStringLiteral("the name lacks its '}'"));
        const int start = m_position;
        while (!atEnd() && (m_text[m_position].isLetterOrNumber() || isNext('_') || isNext('.') ||
                            isNext('-') || isNext(':')))
            ++m_position;
        const QString name = m_text.mid(start, m_position - start);
        if (name.isEmpty())
            return fail(QStringLiteral("expected a property's name"));
        if (properties->contains(name)) {
            m_position = start;
            return fail(QStringLiteral("the property '%1' stands twice").arg(name));
        }
        const PropertyValue::Modifier modifier = parseModifier();
        if (!take('='))
            return fail(QStringLiteral("expected '=' behind the property '%1'").arg(name));
        skipBlanks();
        if (isNext('{')) {
            if (modifier != PropertyValue::Plain) {
                return fail(
                    QStringLiteral("the property '%1' compares a name as a pattern").arg(name));
            }
            return parseNested(name, properties, depth);
        }
        QString text;
        if (!parseQuoted(name, &text))
            return false;
        properties->insert(name, PropertyValue(text, modifier, false));
        return true;
    }

    PropertyValue::Modifier parseModifier() {
        skipBlanks();
        if (take('*'))
            return PropertyValue::Wildcard;
        return take('~') ? PropertyValue::Pattern : PropertyValue::Plain;
    }

    bool parseNested(const QString& name, Properties* properties, int depth) {
        Properties nested;
        if (!parseName(&nested, depth + 1))
            return false;
        properties->insert(name, PropertyValue(ObjectName(nested).qualifiedName(), 0, true));
        return true;
    }

    bool parseQuoted(const QString& name, QString* text) {
        if (!isNext('\'')) {
            return fail(QStringLiteral("expected \"'\" or '{' for the value of '%1'").arg(name));
        }
        const int start = m_position;
        ++m_position;
        while (!take('\'')) {
            // A "\" before any other character is itself: patterns may be written as they are.
            if (isNext('\\') && m_position + 1 < m_text.size() &&
                (m_text[m_position + 1] == QLatin1Char('\'') ||
                 m_text[m_position + 1] == QLatin1Char('\\')))
                ++m_position;
            if (atEnd()) {
                m_position = start;
                return fail(QStringLiteral("the value of '%1' lacks its closing \"'\", it starts")
                                .arg(name));
            }
            *text += m_text[m_position++];
        }
        return true;
    }

    QString m_text;
    int m_position = 0;
    QString m_errorText;
};

}  // namespace

bool parseNameByProperties(const QString& realName, QMap<QString, PropertyValue>* properties,
                           QString* error) {
    properties->clear();
    NameParser parser(realName);
    if (parser.parse(properties))
        return true;
    properties->clear();
    if (error)
        *error = parser.errorText();
    return false;
}

}  // namespace Tamrix
