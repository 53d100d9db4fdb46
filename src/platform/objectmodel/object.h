#pragma once

#include <QString>
#include <vector>

#include "base/export.h"
#include "base/shared.h"

namespace Tamrix {

class Class;
class Object;
class Property;

/// Objects in order; null entries are legal.
class ObjectList : public std::vector<SharedPtr<Object>> {
public:
    using std::vector<SharedPtr<Object>>::vector;
};

/// Handle on one object of an application. Script thread only.
class TAMRIX_EXPORT Object : public Shared {
public:
    /// `handle` identifies the object in its model; zero is the null object. `objectClass` is not
    /// owned, must outlive the object, and may be null when it is unknown.
    explicit Object(quint64 handle = 0, const Class* objectClass = nullptr);

    quint64 handle() const { return m_handle; }

    /// Whether the handle is zero: there is no object behind it.
    virtual bool isNull() const;
    virtual QString objectName() const;
    /// A name that finds this object again.
    virtual QString realName() const;
    virtual QString className() const;
    virtual bool isA(const Class* other) const;
    virtual ObjectList children() const;
    /// Null for a top-level object.
    virtual SharedPtr<Object> parent() const;
    virtual const Class* objectClass() const;
    /// The value of one of the object's properties, null when it can't be read.
    virtual SharedPtr<Object> readProperty(const Property& property) const;

private:
    quint64 m_handle;
    const Class* m_class;
};

}  // namespace Tamrix
