#include "agent/core/classnames.h"

#include <cstring>

namespace Tamrix::Agent {

namespace {

/// What Qt Quick appends to the names of classes that it makes, and of windows that scenes make.
constexpr const char* generatedSuffixes[] = {"_QMLTYPE_", "_QML_", "QmlImpl"};

/// Qt 6 has classes of their own for scenes that import an older version: "QQuickPre64TextInput".
QString withoutRevision(const QString& name) {
    const QLatin1String before("QQuickPre");
    if (!name.startsWith(before))
        return name;
    int end = before.size();
    while (end < name.size() && name.at(end).isDigit())
        ++end;
    return end == before.size() || end == name.size() ? name
                                                      : QLatin1String("QQuick") + name.mid(end);
}

}  // namespace

QString typeNameOf(const QMetaObject* metaObject) {
    const char* const name = metaObject->className();
    const char* end = nullptr;
    for (const char* marker : generatedSuffixes) {
        end = std::strstr(name, marker);
        if (end)
            break;
    }
    return withoutRevision(end ? QString::fromUtf8(name, static_cast<int>(end - name))
                               : QString::fromUtf8(name));
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
