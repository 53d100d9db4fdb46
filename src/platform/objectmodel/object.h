#pragma once

#include <QString>
#include <QVariant>
#include <utility>
#include <vector>

#include "base/export.h"
#include "base/outcome.h"
#include "base/shared.h"
#include "platform/objectmodel/objectattribute.h"

namespace Tamrix {

class Class;
class Method;
class Object;
class Property;

/// Objects in order; null entries are legal.
class ObjectList : public std::vector<SharedPtr<Object>> {
public:
    using std::vector<SharedPtr<Object>>::vector;
};

/// Names of properties with their values.
using PropertyList = std::vector<std::pair<QString, SharedPtr<Object>>>;

/// Handle on one object of an application, or a value that came from one. Script thread only.
///
/// Operations that ask the application return an Outcome, or null and the like with the reason in
/// Inspector::lastError(); the base class has no application and fails with all of them.
class TAMRIX_EXPORT Object : public Shared {
public:
    /// `handle` identifies the object in its model; zero is the null object. `objectClass` is not
    /// owned, must outlive the object, and may be null when it is unknown.
    explicit Object(quint64 handle = 0, const Class* objectClass = nullptr);

    quint64 handle() const { return m_handle; }

    /// The name by which it was looked up, for reports; empty when it was got in another way.
    QString foundAs() const { return m_foundAs; }
    void setFoundAs(const QString& name) { m_foundAs = name; }

    /// By default whether the handle is zero: there is no object behind it.
    virtual bool isNull() const;
    virtual QString objectName() const;
    /// A name that finds this object again.
    virtual QString realName() const;
    virtual QString className() const;
    /// Whether the object's class is `other` or derived from it.
    virtual bool isA(const Class* other) const;
    virtual ObjectList children() const;
    /// Null for a top-level object.
    virtual SharedPtr<Object> parent() const;
    virtual const Class* objectClass() const;
    virtual ObjectAttribute objectAttribute() const;
    /// The object as one of another class: itself when it isA() that class, null otherwise.
    virtual SharedPtr<Object> cast(const Class* other) const;
    /// The object's interface of this name, null when it has none.
    virtual SharedPtr<Object> queryInterface(const QString& name) const;
    /// The value: bool, number, text, bytes, date, list or map. Invalid for everything else.
    virtual QVariant toVariant() const;

    /// The value of one of the object's properties, never null.
    virtual Outcome<SharedPtr<Object>> readProperty(const Property& property) const;
    /// All properties that can be read, in the order of the class.
    virtual Outcome<PropertyList> readProperties() const;
    virtual Outcome<> writeProperty(const Property& property, SharedPtr<Object> value) const;
    /// Calls a method. The result is never null: without one, it is an object of class "void" that
    /// isNull().
    virtual Outcome<SharedPtr<Object>> invokeMethod(const Method& method,
                                                    const ObjectList& arguments) const;

private:
    quint64 m_handle;
    const Class* m_class;
    QString m_foundAs;
};

/// An object that lives in an application.
class TAMRIX_EXPORT RemoteObjectBase : public Object {
public:
    using Object::Object;

    /// The object's number within its application, as the application's requests take it.
    virtual int remoteId() const = 0;
};

}  // namespace Tamrix
