#include "agent/events/eventnames.h"

#include <QMetaEnum>

namespace Tamrix::Agent {

namespace {

struct ClassTypes {
    const char* name;
    QSet<int> types;
};

const ClassTypes* classTypes(const QString& name) {
    static const ClassTypes s_classes[] = {
        {"QMouseEvent",
         {QEvent::MouseButtonPress, QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick,
          QEvent::MouseMove}},
        {"QWheelEvent", {QEvent::Wheel}},
        {"QKeyEvent", {QEvent::KeyPress, QEvent::KeyRelease}},
        {"QFocusEvent", {QEvent::FocusIn, QEvent::FocusOut}},
        {"QHoverEvent", {QEvent::HoverEnter, QEvent::HoverLeave, QEvent::HoverMove}},
        {"QEnterEvent", {QEvent::Enter}},
        {"QContextMenuEvent", {QEvent::ContextMenu}},
        {"QShowEvent", {QEvent::Show}},
        {"QHideEvent", {QEvent::Hide}},
        {"QCloseEvent", {QEvent::Close}},
        {"QMoveEvent", {QEvent::Move}},
        {"QResizeEvent", {QEvent::Resize}},
        {"QPaintEvent", {QEvent::Paint}},
        {"QTimerEvent", {QEvent::Timer}},
        {"QChildEvent", {QEvent::ChildAdded, QEvent::ChildPolished, QEvent::ChildRemoved}},
        {"QActionEvent", {QEvent::ActionAdded, QEvent::ActionChanged, QEvent::ActionRemoved}},
        {"QDragEnterEvent", {QEvent::DragEnter}},
        {"QDragMoveEvent", {QEvent::DragMove}},
        {"QDragLeaveEvent", {QEvent::DragLeave}},
        {"QDropEvent", {QEvent::Drop}},
        {"QHelpEvent", {QEvent::ToolTip, QEvent::WhatsThis}},
        {"QStatusTipEvent", {QEvent::StatusTip}},
        {"QWindowStateChangeEvent", {QEvent::WindowStateChange}},
        {"QInputMethodEvent", {QEvent::InputMethod}},
        {"QTouchEvent",
         {QEvent::TouchBegin, QEvent::TouchUpdate, QEvent::TouchEnd, QEvent::TouchCancel}},
        {"QTabletEvent", {QEvent::TabletPress, QEvent::TabletMove, QEvent::TabletRelease}},
        {"QGestureEvent", {QEvent::Gesture, QEvent::GestureOverride}},
        {"QShortcutEvent", {QEvent::Shortcut}},
        {"QDynamicPropertyChangeEvent", {QEvent::DynamicPropertyChange}},
    };
    for (const ClassTypes& entry : s_classes)
        if (name == QLatin1String(entry.name))
            return &entry;
    return nullptr;
}

}  // namespace

std::optional<QEvent::Type> eventTypeOf(const QString& name) {
    bool isKnown = false;
    const int value = QMetaEnum::fromType<QEvent::Type>().keyToValue(qPrintable(name), &isKnown);
    return isKnown ? std::make_optional(static_cast<QEvent::Type>(value)) : std::nullopt;
}

QSet<int> eventTypesOf(const QString& name) {
    if (const ClassTypes* const known = classTypes(name))
        return known->types;
    const std::optional<QEvent::Type> type = eventTypeOf(name);
    return type ? QSet<int>{*type} : QSet<int>();
}

}  // namespace Tamrix::Agent
