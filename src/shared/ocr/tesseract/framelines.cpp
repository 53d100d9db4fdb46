#include "shared/ocr/tesseract/framelines.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <vector>

namespace Tamrix::Tesseract {

namespace {

// In pixels of the screen, before anything is magnified.
constexpr int shortestLine = 24;
constexpr int shortestSide = 8;
constexpr int thickestLine = 2;

/// How much a line differs from what is beside it, and may differ from itself, in each channel.
constexpr int leastContrast = 6;
constexpr int largestDrift = 3;

int difference(QRgb a, QRgb b) {
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                     std::abs(qBlue(a) - qBlue(b))});
}

/// An image as rows of pixels, or turned so that its columns are the rows.
struct Lines {
    const QRgb* pixels;
    int count;
    int length;
    std::ptrdiff_t lineStep;
    std::ptrdiff_t pixelStep;

    QRgb at(int line, int position) const { return pixels[line * lineStep + position * pixelStep]; }
};

/// Whether a line of that thickness may pass here: it is of one colour across, and not that of the
/// places on both sides.
bool isAcross(const Lines& lines, int line, int thickness, int position) {
    const QRgb color = lines.at(line, position);
    if (difference(color, lines.at(line - 1, position)) < leastContrast ||
        difference(color, lines.at(line + thickness, position)) < leastContrast)
        return false;
    for (int next = 1; next < thickness; ++next) {
        if (difference(color, lines.at(line + next, position)) > largestDrift)
            return false;
    }
    return true;
}

/// A line that was found: where it runs, from `start` to `end`, which is behind its last pixel.
struct FrameLine {
    int line;
    int thickness;
    int start;
    int end;
};

/// The lines of at least that length that run along the rows of `lines`.
std::vector<FrameLine> findAlong(const Lines& lines, int minimalLength) {
    std::vector<FrameLine> found;
    for (int thickness = 1; thickness <= thickestLine; ++thickness) {
        for (int line = 1; line + thickness < lines.count; ++line) {
            int start = -1;
            const auto endAt = [&](int position) {
                if (start >= 0 && position - start >= minimalLength)
                    found.push_back({line, thickness, start, position});
                start = -1;
            };
            for (int position = 0; position < lines.length; ++position) {
                if (!isAcross(lines, line, thickness, position)) {
                    endAt(position);
                    continue;
                }
                if (start >= 0 && difference(lines.at(line, position),
                                             lines.at(line, position - 1)) > largestDrift)
                    endAt(position);
                if (start < 0)
                    start = position;
            }
            endAt(lines.length);
        }
    }
    return found;
}

/// Which pixels belong to long lines, to look whether others meet them.
class LongLines {
public:
    LongLines(int width, int height) : m_width(width), m_height(height) {
        m_pixels.resize(std::size_t(width) * std::size_t(height));
    }
    void add(const FrameLine& row) {
        for (int next = 0; next < row.thickness; ++next)
            std::fill_n(m_pixels.begin() + offset(row.start, row.line + next), row.end - row.start,
                        true);
    }
    /// Whether the point is the end of a frame's side: it touches a long line, or stands at the end
    /// of one, where corners may be round. A letter's stroke in a narrow row does neither.
    bool meets(int x, int y) const {
        for (int row = y - cornerHeight; row <= y + cornerHeight; ++row) {
            const bool isBeside = has(x - cornerWidth, row) && has(x + cornerWidth, row);
            if (std::abs(row - y) <= 1 ? isNear(x, row) : !isBeside && isNear(x, row))
                return true;
        }
        return false;
    }

private:
    static constexpr int cornerWidth = 4;
    static constexpr int cornerHeight = 3;

    bool has(int x, int y) const {
        return x >= 0 && y >= 0 && x < m_width && y < m_height &&
               m_pixels[std::size_t(offset(x, y))];
    }
    bool isNear(int x, int row) const {
        for (int column = x - cornerWidth; column <= x + cornerWidth; ++column) {
            if (has(column, row))
                return true;
        }
        return false;
    }
    std::ptrdiff_t offset(int x, int y) const { return std::ptrdiff_t(y) * m_width + x; }

    int m_width;
    int m_height;
    std::vector<bool> m_pixels;
};

/// Overwrites the line in `target`, which has the shape of `lines`, by what is beside it.
void erase(const Lines& lines, const FrameLine& found, QRgb* target) {
    for (int position = found.start; position < found.end; ++position) {
        for (int next = 0; next < found.thickness; ++next)
            target[(found.line + next) * lines.lineStep + position * lines.pixelStep] =
                lines.at(found.line - 1, position);
    }
}

}  // namespace

QImage withoutFrameLines(const QImage& image) {
    QImage source = image;
    if (source.format() != QImage::Format_RGB32 && source.format() != QImage::Format_ARGB32)
        source = source.convertToFormat(QImage::Format_ARGB32);
    QImage result = source;
    result.detach();
    const auto* const pixels = reinterpret_cast<const QRgb*>(source.constBits());
    auto* const target = reinterpret_cast<QRgb*>(result.bits());
    const std::ptrdiff_t stride = source.bytesPerLine() / std::ptrdiff_t(sizeof(QRgb));
    const Lines rows = {pixels, source.height(), source.width(), stride, 1};
    const Lines columns = {pixels, source.width(), source.height(), 1, stride};

    LongLines longRows(source.width(), source.height());
    for (const FrameLine& row : findAlong(rows, shortestLine)) {
        longRows.add(row);
        erase(rows, row, target);
    }
    // A short line that goes down from one long line to another is the side of a frame. A letter's
    // stroke in an underlined text meets one at its foot only.
    for (const FrameLine& column : findAlong(columns, shortestSide)) {
        if (column.end - column.start >= shortestLine ||
            (longRows.meets(column.line, column.start) &&
             longRows.meets(column.line, column.end - 1)))
            erase(columns, column, target);
    }
    return result;
}

}  // namespace Tamrix::Tesseract
