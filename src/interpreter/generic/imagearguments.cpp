#include "interpreter/generic/imagearguments.h"

#include <QColor>

#include "interpreter/generic/objectarguments.h"

namespace Tamrix {

namespace {

auto badArgument(const QString& text) {
    return fail(FailureKind::BadArgument, text);
}

int byteOf(const SharedPtr<ScriptArgument>& argument) {
    return static_cast<int>(argument->toInt() & 0xff);
}

}  // namespace

Outcome<QRgb> parseColorArg(const ScriptArgument& argument) {
    // 1. A list of red, green and blue, with or without alpha.
    if (argument.isList()) {
        const ScriptArgument::List parts = argument.toList();
        if (parts.size() != 3 && parts.size() != 4)
            return badArgument(
                QStringLiteral("The pixel array value must contain 3 or 4 elements"));
        return qRgba(byteOf(parts[0]), byteOf(parts[1]), byteOf(parts[2]),
                     parts.size() == 4 ? byteOf(parts[3]) : 255);
    }
    // 2. The 32 bits of alpha, red, green and blue.
    if (argument.isInteger())
        return static_cast<QRgb>(argument.toInt());
    // 3. The name of a colour.
    if (argument.isString()) {
        QColor color;
        color.setNamedColor(argument.toString());
        if (!color.isValid())
            return badArgument(
                QStringLiteral("'%1' is not a valid color name").arg(argument.toString()));
        return color.rgba();
    }
    // 4. Nothing else.
    return badArgument(QStringLiteral("The pixel value must be an array or an integer"));
}

Outcome<QPoint> pixelArg(const ScriptContext& context, const QImage& image) {
    const QPoint point(intOf(context.argument(0)), intOf(context.argument(1)));
    if (point.x() < 0 || point.x() >= image.width())
        return badArgument(QStringLiteral("The x coordinate falls outside the image"));
    if (point.y() < 0 || point.y() >= image.height())
        return badArgument(QStringLiteral("The y coordinate falls outside the image"));
    return point;
}

Outcome<QRect> rectArg(const ScriptContext& context, const QImage& image) {
    if (context.argumentCount() == 0)
        return QRect();
    if (context.argumentCount() != 4)
        return badArgument(QStringLiteral("copy() takes either 4 or no arguments"));
    // 1. The position lies in the image.
    const Outcome<QPoint> corner = pixelArg(context, image);
    if (!corner)
        return fail(corner.error());
    // 2. There is something to copy.
    const qint64 width = intOf(context.argument(2));
    const qint64 height = intOf(context.argument(3));
    if (width < 1 || height < 1)
        return badArgument(QStringLiteral("Size of the copy must be positive"));
    // 3. All of it lies in the image.
    if (corner->x() + width > image.width() || corner->y() + height > image.height())
        return badArgument(QStringLiteral("The copied area extends outside source image"));
    return QRect(*corner, QSize(static_cast<int>(width), static_cast<int>(height)));
}

Outcome<QPoint> getPointArg(const ScriptContext& context, const QString& method) {
    if (context.argumentCount() == 2)
        return QPoint(intOf(context.argument(0)), intOf(context.argument(1)));
    const SharedPtr<ScriptArgument> argument = context.argument(0);
    if (context.argumentCount() == 1 && argument && argument->isMap()) {
        const ScriptArgument::Map members = argument->toMap();
        const auto x = members.find(QStringLiteral("x"));
        const auto y = members.find(QStringLiteral("y"));
        if (x == members.end() || y == members.end())
            return badArgument(
                QStringLiteral("The point argument requires members called x and y"));
        return QPoint(intOf(x->second), intOf(y->second));
    }
    return badArgument(
        QStringLiteral("%1() requires x and y coordinates or a point object as argument(s)")
            .arg(method));
}

}  // namespace Tamrix
