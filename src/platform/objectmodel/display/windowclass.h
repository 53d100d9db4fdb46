#pragma once

#include <QStringList>
#include <QVariant>

#include "platform/objectmodel/display/windows.h"
#include "platform/objectmodel/objectclass.h"

namespace Tamrix::Display {

/// "Window", the class of all objects that a display has. It lives as long as the process.
const Class* windowClass();
/// "Global": the functions that are called without an object.
const Class* globalClass();

/// What scripts read of a window. Invalid for what a window has not.
QVariant propertyOf(const WindowFacts& facts, const QString& name);
/// As names compare it; null for what a window has not.
QString propertyText(const WindowFacts& facts, const QString& name);

}  // namespace Tamrix::Display
