#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include "base/export.h"
#include "shared/ocr/result.h"

namespace Tamrix::OCR {

/// Words with their places, which every engine can tell. A phrase is found word by word, whatever
/// the case of its letters, and may go on in a line below: geometry tells what belongs together.
class TAMRIX_EXPORT GenericResult : public Result {
public:
    /// The words of a line, in reading order.
    using Line = QList<Word>;

    GenericResult(const Vision::SearchRegion& region, const QList<Line>& lines);

    void setSearchRegion(const Vision::SearchRegion& region) override { m_searchRegion = region; }
    /// A line ends where it ends in the picture, and at a word outside of the region.
    QString getText() const override;
    Match getTextLocation(const QString& text, int occurrence) const override;
    /// Matches within one line don't overlap. Those that go on in other lines may share their first
    /// words.
    QList<Match> getTextLocations(const QString& text) const override;
    QList<Word> getAllWords() const override;
    QList<Match> matchesAt(const QRect& rect) const override;
    int occurrenceAt(const Match& match) const override;

private:
    using PartIterator = QStringList::const_iterator;
    using WordIterator = Line::const_iterator;
    using LineIterator = QList<Line>::const_iterator;

    QList<Match> getMatches(const QStringList& parts, Qt::CaseSensitivity cs) const;
    QList<Word> nextMatchPart(PartIterator& part, PartIterator partEnd, WordIterator& word,
                              WordIterator wordEnd, Qt::CaseSensitivity cs) const;
    void getSubMatches(const QList<Word>& taken, PartIterator part, PartIterator partEnd,
                       LineIterator line, Qt::CaseSensitivity cs, QList<Match>& matches) const;
    bool continues(const QList<Word>& taken, const QList<Word>& words) const;

    QList<Line> m_lines;
    Vision::SearchRegion m_searchRegion;
    // What belongs together, in sizes of the writing, and how much of the narrower one of two
    // pieces lies below the other.
    double m_wordGapFactor = 2.0;
    double m_lineGapFactor = 2.0;
    double m_minLineOverlap = 0.7;
};

}  // namespace Tamrix::OCR
