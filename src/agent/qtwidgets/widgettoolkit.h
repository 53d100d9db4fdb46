#pragma once

#include "agent/core/toolkit.h"

class QWidget;

namespace Tamrix::Agent {

/// Widgets, and the actions that menus and bars show. Every window is a top-level element, also one
/// that hangs below another. An action is listed once, see homeOf(); its place is where it is
/// visible.
class WidgetToolkit : public Toolkit {
public:
    bool knows(const QObject* object) const override;
    /// Of the native window of a widget, the widget.
    Element element(QObject* object) const override;
    void topLevels(QVector<Element>* elements) const override;
    void children(const Element& element, bool withItems,
                  QVector<Element>* elements) const override;
    Element parent(const Element& element) const override;
    Element window(const Element& element) const override;
    Element related(const Element& element, Relation relation) const override;
    TypeTraits traitsOf(const QString& typeName) const override;
    QString text(const Element& element) const override;
    Hint hint(const Element& element) const override;
    bool isTextLasting(const Element& element) const override;
    bool isVisible(const Element& element) const override;
    QString hiddenReason(const Element& element) const override;
    bool isEnabled(const Element& element) const override;
    bool isInternal(const Element& element) const override;
    QVariant property(const Element& element, const QString& name, bool* isKnown) const override;
    QRect globalBounds(const Element& element) const override;
    QRect visibleBounds(const Element& element) const override;
    QWindow* nativeWindow(const Element& element) const override;
    Element elementAt(const Element& inWindowOf, const QPoint& globalPoint,
                      Qt::MouseButton button) const override;
    bool receivesThrough(const Element& element, const Element& hit,
                         Qt::MouseButton button) const override;
    Element blockedBy(const Element& element) const override;
    Element openListOver(const Element& element) const override;
    bool scrollIntoView(const Element& element, const std::optional<QPoint>& point) const override;
    QImage grab(const Element& element) const override;

    // widgetact.cpp
    Outcome<Field> field(const Element& element) const override;
    Outcome<CheckMark> checkMark(const Element& element) const override;
    QRect clickArea(const Element& element, ClickPurpose purpose) const override;
    void takeFocus(const Element& element, Qt::FocusReason reason) const override;
    void tellTyping(const Element& element, Typing typing) const override;
    std::function<void()> closerOf(const Element& element) const override;

    // widgetitems.cpp
    Outcome<Element> item(const Element& view, const ItemPath& path, int row,
                          int column) const override;
    Outcome<ViewCells> cells(const Element& view, const CellRange& range) const override;
    void openTowards(const Element& view, const ItemPath& path) const override;
    std::optional<ItemPopup> itemPopup(const Element& view) const override;
    std::shared_ptr<const Menu> menu(const Element& element) const override;

    // widgetrecord.cpp
    Element meant(const Element& element) const override;
    Wire::ObservedRole role(const Element& element) const override;
    Wire::ObservedState state(const Element& element) const override;
    std::optional<RecordedWay> wayTo(const Element& entry) const override;
    Element openPopup() const override;
    bool opensMenu(const Element& entry) const override;
    Element clickedBy(const Element& receiver) const override;
    Element chosenBy(const Element& popup, const QKeyEvent& key) const override;
};

/// A rectangle of a widget on the screen, also of a widget in a graphics scene.
QRect globalRect(const QWidget* widget, const QRect& rect);
/// The part of a widget's rectangle that its parents do not cut off, on the screen.
QRect shownPart(const QWidget* widget, const QRect& rect);
/// The native window in which a widget is shown; null for none.
QWindow* nativeWindowOf(const QWidget* widget);
/// The modal window that blocks a widget's window; null for none.
Element blockerOf(const QWidget* widget);
/// Scrolls the scroll areas around the widget so that this part of it is seen. False when nothing
/// moved.
bool scrollWidgetIntoView(QWidget* widget, const QRect& rect);
/// Gives the widget the keyboard's focus, or the one that takes it for this one.
void focusWidget(QWidget* widget, Qt::FocusReason reason);
/// As Toolkit::tellTyping().
void tellTypingInto(QWidget* widget, Typing typing);
/// What of the window of `widget` is at a point of the screen: a widget, or an item of one.
Element elementInWindowAt(const QWidget* widget, const QPoint& globalPoint);

}  // namespace Tamrix::Agent
