#pragma once

#include <QImage>
#include <QStringList>
#include <QVariant>

#include "agent/core/element.h"
#include "base/export.h"

namespace Tamrix::Agent {

/// Of a toolkit: the state in which an element is, and what it looks like.
class TAMRIX_EXPORT ToolkitLook {
public:
    /// Whether it is shown: itself, its parents, its window. What is only scrolled out of sight is
    /// visible, so that scrolling does not change what a name means; its visibleBounds() are empty.
    virtual bool isVisible(const Element& element) const = 0;
    /// Why an element that a person could expect to see is not seen: "its menu 'File' is closed".
    /// Empty where there is nothing to tell.
    virtual QString hiddenReason(const Element& element) const;
    virtual bool isEnabled(const Element& element) const = 0;
    /// Whether it is of the toolkit's inner workings, left out of names and trees.
    virtual bool isInternal(const Element& element) const;
    /// Whether it has no part in what is shown: a timer, a model.
    virtual bool isPlain(const Element& element) const;
    /// A property of a tester's vocabulary or of the object's class. `*isKnown` tells whether there
    /// is one of that name. Objects come as Wire::ObjectInfo only through Session::info().
    virtual QVariant property(const Element& element, const QString& name, bool* isKnown) const;
    virtual QStringList propertyNames(const Element& element) const;
    /// A picture of the element and its children, at the screen's density; null for none.
    virtual QImage grab(const Element& element) const = 0;

protected:
    ~ToolkitLook() = default;
};

}  // namespace Tamrix::Agent
