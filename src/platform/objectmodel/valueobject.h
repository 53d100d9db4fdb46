#pragma once

#include <QRect>
#include <QVariant>

#include "base/export.h"
#include "platform/objectmodel/object.h"

namespace Tamrix {

/// A value as an object: what properties and calls give back when it is no object of the
/// application. Lives in this process and has no connection.
///
/// The class is that of the value's type: "bool", "int", "double", "QString", "QByteArray",
/// "QDateTime", "QVariantList", "QVariantMap", and with the properties that testers read "QPoint"
/// (x, y), "QSize" (width, height), "QRect" and "ScreenRectangle" (x, y, width, height), the same
/// of reals "QPointF", "QSizeF", "QRectF", and "QColor" (name, red, green, blue, alpha). An invalid
/// variant is of class "void" and isNull().
class TAMRIX_EXPORT ValueObject : public Object {
public:
    explicit ValueObject(const QVariant& value);
    /// A value of a class of this name, which may be one that is known in the application only.
    ValueObject(const QVariant& value, const Class* objectClass);

    bool isNull() const override { return !m_value.isValid(); }
    ObjectAttribute objectAttribute() const override;
    QVariant toVariant() const override;
    Outcome<SharedPtr<Object>> readProperty(const Property& property) const override;

    /// The value as it is, also where toVariant() has none: points, sizes, rectangles, colours.
    QVariant value() const { return m_value; }
    /// For people: the class and the value, "QPoint(3, 4)". Null for what has no text.
    QString text() const;

    /// The class of values of a type, by its name; null when it is none of the above. Lives for the
    /// process.
    static const Class* valueClass(const QString& name);

private:
    QVariant m_value;
};

/// How deep lists and maps in a value may be nested in each other to be passed to an application.
inline constexpr int maximalValueDepth = 16;

/// The value behind an argument of a remote call: a ValueObject's value, or the object itself as a
/// variant of SharedPtr<Object>. Invalid for null.
TAMRIX_EXPORT QVariant argumentValue(const SharedPtr<Object>& object);

/// The class of screen rectangles, null when no application is connected.
TAMRIX_EXPORT const Class* objectModelScreenRectangleClass();
/// Whether the object is one of that class: what globalBounds() and searches give.
TAMRIX_EXPORT bool isScreenRectangle(const SharedPtr<Object>& object);
/// The rectangle behind an object of class "ScreenRectangle", "QRect" or, rounded, "QRectF"; an
/// invalid rectangle for any other.
TAMRIX_EXPORT QRect unwrapRemoteScreenRectangleAsQRect(SharedPtr<Object> object);
/// Null on failure, with Inspector::lastError() set: when no application is connected.
TAMRIX_EXPORT SharedPtr<Object> createRemoteScreenRectangle(const QRect& rectangle);

}  // namespace Tamrix

Q_DECLARE_METATYPE(Tamrix::SharedPtr<Tamrix::Object>)
