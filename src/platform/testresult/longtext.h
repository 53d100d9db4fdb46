#pragma once

#include <QString>
#include <functional>
#include <limits>

#include "platform/testresult/reportevent.h"

// Texts that are too long for a report: it shows their ends, and where the whole is. The journal
// keeps them as they are.

namespace Tamrix {

/// How much of a text is shown.
struct TextLimit {
    /// Most limits are of characters alone.
    TextLimit(int mostCharacters, int mostLines = std::numeric_limits<int>::max())
        : characters(mostCharacters), lines(mostLines) {}

    int characters;
    int lines;
};

/// The text when it has no more than the limit. Otherwise its first and its last part with a line
/// between that says how much is left out, and where the whole text is unless `place` is empty.
/// Lines are told where their number is above the limit, else characters.
QString limitedText(const QString& text, TextLimit limit, const QString& place = QString());

/// Stores a whole text, of which `name` says what it is ("detail"), and returns its place for the
/// reader; empty when there is none.
using StoreText = std::function<QString(const QString& text, const QString& name)>;

/// The result with message, detail, comment and explanation as limitedText() makes them, each whole
/// one stored. Without `store` the texts have no place.
ResultAdded withLimitedTexts(const ResultAdded& result, TextLimit limit,
                             const StoreText& store = StoreText());

/// The same for whatever texts an event has that may be long.
ReportEvent withLimitedTexts(const ReportEvent& event, TextLimit limit, const StoreText& store);

/// Calls `change` with each of these texts, and with those of a section's end.
void changeTexts(ReportEvent* event, const std::function<void(QString* text)>& change);

/// How many characters these texts have together.
qint64 textSize(ReportEvent event);

}  // namespace Tamrix
