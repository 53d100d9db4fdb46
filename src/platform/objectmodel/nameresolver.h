#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include "base/export.h"
#include "base/outcome.h"
#include "platform/objectmodel/objectname.h"

namespace Tamrix {

/// Whether the text is a key of a map: it starts with ":".
inline bool isSymbolicName(const QString& text) {
    return text.startsWith(':');
}

/// Whether a property's value means another name of the map.
TAMRIX_EXPORT bool isReferenceToName(const QString& property, const PropertyValue& value);

/// The keys that a name and those nested in it refer to, in their order.
TAMRIX_EXPORT QStringList referencesOf(const ObjectName& name);

/// The name that a key or a real name stands for, with every reference in it replaced. Fails when
/// it is malformed, unknown, refers to itself, or has too many references.
TAMRIX_EXPORT Outcome<ObjectName> resolveName(const QMap<QString, ObjectName>& names,
                                              const QString& name);

}  // namespace Tamrix
