#include "vision/screenshot/screenshot.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QGuiApplication>
#include <QtEndian>
#include <limits>

#include "vision/screenshot/bmpdata.h"

namespace Tamrix {
namespace {

/// An image of which no two pixels are alike.
QImage makeImage(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgb(x, y, 7));
    }
    return image;
}

QByteArray bmpOf(const QImage& image) {
    QByteArray bmp;
    QBuffer buffer(&bmp);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "BMP");
    return bmp;
}

QByteArray withSize(QByteArray bmp, qint32 width, qint32 height) {
    char size[8];
    qToLittleEndian(width, size);
    qToLittleEndian(height, size + 4);
    return bmp.replace(18, sizeof(size), size, sizeof(size));
}

TEST(ScreenshotTest, GoesThroughAVariant) {
    const Screenshot shot(makeImage(5, 4), QTransform(1, 2, 3, 4, 5, 6), 1.5);
    const Screenshot read = Screenshot::fromVariant(shot.toVariant());
    EXPECT_EQ(read.image(), shot.image());
    EXPECT_EQ(read.transform(), shot.transform());
    EXPECT_EQ(read.density(), 1.5);

    const Screenshot local = Screenshot::fromVariant(shot.toLocalVariant());
    EXPECT_EQ(local.image().constBits(), shot.image().constBits());
    EXPECT_EQ(local.transform(), shot.transform());
    EXPECT_EQ(local.density(), 1.5);

    QVariantMap withoutPixels = shot.toVariantWithoutPixels(QPoint(1, 2), 3).toMap();
    EXPECT_TRUE(Screenshot::fromVariant(withoutPixels).image().isNull());
    EXPECT_EQ(withoutPixels["pixels"].toMap(),
              (QVariantMap{{"width", 5}, {"height", 4}, {"format", int(shot.image().format())}}));
    withoutPixels["image"] = shot.image();
    EXPECT_EQ(Screenshot::fromVariant(withoutPixels).transform(), shot.transform());

    EXPECT_FALSE(Screenshot().toVariant().isValid());
    EXPECT_FALSE(Screenshot().toLocalVariant().isValid());
    EXPECT_FALSE(Screenshot().toVariant(QPoint(), 1).isValid());
    EXPECT_TRUE(Screenshot::fromVariant(QVariant()).image().isNull());
}

TEST(ScreenshotTest, GivesRawParts) {
    QPoint origin(1, 1);
    double scale = 3;
    double density = 3;
    EXPECT_TRUE(Screenshot::raw(QVariant(), &origin, &scale, &density).isEmpty());
    const Screenshot shot(makeImage(2, 2), QTransform(), 2);
    Screenshot::raw(shot.toVariant(), &origin, &scale, nullptr);
    EXPECT_EQ(origin, QPoint(1, 1));
    EXPECT_EQ(scale, 3);
    EXPECT_EQ(density, 3);

    const QByteArray image =
        Screenshot::raw(shot.toVariant(QPoint(7, 8), 1.25), &origin, &scale, &density);
    EXPECT_EQ(origin, QPoint(7, 8));
    EXPECT_EQ(scale, 1.25);
    EXPECT_EQ(density, 2);
    EXPECT_EQ(qUncompress(image), bmpOf(shot.image()));
}

TEST(ScreenshotTest, TakesDefaultsForWhatIsMissingOrWrong) {
    const Screenshot onlyDensity = Screenshot::fromVariant(QVariantMap{{"density", 2.5}});
    EXPECT_TRUE(onlyDensity.image().isNull());
    EXPECT_EQ(onlyDensity.density(), 2.5);
    EXPECT_EQ(Screenshot::fromVariant(QVariantMap{{"image", 3}}).density(), 1);

    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const QVariantList& list :
         {QVariantList{1, 2, 3, 4, 5}, QVariantList{1, 2, 3, 4, 5, nan}, QVariantList()}) {
        const auto shot = Screenshot::fromVariant(QVariantMap{{"transform", list}});
        EXPECT_TRUE(shot.transform().isIdentity()) << list.size();
    }
}

