#include "platform/verification/elementpictures.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Tamrix {

namespace {

/// Which element shows at each pixel; -1 for none.
class Owners {
public:
    Owners(const std::vector<ListedElement>& elements, const QSize& size, double scale)
        : m_width(size.width()),
          m_owners(static_cast<std::size_t>(size.width()) * size.height(), -1) {
        const QRect whole(QPoint(0, 0), size);
        // Parents come first: what comes later covers them.
        for (std::size_t index = 0; index < elements.size(); ++index) {
            const QRect part = clippedPlace(elements, index, scale) & whole;
            for (int y = part.top(); y <= part.bottom(); ++y)
                std::fill_n(row(y) + part.left(), part.width(), static_cast<int>(index));
        }
    }

    int at(int x, int y) const { return m_owners[static_cast<std::size_t>(y) * m_width + x]; }

    static QRect scaledPlace(const VisualElement& element, double scale) {
        const QRect& place = element.place;
        // No difference of two of them leaves an int.
        static constexpr double s_most = 1 << 28;
        const auto pixel = [scale](int edge) {
            return static_cast<int>(std::lround(std::clamp(edge * scale, -s_most, s_most)));
        };
        return {
            QPoint(pixel(place.x()), pixel(place.y())),
            QPoint(pixel(place.x() + place.width()) - 1, pixel(place.y() + place.height()) - 1)};
    }

private:
    /// Elements that are scrolled out of their parents don't cover what is beside these.
    static QRect clippedPlace(const std::vector<ListedElement>& elements, std::size_t index,
                              double scale) {
        QRect place = scaledPlace(*elements[index].element, scale);
        for (int above = elements[index].parent; above >= 0; above = elements[above].parent)
            place &= scaledPlace(*elements[above].element, scale);
        return place;
    }
    int* row(int y) { return m_owners.data() + static_cast<std::size_t>(y) * m_width; }

    int m_width;
    std::vector<int> m_owners;
};

bool isSimilar(QRgb left, QRgb right, int tolerance) {
    return std::abs(qRed(left) - qRed(right)) <= tolerance &&
           std::abs(qGreen(left) - qGreen(right)) <= tolerance &&
           std::abs(qBlue(left) - qBlue(right)) <= tolerance &&
           std::abs(qAlpha(left) - qAlpha(right)) <= tolerance;
}

const QRgb* pixelsOf(const QImage& image, int y) {
    return reinterpret_cast<const QRgb*>(image.constScanLine(y));
}

double scaleOf(const QImage& picture, const VisualElement& root) {
    return root.place.width() > 0 ? static_cast<double>(picture.width()) / root.place.width() : 1;
}

/// A picture whose pixels are QRgb and mean pixels.
QImage plainPicture(const QImage& picture) {
    QImage plain = picture.convertToFormat(QImage::Format_ARGB32);
    plain.setDevicePixelRatio(1);
    return plain;
}

}  // namespace

ElementPictures::ElementPictures(const ElementPairs& pairs, const QImage& expected,
                                 const QImage& observed, int colorTolerance)
    : m_pairs(pairs),
      m_observed(plainPicture(observed)),
      m_expectedScale(scaleOf(expected, *pairs.expected.front().element)),
      m_observedScale(scaleOf(observed, *pairs.observed.front().element)),
      m_differences(pairs.expected.size()),
      m_differing(observed.size(), QImage::Format_ARGB32) {
    m_differing.fill(Qt::transparent);
    const QImage wanted = plainPicture(expected);
    const Owners expectedOwners(pairs.expected, wanted.size(), m_expectedScale);
    const Owners observedOwners(pairs.observed, m_observed.size(), m_observedScale);
    // How far each element has moved.
    std::vector<QPoint> moves(pairs.expected.size());
    for (std::size_t index = 0; index < moves.size(); ++index) {
        const ListedElement& element = pairs.expected[index];
        if (element.partner >= 0)
            moves[index] =
                Owners::scaledPlace(*pairs.observed[element.partner].element, m_observedScale)
                    .topLeft() -
                Owners::scaledPlace(*element.element, m_expectedScale).topLeft();
    }
    for (int y = 0; y < wanted.height(); ++y) {
        const QRgb* const pixels = pixelsOf(wanted, y);
        for (int x = 0; x < wanted.width(); ++x) {
            const int owner = expectedOwners.at(x, y);
            const int partner = owner < 0 ? -1 : pairs.expected[owner].partner;
            if (partner < 0)
                continue;
            const QPoint there = QPoint(x, y) + moves[owner];
            if (!m_observed.rect().contains(there) ||
                observedOwners.at(there.x(), there.y()) != partner)
                continue;
            ++m_differences[owner].compared;
            if (isSimilar(pixels[x], pixelsOf(m_observed, there.y())[there.x()], colorTolerance))
                continue;
            ++m_differences[owner].differing;
            m_differing.setPixel(there, qRgb(255, 0, 0));
        }
    }
}

QImage ElementPictures::picture(const std::vector<int>& framedExpected,
                                const std::vector<int>& framedObserved) const {
    QImage picture = m_observed.convertToFormat(QImage::Format_RGB32);
    QPainter painter(&picture);
    painter.fillRect(picture.rect(), QColor(255, 255, 255, 190));
    painter.drawImage(0, 0, m_differing);
    const auto frame = [&painter](const QRect& place, Qt::PenStyle style) {
        painter.setPen(QPen(Qt::red, 1, style));
        painter.drawRect(place.adjusted(0, 0, -1, -1));
    };
    for (const int index : framedExpected)
        frame(Owners::scaledPlace(*m_pairs.expected[index].element, m_expectedScale), Qt::DashLine);
    for (const int index : framedObserved)
        frame(Owners::scaledPlace(*m_pairs.observed[index].element, m_observedScale),
              Qt::SolidLine);
    return picture;
}

}  // namespace Tamrix
