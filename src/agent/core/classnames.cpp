#include "agent/core/classnames.h"

#include <cstring>

namespace Tamrix::Agent {

namespace {

/// What Qt Quick appends to the names of classes that it makes, and of windows that scenes make.
constexpr const char* generatedSuffixes[] = {"_QMLTYPE_", "_QML_", "QmlImpl"};

}  // namespace

QString typeNameOf(const QMetaObject* metaObject) {
    const char* const name = metaObject->className();
    const char* end = nullptr;
    for (const char* marker : generatedSuffixes) {
        end = std::strstr(name, marker);
        if (end)
            break;
    }
    return end ? QString::fromUtf8(name, static_cast<int>(end - name)) : QString::fromUtf8(name);
}

QStringList superTypesOf(const QMetaObject* metaObject) {
    QStringList names;
    QString last = typeNameOf(metaObject);
    for (const QMetaObject* super = metaObject->superClass(); super; super = super->superClass()) {
        const QString name = typeNameOf(super);
        if (name != last)
            names.append(name);
        last = name;
    }
    return names;
}

}  // namespace Tamrix::Agent
