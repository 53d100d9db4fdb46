#include "shared/tsvparser/tsvparser.h"

#include <QFile>

namespace Tamrix {

TsvParser::TsvParser(const QString& path) {
    open(path);
}

void TsvParser::open(const QString& path) {
    m_text.reset();
    m_name.clear();
    m_scanner = std::monostate();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qWarning("Couldn't open %s", path.toLocal8Bit().constData());
        return;
    }
    QString error;
    m_text = DelimitedText::read(&file, &error);
    m_name = path;
    if (!m_text)
        giveUp(error);
    else if (m_text->faultyLine() > 0)
        qWarning("%s is no UTF-8 (line %d): what can't be read stands there as U+FFFD",
                 m_name.toLocal8Bit().constData(), m_text->faultyLine());
}

void TsvParser::giveUp(const QString& error) {
    qWarning("Couldn't read %s: %s", m_name.toLocal8Bit().constData(), qPrintable(error));
    m_text.reset();
    m_name.clear();
}

bool TsvParser::isScannable(char separator) {
    return separator > 0 && separator != '"' && separator != '\n' && separator != '\r';
}

std::size_t TsvParser::position() const {
    return std::visit(
        [](const auto& scanner) -> std::size_t {
            if constexpr (std::is_same_v<decltype(scanner), const std::monostate&>)
                return 0;
            else
                return scanner.position();
        },
        m_scanner);
}

template <typename Unit>
bool TsvParser::scanLine(char separator, TextLine* line, const Unit* text, std::size_t size) {
    using Scanner = LineScanner<Unit>;
    auto* scanner = std::get_if<Scanner>(&m_scanner);
    if (!scanner || scanner->separator() != separator)
        scanner = &m_scanner.template emplace<Scanner>(text, size, separator, position());
    if (!scanner->next(line))
        return false;
    ++m_lineNumber;
    return true;
}

bool TsvParser::nextLine(char separator, TextLine* line) {
    const bool isThere = m_text && m_text->visit([&](const auto* text, std::size_t size) {
        return scanLine(separator, line, text, size);
    });
    // Quotes may hold newlines, so that a line may be longer than it was in the file.
    if (isThere && line->length > DelimitedText::mostLineBytes) {
        giveUp(DelimitedText::tooLongLine());
        return false;
    }
    return isThere;
}

QString TsvParser::nextLine() {
    TextLine line;
    // The separators aren't looked at.
    return nextLine(',', &line) ? m_text->text(line) : QString(QLatin1String(""));
}

int TsvParser::countSeparator(const QString& line, char separator) {
    enum class State { Outside, Inside, QuoteSeen };
    if (line.isEmpty())
        return -1;
    int count = 0;
    State state = State::Outside;
    for (int i = 0; i < line.size(); ++i) {
        const QChar c = line.at(i);
        const bool isLast = i + 1 == line.size();
        switch (state) {
            case State::Outside:
                if (c == QLatin1Char(separator))
                    ++count;
                else if (c == QLatin1Char('"'))
                    state = State::Inside;
                break;
            case State::QuoteSeen:
                if (c == QLatin1Char(separator)) {
                    ++count;
                    state = State::Outside;
                    break;
                }
                if (c != QLatin1Char('"')) {
                    state = State::Outside;
                    break;
                }
                // A second quote is handled as one inside.
                [[fallthrough]];
            case State::Inside:
                if (c == QLatin1Char('"') && !isLast)
                    state = State::QuoteSeen;
                break;
        }
    }
    return count;
}

void TsvParser::rewind() {
    if (!m_text)
        return;
    m_scanner = std::monostate();
    m_lineNumber = -1;
}

}  // namespace Tamrix
