#pragma once

#include <QMap>
#include <QString>
#include <memory>
#include <vector>

#include "base/export.h"
#include "platform/objectmodel/object.h"
#include "platform/objectmodel/objectclass.h"

namespace Tamrix {

/// An object of an InMemoryModel: its properties are other objects of the model, values are
/// objects whose name is the value.
class TAMRIX_EXPORT InMemoryObject : public Object {
public:
    InMemoryObject(quint64 handle, const Class* objectClass, const QString& name);

    QString objectName() const override { return m_name; }
    /// {name='<the object's name>' type='<its class>'}
    QString realName() const override;
    ObjectList children() const override { return m_children; }
    SharedPtr<Object> parent() const override { return m_parent; }
    SharedPtr<Object> readProperty(const Property& property) const override;

    void setProperty(const QString& name, SharedPtr<Object> value);

private:
    friend class InMemoryModel;

    QString m_name;
    // A child does not own its parent: the model owns the top-level objects.
    Object* m_parent = nullptr;
    ObjectList m_children;
    QMap<QString, SharedPtr<Object>> m_properties;
};

/// A tree of objects in this process, for tests of everything that handles objects without an
/// application. Outlives the objects that it makes. Script thread only.
class TAMRIX_EXPORT InMemoryModel {
public:
    /// The class of this name, made on first use.
    Class* objectClass(const QString& name);

    /// A new object below `parent`, or at the top when `parent` is null.
    SharedPtr<InMemoryObject> addObject(const QString& className, const QString& name,
                                        SharedPtr<InMemoryObject> parent = nullptr);

    ObjectList topLevelObjects() const { return m_topLevelObjects; }

    /// The object with this real name, null when there is none.
    SharedPtr<Object> findObject(const QString& realName) const;

private:
    std::vector<std::unique_ptr<Class>> m_classes;
    ObjectList m_topLevelObjects;
    quint64 m_lastHandle = 0;
};

}  // namespace Tamrix
