#pragma once

#include <QChar>
#include <QList>
#include <QRect>
#include <QString>

#include "base/export.h"
#include "shared/ocr/result.h"

namespace Tamrix::Tesseract {

/// Single characters with their places. A phrase is found character by character, in the case that
/// it has and within one line; matches may overlap. A "word" of the answers is a run of characters,
/// blanks included, that lie inside the search region.
class TAMRIX_EXPORT RawResult : public OCR::Result {
public:
    struct Symbol {
        QChar character;
        QRect rect;
    };

    struct TAMRIX_EXPORT Line {
        explicit Line(const QList<Symbol>& lineSymbols);

        QList<Symbol> symbols;
        /// What encloses the symbols; the null rectangle when there are none.
        QRect rect;
    };

    RawResult(const QList<Line>& lines, const Vision::SearchRegion& region);

    void setSearchRegion(const Vision::SearchRegion& region) override { m_searchRegion = region; }
    QString getText() const override;
    OCR::Match getTextLocation(const QString& text, int occurrence) const override;
    QList<OCR::Match> getTextLocations(const QString& text) const override;
    QList<OCR::Word> getAllWords() const override;
    QList<OCR::Match> matchesAt(const QRect& rect) const override;
    int occurrenceAt(const OCR::Match& match) const override;

private:
    using SymbolIterator = QList<Symbol>::const_iterator;

    OCR::Match textMatch(const QString& text, SymbolIterator symbol,
                         const SymbolIterator& end) const;
    template <typename Take>
    void walkMatches(const QString& text, Take take) const;
    template <typename IsInside>
    QList<OCR::Word> runs(IsInside isInside) const;

    QList<Line> m_lines;
    Vision::SearchRegion m_searchRegion;
};

}  // namespace Tamrix::Tesseract
