#pragma once

#include <QString>
#include <memory>
#include <vector>

#include "base/export.h"
#include "base/shared.h"
#include "platform/objectmodel/object.h"

namespace Tamrix {

/// One argument of a signature.
class TAMRIX_EXPORT Argument {
public:
    explicit Argument(const QString& typeName) : m_typeName(typeName) {}
    QString typeName() const { return m_typeName; }

private:
    QString m_typeName;
};

/// The arguments of a method or event, in order.
class TAMRIX_EXPORT Signature {
public:
    Signature() = default;
    explicit Signature(std::vector<Argument> arguments) : m_arguments(std::move(arguments)) {}

    int argumentCount() const { return static_cast<int>(m_arguments.size()); }
    /// `index` is below argumentCount().
    const Argument& argument(int index) const { return m_arguments[index]; }

private:
    std::vector<Argument> m_arguments;
};

/// A method of a class.
class TAMRIX_EXPORT Method {
public:
    /// An empty deprecation message means that the method is not deprecated.
    Method(const QString& name, Signature signature, const QString& deprecationMessage = QString())
        : m_name(name),
          m_signature(std::move(signature)),
          m_deprecationMessage(deprecationMessage) {}

    QString name() const { return m_name; }
    const Signature& signature() const { return m_signature; }
    QString deprecationMessage() const { return m_deprecationMessage; }

private:
    QString m_name;
    Signature m_signature;
    QString m_deprecationMessage;
};

/// A property of a class.
class TAMRIX_EXPORT Property {
public:
    explicit Property(const QString& name) : m_name(name) {}

    QString name() const { return m_name; }
    /// The property's value on `object`, null when it can't be read or `object` is null.
    SharedPtr<Object> get(SharedPtr<Object> object) const;

private:
    QString m_name;
};

/// The type of an application's objects. Owned by its model, which outlives the objects.
class TAMRIX_EXPORT Class {
public:
    explicit Class(const QString& name) : m_name(name) {}
    Class(const Class&) = delete;
    Class& operator=(const Class&) = delete;

    QString name() const { return m_name; }
    int numProperties() const { return static_cast<int>(m_properties.size()); }
    /// Null when `index` is out of range.
    const Property* property(int index) const;
    /// Adds a property behind those that are there.
    void addProperty(const QString& name);

private:
    QString m_name;
    std::vector<std::unique_ptr<Property>> m_properties;
};

}  // namespace Tamrix
