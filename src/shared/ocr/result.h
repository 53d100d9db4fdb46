#pragma once

#include <json/forwards.h>

#include <QList>
#include <QRect>
#include <QString>
#include <QStringList>

#include "base/export.h"
#include "vision/search/searchregion.h"

// What a recognition has read, and the questions that are asked of it. All coordinates are pixels
// of the picture that was handed to the engine.

namespace Tamrix::OCR {

/// A word and its place. A value.
struct TAMRIX_EXPORT Word {
    QString text;
    QRect rect;
    /// The height of its writing, as far as the engine tells it.
    int pointSize = 0;

    /// Text and place; the size of the writing is not compared.
    bool operator==(const Word& other) const { return text == other.text && rect == other.rect; }
    bool operator!=(const Word& other) const { return !(*this == other); }

    /// An object with "text", "location" and "pointSize".
    Json::Value toJson() const;
};

/// The words in which a phrase was found, in reading order; none when it was not found. A value.
class TAMRIX_EXPORT Match : public QList<Word> {
public:
    using QList<Word>::QList;
    // NOLINTNEXTLINE(google-explicit-constructor): it is such a list
    Match(const QList<Word>& words) : QList<Word>(words) {}
    /// From an object "words" of objects that are words. This is meant not to be what toJson()
    /// writes. Throws std::runtime_error with what is missing or wrong.
    explicit Match(const Json::Value& value);

    /// The texts of the words.
    QStringList wordList() const;
    /// What encloses all words; the null rectangle for an empty match.
    QRect boundingBox() const;
    /// An object with "words", an array.
    Json::Value toJson() const;
};

/// What was read in a picture. It has a search region: only what lies wholly inside one of the
/// region's rectangles exists for the questions. A phrase that is not there is an empty answer, no
/// failure. Script thread only.
class TAMRIX_EXPORT Result {
public:
    virtual ~Result() = default;

    virtual void setSearchRegion(const Vision::SearchRegion& region) = 0;
    /// All text, in lines.
    virtual QString getText() const = 0;
    /// The match at this place of getTextLocations(), counted from 1; an empty one when there are
    /// fewer. Throws InvalidInputs for an occurrence below 1.
    virtual Match getTextLocation(const QString& text, int occurrence) const = 0;
    virtual QList<Match> getTextLocations(const QString& text) const = 0;
    virtual QList<Word> getAllWords() const = 0;
    /// The phrases that lie in the rectangle.
    virtual QList<Match> matchesAt(const QRect& rect) const = 0;
    /// Which of the matches of its own text the match is, counted from 1; 0 when it is none of
    /// them.
    virtual int occurrenceAt(const Match& match) const = 0;

protected:
    Result() = default;
    Result(const Result&) = default;
    Result& operator=(const Result&) = default;
};

/// Throws InvalidInputs for an occurrence below 1.
TAMRIX_EXPORT void requirePositiveOccurrence(int occurrence);

}  // namespace Tamrix::OCR
