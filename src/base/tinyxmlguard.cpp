#include "base/tinyxmlguard.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "base/utf8.h"

namespace Tamrix {

namespace {

/// Walks over markup exactly as TinyXML does, oddities included, so that what is counted here is
/// how deep it will recurse. Where TinyXML gives up with an error, the walk ends as well.
class Scanner {
public:
    explicit Scanner(std::string_view text) : m_text(text) {}

    TinyXmlCheck scan() {
        while (m_position < m_text.size() && !m_finished) {
            const std::size_t markup = std::min(m_text.find('<', m_position), m_text.size());
            checkReferences(m_position, markup);
            m_position = markup;
            if (!atEnd() && !m_finished)
                scanMarkup();
        }
        return m_result;
    }

private:
    bool atEnd() const { return m_position >= m_text.size(); }
    char current() const { return m_text[m_position]; }
    bool startsWith(std::string_view word) const {
        return m_text.substr(m_position).starts_with(word);
    }
    bool startsWithIgnoringCase(std::string_view word) const {
        const std::string_view there = m_text.substr(m_position, word.size());
        return there.size() == word.size() &&
               std::equal(there.begin(), there.end(), word.begin(), [](char one, char other) {
                   return std::tolower(static_cast<unsigned char>(one)) == other;
               });
    }

    static bool isSpace(char character) {
        return std::isspace(static_cast<unsigned char>(character)) != 0;
    }
    static bool startsName(char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte >= 127 || std::isalpha(byte) || byte == '_';
    }
    static bool continuesName(char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte >= 127 || std::isalnum(byte) || std::strchr("_-.:", byte);
    }

    /// The length of the white space at a place, 0 when there is none. Marks of byte order, and the
    /// two characters that are none, count as white space for TinyXML.
    std::size_t spaceAt(std::size_t position) const {
        const std::string_view text = m_text.substr(position);
        if (text.starts_with("\xEF\xBB\xBF") || text.starts_with("\xEF\xBF\xBE") ||
            text.starts_with("\xEF\xBF\xBF"))
            return 3;
        return !text.empty() && isSpace(text.front()) ? 1 : 0;
    }

    /// Where what is no white space begins.
    std::size_t behindSpace(std::size_t position) const {
        while (const std::size_t length = spaceAt(position))
            position += length;
        return position;
    }

    void skipSpace() { m_position = behindSpace(m_position); }

    void refuse(const QString& problem, std::size_t position) {
        m_result.problem = problem;
        m_result.row =
            1 + static_cast<int>(std::count(m_text.begin(), m_text.begin() + position, '\n'));
        m_finished = true;
    }

    /// Goes behind the next `end`; without one the markup is refused.
    void skipBehind(std::string_view end, std::size_t from, const char* what) {
        const std::size_t found = m_text.find(end, from);
        if (found == std::string_view::npos)
            refuse(QStringLiteral("%1 without an end.").arg(QLatin1String(what)), m_position);
        else
            m_position = found + end.size();
    }

    /// TinyXML takes any "&#" for the beginning of a reference that goes on to the next ";", over
    /// markup too; what it makes of numbers that no character has is lost, and so is any other "&"
    /// that begins none of the references it knows.
    void checkReferences(std::size_t begin, std::size_t end) {
        const std::string_view text = m_text.substr(0, end);
        for (std::size_t at = text.find('&', begin); at != std::string_view::npos && !m_finished;
             at = text.find('&', at + 1)) {
            const std::string_view reference = text.substr(at + 1);
            if (reference.starts_with('#')) {
                if (!isCharacterReference(reference.substr(1)))
                    refuse(QStringLiteral("A reference to a character that is none."), at);
            } else if (!isEntityReference(reference)) {
                refuse(QStringLiteral("An & that begins no reference; the character is &amp;."),
                       at);
            }
        }
    }

    static bool isEntityReference(std::string_view text) {
        static constexpr std::array<std::string_view, 5> known{"amp;", "lt;", "gt;", "quot;",
                                                               "apos;"};
        return std::any_of(known.begin(), known.end(),
                           [text](std::string_view name) { return text.starts_with(name); });
    }

    /// Whether there are a number and a ";" behind "&#". TinyXML keeps the characters that XML
    /// forbids, NUL among them.
    static bool isCharacterReference(std::string_view text) {
        const bool isHexadecimal = text.starts_with('x');
        text.remove_prefix(isHexadecimal ? 1 : 0);
        std::uint32_t number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number,
                                                  isHexadecimal ? 16 : 10);
        const bool isCharacter = number <= 0x10ffff && (number >> 11 != 0xd800 >> 11);
        return error == std::errc() && isCharacter && end != text.data() + text.size() &&
               *end == ';';
    }

    void scanMarkup() {
        const bool hasNext = m_position + 1 < m_text.size();
        if (m_depth > 0 && startsWith("</")) {
            noteBlankText();
            --m_depth;
            skipBehind(">", m_position, "An end tag");
        } else if (startsWithIgnoringCase("<?xml")) {
            scanDeclaration();
        } else if (hasNext && startsName(m_text[m_position + 1])) {
            scanStartTag();
        } else if (startsWith("<!--")) {
            skipBehind("-->", m_position + 4, "A comment");
        } else if (startsWith("<![CDATA[")) {
            skipBehind("]]>", m_position + 9, "A CDATA section");
        } else {
            skipBehind(">", m_position + 1, "Markup");
        }
    }

