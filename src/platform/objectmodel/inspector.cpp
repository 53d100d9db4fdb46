#include "platform/objectmodel/inspector.h"

#include "platform/objectmodel/objectclass.h"
#include "platform/objectmodel/objectmap.h"
#include "platform/objectmodel/objectmodel.h"
#include "platform/objectmodel/valueobject.h"

namespace Tamrix {

namespace {

/// Numbered types of values that callers know by number.
constexpr struct {
    int number;
    const char* className;
} numberedTypes[] = {
    {7, "bool"},
};

}  // namespace

const QString Inspector::noApplicationText = QStringLiteral("No application is connected");

Inspector* Inspector::self() {
    static Inspector s_inspector;
    return &s_inspector;
}

void Inspector::keep(const Failure& failure) {
    m_lastFailure = failure;
}

bool Inspector::take(const Outcome<>& outcome) {
    if (!outcome)
        keep(outcome.error());
    return outcome.has_value();
}

template <typename Ask>
auto Inspector::ask(Ask ask) {
    using Answer = decltype(ask(*m_model));
    return take(m_model ? ask(*m_model) : Answer(noApplication()));
}

SharedPtr<Object> Inspector::findObject(const QString& name) {
    return ask([&](ObjectModel& model) -> Outcome<SharedPtr<Object>> {
        const Outcome<ObjectName> objectName = ObjectMap::self()->resolve(name);
        if (!objectName)
            return fail(objectName.error());
        Outcome<SharedPtr<Object>> object = model.findObject(*objectName);
        if (object)
            (*object)->setFoundAs(name);
        return object;
    });
}

ObjectList Inspector::topLevelObjects() {
    return ask([](ObjectModel& model) { return model.topLevelObjects(); });
}

const Class* Inspector::classByName(const QString& name) {
    if (const Class* const valueClass = ValueObject::valueClass(name))
        return valueClass;
    return ask([&](ObjectModel& model) -> Outcome<const Class*> {
        const Outcome<const Class*> known = model.classByName(name);
        if (known && !*known)
            return fail(FailureKind::Failed,
                        QStringLiteral("The application knows no class '%1'").arg(name));
        return known;
    });
}

const Class* Inspector::globalClass() {
    return ask([](ObjectModel& model) { return model.globalClass(); });
}

const Class* Inspector::classByTypeNumber(int number) {
    for (const auto& type : numberedTypes) {
        if (type.number == number)
            return ValueObject::valueClass(QLatin1String(type.className));
    }
    return nullptr;
}

SharedPtr<Object> Inspector::createNullObject(const Class* objectClass) {
    return {new Object(0, objectClass)};
}

SharedPtr<Object> Inspector::createObject(const QVariant& value) {
    return {new ValueObject(value)};
}

QVariant Inspector::nativeRequest(const QString& name, const QVariantList& arguments) {
    return ask([&](ObjectModel& model) { return model.nativeRequest(name, arguments); });
}

bool Inspector::installEventHandler(SharedPtr<Object> object, const Class* objectClass,
                                    const QString& event, const QString& callback) {
    return ask([&](ObjectModel& model) {
        return model.installEventHandler(object, objectClass ? objectClass->name() : QString(),
                                         event, callback);
    });
}

bool Inspector::uninstallEventHandler(SharedPtr<Object> object, const Class* objectClass,
                                      const QString& event, const QString& callback) {
    return ask([&](ObjectModel& model) {
        return model.uninstallEventHandler(object, objectClass ? objectClass->name() : QString(),
                                           event, callback);
    });
}

bool Inspector::sendEvent(const Event* event, SharedPtr<Object> target,
                          const ObjectList& parameters) {
    return ask([&](ObjectModel& model) { return model.sendEvent(event, target, parameters); });
}

void Inspector::addExtensionScript(const QString& text, const QString& suffix) {
    m_extensionScripts.append({text, suffix});
}

void Inspector::setUniqueProperty(const QString& className, const QString& property) {
    m_classSettings[className].uniqueProperty = property;
}

void Inspector::setAllowKeyEventCompression(const QString& className, bool on) {
    m_classSettings[className].allowKeyEventCompression = on;
}

void Inspector::enableEventCompression(const QString& className, bool on) {
    m_classSettings[className].eventCompression = on;
}

void Inspector::addPropertyDelegate(const QString& className, const QStringList& delegates) {
    m_classSettings[className].propertyDelegates += delegates;
}

void Inspector::setMouseTracking(const QString& className, bool on) {
    m_classSettings[className].mouseTracking = on;
}

void Inspector::setRecorderFilter(const QString& type, const QString& name) {
    m_recorderFilters.insert(type, name);
}

void Inspector::setRecordMouseDrag(const QString& className, bool on) {
    m_classSettings[className].recordMouseDrag = on;
}

Inspector::ClassSettings Inspector::classSettings(const QString& className) const {
    return m_classSettings.value(className);
}

void Inspector::reset() {
    ObjectModel* const model = m_model;
    *this = Inspector();
    m_model = model;
}

namespace {

using Snapshot = Outcome<QByteArray> (ObjectModel::*)(SharedPtr<Object>);

Outcome<QByteArray> snapshotOf(const SharedPtr<Object>& object, Snapshot snapshot) {
    ObjectModel* const model = Inspector::self()->model();
    if (!model)
        return Inspector::noApplication();
    if (!object)
        return fail(FailureKind::BadArgument,
                    QStringLiteral("There is no object of which to take a snapshot"));
    return (model->*snapshot)(object);
}

}  // namespace

Outcome<QByteArray> requestObjectSnapshot(SharedPtr<Object> object) {
    return snapshotOf(object, &ObjectModel::snapshot);
}

Outcome<QByteArray> requestObjectSnapshotForVisualVP(SharedPtr<Object> object) {
    return snapshotOf(object, &ObjectModel::snapshotWithPicture);
}

Outcome<QByteArray> requestObjectSnapshot(const QString& name) {
    ObjectModel* const model = Inspector::self()->model();
    if (!model)
        return Inspector::noApplication();
    const Outcome<ObjectName> objectName = ObjectMap::self()->resolve(name);
    if (!objectName)
        return fail(objectName.error());
    const Outcome<SharedPtr<Object>> object = model->findObject(*objectName);
    if (!object)
        return fail(object.error());
    return requestObjectSnapshot(*object);
}

}  // namespace Tamrix
