#pragma once

#include <QString>

#include "base/export.h"
#include "interpreter/objects/objecterror.h"
#include "platform/objectmodel/object.h"

namespace Tamrix {

// What scripts ask of each object whatever it is: whether two are the same, whether there is one,
// and how it is shown. None of the objects is null, nor do these ask the application but for the
// text.

/// Two handles on one object are the same, and so are two equal values of a type.
TAMRIX_EXPORT bool isSameObject(const SharedPtr<Object>& left, const SharedPtr<Object>& right);

/// Equal for objects that are the same.
TAMRIX_EXPORT quint64 objectHash(const SharedPtr<Object>& object);

/// An object is true when there is one behind it.
TAMRIX_EXPORT bool isTrueObject(const SharedPtr<Object>& object);

/// A value as text, or the name that finds the object again; "<Class object>" when the application
/// knows none.
TAMRIX_EXPORT ObjectResult<QString> objectText(const SharedPtr<Object>& object);

}  // namespace Tamrix
