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

template <typename Ask>
auto Inspector::ask(Ask ask) {
    QString error = noApplicationText;
    decltype(ask(*m_model, &error)) answer{};
    if (m_model) {
        error.clear();
        answer = ask(*m_model, &error);
    }
    // An answer without error does not clear the last one.
    if (!error.isEmpty())
        m_lastError = error;
    return answer;
}

SharedPtr<Object> Inspector::findObject(const QString& name) {
    return ask([&](ObjectModel& model, QString* error) -> SharedPtr<Object> {
        const ObjectName objectName = ObjectMap::self()->objectName(name);
        if (!objectName.isValid()) {
            *error = m_lastError;
            return {};
        }
        SharedPtr<Object> object = model.findObject(objectName, error);
        if (object)
            object->setFoundAs(name);
        return object;
    });
}

ObjectList Inspector::topLevelObjects() {
    return ask([](ObjectModel& model, QString* error) { return model.topLevelObjects(error); });
}

const Class* Inspector::classByName(const QString& name) {
    if (const Class* const valueClass = ValueObject::valueClass(name))
        return valueClass;
    return ask([&](ObjectModel& model, QString* error) {
        const Class* const known = model.classByName(name);
        if (!known)
            *error = QStringLiteral("The application knows no class '%1'").arg(name);
        return known;
    });
}

const Class* Inspector::globalClass() {
    return ask([](ObjectModel& model, QString*) { return model.globalClass(); });
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
    return ask([&](ObjectModel& model, QString* error) {
        return model.nativeRequest(name, arguments, error);
    });
}

bool Inspector::installEventHandler(SharedPtr<Object> object, const Class* objectClass,
                                    const QString& event, const QString& callback) {
    return ask([&](ObjectModel& model, QString* error) {
        return model.installEventHandler(object, objectClass ? objectClass->name() : QString(),
                                         event, callback, error);
    });
}

bool Inspector::uninstallEventHandler(SharedPtr<Object> object, const Class* objectClass,
                                      const QString& event, const QString& callback) {
    return ask([&](ObjectModel& model, QString* error) {
        return model.uninstallEventHandler(object, objectClass ? objectClass->name() : QString(),
                                           event, callback, error);
    });
}

bool Inspector::sendEvent(const Event* event, SharedPtr<Object> target,
                          const ObjectList& parameters) {
    return ask([&](ObjectModel& model, QString* error) {
        return model.sendEvent(event, target, parameters, error);
    });
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

bool requestObjectSnapshot(SharedPtr<Object> object, QByteArray* elements, QString* error) {
    ObjectModel* const model = Inspector::self()->model();
    if (!model || !object) {
        *error = model ? QStringLiteral("There is no object of which to take a snapshot")
                       : Inspector::noApplicationText;
        return false;
    }
    QString reason;
    *elements = model->snapshot(object, &reason);
    if (!reason.isEmpty())
        *error = reason;
    return reason.isEmpty();
}

bool requestObjectSnapshot(const QString& name, QByteArray* elements, QString* error) {
    const SharedPtr<Object> object = Inspector::self()->findObject(name);
    if (object)
        return requestObjectSnapshot(object, elements, error);
    *error = Inspector::self()->lastError();
    return false;
}

}  // namespace Tamrix
