#include "shared/ocr/tesseract/rawresult.h"

namespace Tamrix::Tesseract {

using OCR::Match;
using OCR::Word;

RawResult::Line::Line(const QList<Symbol>& lineSymbols) : symbols(lineSymbols) {
    for (const Symbol& symbol : symbols)
        rect |= symbol.rect;
}

RawResult::RawResult(const QList<Line>& lines, const Vision::SearchRegion& region)
    : m_lines(lines), m_searchRegion(region) {}

/// The text at the symbols from `symbol` on, as one word; an empty match when they are another.
Match RawResult::textMatch(const QString& text, SymbolIterator symbol,
                           const SymbolIterator& end) const {
    QRect box;
    for (const QChar character : text) {
        if (symbol == end || symbol->character != character ||
            !m_searchRegion.contains(symbol->rect))
            return {};
        box |= symbol->rect;
        ++symbol;
    }
    return {Word{text, box, box.height()}};
}

/// Hands the matches in their order to `take`, until it returns false.
template <typename Take>
void RawResult::walkMatches(const QString& text, Take take) const {
    // A text without characters is nowhere.
    if (text.isEmpty())
        return;
    for (const Line& line : m_lines) {
        for (auto start = line.symbols.cbegin(); start != line.symbols.cend(); ++start) {
            const Match match = textMatch(text, start, line.symbols.cend());
            if (!match.isEmpty() && !take(match))
                return;
        }
    }
}

QList<Match> RawResult::getTextLocations(const QString& text) const {
    QList<Match> matches;
    walkMatches(text, [&](const Match& match) {
        matches.append(match);
        return true;
    });
    return matches;
}

Match RawResult::getTextLocation(const QString& text, int occurrence) const {
    OCR::requirePositiveOccurrence(occurrence);
    Match found;
    int count = 0;
    walkMatches(text, [&](const Match& match) {
        if (++count == occurrence)
            found = match;
        return count < occurrence;
    });
    return found;
}

QString RawResult::getText() const {
    QString text;
    bool isLineEmpty = true;
    const auto endLine = [&] {
        if (!isLineEmpty)
            text += '\n';
        isLineEmpty = true;
    };
    for (const Line& line : m_lines) {
        for (const Symbol& symbol : line.symbols) {
            if (m_searchRegion.contains(symbol.rect)) {
                text += symbol.character;
                isLineEmpty = false;
            } else {
                endLine();
            }
        }
        endLine();
    }
    return text;
}

/// The runs of symbols that are inside, each as one word.
template <typename IsInside>
QList<Word> RawResult::runs(IsInside isInside) const {
    QList<Word> words;
    Word word;
    const auto endWord = [&] {
        if (!word.text.isEmpty()) {
            word.pointSize = word.rect.height();
            words.append(word);
        }
        word = Word();
    };
    for (const Line& line : m_lines) {
        for (const Symbol& symbol : line.symbols) {
            if (isInside(symbol.rect)) {
                word.text += symbol.character;
                word.rect |= symbol.rect;
            } else {
                endWord();
            }
        }
        endWord();
    }
    return words;
}

QList<Word> RawResult::getAllWords() const {
    return runs([this](const QRect& rect) { return m_searchRegion.contains(rect); });
}

QList<Match> RawResult::matchesAt(const QRect& rect) const {
    QList<Match> matches;
    const QList<Word> words = runs([&](const QRect& symbol) {
        return m_searchRegion.contains(symbol) && rect.contains(symbol);
    });
    for (const Word& word : words)
        matches.append(Match{word});
    return matches;
}

int RawResult::occurrenceAt(const Match& match) const {
    int count = 0;
    int occurrence = 0;
    walkMatches(match.wordList().join(QString()), [&](const Match& each) {
        ++count;
        if (each == match)
            occurrence = count;
        return occurrence == 0;
    });
    return occurrence;
}

}  // namespace Tamrix::Tesseract
