#include "platform/objectmodel/remote/classregistry.h"

#include <QHash>

namespace Tamrix {

namespace {

Signature signature(const QStringList& typeNames) {
    std::vector<Argument> arguments;
    for (const QString& typeName : typeNames)
        arguments.emplace_back(typeName);
    return Signature(std::move(arguments));
}

std::unique_ptr<Class> makeClass(const Wire::ClassInfo& info) {
    auto made = std::make_unique<Class>(info.name);
    made->setSuperClasses(info.superClasses);
    for (const Wire::PropertyInfo& property : info.properties)
        made->addProperty(property.name, property.typeName, property.isWritable);
    for (const Wire::MethodInfo& method : info.methods)
        made->addMethod(method.name, signature(method.argumentTypes))
            .describe(method.parameters, method.description);
    for (const Wire::EventInfo& event : info.events)
        made->addEvent(event.name, signature(event.argumentTypes));
    return made;
}

}  // namespace

const Class* internClass(const Wire::ClassInfo& info) {
    static QHash<QByteArray, std::shared_ptr<const Class>> s_classes;
    std::shared_ptr<const Class>& known = s_classes[Wire::encode(info)];
    if (!known)
        known = makeClass(info);
    return known.get();
}

}  // namespace Tamrix
