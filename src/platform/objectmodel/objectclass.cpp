#include "platform/objectmodel/objectclass.h"

namespace Tamrix {

SharedPtr<Object> Property::get(SharedPtr<Object> object) const {
    return object ? object->readProperty(*this) : SharedPtr<Object>();
}

const Property* Class::property(int index) const {
    return index >= 0 && index < numProperties() ? m_properties[index].get() : nullptr;
}

void Class::addProperty(const QString& name) {
    m_properties.push_back(std::make_unique<Property>(name));
}

}  // namespace Tamrix
