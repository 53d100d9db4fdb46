#pragma once

#include <QMetaObject>
#include <QString>
#include <QStringList>

#include "base/export.h"

namespace Tamrix::Agent {

/// The class name as testers know it: without what the QML engine appends to the classes that it
/// makes ("Button_QMLTYPE_12", "Main_QML_3", "QQuickWindowQmlImpl"), which can differ from run to
/// run, and without the version in names that Qt 6 gives older imports ("QQuickPre64TextInput"), so
/// that one name fits both versions of Qt.
TAMRIX_EXPORT QString typeNameOf(const QMetaObject* metaObject);
/// The names of the base classes, the nearest first; a name that comes twice in a row, as for a
/// generated class of a type of the same name, comes once.
TAMRIX_EXPORT QStringList superTypesOf(const QMetaObject* metaObject);

}  // namespace Tamrix::Agent
