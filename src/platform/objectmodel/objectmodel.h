#pragma once

#include <QString>
#include <QVariant>

#include "base/export.h"
#include "base/outcome.h"
#include "platform/objectmodel/object.h"

namespace Tamrix {

class Class;
class Event;
class ObjectName;

/// The objects of one application, as the inspector sees them. Implemented over a connection to an
/// application and, for tests, in memory. Script thread only. No operation throws.
class TAMRIX_EXPORT ObjectModel {
public:
    virtual ~ObjectModel() = default;

    /// Looks once, without waiting. `name` holds no symbolic names any more. Without a match the
    /// failure is of kind NotFound and names the nearest misses.
    virtual Outcome<SharedPtr<Object>> findObject(const ObjectName& name) = 0;
    /// In the application's stable order.
    virtual Outcome<ObjectList> topLevelObjects() = 0;
    /// Null, which is no failure, when the application knows no such class.
    virtual Outcome<const Class*> classByName(const QString& name) = 0;
    /// The class whose methods are the application's global functions and which knows all events.
    virtual Outcome<const Class*> globalClass() = 0;
    virtual Outcome<SharedPtr<Object>> invokeGlobal(const QString& method,
                                                    const ObjectList& arguments) = 0;
    virtual Outcome<SharedPtr<Object>> construct(const Class* objectClass,
                                                 const ObjectList& arguments) = 0;
    virtual Outcome<QVariant> nativeRequest(const QString& name, const QVariantList& arguments) = 0;
    /// With null `object` the handler is for all objects of the class `className`, or with an empty
    /// name for all objects.
    virtual Outcome<> installEventHandler(SharedPtr<Object> object, const QString& className,
                                          const QString& event, const QString& callback) = 0;
    virtual Outcome<> uninstallEventHandler(SharedPtr<Object> object, const QString& className,
                                            const QString& event, const QString& callback) = 0;
    virtual Outcome<> sendEvent(const Event* event, SharedPtr<Object> target,
                                const ObjectList& parameters) = 0;
    /// The bytes of the object's tree, or of all objects for null, in the stream form of
    /// UIAbstraction::UIElement::elementsFromByteArray.
    virtual Outcome<QByteArray> snapshot(SharedPtr<Object> object) = 0;
    /// The same of one object, with a picture of it.
    virtual Outcome<QByteArray> snapshotWithPicture(SharedPtr<Object> object) = 0;
};

}  // namespace Tamrix
