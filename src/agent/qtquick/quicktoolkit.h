#pragma once

#include "agent/core/toolkit.h"

class QQuickItem;
class QQuickWindow;

namespace Tamrix::Agent {

/// Windows and items of Qt Quick. Children are an item's child items, whatever owns them. The name
/// of an object is its objectName, else its id in the file that made it.
class QuickToolkit : public Toolkit {
public:
    bool knows(const QObject* object) const override;
    void topLevels(QVector<Element>* elements) const override;
    void children(const Element& element, bool withItems,
                  QVector<Element>* elements) const override;
    Element parent(const Element& element) const override;
    Element window(const Element& element) const override;
    QString name(const Element& element) const override;
    QString text(const Element& element) const override;
    bool isTextLasting(const Element& element) const override;
    bool isVisible(const Element& element) const override;
    bool isEnabled(const Element& element) const override;
    QRect globalBounds(const Element& element) const override;
    QRect visibleBounds(const Element& element) const override;
    QWindow* nativeWindow(const Element& element) const override;
    Element elementAt(const Element& inWindowOf, const QPoint& globalPoint,
                      Qt::MouseButton button) const override;
    bool receivesThrough(const Element& element, const Element& hit,
                         Qt::MouseButton button) const override;
    Element blockedBy(const Element& element) const override;
    bool scrollIntoView(const Element& element, const std::optional<QPoint>& point) const override;
    QImage grab(const Element& element) const override;

    // quickact.cpp
    Outcome<Field> field(const Element& element) const override;
    void takeFocus(const Element& element, Qt::FocusReason reason) const override;
    int quietTime() const override;
    Outcome<Element> item(const Element& view, const ItemPath& path, int row,
                          int column) const override;
    std::optional<ItemPopup> itemPopup(const Element& view) const override;
    std::shared_ptr<const Menu> menu(const Element& element) const override;

    // quickrecord.cpp
    Element meant(const Element& element) const override;
    Wire::ObservedRole role(const Element& element) const override;
    Wire::ObservedState state(const Element& element) const override;
    std::optional<RecordedWay> wayTo(const Element& entry) const override;
    Element openPopup() const override;
    bool opensMenu(const Element& entry) const override;
    Element clickedBy(const Element& receiver) const override;
    Element chosenBy(const Element& popup, const QKeyEvent& key) const override;

private:
    std::optional<RecordedWay> wayInMenus(QQuickItem* entry) const;
};

}  // namespace Tamrix::Agent
