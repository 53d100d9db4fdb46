#include "shared/ocr/tesseract/extraction.h"

#include <stdexcept>

#include "shared/ocr/tesseract/handles.h"
#include "shared/ocr/typedexception.h"

namespace Tamrix::Tesseract {

using OCR::GenericResult;
using OCR::Word;

namespace {

/// What reaches further down than this is no writing.
constexpr int largestReach = 499;

TextHandle textAt(const TessResultIterator* iterator, TessPageIteratorLevel level) {
    return TextHandle(tesseract->TessResultIteratorGetUTF8Text(iterator, level));
}

/// The place of the element in the picture that was handed in. `name` is that of such an element.
QRect placeOf(const TessPageIterator* page, TessPageIteratorLevel level, const char* name,
              const Placement& placement) {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    if (!tesseract->TessPageIteratorBoundingBox(page, level, &left, &top, &right, &bottom))
        throw EngineError(
            QStringLiteral("Failed retrieving a bounding box for a %1").arg(QLatin1String(name)));
    const auto unscaled = [&placement](int value) {
        return static_cast<int>(value / placement.scale);
    };
    const QPoint corner = placement.workRect.topLeft() + QPoint(unscaled(left), unscaled(top));
    return {corner, corner + QPoint(unscaled(right) - unscaled(left) - 1,
                                    unscaled(bottom) - unscaled(top) - 1)};
}

bool counts(const QRect& place, const Vision::SearchRegion& region) {
    return place.bottom() - place.top() <= largestReach && region.contains(place);
}

int pointSizeOf(const TessResultIterator* iterator) {
    TessBool ignored[6] = {};
    int pointSize = 0;
    int font = 0;
    tesseract->TessResultIteratorWordFontAttributes(iterator, &ignored[0], &ignored[1], &ignored[2],
                                                    &ignored[3], &ignored[4], &ignored[5],
                                                    &pointSize, &font);
    return pointSize;
}

}  // namespace

QList<GenericResult::Line> extractLines(TessResultIterator* iterator,
                                        const Vision::SearchRegion& region,
                                        const Placement& placement) {
    const TessPageIterator* const page = tesseract->TessResultIteratorGetPageIterator(iterator);
    QList<GenericResult::Line> lines;
    GenericResult::Line line;
    const auto endLine = [&] {
        if (!line.isEmpty())
            lines.append(line);
        line.clear();
    };
    do {
        // 1. The text.
        Word word;
        word.text = QString::fromUtf8(textAt(iterator, WordLevel).get()).trimmed();
        // 2. and 3. The place.
        word.rect = placeOf(page, WordLevel, "word", placement);
        // 4. What doesn't count ends no line, either.
        if (!counts(word.rect, region))
            continue;
        // 5. A word without text is none.
        word.pointSize = pointSizeOf(iterator);
        if (!word.text.isEmpty())
            line.append(word);
        // 6. The last word of a line.
        if (tesseract->TessPageIteratorIsAtFinalElement(page, LineLevel, WordLevel))
            endLine();
        // 7. The next word.
    } while (tesseract->TessResultIteratorNext(iterator, WordLevel));
    endLine();
    return lines;
}

QList<RawResult::Line> extractRawLines(TessResultIterator* iterator,
                                       const Vision::SearchRegion& region,
                                       const Placement& placement) {
    TessPageIterator* const page = tesseract->TessResultIteratorGetPageIterator(iterator);
    QList<RawResult::Line> lines;
    QList<RawResult::Symbol> symbols;
    TextHandle lineText;
    const char* cursor = nullptr;
    const auto endLine = [&] {
        if (!symbols.isEmpty())
            lines.append(RawResult::Line(symbols));
        symbols.clear();
    };
    do {
        // 1. The place.
        const QRect place = placeOf(page, SymbolLevel, "symbol", placement);
        // 2. The text, and that of the line.
        const TextHandle text = textAt(iterator, SymbolLevel);
        if (!lineText) {
            lineText = textAt(iterator, LineLevel);
            cursor = lineText.get();
        }
        // 3. What stands between in the line: the fillers lie just before the symbol.
        const QByteArray bytes(text.get());
        const char first = bytes.isEmpty() ? '\0' : bytes.at(0);
        const QRect before(place.topLeft() - QPoint(10, 10), place.topLeft() - QPoint(1, 1));
        for (; cursor && *cursor != '\0' && *cursor != first; ++cursor)
            symbols.append({QLatin1Char(*cursor), before});
        // 4. The symbol itself.
        for (int i = 0; cursor && *cursor != '\0' && i < bytes.size() && *cursor == bytes.at(i);
             ++i)
            ++cursor;
        // 5.
        const QString character = QString::fromUtf8(bytes);
        if (character.size() != 1)
            throw std::runtime_error("Text length != 1");
        // 6. What doesn't count ends no line, either.
        if (!counts(place, region))
            continue;
        // 7.
        symbols.append({character.at(0), place});
        // 8. The last symbol of a line.
        if (tesseract->TessPageIteratorIsAtFinalElement(page, LineLevel, SymbolLevel) &&
            !symbols.isEmpty()) {
            endLine();
            lineText.reset();
            cursor = nullptr;
        }
    } while (tesseract->TessPageIteratorNext(page, SymbolLevel));
    endLine();
    return lines;
}

}  // namespace Tamrix::Tesseract
