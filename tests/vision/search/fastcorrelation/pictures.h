#pragma once

#include <QImage>
#include <QPainter>
#include <QPoint>
#include <QSize>
#include <algorithm>
#include <cmath>
#include <random>

namespace Tamrix::Vision::Pictures {

using Random = std::mt19937;

inline int pick(Random& random, int lowest, int highest) {
    return std::uniform_int_distribution<int>(lowest, highest)(random);
}

/// What haystacks look like.
enum class Look { Noise, Widgets, Dark, Contrast };

/// A picture without transparency.
inline QImage picture(QSize size, Look look, Random& random) {
    QImage image(size, QImage::Format_RGB32);
    if (look == Look::Noise) {
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x)
                image.setPixel(x, y, 0xff000000U | (random() & 0xffffffU));
        }
        return image;
    }
    const bool isDark = look == Look::Dark;
    image.fill(isDark ? qRgb(0, 0, 1) : qRgb(250, 251, 255));
    QPainter painter(&image);
    for (int i = 0; i < 40; ++i) {
        const QRect rect(pick(random, -20, size.width()), pick(random, -20, size.height()),
                         pick(random, 1, 60), pick(random, 1, 40));
        const int top = isDark ? 9 : 255;
        QColor color(pick(random, 0, top), pick(random, 0, top), pick(random, 0, top));
        if (look == Look::Contrast)
            color = i % 2 ? QColor(Qt::black) : QColor(Qt::white);
        if (i % 3 == 0)
            painter.fillRect(rect, color);
        else
            painter.drawRect(rect);
        painter.setPen(color);
        painter.drawLine(rect.topLeft(), rect.bottomRight());
    }
    return image;
}

/// The part of the haystack at `rect`, changed a little, with `holes` transparent rectangles.
inline QImage needleFrom(const QImage& haystack, const QRect& rect, int holes, Random& random) {
    QImage needle = haystack.copy(rect).convertToFormat(QImage::Format_ARGB32);
    for (int i = pick(random, 0, 6); i > 0; --i) {
        const QPoint at(pick(random, 0, rect.width() - 1), pick(random, 0, rect.height() - 1));
        needle.setPixel(at, needle.pixel(at) ^ (random() & 0x3f3f3fU));
    }
    for (int i = 0; i < holes; ++i) {
        const QRect hole(pick(random, 0, rect.width() / 2), pick(random, 0, rect.height() / 2),
                         std::max(1, rect.width() / 3), std::max(1, rect.height() / 3));
        for (int y = hole.top(); y <= std::min(hole.bottom(), rect.height() - 1); ++y) {
            for (int x = hole.left(); x <= std::min(hole.right(), rect.width() - 1); ++x)
                needle.setPixel(x, y, needle.pixel(x, y) & 0x7fffffffU);
        }
    }
    return needle;
}

/// The score at a position, evaluated pixel by pixel in double precision.
inline double evaluatedScore(const QImage& haystack, const QImage& needle, QPoint position) {
    double lowest = 1;
    for (int shift = 0; shift < 24; shift += 8) {
        double product = 0;
        double needleEnergy = 0;
        double energy = 0;
        for (int y = 0; y < needle.height(); ++y) {
            const auto* const a = reinterpret_cast<const QRgb*>(needle.constScanLine(y));
            const auto* const b =
                reinterpret_cast<const QRgb*>(haystack.constScanLine(position.y() + y)) +
                position.x();
            for (int x = 0; x < needle.width(); ++x) {
                if (qAlpha(a[x]) <= 127)
                    continue;
                const double t = (a[x] >> shift & 255) + 1;
                const double i = (b[x] >> shift & 255) + 1;
                product += t * i;
                needleEnergy += t * t;
                energy += i * i;
            }
        }
        lowest = std::min(lowest, product / (std::sqrt(needleEnergy) * std::sqrt(energy)));
    }
    return lowest;
}

}  // namespace Tamrix::Vision::Pictures
