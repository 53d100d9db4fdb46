#pragma once

#include <QDropEvent>
#include <QMetaMethod>
#include <QMouseEvent>
#include <QVariant>

/// What Qt 5 and Qt 6 spell differently. With the header of the same purpose for widgets the only
/// place that asks for the version.
namespace Tamrix::Agent {

#if QT_VERSION_MAJOR == 6
inline constexpr char widgetsLibrary[] = "libQt6Widgets.so.6";
inline constexpr char quickLibrary[] = "libQt6Quick.so.6";
/// What the names of the agent's libraries end in, before ".so".
inline constexpr char agentSuffix[] = "-qt6";
/// What filters of native events answer by.
using NativeResult = qintptr;
#else
inline constexpr char widgetsLibrary[] = "libQt5Widgets.so.5";
inline constexpr char quickLibrary[] = "libQt5Quick.so.5";
inline constexpr char agentSuffix[] = "";
using NativeResult = long;
#endif

/// A variant of the type with a copy of the value; a default value for null.
inline QVariant variantOfType(int type, const void* value) {
#if QT_VERSION_MAJOR == 6
    return QVariant(QMetaType(type), value);
#else
    return QVariant(type, value);
#endif
}

/// False when the value can't be one of the type.
inline bool convertVariant(QVariant* value, int type) {
#if QT_VERSION_MAJOR == 6
    return value->convert(QMetaType(type));
#else
    return value->convert(type);
#endif
}

/// The type of a parameter, registered with Qt's type system if it can be.
inline int parameterType(QObject* object, const QMetaMethod& method, int parameter) {
#if QT_VERSION_MAJOR == 6
    Q_UNUSED(object)
    return method.parameterMetaType(parameter).id();
#else
    int type = method.parameterType(parameter);
    if (type == QMetaType::UnknownType) {
        void* arguments[] = {&type, &parameter};
        const int offset = method.methodIndex();
        QMetaObject::metacall(object, QMetaObject::RegisterMethodArgumentMetaType, offset,
                              arguments);
        if (type == -1)
            type = QMetaType::UnknownType;
    }
    return type;
#endif
}

/// On the screen.
inline QPoint globalPositionOf(const QMouseEvent& event) {
#if QT_VERSION_MAJOR == 6
    return event.globalPosition().toPoint();
#else
    return event.globalPos();
#endif
}

/// In what it came to.
inline QPoint positionOf(const QDropEvent& event) {
#if QT_VERSION_MAJOR == 6
    return event.position().toPoint();
#else
    return event.pos();
#endif
}

}  // namespace Tamrix::Agent
