#pragma once

#include <QPoint>
#include <QString>
#include <functional>
#include <optional>

#include "agent/core/element.h"
#include "wire/messages.h"

namespace Tamrix::Agent {

/// Whether an element can be used as a person would, and where.
struct Readiness {
    bool isReady = false;
    /// What is missing, for "... is not ready: it is disabled". Empty when ready.
    QString obstacle;
    /// A point of the element that gets a click, on the screen.
    QPoint point;
};

/// What is going to be done with the element.
struct Aim {
    /// The wanted point, relative to the element's bounds; none for its middle.
    std::optional<QPoint> offset;
    /// Qt::NoButton for keys, and where the point is looked at later: what covers the element does
    /// not matter then.
    Qt::MouseButton button = Qt::LeftButton;
    /// Whether it would go to an open list or menu instead. Keys are meant to, they close it.
    bool mindsOpenLists = true;

    static Aim withoutPoint() { return Aim{std::nullopt, Qt::NoButton, false}; }
    /// What a look that wants this much looks at.
    static Aim of(Wire::Wanted wanted) {
        return wanted == Wire::Wanted::Readiness ? Aim() : withoutPoint();
    }
    static Aim ofTyping() { return Aim{std::nullopt, Qt::NoButton, true}; }
};

/// Looks at the element: it is ready when it is visible, it is enabled, its window is not blocked
/// by a modal one, no open list is in the way, its place has not moved between two looks, and the
/// point to be clicked is not covered by something else. The obstacle is the first of these, in
/// this order, that is missing.
///
/// Since when an element stands still is remembered as long as it is looked at, so a poll takes one
/// look each, and what a wait has found ready is clicked without another wait; the first look at an
/// element takes a second one some 20 ms later. `done` is called once, perhaps before this
/// returns, from the GUI thread.
/// An element that is only scrolled away is scrolled into view.
void lookIfReady(const Element& element, const Aim& aim,
                 const std::function<void(const Readiness&)>& done);

/// What keeps the element from being used at any of its points, as above without its place and what
/// covers it; empty for nothing. Scrolls it into view if that makes it visible.
QString obstacleOf(const Element& element);

/// Polls lookIfReady() every 50 ms until it is ready or `timeout` ms are over, then calls `done`
/// once. Scrolls the element into view. Ends early, not ready, when the element is gone.
void waitUntilReady(const Element& element, const Aim& aim, int timeout,
                    std::function<void(const Readiness&)> done);

}  // namespace Tamrix::Agent
