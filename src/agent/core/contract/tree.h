#pragma once

#include <QVector>

#include "agent/core/element.h"
#include "base/export.h"

namespace Tamrix::Agent {

/// Of a toolkit: which elements there are and how they hang together.
class TAMRIX_EXPORT ToolkitTree {
public:
    /// Whether this toolkit knows the object; of several, the one registered last is asked first.
    virtual bool knows(const QObject* object) const = 0;
    /// The object's element: of what only stands for another object, such as the native window of a
    /// widget, that of the other one. Null for none.
    virtual Element element(QObject* object) const = 0;
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

    enum class Relation {
        Label,         ///< from a field to the label that names it
        LabelledField  ///< from a label to the field that it names
    };
    /// Null where the relation leads nowhere.
    virtual Element related(const Element& element, Relation relation) const;
    /// Whether the element is one that children() would still give: an item can vanish under it.
    virtual bool isAlive(const Element& element) const;

protected:
    ~ToolkitTree() = default;
};

}  // namespace Tamrix::Agent
