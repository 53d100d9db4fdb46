#include "agent/core/classinfo.h"

#include <QMetaProperty>
#include <QSet>

#include "agent/core/classnames.h"
#include "agent/core/globalfunctions.h"
#include "agent/core/session.h"
#include "agent/core/toolkit.h"
#include "agent/core/vocabulary.h"
#include "agent/core/walk.h"

namespace Tamrix::Agent {

namespace {

constexpr char globalClass[] = "Global";

Wire::ClassInfo describeGlobal() {
    Wire::ClassInfo info;
    info.name = QString::fromLatin1(globalClass);
    info.methods = globalFunctions();
    info.events = globalEvents();
    return info;
}

/// The class of that name among an object's class and its base classes; null for none.
const QMetaObject* findIn(const QMetaObject* metaObject, const QString& name) {
    for (; metaObject; metaObject = metaObject->superClass()) {
        if (typeNameOf(metaObject) == name)
            return metaObject;
    }
    return nullptr;
}

/// What there is of a type: a class, or an item of the type.
struct Found {
    const QMetaObject* metaObject = nullptr;
    Element item;
};

Found findType(const QString& name) {
    Found found;
    QSet<const QMetaObject*> seen;
    const bool isItemType = Session::self()->traitsOf(name).areItems;
    for (const Element& root : Session::self()->topLevels()) {
        walkTree(root, isItemType, [&](const Element& element) {
            if (element.isItem()) {
                if (found.item.isNull() && element.toolkit->typeName(element) == name)
                    found.item = element;
                return;
            }
            const QMetaObject* const metaObject = element.object->metaObject();
            if (!found.metaObject && !seen.contains(metaObject)) {
                seen.insert(metaObject);
                found.metaObject = findIn(metaObject, name);
            }
        });
        if (found.metaObject)
            break;
    }
    return found;
}

void addVocabulary(Wire::ClassInfo* info) {
    for (const VocabularyWord& word : vocabulary()) {
        Wire::PropertyInfo property;
        property.name = word.name;
        property.typeName = word.typeName;
        info->properties.append(property);
    }
}

void addClassProperties(const QMetaObject* metaObject, Wire::ClassInfo* info) {
    for (int index = 0; index < metaObject->propertyCount(); ++index) {
        const QMetaProperty property = metaObject->property(index);
        Wire::PropertyInfo entry;
        entry.name = QString::fromUtf8(property.name());
        entry.typeName = QString::fromUtf8(property.typeName());
        entry.isWritable = property.isWritable();
        const auto known =
            std::find_if(info->properties.begin(), info->properties.end(),
                         [&entry](const auto& each) { return each.name == entry.name; });
        if (known != info->properties.end())
            known->isWritable = entry.isWritable;
        else
            info->properties.append(entry);
    }
}

void addMethods(const QMetaObject* metaObject, Wire::ClassInfo* info) {
    for (int index = 0; index < metaObject->methodCount(); ++index) {
        const QMetaMethod method = metaObject->method(index);
        if (!isCallable(method))
            continue;
        Wire::MethodInfo entry;
        entry.name = QString::fromUtf8(method.name());
        entry.returnType = QString::fromUtf8(method.typeName());
        for (const QByteArray& type : method.parameterTypes())
            entry.argumentTypes.append(QString::fromUtf8(type));
        info->methods.append(entry);
    }
}

}  // namespace

Wire::ClassInfo describeClass(const QString& name) {
    Wire::ClassInfo info;
    if (name == QLatin1String(globalClass))
        return describeGlobal();
    const Found found = findType(name);
    if (!found.metaObject && found.item.isNull())
        return info;
    info.name = name;
    info.events = globalEvents();
    addVocabulary(&info);
    if (found.metaObject) {
        info.superClasses = superTypesOf(found.metaObject);
        addClassProperties(found.metaObject, &info);
        addMethods(found.metaObject, &info);
        return info;
    }
    info.superClasses = found.item.toolkit->superTypes(found.item);
    for (const QString& property : found.item.toolkit->propertyNames(found.item)) {
        Wire::PropertyInfo entry;
        entry.name = property;
        bool isKnown = false;
        entry.typeName =
            QString::fromLatin1(propertyValue(found.item, property, &isKnown).typeName());
        info.properties.append(entry);
    }
    return info;
}

QString methodText(const QMetaMethod& method) {
    return QString::fromUtf8(method.methodSignature());
}

bool isCallable(const QMetaMethod& method) {
    return method.access() == QMetaMethod::Public &&
           (method.methodType() == QMetaMethod::Slot || method.methodType() == QMetaMethod::Method);
}

}  // namespace Tamrix::Agent
