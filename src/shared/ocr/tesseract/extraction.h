#pragma once

#include <QList>
#include <QRect>

#include "shared/ocr/genericresult.h"
#include "shared/ocr/tesseract/libraries.h"
#include "shared/ocr/tesseract/rawresult.h"
#include "vision/search/searchregion.h"

// What Tesseract has read, taken from its iterator, which stands at the beginning. Places are
// divided by the scale and counted from the work rectangle's corner. What is very high is noise; it
// and what lies outside of the region is left out. Throws EngineError for something without place.

namespace Tamrix::Tesseract {

/// How the picture that was read lies in the one that it was made of.
struct Placement {
    QRect workRect;
    double scale = 1;
};

/// Words, in lines.
QList<OCR::GenericResult::Line> extractLines(TessResultIterator* iterator,
                                             const Vision::SearchRegion& region,
                                             const Placement& placement);

/// Single characters, in lines. Tesseract has none for blanks: they come from the text of the line
/// and lie just before the next character.
QList<RawResult::Line> extractRawLines(TessResultIterator* iterator,
                                       const Vision::SearchRegion& region,
                                       const Placement& placement);

}  // namespace Tamrix::Tesseract
