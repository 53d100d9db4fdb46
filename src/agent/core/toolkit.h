#pragma once

#include <QImage>
#include <QRect>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

#include "agent/core/element.h"
#include "agent/core/itempath.h"
#include "base/export.h"
#include "wire/messages.h"

class QWindow;

namespace Tamrix::Agent {

/// What the core asks about the elements of one toolkit: widgets, Qt Quick items, plain objects.
/// Stateless; GUI thread only. Elements handed in are alive and of this toolkit. Coordinates are
/// native screen pixels of the application's coordinate system (device independent ones of Qt).
class TAMRIX_EXPORT Toolkit {
public:
    virtual ~Toolkit();

    /// Whether this toolkit knows the object; of several, the one registered last is asked first.
    virtual bool knows(const QObject* object) const = 0;
    virtual Element element(QObject* object) const;

    // The tree.
    /// Appends the top-level elements, visible or not.
    virtual void topLevels(QVector<Element>* elements) const = 0;
    /// Appends the children in order of creation. `withItems`: those that are no QObjects as well;
    /// of a model with very many items only those that are shown, item() finds the others.
    virtual void children(const Element& element, bool withItems,
                          QVector<Element>* elements) const = 0;
    /// Null for a top-level element.
    virtual Element parent(const Element& element) const = 0;
    /// The top-level window that shows the element; null when there is none.
    virtual Element window(const Element& element) const = 0;
    /// The label that names a field; null for none.
    virtual Element buddy(const Element& element) const;
    /// The other way round: the field that this label names; null for what is no label.
    virtual Element labelledField(const Element& element) const;
    /// Whether the element is one that children() would still give: an item can vanish under it.
    virtual bool isAlive(const Element& element) const;

    // What testers ask.
    virtual QString typeName(const Element& element) const;
    /// Names of the base types, the nearest first.
    virtual QStringList superTypes(const Element& element) const;
    virtual QString name(const Element& element) const;
    /// What a person reads on it: label, title, content of a field. Mnemonic markers are left out.
    virtual QString text(const Element& element) const = 0;
    /// What tells an element without text from others, a person reads it off a picture or a tool
    /// tip. Empty where there is none, and for elements with a text.
    struct Hint {
        /// A property.
        const char* name = nullptr;
        QString value;
    };
    virtual Hint hint(const Element& element) const;
    /// Whether the text tells the element from others: false for what a person types.
    virtual bool isTextLasting(const Element& element) const;
    /// Whether it is shown: itself, its parents, its window. What is only scrolled out of sight is
    /// visible, so that scrolling does not change what a name means; its visibleBounds() are empty.
    virtual bool isVisible(const Element& element) const = 0;
    /// Why an element that a person could expect to see is not seen: "its menu 'File' is closed".
    /// Empty where there is nothing to tell.
    virtual QString hiddenReason(const Element& element) const;
    /// Whether elements of the type may be seen though they hang below a window that is hidden.
    virtual bool showsOfHidden(const QString& typeName) const;
    virtual bool isEnabled(const Element& element) const = 0;
    /// Whether it is of the toolkit's inner workings, left out of names and trees.
    virtual bool isInternal(const Element& element) const;
    /// Whether it has no part in what is shown: a timer, a model.
    virtual bool isPlain(const Element& element) const;
    /// A property of a tester's vocabulary or of the object's class. `*isKnown` tells whether there
    /// is one of that name. Objects come as Wire::ObjectInfo only through Session::info().
    virtual QVariant property(const Element& element, const QString& name, bool* isKnown) const;
    virtual QStringList propertyNames(const Element& element) const;

    // Where it is.
    /// On the screen; null when it is not shown anywhere.
    virtual QRect globalBounds(const Element& element) const = 0;
    /// The visible part of it, on the screen: clipped by its parents and viewports.
    virtual QRect visibleBounds(const Element& element) const = 0;
    /// The native window that gets the input for the element, null when it has none.
    virtual QWindow* nativeWindow(const Element& element) const = 0;
    /// What would get a click of the button at this point of the screen, within the element's own
    /// window: the element's own or another one. Null for none.
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
    /// A picture of the element and its children, at the screen's density; null for none.
    virtual QImage grab(const Element& element) const = 0;

    // Items.
    /// Whether items of this type exist: a look-up leaves items out when its type is none.
    virtual bool isItemType(const QString& typeName) const;
    /// The item of a view, menu, bar or box; `path` null: by row and column. Null when there is
    /// none, with the reason in a whole sentence.
    virtual Element item(const Element& view, const ItemPath& path, int row, int column,
                         QString* reason) const;
};

}  // namespace Tamrix::Agent
