#pragma once

#include "agent/core/toolkit.h"

namespace Tamrix::Agent {

/// Plain QObjects: timers, models, layouts, whatever no other toolkit knows, and windows of no
/// toolkit (QWindow). Never shown on the screen, except for windows.
class TAMRIX_EXPORT ObjectToolkit : public Toolkit {
public:
    bool knows(const QObject* object) const override;
    void topLevels(QVector<Element>* elements) const override;
    void children(const Element& element, bool withItems,
                  QVector<Element>* elements) const override;
    Element parent(const Element& element) const override;
    Element window(const Element& element) const override;
    QString text(const Element& element) const override;
    bool isVisible(const Element& element) const override;
    bool isEnabled(const Element& element) const override;
    bool isInternal(const Element& element) const override;
    bool isPlain(const Element& element) const override;
    QRect globalBounds(const Element& element) const override;
    QRect visibleBounds(const Element& element) const override;
    QWindow* nativeWindow(const Element& element) const override;
    Element elementAt(const Element& inWindowOf, const QPoint& globalPoint,
                      Qt::MouseButton button) const override;
    Element blockedBy(const Element& element) const override;
    QImage grab(const Element& element) const override;
};

/// The modal window that keeps input from a window, by Qt's rules; null for none. Popups are never
/// blocked.
TAMRIX_EXPORT QWindow* blockingWindow(QWindow* window);

}  // namespace Tamrix::Agent
