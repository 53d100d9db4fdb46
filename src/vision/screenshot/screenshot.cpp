#include "vision/screenshot/screenshot.h"

#include <QBuffer>
#include <QVariantList>
#include <QVariantMap>
#include <algorithm>
#include <array>
#include <cmath>

#include "vision/screenshot/bmpdata.h"

namespace Tamrix {

namespace {

const QString imageKey = QStringLiteral("image");
const QString transformKey = QStringLiteral("transform");
const QString densityKey = QStringLiteral("density");
const QString originKey = QStringLiteral("origin");
const QString scaleKey = QStringLiteral("scale");
const QString pixelsKey = QStringLiteral("pixels");
// In "pixels".
const QString widthKey = QStringLiteral("width");
const QString heightKey = QStringLiteral("height");
const QString formatKey = QStringLiteral("format");

constexpr int transformSize = 6;
/// Speed is what counts between two processes of one machine.
constexpr int compressionLevel = 1;

struct Rotation {
    qreal m11, m12, m21, m22;
};

constexpr std::array<Rotation, 4> rotations = {{
    {1, 0, 0, 1},
    {0, -1, 1, 0},
    {0, 1, -1, 0},
    {-1, 0, 0, -1},
}};

QTransform rotation(int index) {
    const bool isKnown = index >= 0 && index < static_cast<int>(rotations.size());
    const Rotation& r = rotations[isKnown ? static_cast<std::size_t>(index) : 0];
    return {r.m11, r.m12, r.m21, r.m22, 0, 0};
}

QTransform fromOriginAndScale(QPoint origin, double scale) {
    const double factor = std::isfinite(scale) && scale > 0 ? 1 / scale : 1;
    return QTransform().scale(factor, factor).translate(origin.x(), origin.y());
}

QTransform fromList(const QVariantList& list) {
    if (list.size() < transformSize)
        return {};
    std::array<double, transformSize> m = {};
    std::transform(list.begin(), list.begin() + transformSize, m.begin(),
                   [](const QVariant& value) { return value.toDouble(); });
    if (!std::all_of(m.begin(), m.end(), [](double value) { return std::isfinite(value); }))
        return {};
    return {m[0], m[1], m[2], m[3], m[4], m[5]};
}

/// The map of a screenshot, with its image in whatever form.
QVariantMap withImage(const QVariant& image, const Screenshot& screenshot) {
    const QTransform& m = screenshot.transform();
    return {{imageKey, image},
            {transformKey, QVariantList{m.m11(), m.m12(), m.m21(), m.m22(), m.dx(), m.dy()}},
            {densityKey, screenshot.density()}};
}

/// The formats whose rows stand behind each other without gaps.
bool isFormatOf32Bits(int format) {
    return format == QImage::Format_RGB32 || format == QImage::Format_ARGB32 ||
           format == QImage::Format_ARGB32_Premultiplied;
}

QImage imageFromBmp(const QByteArray& data) {
    return Vision::imageFromBmp(reinterpret_cast<const uchar*>(data.constData()), data.size());
}

}  // namespace

Screenshot::Screenshot(const QImage& image, const QTransform& transform, double density)
    : m_image(image), m_transform(transform), m_density(density) {}

Screenshot Screenshot::fromBmpData(const unsigned char* data, int length, QPoint origin,
                                   double scale, double density) {
    return Screenshot(Vision::imageFromBmp(data, length), fromOriginAndScale(origin, scale),
                      density);
}

Screenshot Screenshot::fromBmpData(const QByteArray& data, QPoint origin, double scale,
                                   double density) {
    return fromBmpData(data, fromOriginAndScale(origin, scale), density);
}

Screenshot Screenshot::fromBmpData(const QByteArray& data, const QTransform& transform,
                                   double density) {
    return Screenshot(imageFromBmp(data), transform, density);
}

Screenshot Screenshot::fromBmpZipData(const QByteArray& data, QPoint origin, double scale,
                                      double density) {
    return fromBmpData(Vision::uncompressed(data), origin, scale, density);
}

Screenshot Screenshot::fromBmpZipData(const QByteArray& data, const QTransform& transform,
                                      double density) {
    return fromBmpData(Vision::uncompressed(data), transform, density);
}

Screenshot Screenshot::fromVariant(const QVariant& variant) {
    // 1. Nothing at all.
    if (!variant.isValid())
        return Screenshot();
    // 2. The transform, the identity if there is none.
    const QVariantMap map = variant.toMap();
    const QTransform transform = fromList(map.value(transformKey).toList());
    // 3. The density.
    const double density = map.value(densityKey, 1.0).toDouble();
    // 4. The image, which within a process is there as it is.
    const QVariant image = map.value(imageKey);
    if (image.userType() == QMetaType::QImage)
        return Screenshot(image.value<QImage>(), transform, density);
    return fromBmpZipData(image.toByteArray(), transform, density);
}

QVariant Screenshot::toVariant() const {
    if (m_image.isNull())
        return {};
    QByteArray bmp;
    QBuffer buffer(&bmp);
    buffer.open(QIODevice::WriteOnly);
    m_image.save(&buffer, "BMP", 100);
    return withImage(qCompress(bmp, compressionLevel), *this);
}

QVariant Screenshot::toLocalVariant() const {
    return m_image.isNull() ? QVariant() : withImage(m_image, *this);
}

QVariant Screenshot::toVariantWithoutPixels(QPoint origin, double scale) const {
    if (m_image.isNull() || !isFormatOf32Bits(m_image.format()))
        return {};
    QVariantMap map = toLocalVariant().toMap();
    map.remove(imageKey);
    map.insert(pixelsKey, QVariantMap{{widthKey, m_image.width()},
                                      {heightKey, m_image.height()},
                                      {formatKey, static_cast<int>(m_image.format())}});
    map.insert(originKey, origin);
    map.insert(scaleKey, scale);
    return map;
}

QVariant Screenshot::toVariant(QPoint origin, double scale) const {
    if (m_image.isNull())
        return {};
    QVariantMap map = toVariant().toMap();
    map.insert(originKey, origin);
    map.insert(scaleKey, scale);
    return map;
}

QByteArray Screenshot::raw(const QVariant& variant, QPoint* origin, double* scale,
                           double* density) {
    const QVariantMap map = variant.toMap();
    if (origin && map.contains(originKey))
        *origin = map.value(originKey).toPoint();
    if (scale && map.contains(scaleKey))
        *scale = map.value(scaleKey).toDouble();
    if (density && map.contains(densityKey))
        *density = map.value(densityKey).toDouble();
    return map.value(imageKey).toByteArray();
}

QPoint Screenshot::nativeToImage(QPoint point) const {
    return m_transform.inverted().map(point);
}

QRect Screenshot::nativeToImage(const QRect& rect) const {
    return m_transform.inverted().mapRect(rect);
}

QPoint Screenshot::imageToNative(QPoint point) const {
    return m_transform.map(point);
}

QRect Screenshot::imageToNative(const QRect& rect) const {
    return m_transform.mapRect(rect);
}

Screenshot Screenshot::copy(const QRect& rect) const {
    QTransform transform = m_transform;
    // Top first, then left: the order is meant.
    if (rect.isValid())
        transform.translate(rect.top(), rect.left());
    return Screenshot(m_image.copy(rect), transform, m_density);
}

Screenshot Screenshot::rotated(int index) const {
    const QTransform r = rotation(index);
    // 1. Where the far corner goes.
    const QPoint corner = r.map(m_image.rect().bottomRight());
    // 2. The way back, from the rotated image's own origin.
    QTransform inverse = r.inverted();
    inverse.translate(std::min(corner.x(), 0), std::min(corner.y(), 0));
    // 3. The image, and the way from it to native coordinates.
    return Screenshot(m_image.transformed(r), inverse * m_transform, m_density);
}

QImage Screenshot::rotated(const QImage& image, int index) {
    return image.transformed(rotation(index));
}

QPixmap Screenshot::rotated(const QPixmap& pixmap, int index) {
    return pixmap.transformed(rotation(index));
}

}  // namespace Tamrix
