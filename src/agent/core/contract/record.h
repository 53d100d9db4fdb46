#pragma once

#include <QStringList>
#include <optional>

#include "agent/core/element.h"
#include "base/export.h"
#include "wire/observations.h"

class QKeyEvent;

namespace Tamrix::Agent {

/// The way to an item or to an entry of a menu, through what holds it.
struct RecordedWay {
    /// The view, bar, box or menu bar; a menu that belongs to no bar.
    Element holder;
    /// Texts as they are shown. Empty when they would lead to another item, or to none.
    QStringList steps;
};

/// Of a toolkit: what an element is to a person who uses it, for recordings.
class TAMRIX_EXPORT ToolkitRecord {
public:
    /// The element that is meant by who uses this one: the box around an inner field, the holder of
    /// what is of the toolkit's inner workings.
    virtual Element meant(const Element& element) const;
    virtual Wire::ObservedRole role(const Element& element) const;
    /// What it holds; the handle is left to the caller.
    virtual Wire::ObservedState state(const Element& element) const;
    /// None for what is no item and no entry.
    virtual std::optional<RecordedWay> wayTo(const Element& item) const;
    /// The popup that has the input while it is open, or what it belongs to; null for none.
    virtual Element openPopup() const;
    /// Whether the entry of a menu opens another one.
    virtual bool opensMenu(const Element& entry) const;
    /// What a shortcut that is the object's own clicks, a button; null for none.
    virtual Element clickedBy(const Element& receiver) const;
    /// The entry of an open menu that a key chooses; null for keys that move on or close it.
    virtual Element chosenBy(const Element& popup, const QKeyEvent& key) const;

protected:
    ~ToolkitRecord() = default;
};

}  // namespace Tamrix::Agent
