// What of QuickToolkit concerns acting and items.

#include <QQuickItem>

#include "agent/core/session.h"
#include "agent/qtquick/quickitems.h"
#include "agent/qtquick/quickmenu.h"
#include "agent/qtquick/quicktoolkit.h"

namespace Tamrix::Agent {

namespace {

/// What of an item takes text.
struct FieldState {
    bool isField = false;
    bool isReadOnly = false;
};

FieldState fieldState(const QObject* object) {
    if (object->inherits("QQuickTextInput") || object->inherits("QQuickTextEdit"))
        return {true, object->property("readOnly").toBool()};
    if (object->inherits("QQuickSpinBox"))
        return {true, !object->property("editable").toBool()};
    if (object->inherits("QQuickComboBox"))
        return {object->property("editable").toBool(), false};
    return {};
}

/// Boxes hold the field that takes their text; others are it themselves.
QObject* innerField(QObject* object) {
    auto* const content = object->property("contentItem").value<QObject*>();
    return content && content->inherits("QQuickTextInput") ? content : object;
}

}  // namespace

Outcome<Field> QuickToolkit::field(const Element& element) const {
    const FieldState state = fieldState(element.object);
    if (!state.isField)
        return Toolkit::field(element);
    if (state.isReadOnly)
        return fail(FailureKind::Refused,
                    QStringLiteral("%1 is read only").arg(Session::self()->describe(element)));
    return Field{Session::self()->element(innerField(element.object)),
                 element.object->inherits("QQuickSpinBox")};
}

void QuickToolkit::takeFocus(const Element& element, Qt::FocusReason reason) const {
    const QVariant hasFocus = element.object->property("activeFocus");
    if (hasFocus.isValid() && !hasFocus.toBool())
        QMetaObject::invokeMethod(element.object, "forceActiveFocus",
                                  Q_ARG(Qt::FocusReason, reason));
}

int QuickToolkit::quietTime() const {
    // A scene is painted by a timer of 5 ms.
    return 8;
}

Outcome<Element> QuickToolkit::item(const Element& view, const ItemPath& path, int row,
                                    int column) const {
    auto* const holder = qobject_cast<QQuickItem*>(view.object);
    if (!holder)
        return Toolkit::item(view, path, row, column);
    if (QQuickItem* const found = findQuickItem(holder, path, row))
        return element(found);
    const QString name = Session::self()->describe(view);
    return fail(FailureKind::NotFound,
                path.isNull()
                    ? QStringLiteral("%1 has no item in row %2").arg(name, QString::number(row))
                    : QStringLiteral("%1 has no item '%2'").arg(name, path.text()));
}

std::optional<ItemPopup> QuickToolkit::itemPopup(const Element& view) const {
    // The items are made when the popup opens.
    if (!view.object->inherits("QQuickComboBox"))
        return std::nullopt;
    const auto* const popup = view.object->property("popup").value<QObject*>();
    return ItemPopup{popup && popup->property("visible").toBool()};
}

std::shared_ptr<const Menu> QuickToolkit::menu(const Element& element) const {
    auto* const item = qobject_cast<QQuickItem*>(element.object);
    QObject* const menu = item ? menuOf(item) : nullptr;
    return menu ? std::make_shared<QuickMenu>(menu) : nullptr;
}

}  // namespace Tamrix::Agent
