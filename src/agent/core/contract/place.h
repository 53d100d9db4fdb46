#pragma once

#include <QRect>

#include "agent/core/element.h"
#include "base/export.h"

class QWindow;

namespace Tamrix::Agent {

/// Of a toolkit: where an element is, what lies over it and who takes a click. Coordinates are
/// native screen pixels of the application's coordinate system (device independent ones of Qt).
class TAMRIX_EXPORT ToolkitPlace {
public:
    /// On the screen; null when it is not shown anywhere.
    virtual QRect globalBounds(const Element& element) const = 0;
    /// The visible part of it, on the screen: clipped by its parents and viewports.
    virtual QRect visibleBounds(const Element& element) const = 0;
    /// The native window that gets the input for the element, null when it has none.
    virtual QWindow* nativeWindow(const Element& element) const = 0;
    /// What would get a click of the button at this point of the screen, within the element's own
    /// window: the element's own or another one, or whoever has grabbed the mouse. Null for none.
    virtual Element elementAt(const Element& inWindowOf, const QPoint& globalPoint,
                              Qt::MouseButton button) const = 0;
    /// Whether a click at `hit` reaches `element`: it is the element, part of it, or passes clicks
    /// on (a label of a button).
    virtual bool receivesThrough(const Element& element, const Element& hit,
                                 Qt::MouseButton button) const;
    /// The modal window that keeps input from the element; null for none.
    virtual Element blockedBy(const Element& element) const = 0;
    /// The field or box whose open list takes the next click beside it, and closes, or another open
    /// popup; null when none is in the way of the element.
    virtual Element openListOver(const Element& element) const;
    /// Brings the element into the viewports that hold it. False when nothing had to be done.
    virtual bool scrollIntoView(const Element& element) const;

protected:
    ~ToolkitPlace() = default;
};

}  // namespace Tamrix::Agent
