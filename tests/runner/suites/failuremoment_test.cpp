#include "runner/suites/failuremoment.h"

#include <gtest/gtest.h>

#include "support/printqt.h"

namespace Tamrix {
namespace {

/// A grey desktop whose pixels are `scale` to a native unit, from the native `origin` on.
Screenshot desktop(QPoint origin, double scale) {
    QImage image(400, 300, QImage::Format_RGB32);
    image.fill(Qt::gray);
    return Screenshot(image, QTransform(1 / scale, 0, 0, 1 / scale, origin.x(), origin.y()), scale);
}

TEST(FailureMoment, ShowsTheWindowsWithTheMark) {
    const struct {
        const char* description;
        QPoint origin;
        double scale;
        QList<QRect> windows;
        std::optional<QPoint> press;
        QSize size;
        /// Where the mark's middle is, -1 for nowhere.
        QPoint mark;
    } rows[] = {
        {"one", {0, 0}, 1, {{50, 60, 100, 80}}, QPoint(70, 90), {100, 80}, {20, 30}},
        {"no press", {0, 0}, 1, {{50, 60, 100, 80}}, {}, {100, 80}, {-1, -1}},
        {"two",
         {0, 0},
         1,
         {{0, 0, 10, 10}, {90, 90, 10, 10}},
         QPoint(50, 50),
         {100, 100},
         {50, 50}},
        {"pressed elsewhere", {0, 0}, 1, {{0, 0, 10, 10}}, QPoint(50, 50), {10, 10}, {-1, -1}},
        {"dense", {0, 0}, 2, {{50, 60, 100, 80}}, QPoint(70, 90), {200, 160}, {40, 60}},
        {"left screen", {-100, 0}, 1, {{-50, 60, 100, 80}}, QPoint(-30, 90), {100, 80}, {20, 30}},
        {"partly outside", {0, 0}, 1, {{350, 250, 100, 100}}, QPoint(370, 270), {50, 50}, {20, 20}},
        {"outside", {0, 0}, 1, {{900, 900, 10, 10}}, QPoint(370, 270), {0, 0}, {-1, -1}},
        {"none", {0, 0}, 1, {}, QPoint(1, 1), {0, 0}, {-1, -1}},
    };
    for (const auto& row : rows) {
        const QImage picture =
            windowsPicture(desktop(row.origin, row.scale), row.windows, row.press);
        EXPECT_EQ(picture.size(), row.size) << row.description;
        bool hasRed = false;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                hasRed = hasRed || picture.pixelColor(x, y) == QColor(Qt::red);
        EXPECT_EQ(hasRed, row.mark.x() >= 0) << row.description;
        if (row.mark.x() >= 0) {
            EXPECT_EQ(picture.pixelColor(row.mark), QColor(Qt::red)) << row.description;
        }
    }
}

}  // namespace
}  // namespace Tamrix
