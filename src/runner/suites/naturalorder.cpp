#include "runner/suites/naturalorder.h"

#include <algorithm>

namespace Tamrix {

namespace {

bool isAsciiDigit(QChar character) {
    return character >= QLatin1Char('0') && character <= QLatin1Char('9');
}

/// The run of digits that starts at `position`, which moves behind it; leading zeros are dropped.
QStringRef takeNumber(const QString& text, int& position) {
    while (position < text.size() && text.at(position) == QLatin1Char('0'))
        ++position;
    const int start = position;
    while (position < text.size() && isAsciiDigit(text.at(position)))
        ++position;
    return text.midRef(start, position - start);
}

/// Negative, zero or positive, as numbers of any length.
int compareNumbers(const QStringRef& left, const QStringRef& right) {
    if (left.size() != right.size())
        return left.size() < right.size() ? -1 : 1;
    return left.compare(right);
}

int compareNaturally(const QString& left, const QString& right) {
    int l = 0;
    int r = 0;
    while (l < left.size() && r < right.size()) {
        if (isAsciiDigit(left.at(l)) && isAsciiDigit(right.at(r))) {
            if (const int order = compareNumbers(takeNumber(left, l), takeNumber(right, r)))
                return order;
            continue;
        }
        const QChar lc = left.at(l++).toCaseFolded();
        const QChar rc = right.at(r++).toCaseFolded();
        if (lc != rc)
            return lc < rc ? -1 : 1;
    }
    return (left.size() - l) - (right.size() - r);
}

}  // namespace

bool naturallyBefore(const QString& left, const QString& right) {
    const int order = compareNaturally(left, right);
    return order != 0 ? order < 0 : left < right;
}

}  // namespace Tamrix
