#include "vision/search/exactlinear.h"

#include <algorithm>
#include <vector>

#include "vision/search/rareanchors.h"
#include "vision/search/rowautomaton.h"

namespace Tamrix::Vision::BasicImageLookup {

namespace {

const QRgb* rowOf(const QImage& image, int y) {
    return reinterpret_cast<const QRgb*>(image.constScanLine(y));
}

/// How many rows in succession, down to the latest, have the needle's pixel all over the needle's
/// width, for each column at which a needle can begin.
class StackedRuns {
public:
    StackedRuns(int columns, int width) : m_heights(columns, 0), m_width(width) {}

    const std::vector<int>& heights() const { return m_heights; }

    template <typename Test>
    void addRow(const QRgb* pixels, Test test) {
        const auto columns = static_cast<int>(m_heights.size());
        const int end = columns + m_width - 1;
        for (int x = 0; x < columns;) {
            int runEnd = x;
            while (runEnd < end && test(pixels[runEnd]))
                ++runEnd;
            // Where what is left of the run is too short, or where there is none.
            const int fit = std::max(x, runEnd - m_width + 1);
            std::for_each(m_heights.begin() + x, m_heights.begin() + fit,
                          [](int& height) { ++height; });
            x = std::min(columns, runEnd + 1);
            std::fill(m_heights.begin() + fit, m_heights.begin() + x, 0);
        }
    }

private:
    std::vector<int> m_heights;
    int m_width;
};

/// The search of Knuth, Morris and Pratt for the needle's rows, in each column at once.
class StackedRows {
public:
    StackedRows(std::vector<int> names, int columns)
        : m_names(std::move(names)), m_shorter(m_names.size() + 1, 0), m_matched(columns, 0) {
        for (std::size_t length = 2; length < m_shorter.size(); ++length)
            m_shorter[length] = advance(m_shorter[length - 1], m_names[length - 1]);
    }

    /// Takes the name of the row that begins at this column, -1 for none, below all that was taken
    /// before. Returns whether the needle is complete.
    bool add(int column, int name) {
        int& matched = m_matched[column];
        if (name < 0) {
            matched = 0;
            return false;
        }
        matched = advance(matched, name);
        if (matched < static_cast<int>(m_names.size()))
            return false;
        matched = m_shorter[matched];
        return true;
    }

private:
    int advance(int matched, int name) const {
        while (matched > 0 && m_names[matched] != name)
            matched = m_shorter[matched];
        return m_names[matched] == name ? matched + 1 : 0;
    }

    std::vector<int> m_names;
    /// For each number of rows: the most of the needle's first rows, less than that, that are equal
    /// to the last ones of these.
    std::vector<int> m_shorter;
    std::vector<int> m_matched;
};

}  // namespace

bool isUniform(const QImage& image) {
    const QRgb pixel = image.pixel(0, 0);
    for (int y = 0; y < image.height(); ++y) {
        const QRgb* row = rowOf(image, y);
        if (!std::all_of(row, row + image.width(), [&](QRgb each) { return each == pixel; }))
            return false;
    }
    return true;
}

void scanForUniform(const QImage& image, const Needle& needle, const QRect& corners,
                    const TakeCorner& take) {
    const QRgb pixel = *rowOf(needle.image, 0);
    const PixelBounds bounds = boundsOf(pixel, needle.hasTranslucentPixels);
    const auto isWithin = [&](QRgb each) {
        return basicPixelKernels().allWithin(&each, &bounds.low, &bounds.high, 1);
    };
    StackedRuns runs(corners.width(), needle.image.width());
    const int height = needle.image.height();
    for (int y = corners.top(); y < corners.bottom() + height; ++y) {
        const QRgb* row = rowOf(image, y) + corners.left();
        if (needle.hasTranslucentPixels)
            runs.addRow(row, isWithin);
        else
            runs.addRow(row, [=](QRgb each) { return each == pixel; });
        const int top = y - height + 1;
        if (top < corners.top())
            continue;
        const auto isHighEnough = [=](int each) { return each >= height; };
        const std::vector<int>& heights = runs.heights();
        auto it = std::find_if(heights.begin(), heights.end(), isHighEnough);
        while (it != heights.end() &&
               take(QPoint(corners.left() + static_cast<int>(it - heights.begin()), top)))
            it = std::find_if(it + 1, heights.end(), isHighEnough);
    }
}

void scanByRows(const QImage& image, const Needle& needle, const QRect& corners,
                const TakeCorner& take) {
    const RowAutomaton automaton(needle.image);
    StackedRows rows(automaton.rowNames(), corners.width());
    const int width = needle.image.width();
    const int height = needle.image.height();
    for (int y = corners.top(); y < corners.bottom() + height; ++y) {
        const QRgb* pixels = rowOf(image, y) + corners.left();
        int state = RowAutomaton::start;
        bool wantsMore = y - height + 1 >= corners.top();
        for (int end = 0; end < corners.width() + width - 1; ++end) {
            int name = -1;
            state = automaton.read(state, pixels[end], &name);
            const int column = end - width + 1;
            if (column >= 0 && rows.add(column, name) && wantsMore)
                wantsMore = take(QPoint(corners.left() + column, y - height + 1));
        }
    }
}

}  // namespace Tamrix::Vision::BasicImageLookup