    /// At an end tag.
    void noteBlankText() {
        if (m_contentStart < m_position && behindSpace(m_contentStart) == m_position)
            m_result.blankTexts.push_back(
                {static_cast<int>(m_contentStart), static_cast<int>(m_position - m_contentStart)});
        // What comes now follows an element.
        m_contentStart = m_text.size();
    }

    void scanDeclaration() {
        const std::size_t start = m_position;
        m_position += std::strlen("<?xml");
        while (!atEnd() && !m_finished) {
            if (current() == '>') {
                ++m_position;
                return;
            }
            skipSpace();
            if (startsWithIgnoringCase("version") || startsWithIgnoringCase("encoding") ||
                startsWithIgnoringCase("standalone")) {
                const std::size_t begin = m_position;
                skipAttribute();
                // There are no references here, and TinyXML ends at a faulty one without a word.
                if (m_text.substr(begin, m_position - begin).find('&') != std::string_view::npos)
                    m_finished = true;
                continue;
            }
            while (!atEnd() && current() != '>' && !isSpace(current()))
                ++m_position;
        }
        refuse(QStringLiteral("A declaration that is faulty or has no end."), start);
    }

    void scanStartTag() {
        const std::size_t start = m_position;
        if (++m_depth > m_result.depth)
            m_result.depth = m_depth;
        if (m_depth > maxXmlDepth) {
            refuse(QStringLiteral("Elements are nested deeper than %1.").arg(maxXmlDepth), start);
            return;
        }
        ++m_position;
        skipName();
        for (int attributes = 0; !m_finished; ++attributes) {
            skipSpace();
            if (atEnd()) {
                m_finished = true;
            } else if (current() == '>') {
                m_contentStart = ++m_position;
                return;
            } else if (current() == '/') {
                // Anything but "/>" is an error.
                m_finished = !startsWith("/>");
                m_position += 2;
                --m_depth;
                return;
            } else if (attributes == maxXmlAttributes) {
                refuse(QStringLiteral("An element has more than %1 attributes.").arg(attributes),
                       start);
            } else {
                skipAttribute();
            }
        }
    }

    void skipName() {
        if (atEnd() || !startsName(current())) {
            m_finished = true;
            return;
        }
        while (!atEnd() && continuesName(current()))
            ++m_position;
    }

    void skipAttribute() {
        skipName();
        skipSpace();
        if (m_finished || atEnd() || current() != '=') {
            m_finished = true;
            return;
        }
        ++m_position;
        skipSpace();
        if (atEnd()) {
            m_finished = true;
        } else if (current() == '"' || current() == '\'') {
            const std::size_t closing = m_text.find(current(), m_position + 1);
            m_finished = closing == std::string_view::npos;
            if (!m_finished)
                checkReferences(m_position + 1, closing);
            m_position = closing + 1;
        } else {
            while (!atEnd() && !isSpace(current()) && current() != '/' && current() != '>') {
                // A quote inside of a value without quotes is an error.
                if (current() == '"' || current() == '\'') {
                    m_finished = true;
                    return;
                }
                ++m_position;
            }
        }
    }

    std::string_view m_text;
    std::size_t m_position = 0;
    int m_depth = 0;
    /// Behind the start tag that was read last, if nothing but text was read since.
    std::size_t m_contentStart = 0;
    /// Nothing behind this place is parsed.
    bool m_finished = false;
    TinyXmlCheck m_result;
};

}  // namespace

TinyXmlCheck checkForTinyXml(const QByteArray& document) {
    const char* const begin = document.constData();
    const auto rowAt = [&document](int position) {
        return 1 +
               static_cast<int>(std::count(document.begin(), document.begin() + position, '\n'));
    };
    const int nul = document.indexOf('\0');
    if (nul >= 0)
        return {0,
                QStringLiteral("A NUL byte, which no XML has (only UTF-8 can be read)."),
                rowAt(nul),
                {}};
    const int valid = validUtf8Length(begin, begin + document.size());
    if (valid < document.size())
        return {0, QStringLiteral("A byte that is not UTF-8."), rowAt(valid), {}};
    return Scanner({begin, static_cast<std::size_t>(document.size())}).scan();
}

QByteArray withBlankTexts(const QByteArray& document, const TinyXmlCheck& check) {
    if (check.blankTexts.empty())
        return document;
    QByteArray text;
    int copied = 0;
    for (const TinyXmlCheck::Span& blank : check.blankTexts) {
        text.append(document.constData() + copied, blank.position - copied);
        copied = blank.position + blank.length;
        text.append("<![CDATA[")
            .append(document.constData() + blank.position, blank.length)
            .append("]]>");
    }
    return text.append(document.constData() + copied, document.size() - copied);
}

}  // namespace Tamrix
