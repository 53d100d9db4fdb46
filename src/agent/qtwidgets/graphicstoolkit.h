#pragma once

#include "agent/core/toolkit.h"

class QGraphicsView;
class QPolygonF;
class QWidget;

namespace Tamrix::Agent {

/// What a graphics view shows. Items that are QObjects are these objects; others are items of
/// their view with the name of their class in Qt as type ("QGraphicsRectItem"), "QGraphicsItem" for
/// classes of the application. A scene in several views is listed in its first one. A widget in
/// a scene is below its proxy.
class GraphicsToolkit : public Toolkit {
public:
    GraphicsToolkit();
    ~GraphicsToolkit() override;

    bool knows(const QObject* object) const override;
    void topLevels(QVector<Element>* elements) const override;
    void children(const Element& element, bool withItems,
                  QVector<Element>* elements) const override;
    Element parent(const Element& element) const override;
    Element window(const Element& element) const override;
    bool isAlive(const Element& element) const override;
    QString typeName(const Element& element) const override;
    QStringList superTypes(const Element& element) const override;
    TypeTraits traitsOf(const QString& typeName) const override;
    QString text(const Element& element) const override;
    bool isVisible(const Element& element) const override;
    QString hiddenReason(const Element& element) const override;
    bool isEnabled(const Element& element) const override;
    QVariant property(const Element& element, const QString& name, bool* isKnown) const override;
    QStringList propertyNames(const Element& element) const override;
    QRect globalBounds(const Element& element) const override;
    QRect visibleBounds(const Element& element) const override;
    QWindow* nativeWindow(const Element& element) const override;
    Element elementAt(const Element& inWindowOf, const QPoint& globalPoint,
                      Qt::MouseButton button) const override;
    Element blockedBy(const Element& element) const override;
    Element openListOver(const Element& element) const override;
    bool scrollIntoView(const Element& element, const std::optional<QPoint>& point) const override;
    QImage grab(const Element& element) const override;
    void takeFocus(const Element& element, Qt::FocusReason reason) const override;
};

/// The rectangle around a polygon of the scene, in coordinates of the view's viewport.
QRect rectInView(const QGraphicsView* view, const QPolygonF& scenePolygon);
/// Appends the items at the top level of a graphics view's scene; nothing for other widgets.
void appendGraphicsItems(QWidget* widget, QVector<Element>* elements);
/// The item, or the widget in the scene, at a point of a graphics view's viewport; null for none.
Element graphicsItemAt(const QWidget* widget, const QPoint& point);

}  // namespace Tamrix::Agent
