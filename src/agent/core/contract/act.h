#pragma once

#include <QRect>
#include <QVariant>
#include <functional>

#include "agent/core/element.h"
#include "base/export.h"
#include "base/outcome.h"

namespace Tamrix::Agent {

/// A field that takes text.
struct Field {
    /// What takes the keys: the field, or the one in a box.
    Element target;
    /// Whether what is typed becomes its value at the end of the line only.
    bool endsWithReturn = false;
};

enum class CheckState { Unchecked, Partly, Checked };
/// Of a value of Qt::CheckState.
TAMRIX_EXPORT CheckState checkStateOf(const QVariant& state);

/// The mark of what can be checked.
struct CheckMark {
    CheckState state = CheckState::Unchecked;
    /// Whether it is the one of a group of which always one is checked.
    bool isExclusive = false;
};

enum class ClickPurpose {
    Use,  ///< what a click on the element usually does
    Mark  ///< to check it
};

enum class Typing {
    Fill,  ///< the text is complete
    Type   ///< what is typed may open a list that is wanted
};

/// Of a toolkit: what it takes to act on an element. What the toolkit can't do with an element is
/// refused, as a failure of kind Refused with the sentence that tells why.
class TAMRIX_EXPORT ToolkitAct {
public:
    /// Refused for what takes no text, and for what is read only.
    virtual Outcome<Field> field(const Element& element) const;
    /// Refused for what can't be checked.
    virtual Outcome<CheckMark> checkMark(const Element& element) const;
    /// The part of the element in which a click acts on it, on the screen: its bounds for most.
    virtual QRect clickArea(const Element& element, ClickPurpose purpose) const;
    /// Gives the element the keyboard's focus, if it takes any and does not have it yet. Code of
    /// the application runs below it.
    virtual void takeFocus(const Element& element, Qt::FocusReason reason) const;
    /// Takes care that a list of completions does not take the next click when the field is filled,
    /// and that it stays when it is wanted.
    virtual void tellTyping(const Element& element, Typing typing) const;
    /// What closes a window within a window, as its own button does; code of the application runs
    /// below it. Empty for other elements: the window system closes their window.
    virtual std::function<void()> closerOf(const Element& element) const;
    /// How long nothing may happen, in ms, before what a window of the toolkit shows counts as
    /// painted.
    virtual int quietTime() const;

protected:
    ~ToolkitAct() = default;
};

}  // namespace Tamrix::Agent
