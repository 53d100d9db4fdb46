#include "interpreter/bridge/nativescripttype.h"

namespace Tamrix {

void NativeScriptType::setMethod(const QString& name, MethodFunction function,
                                 const QStringList& requiredParameters,
                                 const QStringList& optionalParameters,
                                 const QString& description) {
    m_methods.insert(name, {function, requiredParameters, optionalParameters, description});
}

void NativeScriptType::setStaticMethod(const QString& name, StaticFunction function,
                                       const QStringList& requiredParameters,
                                       const QStringList& optionalParameters,
                                       const QString& description) {
    m_staticMethods.insert(name, {function, requiredParameters, optionalParameters, description});
}

void NativeScriptType::setProperty(const QString& name, MethodFunction getter,
                                   MethodFunction setter) {
    m_properties.insert(name, {getter, setter});
}

void NativeScriptType::setStaticProperty(const QString& name, StaticFunction getter,
                                         StaticFunction setter) {
    m_staticProperties.insert(name, {getter, setter});
}

void NativeScriptNamespace::setFunction(const QString& name, bool (*function)(ScriptContext*),
                                        const QStringList& requiredParameters,
                                        const QStringList& optionalParameters,
                                        const QString& description) {
    m_functions.insert(name, {function, requiredParameters, optionalParameters, description});
}

}  // namespace Tamrix
