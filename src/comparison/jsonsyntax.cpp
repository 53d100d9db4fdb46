#include "comparison/jsonsyntax.h"

#include <QTextCodec>
#include <algorithm>
#include <string_view>
#include <vector>

#include "base/utf8.h"

namespace Tamrix {

namespace {

// By hand: each JSON reader at hand lets something pass that is none. jsoncpp stops behind the
// first value and takes any digits for a number, Qt's knows neither control characters nor escapes.

/// What is wrong at a place of the text.
struct Fault {
    const char* reason;
    const char* position;
};

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

int hexDigit(char c) {
    if (isDigit(c))
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

bool isHighSurrogate(unsigned unit) {
    return unit >= 0xd800 && unit <= 0xdbff;
}

bool isLowSurrogate(unsigned unit) {
    return unit >= 0xdc00 && unit <= 0xdfff;
}

/// Reads the text by the grammar and throws a Fault where it leaves it.
class Reader {
public:
    Reader(const char* begin, const char* end) : m_at(begin), m_end(end) {}

    /// Arrays and objects that are open are kept in a list, so that depth costs no stack.
    void readText() {
        readValue();
        while (!m_open.empty())
            readNext();
        skipSpace();
        if (m_at != m_end)
            fail(*m_at == '/' ? "Comments are not allowed." : "Extra text behind the value.");
    }

private:
    enum class Open : char { Array, Object };

    [[noreturn]] void fail(const char* reason) const { throw Fault{reason, m_at}; }

    bool isAt(char c) const { return m_at != m_end && *m_at == c; }

    /// Whether the character is there, which is then passed over.
    bool take(char c) {
        if (!isAt(c))
            return false;
        ++m_at;
        return true;
    }

    void skipSpace() {
        while (m_at != m_end && (*m_at == ' ' || *m_at == '\t' || *m_at == '\n' || *m_at == '\r'))
            ++m_at;
    }

    /// A value, or the beginning of one that holds others, with the first of them.
    void readValue() {
        for (;;) {
            skipSpace();
            if (take('[')) {
                skipSpace();
                if (take(']'))
                    return;
                m_open.push_back(Open::Array);
            } else if (take('{')) {
                skipSpace();
                if (take('}'))
                    return;
                m_open.push_back(Open::Object);
                readName();
            } else {
                return readScalar();
            }
        }
    }

    /// What follows a value in the array or object that is open.
    void readNext() {
        skipSpace();
        const bool isArray = m_open.back() == Open::Array;
        if (take(isArray ? ']' : '}')) {
            m_open.pop_back();
            return;
        }
        if (!take(','))
            fail(isArray ? "Missing ',' or ']' in an array." : "Missing ',' or '}' in an object.");
        if (!isArray)
            readName();
        readValue();
    }

    void readName() {
        skipSpace();
        if (!isAt('"'))
            fail("Missing name in an object.");
        readString();
        skipSpace();
        if (!take(':'))
            fail("Missing ':' behind a name.");
    }

    void readScalar() {
        if (isAt('"'))
            return readString();
        if (m_at != m_end && (*m_at == '-' || isDigit(*m_at)))
            return readNumber();
        for (const std::string_view word : {"true", "false", "null"}) {
            if (std::string_view(m_at, static_cast<std::size_t>(m_end - m_at)).starts_with(word)) {
                m_at += word.size();
                return;
            }
        }
        fail(isAt('/') ? "Comments are not allowed." : "Missing value.");
    }

    void readNumber() {
        take('-');
        if (!take('0'))
            readDigits();
        else if (m_at != m_end && isDigit(*m_at))
            fail("A number begins with '0'.");
        if (take('.'))
            readDigits();
        if (take('e') || take('E')) {
            if (!take('+'))
                take('-');
            readDigits();
        }
    }

    void readDigits() {
        const char* const first = m_at;
        m_at = std::find_if_not(m_at, m_end, isDigit);
        if (m_at == first)
            fail("Missing digit in a number.");
    }

    void readString() {
        const char* const begin = m_at++;
        while (!take('"')) {
            if (m_at == m_end)
                throw Fault{"A string has no end.", begin};
            if (static_cast<unsigned char>(*m_at) < ' ')
                fail("Control character in a string.");
            if (*m_at == '\\')
                readEscape();
            else
                ++m_at;
        }
    }

    void readEscape() {
        const char* const begin = m_at++;
        if (isAt('u')) {
            const unsigned unit = readCodeUnit();
            const bool isPair =
                isHighSurrogate(unit) && take('\\') && isAt('u') && isLowSurrogate(readCodeUnit());
            if (!isPair && (isHighSurrogate(unit) || isLowSurrogate(unit)))
                throw Fault{"Half of a surrogate pair in a string.", begin};
            return;
        }
        if (m_at == m_end || std::string_view("\"\\/bfnrt").find(*m_at) == std::string_view::npos)
            throw Fault{"Bad escape sequence in a string.", begin};
        ++m_at;
    }

    unsigned readCodeUnit() {
        const char* const begin = m_at++ - 1;
        unsigned unit = 0;
        for (int i = 0; i < 4; ++i, ++m_at) {
            const int digit = m_at == m_end ? -1 : hexDigit(*m_at);
            if (digit < 0)
                throw Fault{"Bad escape sequence in a string.", begin};
            unit = unit << 4U | static_cast<unsigned>(digit);
        }
        return unit;
    }

    const char* m_at;
    const char* m_end;
    std::vector<Open> m_open;
};

JsonProblem problemAt(const QByteArray& text, const Fault& fault) {
    JsonProblem problem;
    problem.reason = QString::fromLatin1(fault.reason);
    problem.line = 1;
    const char* lineBegin = text.constBegin();
    for (const char* at = lineBegin; at < fault.position; ++at) {
        const bool isFirstOfTwo = *at == '\r' && at + 1 != text.constEnd() && at[1] == '\n';
        if ((*at != '\r' && *at != '\n') || isFirstOfTwo)
            continue;
        ++problem.line;
        lineBegin = at + 1;
    }
    problem.column = static_cast<int>(fault.position - lineBegin) + 1;
    return problem;
}

}  // namespace

JsonProblem jsonProblem(const QByteArray& text) {
    try {
        Reader(text.constBegin(), text.constEnd()).readText();
    } catch (const Fault& fault) {
        return problemAt(text, fault);
    }
    return {};
}

JsonProblem jsonEncodingProblem(const QByteArray& file) {
    QTextCodec* const utf8 = QTextCodec::codecForName("UTF-8");
    if (QTextCodec::codecForUtfText(file, utf8) != utf8)
        return {};
    const int valid = validUtf8Length(file.constBegin(), file.constEnd());
    if (valid == file.size())
        return {};
    return problemAt(file, {"A byte that is not UTF-8.", file.constBegin() + valid});
}

}  // namespace Tamrix
