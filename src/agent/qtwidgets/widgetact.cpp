// What of WidgetToolkit concerns acting: fields, marks, where a click counts, the focus.

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QButtonGroup>
#include <QComboBox>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTextEdit>

#include "agent/core/session.h"
#include "agent/qtwidgets/clickarea.h"
#include "agent/qtwidgets/openlist.h"
#include "agent/qtwidgets/widgettoolkit.h"

namespace Tamrix::Agent {

namespace {

QWidget* widgetOf(const Element& element) {
    return qobject_cast<QWidget*>(element.object);
}

template <typename Widget>
bool readField(const QObject* object, bool* isReadOnly) {
    const auto* const widget = qobject_cast<const Widget*>(object);
    if (widget)
        *isReadOnly = widget->isReadOnly();
    return widget != nullptr;
}

bool isField(const QObject* object, bool* isReadOnly) {
    if (const auto* const box = qobject_cast<const QComboBox*>(object))
        return box->isEditable() && readField<QLineEdit>(box->lineEdit(), isReadOnly);
    return readField<QLineEdit>(object, isReadOnly) || readField<QTextEdit>(object, isReadOnly) ||
           readField<QPlainTextEdit>(object, isReadOnly) ||
           readField<QAbstractSpinBox>(object, isReadOnly);
}

/// The widget that really takes the focus for this one.
QWidget* focusTaker(QWidget* widget) {
    while (widget->focusProxy())
        widget = widget->focusProxy();
    return widget;
}

}  // namespace

Outcome<Field> WidgetToolkit::field(const Element& element) const {
    bool isReadOnly = false;
    if (!isField(element.object, &isReadOnly))
        return Toolkit::field(element);
    if (isReadOnly)
        return fail(FailureKind::Refused,
                    QStringLiteral("%1 is read only").arg(Session::self()->describe(element)));
    return Field{element};
}

Outcome<CheckMark> WidgetToolkit::checkMark(const Element& element) const {
    Outcome<CheckMark> mark = Toolkit::checkMark(element);
    const auto* const button = qobject_cast<QAbstractButton*>(element.object);
    if (mark && button && button->group())
        mark->isExclusive = button->group()->exclusive();
    return mark;
}

QRect WidgetToolkit::clickArea(const Element& element, ClickPurpose purpose) const {
    const QRect bounds = globalBounds(element);
    const QWidget* const widget = widgetOf(element);
    const QRect area = widget ? actingPart(widget, purpose) & bounds : QRect();
    return area.isEmpty() ? bounds : area;
}

void WidgetToolkit::takeFocus(const Element& element, Qt::FocusReason reason) const {
    if (QWidget* const widget = widgetOf(element))
        focusWidget(widget, reason);
}

void WidgetToolkit::tellTyping(const Element& element, Typing typing) const {
    if (QWidget* const widget = widgetOf(element))
        tellTypingInto(widget, typing);
}

std::function<void()> WidgetToolkit::closerOf(const Element& element) const {
    const QPointer<QMdiSubWindow> inner = qobject_cast<QMdiSubWindow*>(element.object);
    if (!inner)
        return {};
    return [inner] {
        if (inner)
            inner->close();
    };
}

void focusWidget(QWidget* widget, Qt::FocusReason reason) {
    QWidget* const taker = focusTaker(widget);
    const QWidget* const focused = widget->window()->focusWidget();
    const bool hasFocus =
        focused && (focused == taker || widget == focused || widget->isAncestorOf(focused));
    if (!hasFocus && taker->focusPolicy() != Qt::NoFocus)
        taker->setFocus(reason);
}

void tellTypingInto(QWidget* widget, Typing typing) {
    if (typing == Typing::Fill)
        closeListOf(focusTaker(widget));
    else
        keepListOf(focusTaker(widget));
}

}  // namespace Tamrix::Agent
