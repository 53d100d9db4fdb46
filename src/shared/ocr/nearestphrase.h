#pragma once

#include <QString>
#include <optional>

#include "base/export.h"
#include "shared/ocr/result.h"

namespace Tamrix::OCR {

/// What was read instead of a text that was not found.
struct NearestPhrase {
    Match words;
    /// The words with blanks between.
    QString text;
    /// How many characters would have to be inserted, left out or replaced; case doesn't count.
    int distance = 0;
};

/// The words in a row, about as many as the text has, that are most like it; of several such the
/// first. Nothing when less than a third of the characters agree, for an empty text, or when no
/// words were read.
TAMRIX_EXPORT std::optional<NearestPhrase> nearestPhrase(const Result& result, const QString& text);

}  // namespace Tamrix::OCR
