#include "interpreter/generic/ocrsearchreport.h"

#include <json/json.h>

#include "interpreter/generic/searchreport.h"
#include "shared/ocr/nearestphrase.h"

namespace Tamrix {

namespace {

/// Of a longer text the beginning tells enough.
constexpr int longestText = 500;

QString optionsText(const OCR::Options& options) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["precision"] = 6;
    builder["emitUTF8"] = true;
    return QString::fromStdString(Json::writeString(builder, options.toJson()));
}

/// What is told of every search.
ResultDetails describeSearch(const TextSearchRecord& search) {
    ResultDetails details;
    details.explanation =
        QStringLiteral("Text: '%1'\nOptions: %2\n%3")
            .arg(search.text, optionsText(search.options), searchedRegionText(search.area));
    return details;
}

void addReadText(ResultDetails& details, const OCR::Result& result) {
    const QString text = result.getText().trimmed();
    if (text.isEmpty())
        details.explanation += QStringLiteral("\nNothing was read");
    else if (text.size() > longestText)
        details.explanation += QStringLiteral("\nRead: %1...").arg(text.left(longestText));
    else
        details.explanation += QStringLiteral("\nRead: %1").arg(text);
}

/// The occurrences that there were, when a later one was wanted.
bool describeEarlier(ResultDetails& details, const TextSearchRecord& search) {
    QStringList texts;
    QList<QRect> places;
    for (const OCR::Match& match : search.result->getTextLocations(search.text)) {
        places.append(match.boundingBox());
        texts.append(searchedPlaceText(places.constLast()));
    }
    if (places.isEmpty())
        return false;
    details.explanation += QStringLiteral("\nFound %1 instead of %2 times: %3")
                               .arg(QString::number(places.size()),
                                    QString::number(search.occurrence), texts.join(", "));
    addSearchedScreenshot(details, search.area, places);
    return true;
}

}  // namespace

ResultDetails describeMissingText(const TextSearchRecord& search) {
    ResultDetails details = describeSearch(search);
    // 1. The text itself was there, but not often enough.
    if (describeEarlier(details, search))
        return details;
    // 2. What is most like it.
    QList<QRect> places;
    if (const auto nearest = OCR::nearestPhrase(*search.result, search.text)) {
        places.append(nearest->words.boundingBox());
        details.explanation += QStringLiteral("\nMost similar text: '%1' at %2")
                                   .arg(nearest->text, searchedPlaceText(places.constFirst()));
        details.pictures.push_back(
            {QStringLiteral("The most similar text, '%1'").arg(nearest->text),
             QStringLiteral("similar"), search.area.image().copy(places.constFirst())});
    }
    // 3. All that was read.
    addReadText(details, *search.result);
    addSearchedScreenshot(details, search.area, places);
    return details;
}

ResultDetails describePresentText(const TextSearchRecord& search, const QRect& place) {
    ResultDetails details = describeSearch(search);
    details.explanation += QStringLiteral("\nFound at %1").arg(searchedPlaceText(place));
    addSearchedScreenshot(details, search.area, {place});
    return details;
}

}  // namespace Tamrix
