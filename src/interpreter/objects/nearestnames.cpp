#include "interpreter/objects/nearestnames.h"

#include <QStringView>
#include <algorithm>
#include <utility>
#include <vector>

namespace Tamrix {

namespace {

/// Names that are less alike are not worth telling.
constexpr double leastLikeness = 0.6;
constexpr std::size_t mostNames = 3;

struct CommonPart {
    int left = 0;
    int right = 0;
    int length = 0;
};

/// The first of the longest parts that stand in both texts.
CommonPart longestCommonPart(QStringView left, QStringView right) {
    CommonPart longest;
    // lengths[j + 1]: of the common part that ends at the last letter of `left` and at right[j].
    std::vector<int> lengths(static_cast<std::size_t>(right.size()) + 1, 0);
    for (int i = 0; i < left.size(); ++i) {
        for (int j = static_cast<int>(right.size()) - 1; j >= 0; --j) {
            int& length = lengths[static_cast<std::size_t>(j) + 1];
            length = left[i] == right[j] ? lengths[static_cast<std::size_t>(j)] + 1 : 0;
            const bool isEarlier = length == longest.length && i - length + 1 == longest.left &&
                                   j - length + 1 < longest.right;
            if (length > longest.length || (length > 0 && isEarlier))
                longest = {i - length + 1, j - length + 1, length};
        }
    }
    return longest;
}

int commonLetters(QStringView left, QStringView right) {
    const CommonPart part = longestCommonPart(left, right);
    if (part.length == 0)
        return 0;
    return part.length + commonLetters(left.left(part.left), right.left(part.right)) +
           commonLetters(left.mid(part.left + part.length), right.mid(part.right + part.length));
}

}  // namespace

double likeness(const QString& name, const QString& wanted) {
    const int letters = name.size() + wanted.size();
    return letters == 0 ? 1 : 2.0 * commonLetters(name, wanted) / letters;
}

QStringList nearestNames(const QString& wanted, const QStringList& names) {
    std::vector<std::pair<double, QString>> ranked;
    for (const QString& name : names) {
        // Texts of too different lengths can't be alike enough.
        const int shorter = std::min(name.size(), wanted.size());
        if (2.0 * shorter < leastLikeness * (name.size() + wanted.size()))
            continue;
        const double alike = likeness(name, wanted);
        if (alike >= leastLikeness)
            ranked.emplace_back(alike, name);
    }
    std::sort(ranked.rbegin(), ranked.rend());
    QStringList nearest;
    for (std::size_t index = 0; index < std::min(mostNames, ranked.size()); ++index)
        nearest.append(ranked[index].second);
    return nearest;
}

}  // namespace Tamrix
