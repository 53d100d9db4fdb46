#include "platform/objectmodel/objectclass.h"

#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectmodel.h"

namespace Tamrix {

namespace {

/// The entry of this name, null when there is none.
template <typename Entry>
const Entry* findNamed(const std::vector<std::unique_ptr<Entry>>& entries, const QString& name) {
    for (const auto& entry : entries) {
        if (entry->name() == name)
            return entry.get();
    }
    return nullptr;
}

template <typename Entry>
const Entry* entryAt(const std::vector<std::unique_ptr<Entry>>& entries, int index) {
    return index >= 0 && index < static_cast<int>(entries.size()) ? entries[index].get() : nullptr;
}

}  // namespace

const Class* Argument::type() const {
    return Inspector::self()->classByName(m_typeName);
}

Outcome<SharedPtr<Object>> Method::invoke(SharedPtr<Object> self,
                                          const ObjectList& arguments) const {
    if (self)
        return self->invokeMethod(*this, arguments);
    ObjectModel* const model = Inspector::self()->model();
    if (!model)
        return Inspector::noApplication();
    return model->invokeGlobal(m_name, arguments);
}

SharedPtr<Object> Property::get(SharedPtr<Object> object) const {
    return object ? Inspector::self()->take(object->readProperty(*this)) : SharedPtr<Object>();
}

bool Class::isOrDerivesFrom(const QString& name) const {
    return m_name == name || m_superClasses.contains(name);
}

const Property* Class::property(int index) const {
    return entryAt(m_properties, index);
}

const Property* Class::property(const QString& name) const {
    return findNamed(m_properties, name);
}

QList<const Method*> Class::methodsByName(const QString& name) const {
    QList<const Method*> found;
    for (const auto& method : m_methods) {
        if (method->name() == name)
            found.append(method.get());
    }
    return found;
}

const Method* Class::method(int index) const {
    return entryAt(m_methods, index);
}

const Event* Class::event(const QString& type) const {
    return findNamed(m_events, type);
}

Outcome<SharedPtr<Object>> Class::construct(const ObjectList& arguments) const {
    ObjectModel* const model = Inspector::self()->model();
    if (!model)
        return Inspector::noApplication();
    return model->construct(this, arguments);
}

void Class::addProperty(const QString& name, const QString& typeName, bool isWritable) {
    m_properties.push_back(std::make_unique<Property>(name, typeName, isWritable));
}

Method& Class::addMethod(const QString& name, Signature signature) {
    m_methods.push_back(std::make_unique<Method>(name, std::move(signature)));
    return *m_methods.back();
}

void Class::addEvent(const QString& name, Signature signature) {
    m_events.push_back(std::make_unique<Event>(name, std::move(signature)));
}

}  // namespace Tamrix
