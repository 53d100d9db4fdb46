#pragma once

#include <QByteArray>
#include <QString>

#include "wire/messages.h"

namespace Tamrix {

/// One object a line, children indented by two blanks below it: type, text in quotes, what is
/// special about its state in brackets, and the name that finds it.
QString objectTreeText(const Wire::ObjectListing& listing);

/// The same as a JSON array of objects with the members "type", "text", "name", "geometry" (a list
/// of x, y, width and height on the screen), "properties" and "children".
QByteArray objectTreeJson(const Wire::ObjectListing& listing);

}  // namespace Tamrix
