#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include "base/export.h"
#include "base/shared.h"

namespace Tamrix {

class ScriptContext;

/// Instance of a native class, held by a script value.
///
/// Each class has a type identifier, the address of a private static marker, and offers
/// `static void* staticTypeId()` and `static NativeScriptType type()`.
class TAMRIX_EXPORT NativeScriptObject : public Shared {
public:
    virtual void* typeId() const = 0;
};

/// A native function that has been given a name in a namespace or class.
struct NativeStaticMethod {
    bool (*function)(ScriptContext*) = nullptr;
    QStringList requiredParameters;
    QStringList optionalParameters;
    QString description;
};

/// Description of one native class, from which a language makes a class of its own. A plain value.
/// A second entry of the same name replaces the first.
class TAMRIX_EXPORT NativeScriptType {
public:
    using Constructor = SharedPtr<NativeScriptObject> (*)(ScriptContext*);
    using MethodFunction = bool (*)(SharedPtr<NativeScriptObject>, ScriptContext*);
    using StaticFunction = bool (*)(ScriptContext*);

    struct Method {
        MethodFunction function = nullptr;
        QStringList requiredParameters;
        QStringList optionalParameters;
        QString description;
    };
    using StaticMethod = NativeStaticMethod;
    /// A read-only property has a null setter.
    struct Property {
        MethodFunction getter = nullptr;
        MethodFunction setter = nullptr;
    };
    struct StaticProperty {
        StaticFunction getter = nullptr;
        StaticFunction setter = nullptr;
    };

    /// `super` is the type identifier of the base class and may be null; `constructor` is null for
    /// a class that scripts can't construct.
    NativeScriptType(void* super, Constructor constructor)
        : m_super(super), m_constructor(constructor) {}

    void setSuper(void* super) { m_super = super; }
    void setConstructor(Constructor constructor) { m_constructor = constructor; }
    void setMethod(const QString& name, MethodFunction function,
                   const QStringList& requiredParameters, const QStringList& optionalParameters,
                   const QString& description);
    void setStaticMethod(const QString& name, StaticFunction function,
                         const QStringList& requiredParameters,
                         const QStringList& optionalParameters, const QString& description);
    void setProperty(const QString& name, MethodFunction getter, MethodFunction setter);
    void setStaticProperty(const QString& name, StaticFunction getter, StaticFunction setter);

    void* super() const { return m_super; }
    Constructor constructor() const { return m_constructor; }
    QMap<QString, Method> methods() const { return m_methods; }
    QMap<QString, StaticMethod> staticMethods() const { return m_staticMethods; }
    QMap<QString, Property> properties() const { return m_properties; }
    QMap<QString, StaticProperty> staticProperties() const { return m_staticProperties; }

private:
    void* m_super;
    Constructor m_constructor;
    QMap<QString, Method> m_methods;
    QMap<QString, StaticMethod> m_staticMethods;
    QMap<QString, Property> m_properties;
    QMap<QString, StaticProperty> m_staticProperties;
};

/// A table of named native functions.
class TAMRIX_EXPORT NativeScriptNamespace {
public:
    using Function = NativeStaticMethod;

    void setFunction(const QString& name, bool (*function)(ScriptContext*),
                     const QStringList& requiredParameters, const QStringList& optionalParameters,
                     const QString& description);
    /// A copy of the table.
    QMap<QString, Function> functions() const { return m_functions; }

private:
    QMap<QString, Function> m_functions;
};

}  // namespace Tamrix
