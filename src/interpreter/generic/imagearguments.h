#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QString>

#include "base/outcome.h"
#include "interpreter/bridge/scriptcontext.h"

namespace Tamrix {

// How the members of pictures read their arguments. Failures are of kind BadArgument; their texts
// are the script's errors.

/// A colour as ARGB: a list of red, green, blue and perhaps alpha, the integer of 32 bits itself,
/// or the name of a colour.
Outcome<QRgb> parseColorArg(const ScriptArgument& argument);

/// The colour of three or four parts from 0 to 255: red, green, blue, alpha.
Outcome<QRgb> colorOfParts(const ScriptArgument::List& parts);

/// A size in pixels, one side of it each. `what` stands in the failure: "width".
Outcome<int> sideArg(const SharedPtr<ScriptArgument>& argument, const QString& what);

/// The pixel that the first two arguments name, which must be one of the image.
Outcome<QPoint> pixelArg(const ScriptContext& context, const QImage& image);

/// A part of the image, from its position and size: the null rectangle without arguments.
Outcome<QRect> rectArg(const ScriptContext& context, const QImage& image);

/// A point, as two numbers or as a map with "x" and "y". `method` stands in the failure.
Outcome<QPoint> getPointArg(const ScriptContext& context, const QString& method);

}  // namespace Tamrix
