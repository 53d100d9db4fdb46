#include "shared/ocr/genericresult.h"

#include <QRegularExpression>
#include <algorithm>

namespace Tamrix::OCR {

namespace {

/// The space between two stretches, 0 where they touch or overlap.
int gap(int first1, int last1, int first2, int last2) {
    const int end = std::min(last1, last2);
    const int start = std::max(first1, first2);
    return end < start ? start - end : 0;
}

int horizontalGap(const QRect& a, const QRect& b) {
    return gap(a.left(), a.right(), b.left(), b.right());
}

int verticalGap(const QRect& a, const QRect& b) {
    return gap(a.top(), a.bottom(), b.top(), b.bottom());
}

/// How much of the narrower one lies above or below the other, from 0 to 1.
double horizontalOverlap(const QRect& a, const QRect& b) {
    const int start = std::max(a.left(), b.left());
    const int end = std::min(a.right(), b.right());
    if (start >= end)
        return 0;
    return static_cast<double>(end - start) / std::min(a.width(), b.width());
}

int largestPointSize(const QList<Word>& words) {
    int largest = 0;
    for (const Word& word : words)
        largest = std::max(largest, word.pointSize);
    return largest;
}

QRect boxOf(const QList<Word>& words) {
    return Match(words).boundingBox();
}

}  // namespace

GenericResult::GenericResult(const Vision::SearchRegion& region, const QList<Line>& lines)
    : m_lines(lines), m_searchRegion(region) {}

QString GenericResult::getText() const {
    QStringList pieces;
    for (const Line& line : m_lines) {
        QStringList piece;
        const auto finishPiece = [&] {
            if (!piece.isEmpty())
                pieces.append(piece.join(' '));
            piece.clear();
        };
        for (const Word& word : line) {
            if (m_searchRegion.contains(word.rect))
                piece.append(word.text);
            else
                finishPiece();
        }
        finishPiece();
    }
    return pieces.join('\n');
}

QList<Word> GenericResult::getAllWords() const {
    QList<Word> words;
    for (const Line& line : m_lines) {
        for (const Word& word : line) {
            if (m_searchRegion.contains(word.rect))
                words.append(word);
        }
    }
    return words;
}

QList<Match> GenericResult::getTextLocations(const QString& text) const {
    static const QRegularExpression s_blank(QStringLiteral("\\s"));
    return getMatches(text.split(s_blank, Qt::SkipEmptyParts), Qt::CaseInsensitive);
}

QList<Match> GenericResult::getMatches(const QStringList& parts, Qt::CaseSensitivity cs) const {
    QList<Match> matches;
    // A text without words is nowhere.
    if (parts.isEmpty())
        return matches;
    for (auto line = m_lines.cbegin(); line != m_lines.cend(); ++line) {
        auto word = line->cbegin();
        while (word != line->cend()) {
            // 1. The words from here on that begin the phrase.
            auto part = parts.cbegin();
            const QList<Word> taken = nextMatchPart(part, parts.cend(), word, line->cend(), cs);
            // 2. None: the line is done.
            if (taken.isEmpty())
                break;
            // 3. All of them, or 4. the phrase goes on in a line below. Matches in a line don't
            // overlap: the search goes on behind what was taken, be it all of the phrase or not.
            if (part == parts.cend())
                matches.append(taken);
            else
                getSubMatches(taken, part, parts.cend(), line + 1, cs, matches);
        }
    }
    return matches;
}

/// The next words that are the next parts, with both iterators behind what was taken.
QList<Word> GenericResult::nextMatchPart(PartIterator& part, PartIterator partEnd,
                                         WordIterator& word, WordIterator wordEnd,
                                         Qt::CaseSensitivity cs) const {
    const auto fits = [&] {
        return word->text.compare(*part, cs) == 0 && m_searchRegion.contains(word->rect);
    };
    QList<Word> taken;
    // 1. The first word that is the part.
    while (word != wordEnd && !fits())
        ++word;
    if (word == wordEnd)
        return taken;
    // 2. It is taken.
    taken.append(*word++);
    ++part;
    // 3. So are those behind it that are the next parts and stand near enough.
    int largest = taken.constFirst().pointSize;
    while (word != wordEnd && part != partEnd) {
        largest = std::max(largest, word->pointSize);
        if (!fits() ||
            horizontalGap(taken.constLast().rect, word->rect) > largest * m_wordGapFactor)
            break;
        taken.append(*word++);
        ++part;
    }
    // 4.
    return taken;
}

/// Whether words of another line go on what was taken.
bool GenericResult::continues(const QList<Word>& taken, const QList<Word>& words) const {
    const QRect box = boxOf(taken);
    const QRect newBox = boxOf(words);
    const int largest = std::max(largestPointSize(taken), largestPointSize(words));
    return horizontalOverlap(box, newBox) >= m_minLineOverlap &&
           verticalGap(box, newBox) <= largest * m_lineGapFactor;
}

/// Adds the matches that begin with what was taken and go on in the lines from `line` on: any of
/// them, however far away, since other text may stand between.
void GenericResult::getSubMatches(const QList<Word>& taken, PartIterator part, PartIterator partEnd,
                                  LineIterator line, Qt::CaseSensitivity cs,
                                  QList<Match>& matches) const {
    for (; line != m_lines.cend(); ++line) {
        auto word = line->cbegin();
        while (word != line->cend()) {
            // 1. The next words that are the next parts.
            PartIterator nextPart = part;
            const QList<Word> words = nextMatchPart(nextPart, partEnd, word, line->cend(), cs);
            if (words.isEmpty())
                break;
            // 2. They must stand below what was taken, 3. and near it.
            if (!continues(taken, words))
                continue;
            // 4. They complete the phrase, or it goes on once more.
            if (nextPart == partEnd)
                matches.append(Match(taken + words));
            else
                getSubMatches(taken + words, nextPart, partEnd, line + 1, cs, matches);
        }
    }
}

Match GenericResult::getTextLocation(const QString& text, int occurrence) const {
    requirePositiveOccurrence(occurrence);
    return getTextLocations(text).value(occurrence - 1);
}

QList<Match> GenericResult::matchesAt(const QRect& rect) const {
    QList<Match> matches;
    for (const Line& line : m_lines) {
        const int lineSize = largestPointSize(line);
        Match match;
        for (const Word& word : line) {
            // What lies elsewhere is skipped and ends nothing.
            if (!m_searchRegion.contains(word.rect) || !rect.contains(word.rect))
                continue;
            if (!match.isEmpty() && horizontalGap(match.constLast().rect, word.rect) >
                                        std::max(word.pointSize, lineSize) * m_wordGapFactor) {
                matches.append(match);
                match.clear();
            }
            match.append(word);
        }
        if (!match.isEmpty())
            matches.append(match);
    }
    return matches;
}

int GenericResult::occurrenceAt(const Match& match) const {
    return getMatches(match.wordList(), Qt::CaseInsensitive).indexOf(match) + 1;
}

}  // namespace Tamrix::OCR
