#pragma once

#include <optional>
#include <vector>

#include "platform/objectmodel/access.h"
#include "platform/objectmodel/display/windows.h"
#include "platform/objectmodel/objectname.h"
#include "wire/messages.h"
#include "wire/textmatch.h"

namespace Tamrix::Display {

using WindowList = std::vector<WindowFacts>;

/// A name, made ready to be compared with windows.
class WindowName {
public:
    /// Fails for what no application could look for.
    static Outcome<WindowName> of(const ObjectName& name);

    /// The window that the name means; null for none. Of several matches, those that are visible go
    /// first, unless the name says `visible` itself; the name's occurrence counts in their order.
    const WindowFacts* findIn(const WindowList& windows) const;
    /// All of which the name is true, whatever occurrence it says.
    WindowList matchesIn(const WindowList& windows) const;
    /// In what a window differs.
    NearMiss differences(const WindowFacts& window) const;
    /// Those that differ in the fewest properties, up to three.
    QList<NearMiss> nearMissesIn(const WindowList& windows) const;
    /// Whether it asks for what no window is, as a button.
    bool asksForOtherTypes() const;

private:
    struct Criterion {
        QString property;
        QString wanted;
        Wire::TextMatch match;
        /// A name of another object: no property of a window is one.
        bool isObject = false;
    };
    bool isTrueOf(const WindowFacts& window) const;
    static bool isTrueOf(const Criterion& criterion, const WindowFacts& window);

    std::vector<Criterion> m_criteria;
    int m_occurrence = 1;
};

/// Why nothing can match a name that asks for other types.
QString otherTypeText(const ObjectName& name);

/// Names that find the window among all, the best first: those that match nothing else, then the
/// others with the occurrence.
QList<CheckedName> namesOf(const WindowFacts& window, const WindowList& windows);
/// The first of these.
QString realNameOf(const WindowFacts& window, const WindowList& windows);
/// "Window 'title'"
QString describe(const WindowFacts& window);

}  // namespace Tamrix::Display
