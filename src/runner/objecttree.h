#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include "shared/uiabstraction/uielement.h"

namespace Tamrix {

/// One element a line, children indented by two blanks below it: type, text in quotes, what is
/// special about its state in brackets, and the name that finds it.
QString objectTreeText(const QList<const UIAbstraction::UIElement*>& elements);

/// The same as a JSON array of objects with the members "type", "text", "name", "geometry" (a list
/// of x, y, width and height on the screen), "properties" and "children".
QByteArray objectTreeJson(const QList<const UIAbstraction::UIElement*>& elements);

}  // namespace Tamrix