TEST(ScreenshotTest, BelievesNoSizeInImages) {
    const QByteArray bmp = bmpOf(makeImage(3, 2));
    const QByteArray zip = qCompress(bmp);
    const auto load = [](const QByteArray& data) {
        return !Screenshot::fromBmpZipData(data, QTransform(), 1).image().isNull();
    };
    EXPECT_TRUE(load(zip));
    struct Case {
        const char* what;
        QByteArray data;
    };
    const Case cases[] = {
        {"4 GiB in a few bytes", QByteArray(zip).replace(0, 4, "\xff\xff\xff\xff")},
        {"400 MiB in a few bytes", QByteArray(zip).replace(0, 4, "\x19\0\0\0", 4)},
        {"more than its length tells", QByteArray(zip).replace(0, 4, "\0\0\0\1", 4)},
        {"cut", zip.left(zip.size() - 8)},
        {"length only", zip.left(4)},
        {"wide", qCompress(withSize(bmp, 0x7fffffff, 2))},
        {"high", qCompress(withSize(bmp, 3, std::numeric_limits<qint32>::min()))},
        {"large", qCompress(withSize(bmp, 5000, 5000))},
        {"negative", qCompress(withSize(bmp, -3, 2))},
        {"header only", qCompress(bmp.left(54))},
        {"half a header", qCompress(bmp.left(30))},
    };
    for (const Case& test : cases)
        EXPECT_FALSE(load(test.data)) << test.what;
}

TEST(ScreenshotTest, MapsBetweenImageAndNativeCoordinates) {
    const QByteArray bmp = bmpOf(makeImage(4, 4));
    const auto shot = Screenshot::fromBmpData(bmp, QPoint(10, 20), 0.5, 1);
    EXPECT_EQ(shot.imageToNative(QPoint(1, 2)), QPoint(22, 44));
    EXPECT_EQ(shot.imageToNative(QRect(0, 0, 2, 3)), QRect(20, 40, 4, 6));
    EXPECT_EQ(shot.nativeToImage(QRect(20, 40, 4, 6)), QRect(0, 0, 2, 3));
    for (const QTransform& transform :
         {QTransform(0, 2, -1, 0, 5, 6), QTransform(3, 0, 0, 1, -7, 0)}) {
        const Screenshot mapped(QImage(), transform);
        EXPECT_EQ(mapped.nativeToImage(mapped.imageToNative(QPoint(3, -4))), QPoint(3, -4));
    }
    const auto* data = reinterpret_cast<const uchar*>(bmp.constData());
    EXPECT_EQ(Screenshot::fromBmpData(data, bmp.size(), QPoint(10, 20), 0.5, 1).transform(),
              shot.transform());
    EXPECT_TRUE(Screenshot::fromBmpData(bmp, QPoint(), 0, 1).transform().isIdentity());
}

TEST(ScreenshotTest, CopyMovesTheOriginByTopAndLeft) {
    const Screenshot shot(makeImage(50, 50), QTransform(), 2);
    const Screenshot part = shot.copy(QRect(10, 20, 5, 6));
    EXPECT_EQ(part.image(), shot.image().copy(10, 20, 5, 6));
    EXPECT_EQ(part.imageToNative(QPoint()), QPoint(20, 10));
    EXPECT_EQ(part.density(), 2);
    EXPECT_TRUE(shot.copy(QRect()).transform().isIdentity());
}

TEST(ScreenshotTest, RotatedPixelsKeepTheirNativePlace) {
    const Screenshot shot(makeImage(100, 50), QTransform(2, 0, 0, 2, 30, 40));
    EXPECT_EQ(shot.rotated(1).image().size(), QSize(50, 100));
    for (int index = 0; index < 4; ++index) {
        const Screenshot turned = shot.rotated(index);
        for (const QPoint pixel : {QPoint(0, 0), QPoint(49, 49), QPoint(7, 31)}) {
            const QPoint original = shot.nativeToImage(turned.imageToNative(pixel));
            EXPECT_EQ(turned.image().pixel(pixel), shot.image().pixel(original)) << index;
        }
        EXPECT_EQ(Screenshot::rotated(shot.image(), index), turned.image());
    }
    EXPECT_EQ(shot.rotated(4).image(), shot.image());
    EXPECT_EQ(shot.rotated(-1).image(), shot.image());
}

TEST(ScreenshotTest, RotatesPixmaps) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static char s_name[] = "screenshot_test";
    static char* s_arguments[] = {s_name, nullptr};
    static int s_count = 1;
    // Never destroyed: Qt would leave its screen behind, which counts as a leak.
    [[maybe_unused]] static const auto* const s_application =
        new QGuiApplication(s_count, s_arguments);
    EXPECT_EQ(Screenshot::rotated(QPixmap(100, 50), 2).size(), QSize(50, 100));
}

}  // namespace
}  // namespace Tamrix
