#include "support/inmemorymodel.h"

#include "platform/objectmodel/valueobject.h"
#include "wire/textmatch.h"

namespace Tamrix {

namespace {

SharedPtr<Object> findBelow(const ObjectList& objects, const QString& realName) {
    for (const SharedPtr<Object>& object : objects) {
        if (object->realName() == realName)
            return object;
        if (SharedPtr<Object> found = findBelow(object->children(), realName))
            return found;
    }
    return {};
}

void collect(const ObjectList& objects, ObjectList* all) {
    for (const SharedPtr<Object>& object : objects) {
        all->push_back(object);
        collect(object->children(), all);
    }
}

QString textOf(const SharedPtr<Object>& object) {
    if (const auto* const value = dynamic_cast<const ValueObject*>(object.get()))
        return value->value().toString();
    return object ? object->objectName() : QString();
}

bool isAbove(const QString& property) {
    return property == "parent" || property == "container" || property == "window" ||
           property == "ancestor";
}

/// Whether one of the objects above `object` that `property` may mean is `wanted`.
bool isBelow(const Object& object, const QString& property, const SharedPtr<Object>& wanted) {
    SharedPtr<Object> above = object.parent();
    if (property == "parent")
        return above && above == wanted;
    while (above && above != wanted)
        above = above->parent();
    return above && (property != "window" || !above->parent());
}

}  // namespace

InMemoryObject::InMemoryObject(InMemoryModel* model, quint64 handle, const Class* objectClass,
                               const QString& name)
    : RemoteObjectBase(handle, objectClass), m_model(model), m_name(name) {}

QString InMemoryObject::realName() const {
    ObjectName name;
    name.setProperty(QStringLiteral("name"), m_name);
    name.setProperty(QStringLiteral("type"), className());
    return name.qualifiedName();
}

Outcome<SharedPtr<Object>> InMemoryObject::readProperty(const Property& property) const {
    if (m_properties.contains(property.name()))
        return m_properties.value(property.name());
    return Object::readProperty(property);
}

Outcome<> InMemoryObject::writeProperty(const Property& property, SharedPtr<Object> value) const {
    if (!property.isWritable())
        return Object::writeProperty(property, value);
    m_properties.insert(property.name(), value);
    return {};
}

Outcome<SharedPtr<Object>> InMemoryObject::invokeMethod(const Method& method,
                                                        const ObjectList& arguments) const {
    return m_model->call(const_cast<InMemoryObject*>(this), method.name(), arguments);
}

void InMemoryObject::setProperty(const QString& name, SharedPtr<Object> value) {
    m_properties.insert(name, value);
}

void InMemoryObject::setProperty(const QString& name, const QVariant& value) {
    m_properties.insert(name, new ValueObject(value));
}

InMemoryModel::InMemoryModel() : m_globalClass(QStringLiteral("Global")) {}

Class* InMemoryModel::objectClass(const QString& name) {
    for (const auto& known : m_classes) {
        if (known->name() == name)
            return known.get();
    }
    m_classes.push_back(std::make_unique<Class>(name));
    return m_classes.back().get();
}

SharedPtr<InMemoryObject> InMemoryModel::addObject(const QString& className, const QString& name,
                                                   SharedPtr<InMemoryObject> parent) {
    SharedPtr<InMemoryObject> object(
        new InMemoryObject(this, ++m_lastHandle, objectClass(className), name));
    object->m_parent = parent.get();
    (parent ? parent->m_children : m_topLevelObjects).push_back(object);
    return object;
}

SharedPtr<Object> InMemoryModel::findObject(const QString& realName) const {
    return findBelow(m_topLevelObjects, realName);
}

Outcome<SharedPtr<Object>> InMemoryModel::findObject(const ObjectName& name) {
    ObjectList matches;
    collect(m_topLevelObjects, &matches);
    int occurrence = 1;
    const auto properties = name.properties();
    for (auto it = properties.cbegin(); it != properties.cend(); ++it) {
        const QString& property = it.key();
        const Wire::TextMatch match(it->text(), it->modifiers());
        SharedPtr<Object> wanted;
        if (!match.errorText().isEmpty()) {
            return fail(
                FailureKind::BadArgument,
                QStringLiteral("The property '%1' of a name: %2").arg(property, match.errorText()));
        }
        if (property == "occurrence") {
            occurrence = it->text().toInt();
            continue;
        }
        if (it->isRealName()) {
            const Outcome<SharedPtr<Object>> found = findObject(ObjectName(it->text()));
            if (!found)
                return found;
            wanted = *found;
        }
        const auto differs = [&](const SharedPtr<Object>& object) {
            const auto& candidate = static_cast<const InMemoryObject&>(*object);
            if (property == "type") {
                const QStringList types = candidate.objectClass()->superClasses();
                return !match.matches(candidate.className()) &&
                       std::none_of(types.begin(), types.end(),
                                    [&](const QString& type) { return match.matches(type); });
            }
            if (property == "name" || property == "objectName")
                return !match.matches(candidate.objectName());
            if (wanted && isAbove(property))
                return !isBelow(candidate, property, wanted);
            if (wanted)
                return !(candidate.property(property) == wanted);
            return !candidate.property(property) ||
                   !match.matches(textOf(candidate.property(property)));
        };
        matches.erase(std::remove_if(matches.begin(), matches.end(), differs), matches.end());
    }
    if (occurrence < 1 || occurrence > static_cast<int>(matches.size())) {
        return fail(FailureKind::NotFound,
                    QStringLiteral("No object matches %1").arg(name.qualifiedName()));
    }
    return matches[static_cast<size_t>(occurrence - 1)];
}

Outcome<ObjectList> InMemoryModel::topLevelObjects() {
    return m_topLevelObjects;
}

Outcome<const Class*> InMemoryModel::classByName(const QString& name) {
    for (const auto& known : m_classes) {
        if (known->name() == name)
            return known.get();
    }
    return nullptr;
}

Outcome<const Class*> InMemoryModel::globalClass() {
    return &m_globalClass;
}

Outcome<SharedPtr<Object>> InMemoryModel::call(SharedPtr<Object> self, const QString& method,
                                               const ObjectList& arguments) {
    if (onCall)
        return onCall(self, method, arguments);
    return fail(FailureKind::Refused, QStringLiteral("There is no function '%1'").arg(method));
}

Outcome<SharedPtr<Object>> InMemoryModel::invokeGlobal(const QString& method,
                                                       const ObjectList& arguments) {
    return call(nullptr, method, arguments);
}

Outcome<SharedPtr<Object>> InMemoryModel::construct(const Class* objectClass,
                                                    const ObjectList& arguments) {
    return call(new Object(0, objectClass), QStringLiteral("new"), arguments);
}

Outcome<QVariant> InMemoryModel::nativeRequest(const QString& name, const QVariantList& arguments) {
    if (onNativeRequest)
        return onNativeRequest(name, arguments);
    return fail(FailureKind::Refused, QStringLiteral("There is no request '%1'").arg(name));
}

Outcome<> InMemoryModel::installEventHandler(SharedPtr<Object> object, const QString& className,
                                             const QString& event, const QString& callback) {
    journal.append(QStringLiteral("install|%1|%2|%3|%4")
                       .arg(object ? object->objectName() : QString(), className, event, callback));
    return {};
}

Outcome<> InMemoryModel::uninstallEventHandler(SharedPtr<Object> object, const QString& className,
                                               const QString& event, const QString& callback) {
    journal.append(QStringLiteral("uninstall|%1|%2|%3|%4")
                       .arg(object ? object->objectName() : QString(), className, event, callback));
    return {};
}

Outcome<> InMemoryModel::sendEvent(const Event* event, SharedPtr<Object> target,
                                   const ObjectList& parameters) {
    journal.append(QStringLiteral("send|%1|%2|%3")
                       .arg(target ? target->objectName() : QString(), event->name(),
                            QString::number(parameters.size())));
    return {};
}

ApplicationFacts InMemoryModel::facts() const {
    ApplicationFacts facts;
    facts.program = QStringLiteral("/bin/inmemory");
    facts.toolkit = QStringLiteral("memory");
    return facts;
}

bool InMemoryModel::owns(const SharedPtr<Object>& object) const {
    const auto* const own = dynamic_cast<const InMemoryObject*>(object.get());
    return own && own->m_model == this;
}

Outcome<TargetAnswer> InMemoryModel::lookUp(const Target& target, int /*answerTimeout*/) {
    if (onLook)
        onLook();
    TargetAnswer answer;
    const Outcome<SharedPtr<Object>> found =
        target.object ? target.object : findObject(target.name);
    if (!found && found.error().kind != FailureKind::NotFound)
        return fail(found.error());
    answer.object = found.value_or(nullptr);
    if (!found)
        answer.missText = found.error().text;
    else if (obstacleOf && target.wanted != Wire::Wanted::Existence)
        answer.obstacle = obstacleOf(**found);
    answer.isReady = answer.object && answer.obstacle.isEmpty();
    return answer;
}

Outcome<TargetAnswer> InMemoryModel::act(const QString& function, const Target& target,
                                         const ObjectList& arguments, int timeout) {
    Outcome<TargetAnswer> answer = lookUp(target, timeout);
    if (!answer || !answer->isReady)
        return answer;
    ObjectList all{answer->object};
    all.insert(all.end(), arguments.begin(), arguments.end());
    answer->result = call(nullptr, function, all);
    return answer;
}

Outcome<QByteArray> InMemoryModel::snapshotOf(const Target& /*target*/, bool /*withImages*/) {
    if (snapshotBytes.isNull())
        return fail(FailureKind::Failed, QStringLiteral("There is no snapshot"));
    return snapshotBytes;
}

}  // namespace Tamrix
