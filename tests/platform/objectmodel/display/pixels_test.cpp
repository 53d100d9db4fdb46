#include "platform/objectmodel/display/pixels.h"

#include <gtest/gtest.h>

#include <vector>

namespace Tamrix::Display {
namespace {

const PixelFormat plain{24, 32, 32, false, 0xff0000, 0xff00, 0xff};
const PixelFormat swapped{24, 32, 32, true, 0xff0000, 0xff00, 0xff};
const PixelFormat bgr{24, 32, 32, false, 0xff, 0xff00, 0xff0000};
const PixelFormat packed{24, 24, 32, false, 0xff0000, 0xff00, 0xff};
const PixelFormat depth16{16, 16, 32, false, 0xf800, 0x7e0, 0x1f};
const PixelFormat depth30{30, 32, 32, false, 0x3ff00000, 0xffc00, 0x3ff};
const PixelFormat palette{8, 8, 32, false, 0, 0, 0};

TEST(PixelsTest, AllLayoutsGiveTheSameColours) {
    const struct {
        const char* name;
        PixelFormat format;
        /// One line of a red and a grey pixel, with its padding.
        std::vector<uchar> bytes;
        QRgb grey;
    } table[] = {
        {"plain", plain, {0, 0, 255, 0, 128, 128, 128, 0}, 0xff808080},
        {"swapped", swapped, {0, 255, 0, 0, 0, 128, 128, 128}, 0xff808080},
        {"bgr", bgr, {255, 0, 0, 0, 128, 128, 128, 0}, 0xff808080},
        {"packed", packed, {0, 0, 255, 128, 128, 128, 0, 0}, 0xff808080},
        {"16 bits", depth16, {0x00, 0xf8, 0x10, 0x84}, 0xff848284},
        {"30 bits", depth30, {0x00, 0x00, 0xf0, 0x3f, 0x02, 0x0a, 0x28, 0x20}, 0xff838383},
    };
    for (const auto& row : table) {
        const auto size = static_cast<qint64>(row.bytes.size());
        const Outcome<QImage> image = imageOf(row.bytes.data(), size, QSize(2, 1), row.format);
        ASSERT_TRUE(image) << row.name;
        EXPECT_EQ(image->format(), QImage::Format_RGB32) << row.name;
        EXPECT_EQ(image->pixel(0, 0), 0xffff0000) << row.name;
        EXPECT_NEAR(qRed(image->pixel(1, 0)), qRed(row.grey), 5) << row.name;
        EXPECT_NEAR(qGreen(image->pixel(1, 0)), qGreen(row.grey), 5) << row.name;
        EXPECT_NEAR(qBlue(image->pixel(1, 0)), qBlue(row.grey), 5) << row.name;
    }
}

TEST(PixelsTest, WhatTheServerDoesNotGiveIsNotRead) {
    const uchar bytes[16] = {};
    const auto textOf = [&](qint64 count, const QSize& size, const PixelFormat& format) {
        const Outcome<QImage> image = imageOf(bytes, count, size, format);
        return image ? std::string() : image.error().text.toStdString();
    };
    EXPECT_EQ(textOf(16, {2, 2}, plain), "");
    EXPECT_EQ(textOf(15, {2, 2}, plain), "the X server gave 15 bytes for a picture of 2x2 pixels");
    // Lines of 16 bit pixels end at whole words.
    EXPECT_EQ(textOf(11, {3, 2}, depth16),
              "the X server gave 11 bytes for a picture of 3x2 pixels");
    EXPECT_EQ(textOf(16, {70000, 70000}, plain),
              "the X server gave 16 bytes for a picture of 70000x70000 pixels");
    EXPECT_EQ(textOf(16, {0, 2}, plain), "the X server gave 16 bytes for a picture of 0x2 pixels");
    EXPECT_EQ(textOf(16, {2, 2}, palette),
              "pictures of a display with 8 bits a pixel and a palette can't be taken; 16, 24 and 30 "
              "bits are fine");
}

}  // namespace
}  // namespace Tamrix::Display
