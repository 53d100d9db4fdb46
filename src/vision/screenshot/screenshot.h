#pragma once

#include <QByteArray>
#include <QImage>
#include <QPixmap>
#include <QPoint>
#include <QRect>
#include <QTransform>
#include <QVariant>

#include "base/export.h"

namespace Tamrix {

/// An image together with the knowledge of where it belongs on the screens of the application under
/// test. Image coordinates count the image's own pixels; native coordinates are those of scripts
/// and object rectangles. The transform leads from the former to the latter.
///
/// A value; copies share the pixels. Images and variants come from applications and may be damaged:
/// what can't be read gives a null image, see Vision::maxImageBytes for the limits.
class TAMRIX_EXPORT Screenshot {
public:
    /// A null image, the identity and density 1.
    Screenshot() = default;
    /// `transform` leads from image to native coordinates; `density` is the screen's density
    /// factor, carried along only.
    explicit Screenshot(const QImage& image, const QTransform& transform = QTransform(),
                        double density = 1);

    // From BMP data. With origin and scale the native coordinates of an image's pixel are
    // (pixel + origin) / scale; a scale that is not a finite number above 0 counts as 1.
    static Screenshot fromBmpData(const unsigned char* data, int length, QPoint origin,
                                  double scale, double density);
    static Screenshot fromBmpData(const QByteArray& data, QPoint origin, double scale,
                                  double density);
    static Screenshot fromBmpData(const QByteArray& data, const QTransform& transform,
                                  double density);
    // The same from BMP data that went through qCompress().
    static Screenshot fromBmpZipData(const QByteArray& data, QPoint origin, double scale,
                                     double density);
    static Screenshot fromBmpZipData(const QByteArray& data, const QTransform& transform,
                                     double density);

    /// Reads what toVariant() or toLocalVariant() made. What is missing has the default. The sender
    /// answers for a "transform" of six finite numbers; any other list counts as the identity.
    static Screenshot fromVariant(const QVariant& variant);
    /// A map: "image" is the image as BMP, compressed by qCompress(); "transform" a list of six
    /// numbers m11, m12, m21, m22, dx, dy; "density" a number. Invalid for a null image.
    QVariant toVariant() const;
    /// The same with "origin", the native position of the image's top-left corner, and "scale",
    /// image pixels for each native unit, for receivers that use raw().
    QVariant toVariant(QPoint origin, double scale) const;
    /// The same for receivers that get the pixels in another way: "pixels" is a map with the
    /// "width", "height" and "format" of an image whose pixels have 32 bits, which the receiver
    /// replaces by the "image" itself. Invalid for an image of any other format.
    QVariant toVariantWithoutPixels(QPoint origin, double scale) const;
    /// The same as toVariant() for receivers in this process: "image" is the image itself, whose
    /// pixels are shared.
    QVariant toLocalVariant() const;
    /// The compressed image in what toVariant() made, empty for an invalid variant. Where a target
    /// is given and the variant has "origin", "scale" or "density", the target takes the value.
    static QByteArray raw(const QVariant& variant, QPoint* origin, double* scale, double* density);

    const QImage& image() const { return m_image; }
    const QTransform& transform() const { return m_transform; }
    double density() const { return m_density; }

    QPoint nativeToImage(QPoint point) const;
    QRect nativeToImage(const QRect& rect) const;
    QPoint imageToNative(QPoint point) const;
    QRect imageToNative(const QRect& rect) const;

    /// The part of the image in the rectangle, as QImage::copy() has it. The transform's origin
    /// moves by (top, left) of a valid rectangle.
    Screenshot copy(const QRect& rect) const;

    /// The image turned by one of four rotations: 0 none, 1 to the left, 2 to the right, 3 half
    /// around. Any other index counts as 0. Native coordinates stay where they are.
    Screenshot rotated(int index) const;
    static QImage rotated(const QImage& image, int index);
    /// Needs a QGuiApplication.
    static QPixmap rotated(const QPixmap& pixmap, int index);

private:
    QImage m_image;
    QTransform m_transform;
    double m_density = 1;
};

}  // namespace Tamrix
