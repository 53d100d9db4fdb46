#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

#include "platform/objectmodel/access.h"
#include "platform/objectmodel/object.h"
#include "platform/objectmodel/objectclass.h"
#include "platform/objectmodel/objectname.h"

namespace Tamrix {

class InMemoryModel;

/// An object of an InMemoryModel: its properties are other objects of the model or values; values
/// may also be objects whose name is the value.
class InMemoryObject : public RemoteObjectBase {
public:
    InMemoryObject(InMemoryModel* model, quint64 handle, const Class* objectClass,
                   const QString& name);

    QString objectName() const override { return m_name; }
    /// {name='<the object's name>' type='<its class>'}
    QString realName() const override;
    ObjectList children() const override { return m_children; }
    SharedPtr<Object> parent() const override { return m_parent; }
    int remoteId() const override { return static_cast<int>(handle()); }
    Outcome<SharedPtr<Object>> readProperty(const Property& property) const override;
    /// Sets a property that the class has as a writable one.
    Outcome<> writeProperty(const Property& property, SharedPtr<Object> value) const override;
    Outcome<SharedPtr<Object>> invokeMethod(const Method& method,
                                            const ObjectList& arguments) const override;

    void setProperty(const QString& name, SharedPtr<Object> value);
    void setProperty(const QString& name, const QVariant& value);
    /// Null when it was never set.
    SharedPtr<Object> property(const QString& name) const { return m_properties.value(name); }

private:
    friend class InMemoryModel;

    InMemoryModel* m_model;
    QString m_name;
    // A child does not own its parent: the model owns the top-level objects.
    Object* m_parent = nullptr;
    ObjectList m_children;
    mutable QMap<QString, SharedPtr<Object>> m_properties;
};

/// An application that is a tree of objects in this process, for tests of everything that handles
/// objects and of runs: set it with Inspector::setModel(), or add it to the applications of a run.
/// Outlives the objects that it makes. Script thread only.
///
/// Names find objects by "type" (the class or a base), "name", "occurrence" and each property of
/// the objects; "window", "container", "parent" and "ancestor" mean the objects above. Of several
/// matches the first in the order of the tree, parents before children, is meant.
class InMemoryModel : public Access {
public:
    using Calls = std::function<Outcome<SharedPtr<Object>>(
        SharedPtr<Object> self, const QString& method, const ObjectList& arguments)>;

    InMemoryModel();

    /// The class of this name, made on first use.
    Class* objectClass(const QString& name);
    /// The global class, to be filled with methods and events.
    Class* editableGlobalClass() { return &m_globalClass; }

    /// A new object below `parent`, or at the top when `parent` is null.
    SharedPtr<InMemoryObject> addObject(const QString& className, const QString& name,
                                        SharedPtr<InMemoryObject> parent = nullptr);

    /// The object with this real name, null when there is none.
    SharedPtr<Object> findObject(const QString& realName) const;

    /// What calls do; null `self` for global functions, method "new" of a null object of the class
    /// for construct(). Calls fail while it is not set.
    Calls onCall;
    /// What native requests give; they fail while it is not set.
    std::function<Outcome<QVariant>(const QString& name, const QVariantList& arguments)>
        onNativeRequest;
    /// What snapshots give; null bytes make them fail.
    QByteArray snapshotBytes;
    /// What keeps an object from being used, "it is disabled"; asked at each look. All are ready
    /// while it is not set.
    std::function<QString(const Object& object)> obstacleOf;
    /// Called before each look and act: the application goes on meanwhile.
    std::function<void()> onLook;
    /// Installed handlers and sent events, one text each: "install|ok|Button|clicked|callback",
    /// "uninstall|...", "send|ok|clicked|2" with the number of parameters.
    QStringList journal;

    // ObjectModel
    Outcome<SharedPtr<Object>> findObject(const ObjectName& name) override;
    Outcome<ObjectList> topLevelObjects() override;
    Outcome<const Class*> classByName(const QString& name) override;
    Outcome<const Class*> globalClass() override;
    Outcome<SharedPtr<Object>> invokeGlobal(const QString& method,
                                            const ObjectList& arguments) override;
    Outcome<SharedPtr<Object>> construct(const Class* objectClass,
                                         const ObjectList& arguments) override;
    Outcome<QVariant> nativeRequest(const QString& name, const QVariantList& arguments) override;
    Outcome<> installEventHandler(SharedPtr<Object> object, const QString& className,
                                  const QString& event, const QString& callback) override;
    Outcome<> uninstallEventHandler(SharedPtr<Object> object, const QString& className,
                                    const QString& event, const QString& callback) override;
    Outcome<> sendEvent(const Event* event, SharedPtr<Object> target,
                        const ObjectList& parameters) override;
    // Access
    ApplicationFacts facts() const override;
    bool isOpen() const override { return m_endReason.isEmpty(); }
    bool takeNews() override { return isOpen(); }
    void close(const QString& reason) override { m_endReason = reason; }
    QString endReason() const override { return m_endReason; }
    bool owns(const SharedPtr<Object>& object) const override;
    Outcome<TargetAnswer> lookUp(const Target& target, int answerTimeout) override;
    /// Calls onCall with the target in front. Does not wait.
    Outcome<TargetAnswer> act(const QString& function, const Target& target,
                              const ObjectList& arguments, int timeout) override;
    Outcome<QByteArray> snapshotOf(const Target& target, bool withImages) override;

private:
    friend class InMemoryObject;

    Outcome<SharedPtr<Object>> call(SharedPtr<Object> self, const QString& method,
                                    const ObjectList& arguments);

    std::vector<std::unique_ptr<Class>> m_classes;
    Class m_globalClass;
    ObjectList m_topLevelObjects;
    quint64 m_lastHandle = 0;
    QString m_endReason;
};

}  // namespace Tamrix
