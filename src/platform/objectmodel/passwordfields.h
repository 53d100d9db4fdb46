#pragma once

#include <QStringList>

#include "base/export.h"
#include "platform/objectmodel/object.h"

namespace Tamrix {

/// The properties that tell what a field, or a dialog that asks for a text, hides; none for all
/// others and for null. Asks the application.
TAMRIX_EXPORT QStringList hiddenProperties(const SharedPtr<Object>& object);

/// What it hides; empty for what hides nothing. Asks the application.
TAMRIX_EXPORT QString hiddenText(const SharedPtr<Object>& object);

/// Whether it hides what is entered; null does not. Asks the application.
TAMRIX_EXPORT bool isForPasswords(const SharedPtr<Object>& object);

}  // namespace Tamrix
