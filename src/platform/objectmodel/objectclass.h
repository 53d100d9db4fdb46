#pragma once

#include <QList>
#include <QString>
#include <QStringList>
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
    /// The argument's class in the current application, null when it is unknown there.
    const Class* type() const;

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

    /// For people: the parameters, those that may be left out in brackets ("object[, x, y]"), and
    /// what the method does. Both empty where the application does not tell; of a method without
    /// parameters the first.
    QString parameters() const { return m_parameters; }
    QString description() const { return m_description; }
    bool isDescribed() const { return !m_description.isEmpty(); }
    void describe(const QString& parameters, const QString& description) {
        m_parameters = parameters;
        m_description = description;
    }

    /// Calls the method on `self`; null `self` calls a global method of the current application.
    /// See Object::invokeMethod for the result.
    Outcome<SharedPtr<Object>> invoke(SharedPtr<Object> self, const ObjectList& arguments) const;

private:
    QString m_name;
    Signature m_signature;
    QString m_deprecationMessage;
    QString m_parameters;
    QString m_description;
};

/// An event that objects of a class can get.
class TAMRIX_EXPORT Event {
public:
    Event(const QString& name, Signature signature)
        : m_name(name), m_signature(std::move(signature)) {}

    QString name() const { return m_name; }
    const Signature& signature() const { return m_signature; }

private:
    QString m_name;
    Signature m_signature;
};

/// A property of a class.
class TAMRIX_EXPORT Property {
public:
    explicit Property(const QString& name, const QString& typeName = QString(),
                      bool isWritable = false)
        : m_name(name), m_typeName(typeName), m_isWritable(isWritable) {}

    QString name() const { return m_name; }
    /// Empty when it is not known.
    QString typeName() const { return m_typeName; }
    bool isWritable() const { return m_isWritable; }
    /// The property's value on `object`, null when it can't be read, with Inspector::lastError()
    /// set, or `object` is null.
    SharedPtr<Object> get(SharedPtr<Object> object) const;

private:
    QString m_name;
    QString m_typeName;
    bool m_isWritable;
};

/// The type of an application's objects. Owned by its model or by the process; it outlives the
/// objects. Filled once, then constant.
class TAMRIX_EXPORT Class {
public:
    explicit Class(const QString& name) : m_name(name) {}
    Class(const Class&) = delete;
    Class& operator=(const Class&) = delete;

    QString name() const { return m_name; }
    /// Names of the base classes, the nearest first.
    QStringList superClasses() const { return m_superClasses; }
    /// Whether this is the class of that name or derived from it.
    bool isOrDerivesFrom(const QString& name) const;

    int numProperties() const { return static_cast<int>(m_properties.size()); }
    /// Null when `index` is out of range.
    const Property* property(int index) const;
    /// Null when there is none of this name.
    const Property* property(const QString& name) const;
    /// The methods with this name, which differ in their arguments.
    QList<const Method*> methodsByName(const QString& name) const;
    int numMethods() const { return static_cast<int>(m_methods.size()); }
    /// Null when `index` is out of range.
    const Method* method(int index) const;
    /// Null when the class knows no such event.
    const Event* event(const QString& type) const;
    /// Makes an object of the class in the current application.
    Outcome<SharedPtr<Object>> construct(const ObjectList& arguments) const;

    // Filling: each is added behind those that are there.
    void addProperty(const QString& name, const QString& typeName = QString(),
                     bool isWritable = false);
    /// The added method, to be described.
    Method& addMethod(const QString& name, Signature signature);
    void addEvent(const QString& name, Signature signature);
    void setSuperClasses(const QStringList& names) { m_superClasses = names; }

private:
    QString m_name;
    QStringList m_superClasses;
    std::vector<std::unique_ptr<Property>> m_properties;
    std::vector<std::unique_ptr<Method>> m_methods;
    std::vector<std::unique_ptr<Event>> m_events;
};

}  // namespace Tamrix
