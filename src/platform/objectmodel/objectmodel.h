#pragma once

#include <QString>
#include <QVariant>

#include "base/export.h"
#include "platform/objectmodel/object.h"

namespace Tamrix {

class Class;
class Event;
class ObjectName;

/// The objects of one application, as the inspector sees them. Implemented over a connection to an
/// application and, for tests, in memory. Script thread only.
///
/// No operation throws. A failing one returns null, false or an invalid variant and sets `*error`,
/// which is never null, to a text for the tester.
class TAMRIX_EXPORT ObjectModel {
public:
    virtual ~ObjectModel() = default;

    /// Looks once, without waiting. `name` holds no symbolic names any more. Without a match
    /// `*error` names the nearest misses.
    virtual SharedPtr<Object> findObject(const ObjectName& name, QString* error) = 0;
    /// In the application's stable order.
    virtual ObjectList topLevelObjects(QString* error) = 0;
    /// Null, and no error, when the application knows no such class.
    virtual const Class* classByName(const QString& name) = 0;
    /// The class whose methods are the application's global functions and which knows all events.
    virtual const Class* globalClass() = 0;
    virtual SharedPtr<Object> invokeGlobal(const QString& method, const ObjectList& arguments,
                                           QString* error) = 0;
    virtual SharedPtr<Object> construct(const Class* objectClass, const ObjectList& arguments,
                                        QString* error) = 0;
    virtual QVariant nativeRequest(const QString& name, const QVariantList& arguments,
                                   QString* error) = 0;
    /// With null `object` the handler is for all objects of the class `className`, or with an empty
    /// name for all objects.
    virtual bool installEventHandler(SharedPtr<Object> object, const QString& className,
                                     const QString& event, const QString& callback,
                                     QString* error) = 0;
    virtual bool uninstallEventHandler(SharedPtr<Object> object, const QString& className,
                                       const QString& event, const QString& callback,
                                       QString* error) = 0;
    virtual bool sendEvent(const Event* event, SharedPtr<Object> target,
                           const ObjectList& parameters, QString* error) = 0;
    /// The bytes of the object's tree, or of all objects for null, in the stream form of
    /// UIAbstraction::UIElement::elementsFromByteArray.
    virtual QByteArray snapshot(SharedPtr<Object> object, QString* error) = 0;
};

}  // namespace Tamrix
