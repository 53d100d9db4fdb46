#include "shared/ocr/nearestphrase.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace Tamrix::OCR {

namespace {

/// Longer texts are compared by their beginnings: the work grows with the square of the length.
constexpr int comparedLength = 200;

/// The edit distance of two texts.
int distanceOf(const QString& a, const QString& b) {
    std::vector<int> row(static_cast<std::size_t>(b.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (int i = 0; i < a.size(); ++i) {
        int diagonal = row[0];
        row[0] = i + 1;
        for (int j = 0; j < b.size(); ++j) {
            const auto at = static_cast<std::size_t>(j);
            const int replaced = diagonal + (a.at(i) == b.at(j) ? 0 : 1);
            diagonal = row[at + 1];
            row[at + 1] = std::min({replaced, diagonal + 1, row[at] + 1});
        }
    }
    return row.back();
}

QString comparable(const QString& text) {
    return text.left(comparedLength).toLower();
}

}  // namespace

std::optional<NearestPhrase> nearestPhrase(const Result& result, const QString& text) {
    const QString wanted = comparable(text.simplified());
    if (wanted.isEmpty())
        return std::nullopt;
    const QList<Word> words = result.getAllWords();
    const int wordCount = wanted.count(QLatin1Char(' ')) + 1;
    std::optional<NearestPhrase> nearest;
    for (int start = 0; start < words.size(); ++start) {
        // A blank more or less is read easily.
        for (int count = std::max(1, wordCount - 1); count <= wordCount + 1; ++count) {
            if (start + count > words.size())
                break;
            const Match phrase(words.mid(start, count));
            const QString read = phrase.wordList().join(QLatin1Char(' '));
            const int distance = distanceOf(comparable(read), wanted);
            if (!nearest || distance < nearest->distance)
                nearest = {phrase, read, distance};
        }
    }
    if (nearest &&
        nearest->distance * 3 > std::max(wanted.size(), comparable(nearest->text).size()) * 2)
        return std::nullopt;
    return nearest;
}

}  // namespace Tamrix::OCR
