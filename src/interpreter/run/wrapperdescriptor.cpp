#include "interpreter/run/wrapperdescriptor.h"

#include <QStringList>
#include <algorithm>
#include <iterator>
#include <variant>

#include "platform/objectmodel/inspector.h"
#include "platform/testresult/testresult.h"

namespace Tamrix {

namespace {

using WordOperation = void (Inspector::*)(const QString&, const QString&);
using FlagOperation = void (Inspector::*)(const QString&, bool);

/// A command with two operands, a word and a second word or a flag, up to the end of the line.
struct Command {
    const char* keyword;
    std::variant<WordOperation, FlagOperation> operation;
    const char* firstMissing;
    const char* secondMissing;
    const char* endMissing;
};

// The names in some messages differ from the keyword. That is meant.
const Command commands[] = {
    {"setUniqueProperty", &Inspector::setUniqueProperty,
     "Expected class name after setUniqueProperty",
     "Expected property name as second setUniqueProperty argument",
     "Expected newline after setUniqueProperty {class} {property}"},
    {"setAllowKeyEventCompression", &Inspector::setAllowKeyEventCompression,
     "Expected class name after setAllowKeyCompression",
     "Expected 'true' or 'false' as setAllowKeyCompression parameter",
     "Expected newline after setAllowKeycompression {class} {on}"},
    {"enableEventCompression", &Inspector::enableEventCompression,
     "Expected class name after enableEventCompression",
     "Expected 'true' or 'false' as enableEventCompression parameter",
     "Expected newline after enableEventCompression {class} {on}"},
    {"setMouseTracking", &Inspector::setMouseTracking, "Expected class name after setMouseTracking",
     "Expected 'true' or 'false' as setMouseTracking parameter",
     "Expected newline after setMouseTracking {class} {on}"},
    {"setRecorderFilter", &Inspector::setRecorderFilter, "Expected type after setRecorderFilter",
     "Expected name as second setRecorderFilter argument",
     "Expected newline after setRecorderFilter {type} {name}"},
    {"setRecordMouseDrag", &Inspector::setRecordMouseDrag,
     "Expected class name after setRecordMouseDrag",
     "Expected 'true' or 'false' as setRecordMouseDrag parameter",
     "Expected newline after setRecordMouseDrag {class} {on}"},
};

bool isLineEnd(QChar character) {
    return character == '\n' || character == '\r';
}

bool isBrace(QChar character) {
    return character == '{' || character == '}';
}

bool isWord(const QString& token) {
    for (const QChar character : token) {
        const ushort code = character.unicode();
        const bool isAsciiLetter = (code >= 'a' && code <= 'z') || (code >= 'A' && code <= 'Z');
        if (!isAsciiLetter && !(code > 127 && character.isLetter()))
            return false;
    }
    return !token.isEmpty();
}

bool isEndOfCommand(const QString& token) {
    return token.isEmpty() || token == QLatin1String("\n") || token == QLatin1String("\r");
}

bool isFlag(const QString& token) {
    return token == QLatin1String("true") || token == QLatin1String("false");
}

class Evaluation {
public:
    Evaluation(TestResult* result, const QString& text)
        : m_result(result), m_current(text.cbegin()), m_end(text.cend()) {}

    /// Runs all commands, up to the first error; false when there was one.
    bool run();

private:
    /// The length of the white space at the current place: 0, 1, or 2 for a line end behind a
    /// backslash.
    int whiteSpaceLength() const;
    QString nextToken();
    void setError(const QString& message);
    void evaluateCommand(const Command& command);
    void parsePropertyDelegate();

    TestResult* m_result;
    QString::const_iterator m_current;
    QString::const_iterator m_end;
    bool m_error = false;
};

int Evaluation::whiteSpaceLength() const {
    if (m_current == m_end)
        return 0;
    // A backslash at the end of a line continues the command on the next one.
    if (*m_current == '\\')
        return m_current + 1 != m_end && isLineEnd(*(m_current + 1)) ? 2 : 0;
    return m_current->isSpace() && !isLineEnd(*m_current) ? 1 : 0;
}

QString Evaluation::nextToken() {
    // White space is passed over.
    while (const int length = whiteSpaceLength())
        m_current += length;
    if (m_current == m_end)
        return {};

    // A line end and a brace are tokens by themselves.
    const auto start = m_current++;
    if (isLineEnd(*start) || isBrace(*start))
        return QString(*start);

    // Everything else reaches up to one of these.
    while (m_current != m_end && whiteSpaceLength() == 0 && !isLineEnd(*m_current) &&
           !isBrace(*m_current))
        ++m_current;
    return QString(start, static_cast<int>(m_current - start));
}

void Evaluation::setError(const QString& message) {
    m_error = true;
    if (m_result)
        m_result->addResult(TestResult::Error, message, QString(QLatin1String("")), LineInfo());
}

bool Evaluation::run() {
    while (!m_error && m_current != m_end) {
        const QString keyword = nextToken();
        if (isEndOfCommand(keyword))
            continue;
        if (keyword == QLatin1String("addPropertyDelegate")) {
            parsePropertyDelegate();
            continue;
        }
        const auto command =
            std::find_if(std::cbegin(commands), std::cend(commands),
                         [&](const Command& row) { return keyword == QLatin1String(row.keyword); });
        if (command == std::cend(commands))
            setError(QStringLiteral("Unexpected token '") + keyword + '\'');
        else
            evaluateCommand(*command);
    }
    return !m_error;
}

void Evaluation::evaluateCommand(const Command& command) {
    const QString first = nextToken();
    if (!isWord(first))
        return setError(QLatin1String(command.firstMissing));

    const FlagOperation* flagOperation = std::get_if<FlagOperation>(&command.operation);
    const QString second = nextToken();
    if (flagOperation ? !isFlag(second) : !isWord(second))
        return setError(QLatin1String(command.secondMissing));

    if (!isEndOfCommand(nextToken()))
        return setError(QLatin1String(command.endMissing));

    Inspector* inspector = Inspector::self();
    if (flagOperation)
        (inspector->**flagOperation)(first, second == QLatin1String("true"));
    else
        (inspector->*std::get<WordOperation>(command.operation))(first, second);
}

void Evaluation::parsePropertyDelegate() {
    // 1. The class.
    const QString className = nextToken();
    if (!isWord(className))
        return setError(QStringLiteral("Expected class name after addPropertyDelegate"));

    // 2. Blocks in braces up to the end of the command: four name parts and two flags.
    QStringList delegates;
    for (QString token = nextToken(); !isEndOfCommand(token); token = nextToken()) {
        if (token != QLatin1String("{"))
            return setError(QStringLiteral("Unexpected token '") + token +
                            QStringLiteral("' in addPropertyDelegate parameters"));
        QStringList values;
        for (int part = 0; part < 4; ++part)
            values.append(nextToken());
        for (int flag = 0; flag < 2; ++flag) {
            const QString value = nextToken();
            if (isFlag(value))
                values.append(value == QLatin1String("true") ? QStringLiteral("1")
                                                             : QStringLiteral("0"));
            else
                values.append(value);
        }
        if (nextToken() != QLatin1String("}"))
            return setError(QStringLiteral("Expected '}'"));
        delegates.append(values.join(' '));
    }

    // 3. The class with all its blocks.
    Inspector::self()->addPropertyDelegate(className, delegates);
}

}  // namespace

bool evalInitScript(TestResult* result, const QString& text) {
    return Evaluation(result, text).run();
}

}  // namespace Tamrix
