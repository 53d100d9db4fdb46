#include "interpreter/generic/imagearguments.h"

#include <QColor>
#include <cmath>
#include <limits>
#include <optional>

#include "interpreter/generic/objectarguments.h"

namespace Tamrix {

namespace {

auto badArgument(const QString& text) {
    return fail(FailureKind::BadArgument, text);
}

/// Nothing for what is no number, and for one with a fraction.
std::optional<long long> wholeNumberOf(const ScriptArgument& argument) {
    if (argument.isInteger())
        return argument.toInt();
    const double number = argument.isNumber() ? argument.toDouble() : NAN;
    return std::trunc(number) == number ? std::optional(argument.toInt()) : std::nullopt;
}

/// The coordinate of a pixel, kept within the range of int.
Outcome<int> coordinateArg(const SharedPtr<ScriptArgument>& argument, const QString& what) {
    if (wholeNumberOf(*argument))
        return intOf(argument);
    return badArgument(
        QStringLiteral("The %1 must be a whole number, not '%2'").arg(what, argument->toString()));
}

}  // namespace

Outcome<int> sideArg(const SharedPtr<ScriptArgument>& argument, const QString& what) {
    const std::optional<long long> number = wholeNumberOf(*argument);
    if (number && *number > 0 && *number <= std::numeric_limits<int>::max())
        return static_cast<int>(*number);
    return badArgument(
        QStringLiteral("The %1 of an image must be a whole number of pixels, not '%2'")
            .arg(what, argument->toString()));
}

Outcome<QRgb> colorOfParts(const ScriptArgument::List& parts) {
    constexpr const char* names[] = {"red", "green", "blue", "alpha"};
    int bytes[] = {0, 0, 0, 255};
    for (std::size_t index = 0; index < parts.size(); ++index) {
        const std::optional<long long> part = wholeNumberOf(*parts[index]);
        if (!part || *part < 0 || *part > 255)
            return badArgument(
                QStringLiteral("The part %1 of a color must be a whole number from 0 to 255, not "
                               "'%2'")
                    .arg(QLatin1String(names[index]), parts[index]->toString()));
        bytes[index] = static_cast<int>(*part);
    }
    return qRgba(bytes[0], bytes[1], bytes[2], bytes[3]);
}

Outcome<QRgb> parseColorArg(const ScriptArgument& argument) {
    // 1. A list of red, green and blue, with or without alpha.
    if (argument.isList()) {
        const ScriptArgument::List parts = argument.toList();
        if (parts.size() != 3 && parts.size() != 4)
            return badArgument(
                QStringLiteral("The pixel array value must contain 3 or 4 elements"));
        return colorOfParts(parts);
    }
    // 2. The 32 bits of alpha, red, green and blue, also as the number with a sign that languages
    //    make of them.
    if (argument.isInteger()) {
        const long long bits = argument.toInt();
        if (bits < std::numeric_limits<qint32>::min() || bits > std::numeric_limits<QRgb>::max())
            return badArgument(
                QStringLiteral("The pixel value %1 has more than 32 bits").arg(bits));
        return static_cast<QRgb>(bits);
    }
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
    const Outcome<int> x = coordinateArg(context.argument(0), QStringLiteral("x coordinate"));
    if (!x)
        return fail(x.error());
    if (*x < 0 || *x >= image.width())
        return badArgument(QStringLiteral("The x coordinate falls outside the image"));
    const Outcome<int> y = coordinateArg(context.argument(1), QStringLiteral("y coordinate"));
    if (!y)
        return fail(y.error());
    if (*y < 0 || *y >= image.height())
        return badArgument(QStringLiteral("The y coordinate falls outside the image"));
    return QPoint(*x, *y);
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
